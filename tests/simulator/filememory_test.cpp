#include <simulator/filememory.h>

#include <simulator/error.h>
#include <simulator/manualinstrument.h>
#include <support/success.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <map>
#include <string>

namespace tarn::simulator {
namespace {

using test::ManualInstrument;
using testing::ElementsAre;
using testing::IsEmpty;
using FileInfo = FileStore::FileInfo;

using tests::success;

TEST(FileStoreTest, StartsEmpty)
{
    const FileStore store;
    EXPECT_THAT(store.list(), IsEmpty());
    EXPECT_EQ(store.space(), (FileStore::SpaceInfo{FileStore::capacity, 0, FileStore::capacity}));
}

TEST(FileStoreTest, ReturnsWhatWasWrittenWithAllItsZeroBytes)
{
    FileStore store;
    const FileStore::Contents contents{0, 1, 0, 255, 0};
    EXPECT_EQ(store.write("a.bin", contents), success);
    EXPECT_EQ(store.read("a.bin").value(), contents);
}

TEST(FileStoreTest, KeepsEmptyFiles)
{
    FileStore store;
    EXPECT_EQ(store.write("empty", {}), success);
    EXPECT_THAT(store.list(), ElementsAre(FileInfo{"empty", 0}));
    EXPECT_THAT(store.read("empty").value(), IsEmpty());
}

TEST(FileStoreTest, ListsInTheByteOrderOfTheNames)
{
    FileStore store;
    for (const auto* const name : {"b", "\xc3\xa4", "a", "B"})
        ASSERT_EQ(store.write(name, {1}), success);
    EXPECT_THAT(store.list(),
                ElementsAre(FileInfo{"B", 1}, FileInfo{"a", 1}, FileInfo{"b", 1}, FileInfo{"\xc3\xa4", 1}));
}

TEST(FileStoreTest, ReplacesAFileOfTheSameName)
{
    FileStore store;
    ASSERT_EQ(store.write("f", FileStore::Contents(100, 1)), success);
    ASSERT_EQ(store.write("f", {2}), success);
    EXPECT_THAT(store.list(), ElementsAre(FileInfo{"f", 1}));
    EXPECT_EQ(store.space().used, FileStore::recordSize + 1);
}

TEST(FileStoreTest, CountsContentsAndRecordsAsUsed)
{
    FileStore store;
    ASSERT_EQ(store.write("a", FileStore::Contents(1000, 1)), success);
    ASSERT_EQ(store.write("b", {}), success);
    const auto space = store.space();
    EXPECT_EQ(space.used, 1000 + 2 * FileStore::recordSize);
    EXPECT_EQ(space.total, space.used + space.free);
}

TEST(FileStoreTest, TakesAFileThatFitsToTheByteAndNoneThatIsLonger)
{
    FileStore store;
    const FileStore::Contents fits(FileStore::capacity - FileStore::recordSize, 7);
    auto tooLong = fits;
    tooLong.push_back(7);
    EXPECT_EQ(store.write("f", tooLong), Error::Full);
    EXPECT_THAT(store.list(), IsEmpty());
    EXPECT_EQ(store.write("f", fits), success);
    EXPECT_EQ(store.space().free, 0U);
    EXPECT_EQ(store.write("g", {}), Error::Full);
    EXPECT_EQ(store.write("f", fits), success) << "what the file takes now counts as free";
    EXPECT_EQ(store.write("f", tooLong), Error::Full);
    EXPECT_EQ(store.read("f").value(), fits) << "the old contents stay";
}

TEST(FileStoreTest, HasNoFileThatIsMissingOrDeleted)
{
    FileStore store;
    EXPECT_EQ(store.read("f").error(), Error::NotFound);
    EXPECT_EQ(store.remove("f"), Error::NotFound);
    ASSERT_EQ(store.write("f", {1}), success);
    EXPECT_EQ(store.remove("f"), success);
    EXPECT_EQ(store.read("f").error(), Error::NotFound);
    EXPECT_EQ(store.space().used, 0U);
}

TEST(FileStoreTest, TakesUtf8NamesOfUpTo255Bytes)
{
    FileStore store;
    for (const auto& name :
         {std::string{"\xd0\x9f\xd1\x80\xd0\xb8\xd0\xbc\xd0\xb5\xd1\x80.dat"}, std::string{"\xf0\x9f\x93\x8e"},
          std::string{".."}, std::string{"a/b\\c"}, std::string{"\x1b[31m"}, std::string(255, 'x')})
        EXPECT_EQ(store.write(name, {1}), success) << name;
}

TEST(FileStoreTest, RefusesOtherNames)
{
    FileStore store;
    const std::string names[]{"",         std::string(256, 'x'), std::string{"a\0b", 3}, "\xff", "\xc3", "a\xc3",
                              "\xc0\xaf", "\xed\xa0\x80",        "\xf4\x90\x80\x80"};
    for (const auto& name : names)
        EXPECT_EQ(store.write(name, {1}), Error::BadName) << testing::PrintToString(name);
    EXPECT_THAT(store.list(), IsEmpty());
}

TEST(FileStoreTest, StaysAsItWasWhenTheFilesCannotBeKept)
{
    std::error_code outcome;
    FileStore store{{}, [&](const auto&) { return outcome; }};
    ASSERT_EQ(store.write("f", {1}), success);
    outcome = Error::Io;
    EXPECT_EQ(store.write("f", {2}), Error::Io);
    EXPECT_EQ(store.write("g", {2}), Error::Io);
    EXPECT_EQ(store.remove("f"), Error::Io);
    EXPECT_THAT(store.list(), ElementsAre(FileInfo{"f", 1}));
    EXPECT_EQ(store.read("f").value(), (FileStore::Contents{1}));
}

RC_GTEST_PROP(FileStoreTest, BehavesLikeAMap, ())
{
    FileStore store;
    std::map<std::string, FileStore::Contents> model;
    const int steps = *rc::gen::inRange(0, 60);
    for (int step = 0; step < steps; ++step) {
        const auto name = *rc::gen::element<std::string>("a", "b", "c", "\xc3\xa9", "e");
        switch (*rc::gen::inRange(0, 3)) {
        case 0: {
            const auto contents = *rc::gen::arbitrary<FileStore::Contents>();
            RC_ASSERT(store.write(name, contents) == success);
            model[name] = contents;
            break;
        }
        case 1:
            RC_ASSERT((store.remove(name) == success) == (model.erase(name) == 1));
            break;
        default: {
            const auto read = store.read(name);
            RC_ASSERT(read.has_value() == model.contains(name));
            if (read)
                RC_ASSERT(*read == model[name]);
        }
        }
        std::vector<FileInfo> expected;
        std::uint64_t used = 0;
        for (const auto& [key, contents] : model) {
            expected.push_back({key, contents.size()});
            used += FileStore::recordSize + contents.size();
        }
        RC_ASSERT(store.list() == expected);
        RC_ASSERT(store.space().used == used);
    }
}

TEST(FileMemoryControlTest, ReadsBackWhatItWrote)
{
    const ManualInstrument instrument;
    auto& files = *instrument.control<test::Files>();
    EXPECT_TRUE(files.isAvailable());
    EXPECT_EQ(test::write(files, "cal.dat", {1, 0, 2}), success);
    EXPECT_THAT(test::list(files), ElementsAre(FileInfo{"cal.dat", 3}));
    EXPECT_EQ(test::space(files).used, FileStore::recordSize + 3);
    EXPECT_EQ(test::read(files, "cal.dat"), (std::pair{test::Bytes{1, 0, 2}, success}));
    EXPECT_EQ(test::remove(files, "cal.dat"), success);
    EXPECT_THAT(test::list(files), IsEmpty());
}

TEST(FileMemoryControlTest, ReportsErrorsThatAnEngineerCanRead)
{
    const ManualInstrument instrument;
    auto& files = *instrument.control<test::Files>();
    EXPECT_EQ(test::read(files, "missing").second.message(), "the instrument has no file of this name");
    EXPECT_EQ(test::remove(files, "missing"), Error::NotFound);
    EXPECT_EQ(test::write(files, "", {1}), Error::BadName);
    EXPECT_EQ(test::write(files, "big", test::Bytes(FileStore::capacity, 1)).message(),
              "the file memory is full; delete files that are not needed");
}

} // namespace
} // namespace tarn::simulator
