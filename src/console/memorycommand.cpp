#include <console/change.h>
#include <console/commandline.h>
#include <console/commandtable.h>
#include <console/confirmation.h>
#include <console/localfile.h>
#include <console/platform.h>
#include <console/text.h>
#include <console/tourcommand.h>
#include <console/verify.h>

#include <QJsonObject>

#include <algorithm>
#include <memory>
#include <vector>

namespace tarn::console {

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
    return ask<Control>(session.instrument(), question, [&](Control& control) {
        LongRequest longRequest{session.output(), name, warning};
        return longRequest.run([&] { return observed(control, longRequest, name.word, request); });
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

// ---- the verbs

struct ReadOptions {
    std::string path;
    bool overwrite = false;
};

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

struct WriteOptions {
    std::string path;
    Confirmation confirmation;
};

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

void check(Session& session)
{
    look(session, {"check", "checking the memory", Unit::Bytes}, nullptr, toCheck(),
         [](Control& control) { return control.integrityCheck(); });
    session.output().done(QJsonObject{{QStringLiteral("intact"), true}}, "the memory matches its checksums");
}

} // namespace

void MemoryCommand::addTo(CommandLine& line)
{
    auto& noun = line.addNoun("memory", "The instrument's non-volatile memory as a whole");
    CommandLine::addExamples(noun, {"memory read -o backup.img", "memory write new.img", "memory check"});

    const auto read = std::make_shared<ReadOptions>();
    auto& readVerb = line.addVerb(noun, "read", "Read the image that the memory holds",
                                  [read](Session& session) { readMemory(session, *read); });
    readVerb.add_option("-o,--output", read->path, "Where to write it; '-' is standard output")
        ->type_name("PATH")
        ->required();
    readVerb.add_flag("--overwrite", read->overwrite, "Replace a local file that has other contents");
    CommandLine::addExamples(readVerb, {"memory read -o backup.img", "memory read -o - | sha256sum"});

    const auto write = std::make_shared<WriteOptions>();
    auto& writeVerb
        = line.addVerb(noun, "write", "Write an image into the memory, after asking; read it back and compare",
                       [write](Session& session) { writeMemory(session, *write); });
    writeVerb.add_option("PATH", write->path, "The local file; '-' is standard input, with --yes")->required();
    write->confirmation.addTo(writeVerb);
    CommandLine::addExamples(writeVerb, {"memory write new.img", "memory write new.img --yes --json"});

    const auto confirmation = std::make_shared<Confirmation>();
    auto& eraseVerb = line.addVerb(noun, "erase", "Erase the whole memory, after asking",
                                   [confirmation](Session& session) { eraseMemory(session, *confirmation); });
    confirmation->addTo(eraseVerb);
    CommandLine::addExamples(eraseVerb, {"memory erase", "memory erase --yes"});

    line.addVerb(noun, "check", "Have the memory checked against its own checksums", &check);
}

void MemoryCommand::tour(Tour& tour)
{
    const auto& instrument = tour.instrument();
    const auto size = ask<Control>(instrument, toRead(), [](Control& control) { return control.read(); }).size();
    tour.show("image", fmt::format("{} bytes", size), toJson(std::uint64_t{size}));
    ask<Control>(instrument, toCheck(), [](Control& control) { return control.integrityCheck(); });
    tour.show("check", "matches its checksums", true);
}

} // namespace tarn::console
