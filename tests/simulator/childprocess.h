#pragma once

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

namespace tarn::simulator::test {

/// A program in a process of its own, with pipes to its standard input and output. (QProcess calls
/// clone, which the thread sanitizer does not bear.)
class ChildProcess {
public:
    ChildProcess(std::string program, std::initializer_list<std::string> arguments)
    {
        const auto input = makePipe();
        const auto output = makePipe();
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
        std::vector<std::string> words{std::move(program)};
        words.insert(words.end(), arguments);
        std::vector<char*> argv;
        for (auto& word : words)
            argv.push_back(word.data());
        argv.push_back(nullptr);
        const int failure = posix_spawn(&m_process, argv.front(), &actions, nullptr, argv.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        close(input[0]);
        close(output[1]);
        m_input = input[1];
        m_output = output[0];
        if (failure != 0)
            throw std::runtime_error{"cannot start " + words.front()};
    }

    ~ChildProcess()
    {
        kill();
        close(m_output);
    }

    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] pid_t id() const { return m_process; }

    /// The next whole line of its output without the end of line; empty when there is none left.
    [[nodiscard]] std::string readLine()
    {
        std::string line;
        for (char c = 0; ::read(m_output, &c, 1) == 1;) {
            if (c == '\n')
                return line;
            line += c;
        }
        return {};
    }

    /// Ends its input and waits for it to end. Returns its exit status.
    int finish()
    {
        closeInput();
        return wait();
    }

    /// Ends it at once, whatever it is doing.
    void kill()
    {
        if (m_process > 0)
            ::kill(m_process, SIGKILL);
        closeInput();
        wait();
    }

private:
    static std::array<int, 2> makePipe()
    {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0)
            throw std::runtime_error{"no pipe"};
        return ends;
    }

    void closeInput()
    {
        if (m_input >= 0)
            close(m_input);
        m_input = -1;
    }

    int wait()
    {
        int status = -1;
        if (m_process > 0)
            waitpid(m_process, &status, 0);
        m_process = -1;
        return status;
    }

    pid_t m_process = -1;
    int m_input = -1;
    int m_output = -1;
};

} // namespace tarn::simulator::test
