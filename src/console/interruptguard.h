#pragma once

#include <console/platform.h>

#include <string>
#include <string_view>

/// Ctrl-C. Whatever these comments say of it holds for the signals SIGTERM and SIGHUP as well. One
/// that was ignored when the program was started goes on being ignored, and a hang-up counts once:
/// the terminal and the shell both report it.
namespace tarn::console::platform {

/// To be called before the first thread: holds Ctrl-C back until `exitOnInterrupt`.
void holdInterrupts();

/// What the program says when it is ended in the middle of its command.
struct LastWords {
    std::string interrupted; ///< by Ctrl-C
    std::string unanswered; ///< because the instrument does not answer
};

/// From now on Ctrl-C ends the program as `endProgram` does, with `lastWords` and exit code 130.
void exitOnInterrupt(Stream stream, LastWords lastWords);

/// Other last words than those of `exitOnInterrupt` from now on.
void setLastWords(LastWords lastWords);
[[nodiscard]] LastWords lastWords();

/// Writes `words` to `stream` as `writeLastWords` does, and ends the program, whatever its threads are doing. Threads:
/// any.
[[noreturn]] void endProgram(Stream stream, std::string_view words, int exitCode);

/// While one is alive, the first Ctrl-C of the program does not end it but is recorded, for good;
/// a second one ends it. Guards may nest; each leaves the words as it found them.
class InterruptGuard {
public:
    InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;
    ~InterruptGuard();

    [[nodiscard]] bool isRequested() const;

    /// What the first Ctrl-C writes to standard error from now on, unless that would have to wait.
    void setFirstWords(std::string firstWords);

    /// What a second Ctrl-C writes from now on, and an end for another reason.
    void setLastWords(LastWords lastWords);

    /// A file descriptor that becomes readable when Ctrl-C is recorded.
    [[nodiscard]] int descriptor() const;

private:
    const std::string m_firstWordsBefore;
    const LastWords m_lastWordsBefore;
};

} // namespace tarn::console::platform
