#pragma once

#include "awkwardobserved.h"
#include "awkwardstuck.h"

#include <sdk/itemperaturecontrol.h>
#include <sdk/service/ifilememorycontrol.h>
#include <sdk/service/iloleakagecontrol.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <unistd.h>

/// The controls of an instrument with one awkward trait, which its address names.
namespace awkward {

/// Names that an instrument may come up with.
inline const std::map<std::string, std::string> hostileFiles{{"../escaped", "contents"},
                                                             {"a/b", "contents"},
                                                             {"a\\b", "contents"},
                                                             {"..", "contents"},
                                                             {"CON", "contents"},
                                                             {"nul.txt", "contents"},
                                                             {"-rf", "contents"},
                                                             {"\x1b[2Jclear", "contents"},
                                                             {"line\nbreak", "contents"},
                                                             {"a\u202etxt", "contents"},
                                                             {std::string(300, 'x'), "contents"},
                                                             {"plain.txt", "contents"},
                                                             {"c1\u009b\x7f", "contents"},
                                                             {"csi",
                                                              "text\x9b"
                                                              "2J"},
                                                             {"overwriting", "harmful\rharmless\n"},
                                                             {"dos.txt", "one\r\ntwo\r\n"},
                                                             {"binary", std::string{"\x1b[2J"}}};

using Files = std::map<std::string, std::string>;

inline Files filesOf(const std::string& behaviour)
{
    if (behaviour == "hostile")
        return hostileFiles;
    if (behaviour != "crowded")
        return {{"fixed", ""}};
    Files files;
    for (int i = 0; i < 1000; ++i)
        files.emplace(std::to_string(i), "");
    return files;
}

/// How many event descriptors of this program are readable.
inline std::ptrdiff_t readableEvents()
{
    return std::ranges::count_if(std::filesystem::directory_iterator{"/proc/self/fdinfo"}, [](const auto& entry) {
        std::ifstream info{entry.path()};
        std::string word;
        while (info >> word && word != "eventfd-count:") { }
        return info >> word && word != "0";
    });
}

/// Presses Ctrl-C and returns when the program has made a note of it, which is an event to it.
inline void pressCtrlC()
{
    const auto before = readableEvents();
    ::kill(::getpid(), SIGINT);
    while (readableEvents() == before)
        std::this_thread::yield();
}

class FileMemory final : public sdk::service::IFileMemoryControl {
public:
    explicit FileMemory(std::string behaviour)
        : m_behaviour{std::move(behaviour)}
        , m_files{filesOf(m_behaviour)}
    {
    }

    bool isAvailable() override { return m_behaviour != "unformatted"; }

    void fileList(sdk::Completion<std::vector<FileInfo>> completion) override
    {
        enter("files");
        std::vector<FileInfo> list;
        for (const auto& [name, contents] : m_files)
            list.push_back({name, contents.size()});
        completion(std::move(list), {});
    }

    void spaceInfo(sdk::Completion<SpaceInfo> completion) override
    {
        if (m_behaviour == "huge")
            completion({std::numeric_limits<std::uint64_t>::max(), 1, 1}, {});
        else
            completion({65536, 0, 65536}, {});
    }

    void readFile(const FileInfo& file, sdk::Completion<std::vector<std::uint8_t>> completion) override
    {
        const auto& contents = m_files[file.name];
        completion({contents.begin(), contents.end()}, {});
    }

    void writeFile(std::string name, std::vector<std::uint8_t> contents, sdk::Completion<> completion) override
    {
        m_files[name] = m_behaviour == "forgetful" ? "" : std::string{contents.begin(), contents.end()};
        if (m_behaviour == "interrupting")
            pressCtrlC();
        completion({});
    }

    void deleteFile(const FileInfo& file, sdk::Completion<> completion) override
    {
        if (m_behaviour != "forgetful" && m_behaviour != "clinging")
            m_files.erase(file.name);
        if (m_behaviour == "interrupting")
            std::fputs("the instrument has deleted a file\n", stderr);
        completion({});
    }

private:
    const std::string m_behaviour;
    Files m_files;
};

class LoLeakage final : public sdk::service::ILoLeakageControl {
public:
    explicit LoLeakage(std::string behaviour)
        : m_behaviour{std::move(behaviour)}
    {
    }

    bool isEnabled() override
    {
        enter("lo-leakage");
        if (m_behaviour == "throwing")
            throw std::runtime_error{"the synthesizer \x1b[31mcaught fire"};
        if (m_behaviour == "exhausted")
            throw std::bad_alloc{};
        return m_enabled;
    }

    void setEnabled(bool enabled) override
    {
        enter("lo-leakage-set");
        if (m_behaviour != "forgetful")
            m_enabled = enabled;
    }

private:
    const std::string m_behaviour;
    bool m_enabled = false;
};

class Temperatures final : public Observed<sdk::ITemperatureControl> {
public:
    float temperature() override
    {
        enter("temperature");
        return 30.5F;
    }
    const ModuleTemperatures& moduleTemperatures() override { return m_modules; }

    void live() { notify(&Observer::onTemperatureChanged); }

private:
    const ModuleTemperatures m_modules{{"synth \x1b[31m", 41.25F}, {"front end", 35.0F}};
};

} // namespace awkward
