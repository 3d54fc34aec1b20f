#pragma once

#include <console/error.h>
#include <console/interruptguard.h>

#include <QJsonValue>

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn::console {

enum class ColorMode { Auto, Always, Never };

enum class ProgressStyle {
    None,
    Json, ///< an object for each step
    Bar, ///< on a terminal, drawn over itself
    Lines, ///< a message now and then
};

/// How the program speaks, as the global options ask for it.
struct OutputOptions {
    bool json = false;
    bool quiet = false;
    bool verbose = false;
    ColorMode color = ColorMode::Auto;
};

/// Thrown when whoever read the standard output has gone away: there is nobody left to tell.
struct OutputClosed { };

/// The way out for everything that the program says. Data goes to standard output, as text or as
/// one JSON object a line; messages go to standard error. Texts are UTF-8.
///
/// Throws `Error` (`LocalFile`) when standard output cannot be written, `OutputClosed` when it was
/// closed by its reader. Standard error is written as well as possible.
class Output {
public:
    enum class Style { Heading, Good, Bad, Faint };

    /// `command` is the one that the JSON objects name.
    Output(const OutputOptions& options, std::string command);

    [[nodiscard]] bool isJson() const { return m_options.json; }

    /// Data: `json` in an object of its own, or `text`, which may have several lines and comes
    /// with everything untrusted in it escaped.
    void result(const QJsonValue& json, std::string_view text) const;

    /// Something was done: `json` in an object of its own, or `text` as a message.
    void done(const QJsonValue& json, std::string_view text) const;

    /// One of several results: as `result`, with more to come.
    void part(const QJsonValue& json, std::string_view text) const;

    /// How far the command has come: `json` in an object of its own. Only with `--json`.
    void progress(const QJsonValue& json) const;

    /// Bytes for standard output as they are.
    void data(std::string_view bytes) const;

    /// A line on standard error; not with `--quiet`. Escaped here, like the two below.
    void message(std::string_view text) const;

    /// A line on standard error with `--verbose`.
    void detail(std::string_view text) const;

    /// Why the command failed: an object on standard output, or two lines on standard error.
    void error(const Error& error) const;

    /// A line on standard error, with `--quiet` too.
    void warning(std::string_view text) const;

    /// Writes `text` over what stands on the terminal's current line; empty: clears the line.
    void redraw(std::string_view text) const;

    /// How many characters fit into a line of the terminal that messages go to.
    [[nodiscard]] int columns() const;

    /// How progress is to be shown.
    [[nodiscard]] ProgressStyle progressStyle() const;

    /// From now on Ctrl-C ends the program, saying so in the same way as `error`; without a word
    /// when it would come after a result, or in the middle of a part that is stuck.
    void exitOnInterrupt() const;

    /// From now on a change of the instrument is under way, and when Ctrl-C ends the program, it says
    /// so. For changes that can be interrupted without harm.
    void expectChange() const;

    /// While `guard` is alive the first Ctrl-C gives the warning `text` at once; empty: says nothing.
    void setFirstWords(platform::InterruptGuard& guard, std::string_view text) const;

    /// While `guard` is alive the second Ctrl-C ends the program with "interrupted", and an instrument that does not
    /// answer with `unanswered`, followed by `about` (": ...") and the hint.
    void setLastWords(platform::InterruptGuard& guard, std::string_view about, const std::string& hint) const;

    /// Ends the program at once with `error`, whatever its threads are doing. After parts, but no result.
    [[noreturn]] void end(const Error& error) const;

    /// Ends the program at once as the instrument does not answer, with the last words.
    [[noreturn]] void endUnanswered() const;

    /// The same when the command has come to its end, with the exit code `code`, and the instrument cannot be closed.
    [[noreturn]] void endUnclosed(int code) const;

    /// Whether there is somebody to ask: standard input and error are a terminal.
    [[nodiscard]] bool canAsk() const;

    /// Asks a question on the terminal; true only for a yes. Throws `Error` (`Interrupted`) when
    /// Ctrl-C is the answer.
    [[nodiscard]] bool confirm(std::string_view question) const;

    /// `text` in colour, if standard output is to have any.
    [[nodiscard]] std::string paint(Style style, std::string_view text) const;

private:
    [[nodiscard]] std::string resultWords(const QJsonValue& json, std::string_view text) const;
    [[nodiscard]] platform::Stream lastWordsStream() const;
    [[nodiscard]] platform::LastWords lastWords(std::string_view about, const std::string& hint) const;
    [[nodiscard]] std::string textWarning(std::string_view text) const;
    [[nodiscard]] std::string jsonError(const Error& error) const;
    [[nodiscard]] std::string textError(const Error& error) const;
    [[nodiscard]] std::string envelope(std::string_view member, const QJsonValue& value) const;

    OutputOptions m_options;
    std::string m_command;
    bool m_colorOut; ///< whether standard output is coloured
    bool m_colorErr; ///< whether standard error is
};

/// A number of 64 bits for JSON, exact as long as JSON's readers can hold it.
[[nodiscard]] QJsonValue toJson(std::uint64_t number);
[[nodiscard]] QJsonValue toJson(std::string_view text);

} // namespace tarn::console
