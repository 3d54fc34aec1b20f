#include <console/commandline.h>
#include <console/commandtable.h>
#include <console/memoryverbs.h>
#include <console/tourcommand.h>

#include <fmt/format.h>

#include <memory>

namespace tarn::console {

namespace {

void addVerbs(CommandLine& line, Command noun)
{
    noun.addExamples({"memory read -o backup.img", "memory write new.img", "memory check"});

    const auto read = std::make_shared<memoryverbs::ReadOptions>();
    const auto readVerb = line.addVerb(noun, "read", "Read the image that the memory holds",
                                       [read](Session& session) { memoryverbs::readMemory(session, *read); });
    readVerb.addRequiredOption("-o,--output", "PATH", read->path, "Where to write it; '-' is standard output");
    readVerb.addFlag("--overwrite", read->overwrite, "Replace a local file that has other contents");
    readVerb.addExamples({"memory read -o backup.img", "memory read -o - | sha256sum"});

    const auto write = std::make_shared<memoryverbs::WriteOptions>();
    const auto writeVerb
        = line.addVerb(noun, "write", "Write an image into the memory, after asking; read it back and compare",
                       [write](Session& session) { memoryverbs::writeMemory(session, *write); });
    writeVerb.addWord("PATH", write->path, "The local file; '-' is standard input, with --yes");
    write->confirmation.addTo(writeVerb);
    writeVerb.addExamples({"memory write new.img", "memory write new.img --yes --json"});

    const auto confirmation = std::make_shared<Confirmation>();
    const auto eraseVerb
        = line.addVerb(noun, "erase", "Erase the whole memory, after asking",
                       [confirmation](Session& session) { memoryverbs::eraseMemory(session, *confirmation); });
    confirmation->addTo(eraseVerb);
    eraseVerb.addExamples({"memory erase", "memory erase --yes"});

    line.addVerb(noun, "check", "Have the memory checked against its own checksums", &memoryverbs::checkMemory);
}

} // namespace

void MemoryCommand::addTo(CommandLine& line)
{
    line.addNoun("memory", "The instrument's non-volatile memory as a whole", &addVerbs);
}

void MemoryCommand::tour(Tour& tour)
{
    const auto& instrument = tour.instrument();
    const auto size = memoryverbs::imageSize(instrument);
    tour.show("image", fmt::format("{} bytes", size), toJson(std::uint64_t{size}));
    memoryverbs::expectIntact(instrument);
    tour.show("check", "matches its checksums", true);
}

} // namespace tarn::console
