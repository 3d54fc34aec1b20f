#include <simulator/statetest.h>

#include <simulator/error.h>
#include <simulator/platform.h>
#include <support/success.h>

#include <QCryptographicHash>
#include <QJsonDocument>

#include <unistd.h>

namespace tarn::simulator {
namespace {

using provider::OpenError;
using test::Bytes;
using test::StateTest;
using testing::HasSubstr;

using tests::success;

TEST_F(StateTest, LastsFromOneOpeningToTheNext)
{
    const Bytes contents{0, 1, 2, 0, 255};
    {
        const auto device = open();
        ASSERT_EQ(test::write(*files(*device), "\xd0\x9f.dat", contents), success);
        ASSERT_EQ(test::write(*files(*device), "empty", {}), success);
        ASSERT_EQ(test::write(*files(*device), "gone", {1}), success);
        ASSERT_EQ(test::remove(*files(*device), "gone"), success);
        leakage(*device)->setEnabled(true);
    }
    const auto device = open();
    EXPECT_EQ(test::list(*files(*device)), (std::vector<test::Files::FileInfo>{{"empty", 0}, {"\xd0\x9f.dat", 5}}));
    EXPECT_EQ(test::read(*files(*device), "\xd0\x9f.dat").first, contents);
    EXPECT_TRUE(leakage(*device)->isEnabled());
}

TEST_F(StateTest, OfANewerProgramIsNamedAsSuchHoweverNewItIs)
{
    writeOnce("a", {1});
    auto text = contentsOf(file("index.json"));
    replace(file("index.json"), text.replace("\"version\": 1", "\"version\": 3000000000"));
    EXPECT_THAT(refused().message.toStdString(), HasSubstr("a newer program wrote it (format version 3000000000,"));
}

TEST_F(StateTest, WhoseNamesWouldChangeWhenItIsSavedIsRefusedAndLeftAsItIs)
{
    writeOnce("a", {1});
    const auto text = contentsOf(file("index.json"));
    for (const QByteArray added : {"\"\xef\xbb\xbf"
                                   "a\": 1, ",
                                   "\"a\": {\"\xef\xbb\xbf"
                                   "b\": 1}, ",
                                   R"("a": "\"", "b": "\uFeFf", )", R"("a": "\\", "b": "\uFeFf", )"}) {
        auto damaged = text;
        damaged.replace("\"sections\": {", "\"sections\": {" + added);
        ASSERT_NE(damaged, text);
        replace(file("index.json"), damaged);
        EXPECT_THAT(refused().message.toStdString(),
                    HasSubstr("it is damaged: a text in it begins with a byte order mark"));
        EXPECT_EQ(contentsOf(file("index.json")), damaged);
    }
}

TEST_F(StateTest, CannotBeWhereSomethingElseIs)
{
    const auto obstacle = m_root.filePath(QStringLiteral("file"));
    replace(obstacle, "x");
    const auto device = simulator::open({{}, obstacle});
    ASSERT_FALSE(device.has_value());
    EXPECT_EQ(device.error().code, OpenError::Code::State);
    EXPECT_THAT(device.error().message.toStdString(), HasSubstr(obstacle.toStdString() + " is no folder"));
    EXPECT_THAT(device.error().hint.toStdString(), testing::StartsWith("Choose another state folder"));
    EXPECT_EQ(contentsOf(obstacle), "x");
}

TEST_F(StateTest, IsDurableWhenTheCompletionComes)
{
    const auto device = open();
    ASSERT_EQ(test::write(*files(*device), "f", {1, 2, 3}), success);
    const auto index = QJsonDocument::fromJson(contentsOf(file("index.json"))).object();
    EXPECT_EQ(index[QStringLiteral("version")], 1);
    const auto entry = index[QStringLiteral("sections")][QStringLiteral("files")][0];
    const auto digest = QCryptographicHash::hash("\1\2\3", QCryptographicHash::Sha256).toHex();
    EXPECT_EQ(entry[QStringLiteral("sha256")].toString().toLatin1(), digest);
    EXPECT_EQ(contentsOf(file("blocks/") + u'/' + QString::fromLatin1(digest)), "\1\2\3");
}

TEST_F(StateTest, KeepsOneBlockForEqualContentsAndNoneThatIsNotNeeded)
{
    const auto device = open();
    ASSERT_EQ(test::write(*files(*device), "a", {1}), success);
    ASSERT_EQ(test::write(*files(*device), "b", {1}), success);
    EXPECT_EQ(blocks().size(), 1);
    ASSERT_EQ(test::write(*files(*device), "a", {2}), success);
    EXPECT_EQ(blocks().size(), 2);
    ASSERT_EQ(test::remove(*files(*device), "b"), success);
    EXPECT_EQ(blocks().size(), 1);
    EXPECT_EQ(test::read(*files(*device), "a").first, (Bytes{2}));
}

TEST_F(StateTest, KeepsInstrumentsApartByTheirNames)
{
    const auto one = open("one");
    const auto two = open("two");
    ASSERT_EQ(test::write(*files(*one), "f", {1}), success);
    EXPECT_EQ(test::read(*files(*two), "f").second, Error::NotFound);
    EXPECT_TRUE(QFile::exists(m_root.filePath(QStringLiteral("simulator/one/index.json"))));
}

TEST_F(StateTest, IsNotKeptWhenNothingIsToBeKept)
{
    const auto before = QDir::current().entryList();
    for (const auto* const none : {"none", ""}) {
        const auto device = simulator::open({{}, QString::fromUtf8(none)});
        ASSERT_TRUE(device.has_value());
        ASSERT_EQ(test::write(*files(**device), "f", {1}), success);
    }
    EXPECT_EQ(QDir::current().entryList(), before);
    EXPECT_TRUE(everything().empty());
}

TEST_F(StateTest, KeepsSectionsThatThisInstrumentDoesNotHave)
{
    {
        const auto device = open();
        leakage(*device)->setEnabled(true);
    }
    {
        const auto device = open("profile=pell"); // has no LO leakage
        ASSERT_EQ(test::write(*files(*device), "f", {1}), success);
    }
    EXPECT_TRUE(leakage(*open())->isEnabled());
}

TEST_F(StateTest, FailsTheOperationAndStaysAsItWasWhenItCannotBeSaved)
{
    const auto device = open();
    ASSERT_EQ(test::write(*files(*device), "f", {1}), success);
    ASSERT_TRUE(QDir{file("blocks")}.removeRecursively());
    replace(file("blocks"), "in the way");
    EXPECT_EQ(test::write(*files(*device), "f", {2}), Error::Io);
    EXPECT_EQ(test::write(*files(*device), "g", {2}), Error::Io);
    EXPECT_EQ(test::read(*files(*device), "f").first, (Bytes{1}));
    ASSERT_TRUE(QFile::remove(file("blocks")));
    EXPECT_EQ(test::write(*files(*device), "f", {3}), success) << "works again";
}

TEST_F(StateTest, ThrowsAndStaysAsItWasWhenASettingCannotBeSaved)
{
    const auto device = open();
    leakage(*device)->setEnabled(true);
    ASSERT_TRUE(QDir{folder()}.removeRecursively());
    try {
        leakage(*device)->setEnabled(false);
        ADD_FAILURE() << "nothing was saved";
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), HasSubstr("could not be saved and stays on"));
    }
    EXPECT_TRUE(leakage(*device)->isEnabled());
    ASSERT_TRUE(QDir{}.mkpath(folder()));
    leakage(*device)->setEnabled(false);
    EXPECT_FALSE(leakage(*device)->isEnabled()) << "works again";
}

TEST_F(StateTest, IsDurableWhenTheSwitchReturns)
{
    const auto device = open();
    leakage(*device)->setEnabled(true);
    const auto index = QJsonDocument::fromJson(contentsOf(file("index.json"))).object();
    EXPECT_EQ(index[QStringLiteral("sections")][QStringLiteral("loLeakage")], true);
}

TEST_F(StateTest, ReplacesTheIndexInOneStep)
{
    const auto device = open();
    ASSERT_EQ(test::write(*files(*device), "f", {1}), success);
    const auto old = contentsOf(file("index.json"));
    // Whoever still has the old file, as a process that was killed while writing would, has all of it.
    ASSERT_EQ(::link(qPrintable(file("index.json")), qPrintable(file("old.json"))), 0);
    ASSERT_EQ(test::write(*files(*device), "f", {2}), success);
    leakage(*device)->setEnabled(true);
    EXPECT_EQ(contentsOf(file("old.json")), old);
    EXPECT_NE(contentsOf(file("index.json")), old);
}

TEST_F(StateTest, SurvivesAKillBetweenTheBlockAndTheIndex)
{
    writeOnce("f", {1});
    // What such a kill leaves: the new block, and an index that was being written.
    replace(file("blocks/") + QString::fromLatin1(QCryptographicHash::hash("\2", QCryptographicHash::Sha256).toHex()),
            "\2");
    replace(file("unfinished"), "{");
    const auto device = open();
    EXPECT_EQ(test::read(*files(*device), "f").first, (Bytes{1}));
    ASSERT_EQ(test::write(*files(*device), "g", {3}), success);
    EXPECT_EQ(blocks().size(), 2) << "leftovers go with the next change";
    EXPECT_FALSE(QFile::exists(file("unfinished")));
}

TEST_F(StateTest, LeavesAloneWhatIsNotItsOwn)
{
    writeOnce("f", {1});
    const auto others = {"index.json.bak", "index.json.backup", "notes.txt", "blocks/notes.txt",
                         "blocks/039058c6f2c0cb492c533b0a4d14ef77cc0f78abccced5287d84a1a2011cfb81.backup"};
    for (const auto* const name : others)
        replace(file(name), "precious");
    writeOnce("f", {2});
    for (const auto* const name : others)
        EXPECT_EQ(contentsOf(file(name)), "precious") << name;
}

TEST_F(StateTest, LeavesNothingBehindWhenAFileCannotBeReplaced)
{
    const auto device = open();
    ASSERT_TRUE(QFile::remove(file("index.json")));
    ASSERT_TRUE(QDir{}.mkpath(file("index.json")));
    EXPECT_EQ(test::write(*files(*device), "f", {1}), Error::Io);
    EXPECT_FALSE(QFile::exists(file("unfinished")));
}

TEST_F(StateTest, IsOldOrNewAndWholeAfterAKillAtAnyMoment)
{
    for (int round = 0; round < 21; ++round) {
        auto process = writer();
        ASSERT_EQ(process.readLine(), "open");
        // Each round lets the writer get a little further, so that the kill hits another moment.
        std::string last;
        for (int generation = 0; generation <= round % 7; ++generation)
            last = process.readLine();
        process.kill();
        for (auto line = process.readLine(); !line.empty(); line = process.readLine())
            last = line;
        const auto reported = static_cast<unsigned>(std::stoul(last));

        const auto device = open();
        const auto [contents, code] = test::read(*files(*device), "generation");
        ASSERT_EQ(code, success);
        const auto generation = static_cast<unsigned>(contents.size() - 1000);
        EXPECT_GE(generation, reported) << "what was reported is durable";
        EXPECT_LE(generation, reported + 1);
        EXPECT_EQ(contents, Bytes(1000 + generation, static_cast<std::uint8_t>(generation)));

        const auto memory = control<test::Memory>(*device);
        const auto image = test::read(*memory).first;
        const auto imageGeneration = static_cast<unsigned>(image.size() - 70'000);
        EXPECT_GE(imageGeneration, reported);
        EXPECT_LE(imageGeneration, generation) << "it is written after the file";
        EXPECT_EQ(image, test::Image(image.size(), static_cast<std::byte>(imageGeneration)));
        EXPECT_EQ(test::check(*memory), success);
    }
}

TEST(SyncFolder, AcceptsAFileSystemThatHasNothingToSync)
{
    ASSERT_TRUE(QFile::exists(QStringLiteral("/proc/self"))) << "not the system that this test knows";
    EXPECT_TRUE(syncFolder(QStringLiteral("/proc/self/fd")));
    EXPECT_FALSE(syncFolder(QStringLiteral("/proc/self/no such folder")));
}

TEST_F(StateTest, IsRefusedWhenTheFolderCannotBeMade)
{
    replace(m_root.filePath(QStringLiteral("simulator")), "a file in the way");
    const auto error = refused();
    EXPECT_EQ(error.code, OpenError::Code::State);
    EXPECT_THAT(error.message.toStdString(), HasSubstr(folder().toStdString()));
}

TEST_F(StateTest, BeginsWithAnIndex)
{
    ASSERT_TRUE(QDir{}.mkpath(file("blocks")));
    replace(file("blocks/readme"), "not a block");
    static_cast<void>(open());
    const auto index = QJsonDocument::fromJson(contentsOf(file("index.json"))).object();
    EXPECT_EQ(index[QStringLiteral("version")], 1);
    EXPECT_EQ(index[QStringLiteral("sections")], QJsonObject{});
}

} // namespace
} // namespace tarn::simulator
