#pragma once

#include <guard/guard.h>
#include <sdk/service/ifilememorycontrol.h>
#include <support/fakevna.h>
#include <support/watchdog.h>

#include <gmock/gmock.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace tarn::guard {

using FileMemory = sdk::service::IFileMemoryControl;
using Files = std::vector<FileMemory::FileInfo>;
using FilesDone = sdk::Completion<Files>;

/// Keeps the breaches that it hears of.
class BreachLog final : public IBreachObserver {
public:
    void onBreach(const BreachReport& report) noexcept override
    {
        {
            const std::scoped_lock lock{m_mutex};
            m_reports.push_back(report);
        }
        m_heard.notify_all();
    }

    /// The breaches so far.
    [[nodiscard]] std::vector<Breach> breaches() const
    {
        const std::scoped_lock lock{m_mutex};
        std::vector<Breach> breaches;
        for (const auto& report : m_reports)
            breaches.push_back(report.breach);
        return breaches;
    }

    /// All reports, once there are `count`; fewer if they do not come.
    [[nodiscard]] std::vector<BreachReport> await(std::size_t count) const
    {
        std::unique_lock lock{m_mutex};
        m_heard.wait_for(lock, std::chrono::seconds{20}, [&] { return m_reports.size() >= count; });
        return m_reports;
    }

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_heard;
    std::vector<BreachReport> m_reports;
};

/// A file memory whose list of files does what a test says with its completion.
class ScriptedFileMemory final : public FileMemory {
public:
    using Script = std::function<void(FilesDone)>;

    explicit ScriptedFileMemory(Script script)
        : m_script{std::move(script)}
    {
    }
    ScriptedFileMemory(const ScriptedFileMemory&) = delete;
    ScriptedFileMemory& operator=(const ScriptedFileMemory&) = delete;
    ~ScriptedFileMemory() override
    {
        if (atEnd)
            atEnd();
    }

    bool isAvailable() override { return true; }
    void fileList(FilesDone done) override { m_script(std::move(done)); }
    void spaceInfo(sdk::Completion<SpaceInfo> done) override { done({.total = 3, .used = 1, .free = 2}, {}); }
    void readFile(const FileInfo& /*file*/, sdk::Completion<std::vector<std::uint8_t>> done) override { done({}, {}); }
    void writeFile(std::string /*name*/, std::vector<std::uint8_t> /*contents*/, sdk::Completion<> done) override
    {
        done({});
    }
    void deleteFile(const FileInfo& /*file*/, sdk::Completion<> done) override { done({}); }

    std::function<void()> atEnd; ///< of the control's life

private:
    const Script m_script;
};

/// How a request ended.
struct Ended {
    Files files;
    std::error_code code;
};

/// A guarded device with a scripted file memory.
class GuardTest : public testing::Test {
protected:
    static constexpr std::chrono::milliseconds shortLimit{40};

    /// Long enough for an operation that returns at once to have returned, whatever else the machine does.
    static constexpr std::chrono::milliseconds returnLimit{600};

    void useLimit(std::chrono::milliseconds limit) { guarded = tarn::guard::guarded(device, {limit, breaches}); }

    std::shared_ptr<ScriptedFileMemory> offer(ScriptedFileMemory::Script script)
    {
        auto memory = std::make_shared<ScriptedFileMemory>(std::move(script));
        device->offer<FileMemory>(FileMemory::key, memory);
        return memory;
    }

    [[nodiscard]] std::shared_ptr<FileMemory> control() const { return guarded->control<FileMemory>(FileMemory::key); }

    /// Makes the request and waits for its end; the completion must come exactly once.
    Ended fileList() const
    {
        auto calls = std::make_shared<std::promise<Ended>>(); // a second call would throw
        auto ended = calls->get_future();
        const auto held = control();
        held->fileList([calls](Files files, std::error_code code) { calls->set_value({std::move(files), code}); });
        return ended.get();
    }

    std::shared_ptr<tests::FakeVna> device = std::make_shared<tests::FakeVna>();
    std::shared_ptr<BreachLog> breaches = std::make_shared<BreachLog>();
    std::shared_ptr<sdk::IVna> guarded = tarn::guard::guarded(device, {std::chrono::seconds{20}, breaches});
    const Files someFiles{{"a", 1}, {"b", 2}};

private:
    const tests::Watchdog m_watchdog;
};

} // namespace tarn::guard
