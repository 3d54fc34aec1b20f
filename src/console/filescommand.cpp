#include <console/commandline.h>
#include <console/commandtable.h>
#include <console/filerequests.h>
#include <console/filesverbs.h>
#include <console/text.h>
#include <console/tourcommand.h>

#include <QRandomGenerator>

#include <algorithm>
#include <memory>

namespace tarn::console {

namespace {

void addVerbs(CommandLine& line, Command noun)
{
    noun.addExamples({"files list", "files write settings.bin", "files read settings.bin -o copy.bin"});
    line.addVerb(noun, "list", "List the files: size in bytes and name", &filesverbs::listFiles);
    line.addVerb(noun, "space", "Show how much the file memory holds", &filesverbs::showSpace);

    const auto read = std::make_shared<filesverbs::ReadOptions>();
    const auto readVerb = line.addVerb(noun, "read", "Read a file from the instrument",
                                       [read](Session& session) { filesverbs::readFile(session, *read); });
    readVerb.addWord("NAME", read->name, "The file's name on the instrument");
    readVerb.addOption("-o,--output", "PATH", read->path,
                       "Where to write it; '-' is standard output [NAME, if it is plain]");
    readVerb.addFlag("--overwrite", read->overwrite, "Replace a local file that has other contents");
    readVerb.addExamples({"files read settings.bin", "files read settings.bin -o backup/settings.bin",
                          "files read settings.bin -o - | sha256sum"});

    const auto write = std::make_shared<filesverbs::WriteOptions>();
    const auto writeVerb = line.addVerb(noun, "write", "Write a file into the instrument, read it back and compare",
                                        [write](Session& session) { filesverbs::writeFile(session, *write); });
    writeVerb.addWord("PATH", write->path, "The local file; '-' is standard input");
    writeVerb.addOption("--as", "NAME", write->name, "Its name on the instrument [the last part of PATH]");
    writeVerb.addFlag("--overwrite", write->overwrite, "Replace a file of the instrument that has other contents");
    writeVerb.addExamples({"files write settings.bin", "files write new.bin --as settings.bin --overwrite"});

    const auto remove = std::make_shared<filesverbs::DeleteOptions>();
    const auto deleteVerb = line.addVerb(noun, "delete", "Delete a file from the instrument, after asking",
                                         [remove](Session& session) { filesverbs::deleteFile(session, *remove); });
    deleteVerb.addWord("NAME", remove->name, "The file's name on the instrument");
    remove->confirmation.addTo(deleteVerb);
    deleteVerb.addExamples({"files delete settings.bin", "files delete settings.bin --yes"});
}

} // namespace

void FilesCommand::addTo(CommandLine& line)
{
    line.addNoun("files", "The instrument's file memory", &addVerbs);
}

void FilesCommand::tour(Tour& tour)
{
    constexpr std::uint64_t size = 1024;
    const auto& instrument = tour.instrument();
    const auto room = filerequests::space(instrument);
    tour.show("space", filesverbs::text(room), filesverbs::json(room));
    const auto count = filerequests::list(instrument).size();
    tour.show("files", fmt::format("{}", count), count);

    if (room.free < 2 * size) // the store needs some for itself
        return tour.say("There is no room to write a file, so none is written.");
    const auto file
        = QStringLiteral("tarn-tour-%1.bin").arg(QRandomGenerator::system()->generate64(), 16, 16, QLatin1Char{'0'});
    if (!tour.mayChange(fmt::format("write a file '{}' and delete it again", file)))
        return;
    QByteArray contents{qsizetype{size}, '\0'};
    std::ranges::generate(contents, [] { return static_cast<char>(QRandomGenerator::global()->bounded(256)); });
    tour.restoring(
        [&] {
            filerequests::write(instrument, file, contents);
            tour.show("write", fmt::format("{}, {} bytes, read back and compared", file, size),
                      filesverbs::json(file, size));
        },
        [&] {
            if (const auto written = filerequests::find(instrument, file))
                filerequests::remove(instrument, *written);
        },
        {fmt::format("its file '{}' may still be there", file),
         fmt::format("'tarn-service files delete {} --yes' removes it", file)});
    tour.show("delete", "done", true);
}

} // namespace tarn::console
