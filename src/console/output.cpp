#include <console/output.h>

#include <console/platform.h>
#include <console/text.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

namespace tarn::console {

namespace {

constexpr std::string_view schema = "tarn-service/1";

bool isCapableTerminal(platform::Stream stream)
{
    return qgetenv("TERM") != "dumb" && platform::isTerminal(stream);
}

bool wantsColor(ColorMode mode, platform::Stream stream)
{
    if (mode != ColorMode::Auto)
        return mode == ColorMode::Always;
    return qgetenv("NO_COLOR").isEmpty() && isCapableTerminal(stream);
}

std::string painted(Output::Style style, std::string_view text)
{
    static constexpr std::string_view codes[] = {"1", "32", "31", "2"};
    return fmt::format("\x1b[{}m{}\x1b[0m", codes[static_cast<std::size_t>(style)], text);
}

/// A JSON value on its own; Qt writes only arrays and objects. What does not print, and may steer a
/// terminal, is written as JSON's own escapes, which stand for the same value.
std::string written(const QJsonValue& value)
{
    const auto array = QJsonDocument{QJsonArray{value}}.toJson(QJsonDocument::Compact);
    std::string json;
    for (const char32_t character : QString::fromUtf8(array).mid(1).chopped(1).toUcs4()) {
        const auto units = QChar::fromUcs4(character); // a QString would lose a byte order mark
        if (isPrintable(character)) {
            json += QStringView{units}.toUtf8().toStdString();
            continue;
        }
        for (const QChar unit : units)
            json += fmt::format("\\u{:04x}", static_cast<unsigned>(unit.unicode()));
    }
    return json;
}

/// Whether standard output took what was written to it.
void check(std::error_code error)
{
    if (error == std::errc::broken_pipe)
        throw OutputClosed{};
    if (error)
        throw Error{ErrorCode::LocalFile, fmt::format("cannot write to standard output: {}", error.message()),
                    "check where standard output goes"};
}

} // namespace

Output::Output(const OutputOptions& options, std::string command)
    : m_options{options}
    , m_command{std::move(command)}
    , m_colorOut{wantsColor(options.color, platform::Stream::Output)}
    , m_colorErr{wantsColor(options.color, platform::Stream::Error)}
{
}

void Output::result(const QJsonValue& json, std::string_view text) const
{
    if (const auto words = resultWords(json, text); !words.empty())
        data(words);
}

std::string Output::resultWords(const QJsonValue& json, std::string_view text) const
{
    if (m_options.json)
        return envelope("result", json);
    return text.empty() || text.ends_with('\n') ? std::string{text} : std::string{text} + '\n';
}

void Output::done(const QJsonValue& json, std::string_view text) const
{
    if (m_options.json)
        data(resultWords(json, text));
    else
        message(text);
}

void Output::part(const QJsonValue& json, std::string_view text) const
{
    if (const auto words = resultWords(json, text); !words.empty())
        check(platform::writePart(words));
}

void Output::progress(const QJsonValue& json) const
{
    check(platform::writePart(envelope("progress", json)));
}

void Output::data(std::string_view bytes) const // NOLINT(readability-convert-member-functions-to-static)
{
    check(platform::write(platform::Stream::Output, bytes));
}

void Output::message(std::string_view text) const
{
    if (!m_options.quiet)
        static_cast<void>(platform::write(platform::Stream::Error, escaped(text) + '\n'));
}

void Output::detail(std::string_view text) const
{
    if (m_options.verbose)
        static_cast<void>(platform::write(platform::Stream::Error,
                                          (m_colorErr ? painted(Style::Faint, escaped(text)) : escaped(text)) + '\n'));
}

void Output::warning(std::string_view text) const
{
    static_cast<void>(platform::write(platform::Stream::Error, textWarning(text)));
}

void Output::redraw(std::string_view text) const // NOLINT(readability-convert-member-functions-to-static)
{
    static_cast<void>(platform::write(platform::Stream::Error, fmt::format("\r{}\x1b[K", text)));
}

ProgressStyle Output::progressStyle() const
{
    if (m_options.quiet)
        return ProgressStyle::None;
    if (m_options.json)
        return ProgressStyle::Json;
    return isCapableTerminal(platform::Stream::Error) ? ProgressStyle::Bar : ProgressStyle::Lines;
}

int Output::columns() const // NOLINT(readability-convert-member-functions-to-static)
{
    return platform::columns(platform::Stream::Error);
}

void Output::error(const Error& error) const
{
    if (m_options.json && !platform::write(platform::Stream::Output, jsonError(error)))
        return;
    static_cast<void>(platform::write(platform::Stream::Error, textError(error)));
}

void Output::exitOnInterrupt() const
{
    platform::exitOnInterrupt(lastWordsStream(), lastWords({}, {}));
}

void Output::expectChange() const
{
    platform::setLastWords(
        lastWords({}, "what was under way may or may not have been done; look before doing it again"));
    detail("a change of the instrument is under way");
}

void Output::setFirstWords(platform::InterruptGuard& guard, std::string_view text) const
{
    guard.setFirstWords(text.empty() ? std::string{} : '\n' + textWarning(text));
}

void Output::setLastWords(platform::InterruptGuard& guard, std::string_view about, const std::string& hint) const
{
    guard.setLastWords(lastWords(about, hint));
}

void Output::end(const Error& error) const
{
    platform::endProgram(lastWordsStream(), m_options.json ? jsonError(error) : textError(error),
                         exitCode(error.code()));
}

void Output::endUnanswered() const
{
    platform::endProgram(lastWordsStream(), platform::lastWords().unanswered, exitCode(ErrorCode::InstrumentLost));
}

void Output::endUnclosed(int code) const
{
    const auto error = unanswered(" while it was being closed", code == 0 ? "the command was done before" : "");
    platform::endProgram(platform::Stream::Error, textError(error), code == 0 ? exitCode(error.code()) : code);
}

platform::Stream Output::lastWordsStream() const
{
    return m_options.json ? platform::Stream::Output : platform::Stream::Error;
}

platform::LastWords Output::lastWords(std::string_view about, const std::string& hint) const
{
    const Error interrupted{ErrorCode::Interrupted, fmt::format("interrupted{}", about), hint};
    const auto lost = unanswered(about, hint);
    if (m_options.json)
        return {jsonError(interrupted), jsonError(lost)};
    const auto* const endOfLine = progressStyle() == ProgressStyle::Bar ? "\n" : "";
    return {'\n' + textError(interrupted), endOfLine + textError(lost)};
}

std::string Output::textWarning(std::string_view text) const
{
    const auto word = m_colorErr ? painted(Style::Bad, "warning:") : std::string{"warning:"};
    return fmt::format("{} {}\n", word, escaped(text));
}

std::string Output::jsonError(const Error& error) const
{
    return envelope("error",
                    QJsonObject{{QStringLiteral("code"), toJson(errorWord(error.code()))},
                                {QStringLiteral("message"), toJson(error.message())},
                                {QStringLiteral("hint"), toJson(error.hint())}});
}

std::string Output::textError(const Error& error) const
{
    const auto word = m_colorErr ? painted(Style::Bad, "error:") : std::string{"error:"};
    const auto hint = error.hint().empty() ? std::string{} : fmt::format("  {}\n", escaped(error.hint()));
    return fmt::format("{} {}\n{}", word, escaped(error.message()), hint);
}

bool Output::canAsk() const // NOLINT(readability-convert-member-functions-to-static)
{
    return platform::isTerminal(platform::Stream::Input) && platform::isTerminal(platform::Stream::Error);
}

bool Output::confirm(std::string_view question) const
{
    static constexpr auto about = " at the question";
    static constexpr auto hint = "what was asked for was not done";
    platform::InterruptGuard guard;
    setFirstWords(guard, {});
    setLastWords(guard, about, hint);
    static_cast<void>(platform::write(platform::Stream::Error, escaped(question) + " [y/N] "));
    const auto answer = platform::readLine(guard.descriptor());
    if (!answer || guard.isRequested()) {
        static_cast<void>(platform::write(platform::Stream::Error, "\n"));
        throw Error{ErrorCode::Interrupted, fmt::format("interrupted{}", about), hint};
    }
    const auto word = QString::fromStdString(*answer).toLower();
    return word == QLatin1StringView{"y"} || word == QLatin1StringView{"yes"};
}

std::string Output::paint(Style style, std::string_view text) const
{
    return m_colorOut ? painted(style, text) : std::string{text};
}

std::string Output::envelope(std::string_view member, const QJsonValue& value) const
{
    return fmt::format("{{\"schema\": \"{}\", \"command\": {}, \"{}\": {}}}\n", schema, written(toJson(m_command)),
                       member, written(value));
}

QJsonValue toJson(std::uint64_t number)
{
    if (number > static_cast<std::uint64_t>(std::numeric_limits<qint64>::max()))
        return static_cast<double>(number);
    return static_cast<qint64>(number);
}

QJsonValue toJson(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace tarn::console
