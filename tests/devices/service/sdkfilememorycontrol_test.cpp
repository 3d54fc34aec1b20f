#include <devices/service/sdkfilememorycontrol.h>

#include <devices/icontrollifecycleobserver.h>
#include <support/errorcategory.h>
#include <support/mockfilememorycontrol.h>
#include <support/requestcontract.h>
#include <support/virtualslot.h>

#include <gmock/gmock.h>

#include <limits>
#include <string>
#include <type_traits>
#include <vector>

using tarn::devices::IControlLifecycleObserver;
using tarn::devices::ReacquiringControl;
using tarn::devices::service::IFileMemoryControl;
using tarn::devices::service::SdkFileMemoryControl;
using testing::_;
using testing::ElementsAre;
using testing::InSequence;
using testing::IsEmpty;
using testing::NiceMock;
using testing::Return;
using testing::SizeIs;
using testing::StrictMock;

namespace tarn::tests::sdkfilememorycontrol {
namespace {

using Sdk = sdk::service::IFileMemoryControl;
using Bytes = std::vector<std::uint8_t>;

static_assert(std::is_base_of_v<IFileMemoryControl, SdkFileMemoryControl>);
static_assert(!std::is_base_of_v<IControlLifecycleObserver, SdkFileMemoryControl>);
static_assert(sizeof(SdkFileMemoryControl) <= sizeof(void*) + sizeof(ReacquiringControl<Sdk>),
              "the handle is its only member");
static_assert(sizeof(Sdk::SpaceInfo) == 24 && sizeof(IFileMemoryControl::SpaceInfo) == 24);
static_assert(std::is_trivially_copyable_v<IFileMemoryControl::SpaceInfo>);

const IFileMemoryControl::FileInfo aFile{QStringLiteral("a"), 1};
const QString unavailable = QStringLiteral("File memory control is unavailable");

struct FileMemoryContract {
    using Sdk = sdk::service::IFileMemoryControl;
    using Adapter = SdkFileMemoryControl;
    using Mock = NiceMock<MockFileMemoryControl>;
    using Inside = std::function<void()>;

    static std::vector<Request<Adapter, Mock>> requests()
    {
        return {
            {"fileList", [](Adapter& adapter) { return adapter.fileList().has_value(); },
             [](Mock& mock, const Take& take) {
                 ON_CALL(mock, fileList).WillByDefault([take](const auto& done) { take(endOf(done)); });
             }},
            {"spaceInfo", [](Adapter& adapter) { return adapter.spaceInfo().has_value(); },
             [](Mock& mock, const Take& take) {
                 ON_CALL(mock, spaceInfo).WillByDefault([take](const auto& done) { take(endOf(done)); });
             }},
            {"readFile", [](Adapter& adapter) { return adapter.readFile(aFile).has_value(); },
             [](Mock& mock, const Take& take) {
                 ON_CALL(mock, readFile).WillByDefault([take](const auto&, const auto& done) { take(endOf(done)); });
             }},
            {"writeFile", [](Adapter& adapter) { return adapter.writeFile(QStringLiteral("a"), "b").has_value(); },
             [](Mock& mock, const Take& take) { ON_CALL(mock, writeFile).WillByDefault(testing::WithArg<2>(take)); }},
            {"deleteFile", [](Adapter& adapter) { return adapter.deleteFile(aFile).has_value(); },
             [](Mock& mock, const Take& take) { ON_CALL(mock, deleteFile).WillByDefault(testing::WithArg<1>(take)); }}};
    }

    static std::vector<Operation<Adapter, Mock>> operations()
    {
        auto operations = asOperations(requests());
        operations.push_back(
            {"fileList, while it asks whether the memory is available",
             [](Adapter& adapter) { return adapter.fileList() ? Outcome::Answered : Outcome::Unavailable; },
             [](Mock& mock, const Inside& inside) {
                 ON_CALL(mock, isAvailable).WillByDefault([inside] {
                     inside();
                     return true;
                 });
                 ON_CALL(mock, fileList).WillByDefault([](const auto& done) { done({}, {}); });
             }});
        return operations;
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(FileMemory, AdapterContract, FileMemoryContract);
INSTANTIATE_TYPED_TEST_SUITE_P(FileMemory, RequestContract, FileMemoryContract);

/// A device with a file memory whose every call must be expected.
class SdkFileMemoryControlTest : public AdapterTest<Sdk, SdkFileMemoryControl, StrictMock<MockFileMemoryControl>> {
protected:
    SdkFileMemoryControlTest() { device.offer<Sdk>(Sdk::key, mock); }

    void expectAvailable(bool available = true)
    {
        EXPECT_CALL(*mock, isAvailable).WillOnce(Return(available)).RetiresOnSaturation();
    }

    /// Runs every operation and gives their errors; the empty one for a success.
    std::vector<QString> errorsOfAllOperations()
    {
        const auto error = [](const auto& result) { return result ? QString{} : result.error(); };
        return {error(control.fileList()), error(control.spaceInfo()), error(control.readFile(aFile)),
                error(control.writeFile(QStringLiteral("a"), "b")), error(control.deleteFile(aFile))};
    }
};

TEST_F(SdkFileMemoryControlTest, SaysInEveryOperationThatADroppedControlIsUnavailable)
{
    device.drop(Sdk::key);
    mock.reset();
    EXPECT_EQ(errorsOfAllOperations(), std::vector<QString>(5, unavailable));
}

TEST_F(SdkFileMemoryControlTest, SaysTheSameAndMakesNoRequestWhenTheMemoryIsNotAvailable)
{
    EXPECT_CALL(*mock, isAvailable).Times(5).WillRepeatedly(Return(false));
    EXPECT_EQ(errorsOfAllOperations(), std::vector<QString>(5, unavailable));
}

TEST_F(SdkFileMemoryControlTest, AsksForTheMemoryOnceBeforeEveryRequest)
{
    const InSequence order;
    expectAvailable();
    EXPECT_CALL(*mock, fileList).WillOnce([](const auto& done) { done({}, {}); });
    expectAvailable();
    EXPECT_CALL(*mock, spaceInfo).WillOnce([](const auto& done) { done({}, {}); });
    expectAvailable();
    EXPECT_CALL(*mock, readFile).WillOnce([](const auto&, const auto& done) { done({}, {}); });
    expectAvailable();
    EXPECT_CALL(*mock, writeFile).WillOnce([](const auto&, const auto&, const auto& done) { done({}); });
    expectAvailable();
    EXPECT_CALL(*mock, deleteFile).WillOnce([](const auto&, const auto& done) { done({}); });
    EXPECT_EQ(errorsOfAllOperations(), std::vector<QString>(5));
}

TEST_F(SdkFileMemoryControlTest, GivesTheInstrumentsOwnWordsForEveryErrorAndIgnoresTheValue)
{
    const ErrorCategory category{"file store is full \xe2\x80\x93 delete a file"};
    const auto code = category.code(28);
    EXPECT_CALL(*mock, isAvailable).Times(5).WillRepeatedly(Return(true));
    EXPECT_CALL(*mock, fileList).WillOnce([&](const auto& done) { done({{"a", 1}}, code); });
    EXPECT_CALL(*mock, spaceInfo).WillOnce([&](const auto& done) { done({1, 2, 3}, code); });
    EXPECT_CALL(*mock, readFile).WillOnce([&](const auto&, const auto& done) { done({1}, code); });
    EXPECT_CALL(*mock, writeFile).WillOnce([&](const auto&, const auto&, const auto& done) { done(code); });
    EXPECT_CALL(*mock, deleteFile).WillOnce([&](const auto&, const auto& done) { done(code); });
    EXPECT_EQ(errorsOfAllOperations(),
              std::vector<QString>(5, QStringLiteral(u"file store is full \u2013 delete a file")));
}

TEST_F(SdkFileMemoryControlTest, GivesAnEmptyListAsASuccess)
{
    expectAvailable();
    EXPECT_CALL(*mock, fileList).WillOnce([](const auto& done) { done({}, {}); });
    const auto files = control.fileList();
    ASSERT_TRUE(files.has_value());
    EXPECT_THAT(*files, IsEmpty());
}

TEST_F(SdkFileMemoryControlTest, TakesNoMoreMemoryThanTheListNeeds)
{
    expectAvailable();
    EXPECT_CALL(*mock, fileList).WillOnce([](const auto& done) { done(std::vector<Sdk::FileInfo>(37), {}); });
    EXPECT_EQ(control.fileList().value().capacity(), 37);
}

TEST_F(SdkFileMemoryControlTest, ListsTheFilesInTheInstrumentsOrderWithEveryNameAndNumber)
{
    constexpr auto greatest = std::numeric_limits<std::uint64_t>::max();
    expectAvailable();
    EXPECT_CALL(*mock, fileList).WillOnce([](const auto& done) {
        done({{"z", greatest}, {"\xc3\xa4\xe2\x82\xac\xf0\x9f\x93\x88", 0}, {std::string{"n\0l", 3}, 7}, {"", 1}}, {});
    });
    const auto files = control.fileList();
    ASSERT_TRUE(files.has_value());
    using File = IFileMemoryControl::FileInfo;
    EXPECT_THAT(*files,
                ElementsAre(File{QStringLiteral("z"), greatest}, File{QStringLiteral(u"\u00e4\u20ac\U0001f4c8"), 0},
                            File{QString{QLatin1StringView{"n\0l", 3}}, 7}, File{QString{}, 1}));
}

TEST_F(SdkFileMemoryControlTest, CarriesANameOfTheListUnchangedToEveryRequest)
{
    const std::string name{"Me\xc3\x9fplan \xe2\x82\xac\xf0\x9f\x93\x88.bin"};
    const auto isTheFile = testing::Eq(Sdk::FileInfo{name, 0x8000'0000'0000'0001});
    EXPECT_CALL(*mock, isAvailable).Times(4).WillRepeatedly(Return(true));
    EXPECT_CALL(*mock, fileList).WillOnce([&](const auto& done) { done({{name, 0x8000'0000'0000'0001}}, {}); });
    EXPECT_CALL(*mock, readFile(isTheFile, _)).WillOnce([](const auto&, const auto& done) { done({}, {}); });
    EXPECT_CALL(*mock, writeFile(name, _, _)).WillOnce([](const auto&, const auto&, const auto& done) { done({}); });
    EXPECT_CALL(*mock, deleteFile(isTheFile, _)).WillOnce([](const auto&, const auto& done) { done({}); });

    const auto files = control.fileList();
    ASSERT_TRUE(files.has_value());
    ASSERT_THAT(*files, SizeIs(1));
    EXPECT_TRUE(control.readFile(files->front()));
    EXPECT_TRUE(control.writeFile(files->front().name, {}));
    EXPECT_TRUE(control.deleteFile(files->front()));
}

TEST_F(SdkFileMemoryControlTest, CopiesTheSpaceWordForWord)
{
    expectAvailable();
    EXPECT_CALL(*mock, spaceInfo).WillOnce([](const auto& done) { done({1, 2, 0xffff'ffff'ffff'ffff}, {}); });
    EXPECT_EQ(control.spaceInfo().value(), (IFileMemoryControl::SpaceInfo{1, 2, 0xffff'ffff'ffff'ffff}));
}

TEST_F(SdkFileMemoryControlTest, ReadsEveryByteZerosIncluded)
{
    Bytes contents(512);
    for (std::size_t i = 0; i != contents.size(); ++i)
        contents[i] = static_cast<std::uint8_t>(i); // 0 first, and every value twice
    expectAvailable();
    EXPECT_CALL(*mock, readFile).WillOnce([&](const auto&, const auto& done) { done(contents, {}); });
    const auto read = control.readFile(aFile);
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(Bytes(read->begin(), read->end()), contents);
}

TEST_F(SdkFileMemoryControlTest, ReadsAnEmptyFileAsASuccess)
{
    expectAvailable();
    EXPECT_CALL(*mock, readFile).WillOnce([](const auto&, const auto& done) { done({}, {}); });
    const auto read = control.readFile(aFile);
    ASSERT_TRUE(read.has_value());
    EXPECT_TRUE(read->isEmpty());
}

TEST_F(SdkFileMemoryControlTest, WritesEveryByteZerosIncluded)
{
    const char bytes[] = {'\0', 'a', '\xff', '\0'};
    expectAvailable();
    EXPECT_CALL(*mock, writeFile("n", Bytes{0, 'a', 0xff, 0}, _))
        .WillOnce([](const auto&, const auto&, const auto& done) { done({}); });
    EXPECT_TRUE(control.writeFile(QStringLiteral("n"), QByteArray{bytes, sizeof(bytes)}));
}

TEST_F(SdkFileMemoryControlTest, WritesAnEmptyFileAsAnEmptyVector)
{
    EXPECT_CALL(*mock, isAvailable).Times(2).WillRepeatedly(Return(true));
    EXPECT_CALL(*mock, writeFile(_, Bytes{}, _))
        .Times(2)
        .WillRepeatedly([](const auto&, const auto&, const auto& done) { done({}); });
    EXPECT_TRUE(control.writeFile(QStringLiteral("n"), QByteArray{}));
    EXPECT_TRUE(control.writeFile(QStringLiteral("n"), QByteArray{""}));
}

TEST(SdkFileMemoryInterface, HasItsOperationsInTheOrderOfTheSdk)
{
    EXPECT_EQ(slotOf(&Sdk::isAvailable), 0);
    EXPECT_EQ(slotOf(&Sdk::fileList), 1);
    EXPECT_EQ(slotOf(&Sdk::spaceInfo), 2);
    EXPECT_EQ(slotOf(&Sdk::readFile), 3);
    EXPECT_EQ(slotOf(&Sdk::writeFile), 4);
    EXPECT_EQ(slotOf(&Sdk::deleteFile), 5);
}

TEST(FileMemoryInterface, HasItsOperationsInAFixedOrder)
{
    EXPECT_EQ(slotOf(&IFileMemoryControl::fileList), 0);
    EXPECT_EQ(slotOf(&IFileMemoryControl::spaceInfo), 1);
    EXPECT_EQ(slotOf(&IFileMemoryControl::readFile), 2);
    EXPECT_EQ(slotOf(&IFileMemoryControl::writeFile), 3);
    EXPECT_EQ(slotOf(&IFileMemoryControl::deleteFile), 4);
}

} // namespace
} // namespace tarn::tests::sdkfilememorycontrol
