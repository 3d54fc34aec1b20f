#include <console/filerequests.h>

#include <console/error.h>
#include <console/requests.h>
#include <console/text.h>
#include <console/verify.h>

#include <algorithm>
#include <utility>

namespace tarn::console::filerequests {

namespace {

using Control = FilesCommand::Control;

constexpr auto unchanged = "the instrument is as it was";

/// The result of one request. One that found the control unavailable was not made, so it is made
/// again once the control is back. `outcome` says what is known of the files when it was not answered.
template <class Request>
auto ask(const Instrument& instrument, std::string_view outcome, Request request)
{
    const auto control = instrument.control<Control>();
    for (int attempt = 1;; ++attempt) {
        const AnswerWatch answers{instrument};
        const auto hint = [](std::string_view known) {
            return fmt::format("{}; 'tarn-service files list' shows what it holds", known);
        };
        const auto limited = [&] {
            const DeviceCall call;
            return request(*control);
        };
        auto answer = answers.inTime(limited, [&] { return unanswered({}, hint(outcome)); });
        if (answer)
            return std::move(answer).value();
        if (answer.error() != Control::unavailableMessage)
            throw Error{ErrorCode::Failed, answer.error().toStdString(),
                        hint(answers.isGivenUp() ? outcome : unchanged)};
        instrument.awaitControl(Control::registryKey);
        if (attempt == attempts)
            throw Error{ErrorCode::Failed, "the instrument offers its file memory, but the memory cannot be used now",
                        "check the instrument, then try again"};
    }
}

constexpr auto verifyHint = "see what the instrument has with 'tarn-service files list', then do it again";

} // namespace

QList<FileInfo> list(const Instrument& instrument)
{
    return ask(instrument, unchanged, [](Control& control) { return control.fileList(); });
}

SpaceInfo space(const Instrument& instrument)
{
    return ask(instrument, unchanged, [](Control& control) { return control.spaceInfo(); });
}

std::optional<FileInfo> find(const Instrument& instrument, const QString& name)
{
    const auto files = list(instrument);
    const auto file = std::ranges::find(files, name, &FileInfo::name);
    return file == files.end() ? std::nullopt : std::optional{*file};
}

FileInfo findOrThrow(const Instrument& instrument, const QString& name)
{
    if (auto file = find(instrument, name))
        return *std::move(file);
    throw Error{ErrorCode::NotFound, fmt::format("the instrument has no file '{}'", name),
                "'tarn-service files list' shows those that it has"};
}

QByteArray contentsOf(const Instrument& instrument, const FileInfo& file)
{
    return ask(instrument, unchanged, [&](Control& control) { return control.readFile(file); });
}

void write(const Instrument& instrument, const QString& name, const QByteArray& contents)
{
    ask(instrument, fmt::format("whether '{}' was written is not known", name),
        [&](Control& control) { return control.writeFile(name, contents); });
    verify(fmt::format("'{}' was written", name), verifyHint, [&] {
        const auto file = find(instrument, name);
        return file && contentsOf(instrument, *file) == contents;
    });
}

void remove(const Instrument& instrument, const FileInfo& file)
{
    ask(instrument, fmt::format("whether '{}' was deleted is not known", file.name),
        [&](Control& control) { return control.deleteFile(file); });
    verify(fmt::format("'{}' was deleted", file.name), verifyHint, [&] { return !find(instrument, file.name); });
}

} // namespace tarn::console::filerequests
