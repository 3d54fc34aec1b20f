#pragma once

#include <console/command.h>
#include <console/devicecall.h>
#include <console/interruptguard.h>
#include <console/lifecyclewatch.h>
#include <console/output.h>
#include <console/postbox.h>

#include <QEventLoop>
#include <QJsonObject>
#include <QObject>

#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tarn::console {

/// Shows what happens on an instrument until a number of things was shown or Ctrl-C. Says when the
/// instrument drops its controls and when they are back.
class WatchLoop final : public QObject {
public:
    /// Both references must outlive the loop.
    WatchLoop(const LifecycleWatch& lifecycle, std::optional<std::uint64_t> count, const Output& output);

    /// Returns when `count` things were shown. Throws what a step threw, and `Error` (`Interrupted`)
    /// after Ctrl-C.
    void run();

    /// Runs `step`, which shows one thing, unless enough were shown. On the loop's thread.
    void show(const std::function<void()>& step);

    /// Has `question` put to the instrument, which is held back from dropping its controls meanwhile,
    /// together with all others that wait: one of them may be what it drops them for. Those that find
    /// the controls away wait for the next ones. On the loop's thread.
    void ask(std::function<void()> question);

    /// Shows an event with the moment of this call: `json`, or `text` for people. Threads: any.
    void post(QJsonObject json, std::string text);

private:
    void onLifecycleChanged();
    void putQuestions();

    /// Runs `step`, which may wait for whoever reads what it writes.
    void write(const std::function<void()>& step);
    void attempt(const std::function<void()>& step);

    const LifecycleWatch& m_lifecycle;
    const std::optional<std::uint64_t> m_count;
    const Output& m_output;
    std::uint64_t m_shown = 0;
    bool m_saidAway = false;
    std::vector<std::function<void()>> m_questions;
    platform::InterruptGuard m_interrupt;
    std::optional<DeviceCall> m_call; ///< once the loop runs: whenever its thread neither writes nor waits
    QEventLoop m_loop;
    std::exception_ptr m_failure; ///< no exception may pass through Qt's event loop
    Postbox m_postbox; ///< last: what it calls uses the others
};

/// Adds `--count` to a command that watches.
void addCountOption(Command command, std::optional<std::uint64_t>& count, const std::string& description);

/// Adds `--interval`, a day at most, to a command that watches.
void addIntervalOption(Command command, std::chrono::microseconds& interval, const std::string& description);

} // namespace tarn::console
