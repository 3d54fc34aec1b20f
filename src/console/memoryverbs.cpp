#include <console/memoryverbs.h>

#include <console/change.h>
#include <console/commandtable.h>
#include <console/localfile.h>
#include <console/platform.h>
#include <console/verify.h>

#include <QJsonObject>

#include <algorithm>
#include <vector>

namespace tarn::console::memoryverbs {

namespace {

using Control = MemoryCommand::Control;
using Image = std::vector<std::byte>;
using Unit = OperationName::Unit;

constexpr std::byte erased{0xFF};

constexpr auto rewriteAdvice = "once the instrument is there, 'tarn-service memory check' tells whether its memory is "
                               "consistent, be it with the "
                               "old image or the new one; write the image again to be sure of it";

/// Hears of the operation called `word` alone: another may be somebody else's, which keeps this one
/// from being done.
class ProgressObserver final : public Control::IObserver {
public:
    using Progress = devices::service::Progress;

    ProgressObserver(LongRequest& request, std::string_view word)
        : m_request{request}
        , m_word{word}
    {
    }

    void onWriteProgressChanged(const Progress& progress) override { pass("write", progress); }
    void onReadProgressChanged(const Progress& progress) override { pass("read", progress); }
    void onEraseProgressChanged(const Progress& progress) override { pass("erase", progress); }
    void onIntegrityCheckProgressChanged(const Progress& progress) override { pass("check", progress); }

private:
    void pass(std::string_view word, const Progress& progress)
    {
        if (word == m_word)
            m_request.onProgress(progress);
    }

    LongRequest& m_request;
    const std::string_view m_word;
};

template <class Request>
auto observed(Control& control, LongRequest& longRequest, std::string_view word, Request request)
{
    ProgressObserver observer{longRequest, word};
    const Registration registration{control, static_cast<Control::IObserver&>(observer)};
    return request(control);
}

/// A request that changes nothing, with its progress.
template <class Request>
auto look(Session& session, const OperationName& name, InterruptWarning* warning, const Question& question,
          Request request)
{
    return askInTime<Control>(session.instrument(), question, [&](Control& control) {
        LongRequest longRequest{session.output(), name, warning};
        return longRequest.run([&] {
            const DeviceCall call;
            return observed(control, longRequest, name.word, request);
        });
    });
}

template <class Request>
void makeObserved(Session& session, const Change& change, InterruptWarning& warning, Request request)
{
    make<Control>(change, session.instrument(), session.output(), warning,
                  [&](Control& control, LongRequest& longRequest) {
                      return observed(control, longRequest, change.progress.value().word, request);
                  });
}

Question toRead()
{
    return {"read its memory",
            Error{ErrorCode::Failed, "the instrument could not read its memory",
                  "'tarn-service memory check' tells whether the memory is consistent"}};
}

Question toCheck()
{
    return {"check its memory",
            Error{ErrorCode::Failed,
                  "the integrity check failed: the memory does not match its checksums, or could not be checked",
                  "save what is there with 'tarn-service memory read -o PATH', then write a good image"}};
}

Image read(Session& session, InterruptWarning* warning = nullptr)
{
    return look(session, {"read", "reading the memory", Unit::Bytes}, warning, toRead(),
                [](Control& control) { return control.read(); });
}

QByteArrayView view(const Image& image)
{
    return {image.data(), static_cast<qsizetype>(image.size())};
}

QJsonObject json(const Image& image)
{
    return {{QStringLiteral("size"), toJson(std::uint64_t{image.size()})}};
}

} // namespace

void readMemory(Session& session, const ReadOptions& options)
{
    const auto& output = session.output();
    const bool toOutput = options.path == "-";
    if (toOutput && output.isJson())
        throw Error{ErrorCode::Usage, "--json and '-o -' both want standard output", "leave one of them out"};
    if (toOutput && platform::isTerminal(platform::Stream::Output))
        throw Error{ErrorCode::Refused, "an image is not for a terminal, and standard output is one",
                    "send it elsewhere with '| ...', '> FILE' or -o PATH"};
    if (!toOutput)
        checkDestination(options.path);
    const auto image = read(session);
    const auto bytes = view(image);
    if (toOutput)
        return output.data({bytes.data(), image.size()});

    const bool identical = writeLocalFile(options.path, bytes, options.overwrite) == LocalWrite::Identical;
    auto result = json(image);
    result.insert(QStringLiteral("path"), toJson(options.path));
    result.insert(QStringLiteral("status"), identical ? QStringLiteral("identical") : QStringLiteral("written"));
    output.done(result,
                identical ? fmt::format("'{}' is there already, identical ({} bytes)", options.path, image.size())
                          : fmt::format("read the memory into '{}' ({} bytes)", options.path, image.size()));
}

void writeMemory(Session& session, const WriteOptions& options)
{
    const auto& output = session.output();
    const auto image = readLocalImage(options.path);
    session.instrument().awaitControl(Control::registryKey);
    options.confirmation.obtain(
        output, "writing the memory",
        fmt::format("Write '{}' ({} bytes) into the instrument's memory? The image that it holds now is lost.",
                    options.path, image.size()));

    InterruptWarning warning{output};
    const Change change{.doing = "writing the memory",
                        .target = "the memory",
                        .leftBehind = "the memory may be left partly written",
                        .advice = rewriteAdvice,
                        .progress = OperationName{"write", "writing the memory", Unit::Bytes}};
    makeObserved(session, change, warning, [&](Control& control) { return control.write(image); });
    warning.setConsequences("the image was written but not compared", rewriteAdvice);
    verify("the image was written", rewriteAdvice, [&] { return read(session, &warning) == image; });
    output.done(json(image), fmt::format("wrote '{}' ({} bytes), read back and compared", options.path, image.size()));
}

void eraseMemory(Session& session, const Confirmation& confirmation)
{
    static constexpr auto advice = "once the instrument is there, erase its memory again or write an image";
    const auto& output = session.output();
    session.instrument().awaitControl(Control::registryKey);
    confirmation.obtain(output, "erasing the memory",
                        "Erase the instrument's whole memory? The image that it holds now is lost.");

    InterruptWarning warning{output};
    const Change change{.doing = "erasing the memory",
                        .target = "the memory",
                        .leftBehind = "the memory may be left partly erased",
                        .advice = advice,
                        .progress = OperationName{"erase", "erasing the memory", Unit::Bytes}};
    makeObserved(session, change, warning, [](Control& control) { return control.erase(); });
    warning.setConsequences("the memory was erased but not looked at", advice);
    QJsonObject result;
    verify("the memory was erased", advice, [&] {
        const auto image = read(session, &warning);
        result = json(image);
        return !image.empty() && std::ranges::all_of(image, [](std::byte byte) { return byte == erased; });
    });
    output.done(result, "erased the memory, read back and found empty");
}

void checkMemory(Session& session)
{
    look(session, {"check", "checking the memory", Unit::Bytes}, nullptr, toCheck(),
         [](Control& control) { return control.integrityCheck(); });
    session.output().done(QJsonObject{{QStringLiteral("intact"), true}}, "the memory matches its checksums");
}

std::size_t imageSize(const Instrument& instrument)
{
    return ask<Control>(instrument, toRead(), [](Control& control) { return control.read(); }).size();
}

void expectIntact(const Instrument& instrument)
{
    ask<Control>(instrument, toCheck(), [](Control& control) { return control.integrityCheck(); });
}

} // namespace tarn::console::memoryverbs
