#include <devices/service/sdkmemoryoperationscontrol.h>

#include <devices/icontrollifecycleobserver.h>
#include <support/adaptertest.h>
#include <support/contractoperations.h>
#include <support/mockmemoryoperationscontrol.h>
#include <support/progresscontract.h>
#include <support/requestcontract.h>
#include <support/virtualslot.h>

#include <gmock/gmock.h>

#include <future>
#include <thread>
#include <type_traits>
#include <vector>

using tarn::devices::IControlLifecycleObserver;
using tarn::devices::ReacquiringControl;
using tarn::devices::service::IMemoryOperationsControl;
using tarn::devices::service::SdkMemoryOperationsControl;
using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::NiceMock;

namespace tarn::tests::sdkmemoryoperationscontrol {
namespace {

using Sdk = sdk::service::IMemoryOperationsControl;
using Error = IMemoryOperationsControl::Error;
using Image = std::vector<std::byte>;

static_assert(std::is_base_of_v<IMemoryOperationsControl, SdkMemoryOperationsControl>);
static_assert(std::is_base_of_v<IControlLifecycleObserver, SdkMemoryOperationsControl>);
static_assert(sizeof(SdkMemoryOperationsControl) == 3 * sizeof(void*) + sizeof(ReacquiringControl<Sdk>),
              "two bases, the handle, the observer");
static_assert(static_cast<int>(Error::Failed) == 0);

struct MemoryOperationsContract {
    using Sdk = sdk::service::IMemoryOperationsControl;
    using Adapter = SdkMemoryOperationsControl;
    using Mock = NiceMock<MockMemoryOperationsControl>;

    static std::vector<Request<Adapter, Mock>> requests()
    {
        return {{"read", [](Adapter& adapter) { return hasSucceeded(adapter.read()); },
                 [](Mock& mock, const Take& take) {
                     ON_CALL(mock, read).WillByDefault([take](const auto& done) { take(endOf(done, Image(3))); });
                 }},
                {"write", [](Adapter& adapter) { return hasSucceeded(adapter.write({})); },
                 [](Mock& mock, const Take& take) { ON_CALL(mock, write).WillByDefault(testing::WithArg<1>(take)); }},
                {"erase", [](Adapter& adapter) { return hasSucceeded(adapter.erase()); },
                 [](Mock& mock, const Take& take) { ON_CALL(mock, erase).WillByDefault(take); }},
                {"integrityCheck", [](Adapter& adapter) { return hasSucceeded(adapter.integrityCheck()); },
                 [](Mock& mock, const Take& take) { ON_CALL(mock, integrityCheck).WillByDefault(take); }}};
    }

    static std::vector<Operation<Adapter, Mock>> operations()
    {
        auto operations = asOperations(requests());
        operations.push_back(attachOperation<Adapter, Mock>());
        operations.push_back(detachOperation<Adapter, Mock>());
        return operations;
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(MemoryOperations, AdapterContract, MemoryOperationsContract);
INSTANTIATE_TYPED_TEST_SUITE_P(MemoryOperations, RequestContract, MemoryOperationsContract);

/// Tells what it hears together with the operation that it hears about.
struct AnyProgressListener final : IMemoryOperationsControl::IObserver {
    void onWriteProgressChanged(const Progress& progress) override { heard('w', progress); }
    void onReadProgressChanged(const Progress& progress) override { heard('r', progress); }
    void onEraseProgressChanged(const Progress& progress) override { heard('e', progress); }
    void onIntegrityCheckProgressChanged(const Progress& progress) override { heard('c', progress); }
    std::function<void(char, const Progress&)> heard;
};

template <void (Sdk::IObserver::*sdkNotification)(unsigned int, unsigned int), char operation>
struct MemoryProgress {
    using Sdk = sdk::service::IMemoryOperationsControl;
    using SdkObserver = Sdk::IObserver;
    using Adapter = SdkMemoryOperationsControl;
    using Mock = MockMemoryOperationsControl;

    struct Listener final : IMemoryOperationsControl::IObserver {
        void onWriteProgressChanged(const Progress& progress) override { hear('w', progress); }
        void onReadProgressChanged(const Progress& progress) override { hear('r', progress); }
        void onEraseProgressChanged(const Progress& progress) override { hear('e', progress); }
        void onIntegrityCheckProgressChanged(const Progress& progress) override { hear('c', progress); }
        void hear(char about, const Progress& progress) const
        {
            EXPECT_EQ(about, operation);
            heard(progress);
        }
        std::function<void(const Progress&)> heard;
    };

    static void notify(SdkObserver& observer, unsigned int done, unsigned int total)
    {
        (observer.*sdkNotification)(done, total);
    }
};

using ReadProgress = MemoryProgress<&Sdk::IObserver::onReadProgressChanged, 'r'>;
using WriteProgress = MemoryProgress<&Sdk::IObserver::onWriteProgressChanged, 'w'>;
using EraseProgress = MemoryProgress<&Sdk::IObserver::onEraseProgressChanged, 'e'>;
using CheckProgress = MemoryProgress<&Sdk::IObserver::onIntegrityCheckProgressChanged, 'c'>;

INSTANTIATE_TYPED_TEST_SUITE_P(MemoryRead, ProgressContract, ReadProgress);
INSTANTIATE_TYPED_TEST_SUITE_P(MemoryRead, ProgressRecordContract, ReadProgress);
INSTANTIATE_TYPED_TEST_SUITE_P(MemoryWrite, ProgressContract, WriteProgress);
INSTANTIATE_TYPED_TEST_SUITE_P(MemoryWrite, ProgressRecordContract, WriteProgress);
INSTANTIATE_TYPED_TEST_SUITE_P(MemoryErase, ProgressContract, EraseProgress);
INSTANTIATE_TYPED_TEST_SUITE_P(MemoryErase, ProgressRecordContract, EraseProgress);
INSTANTIATE_TYPED_TEST_SUITE_P(MemoryCheck, ProgressContract, CheckProgress);
INSTANTIATE_TYPED_TEST_SUITE_P(MemoryCheck, ProgressRecordContract, CheckProgress);

class SdkMemoryOperationsControlTest
    : public AdapterTest<Sdk, SdkMemoryOperationsControl, AttachedMock<MockMemoryOperationsControl, Sdk::IObserver>> {
};

TEST_F(SdkMemoryOperationsControlTest, ReadsTheVeryBufferThatTheSdkDelivers)
{
    Image image(1000, std::byte{7});
    image.front() = std::byte{0};
    const auto expected = image;
    const auto* const buffer = image.data();
    EXPECT_CALL(*mock, read).WillOnce([&](const auto& done) { done(std::move(image), {}); });
    const auto read = control.read();
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(read->data(), buffer);
    EXPECT_EQ(*read, expected);
}

TEST_F(SdkMemoryOperationsControlTest, WritesACopyThatIsTheSdksOwnAndLeavesTheCallersImageAlone)
{
    const Image image{std::byte{0}, std::byte{1}, std::byte{0xff}, std::byte{0}};
    const auto* const buffer = image.data();
    Image kept;
    EXPECT_CALL(*mock, write).WillOnce([&](Image received, const auto& done) {
        EXPECT_NE(received.data(), buffer);
        kept = std::move(received);
        done({});
    });
    EXPECT_TRUE(control.write(image));
    EXPECT_EQ(kept, (Image{std::byte{0}, std::byte{1}, std::byte{0xff}, std::byte{0}}));
    EXPECT_EQ(image, kept);
    EXPECT_EQ(image.data(), buffer);
}

TEST_F(SdkMemoryOperationsControlTest, PassesAnEmptyImageBothWays)
{
    EXPECT_CALL(*mock, write(IsEmpty(), _)).WillOnce([](const auto&, const auto& done) { done({}); });
    EXPECT_TRUE(control.write({}));
    EXPECT_CALL(*mock, read).WillOnce([](const auto& done) { done({}, {}); });
    EXPECT_THAT(control.read().value(), IsEmpty());
}

TEST_F(SdkMemoryOperationsControlTest, EveryOperationMakesItsOwnRequestAndNoOther)
{
    const testing::InSequence order;
    EXPECT_CALL(*mock, erase).WillOnce([](const auto& done) { done({}); });
    EXPECT_CALL(*mock, integrityCheck).WillOnce([](const auto& done) { done({}); });
    EXPECT_CALL(*mock, write).WillOnce([](const auto&, const auto& done) { done({}); });
    EXPECT_CALL(*mock, read).WillOnce([](const auto& done) { done({}, {}); });
    EXPECT_TRUE(control.erase());
    EXPECT_TRUE(control.integrityCheck());
    EXPECT_TRUE(control.write(Image(1)));
    EXPECT_TRUE(control.read());
}

TEST_F(SdkMemoryOperationsControlTest, ForwardsProgressWhileTheCallerWaitsWhicheverOperationItIsOf)
{
    AnyProgressListener listener;
    std::vector<std::pair<char, Progress>> heard;
    std::thread::id heardOn;
    listener.heard = [&](char operation, const Progress& progress) {
        heard.emplace_back(operation, progress);
        heardOn = std::this_thread::get_id();
    };
    std::jthread sdkThread;
    std::promise<void> outstanding;
    std::promise<void> proceed;
    EXPECT_CALL(*mock, erase).WillOnce([&](auto done) {
        sdkThread = std::jthread{[&, done = std::move(done)] {
            outstanding.set_value();
            proceed.get_future().wait();
            mock->attached->onEraseProgressChanged(0, 512);
            mock->attached->onReadProgressChanged(1, 2); // of somebody else's request
            mock->attached->onEraseProgressChanged(512, 512);
            done({});
        }};
    });
    {
        std::jthread caller{[&] { EXPECT_TRUE(control.erase()); }};
        outstanding.get_future().wait();
        control.addObserver(listener); // the request holds no lock that this needs
        proceed.set_value();
    }
    EXPECT_THAT(heard,
                ElementsAre(std::pair{'e', Progress{512, 0}}, std::pair{'r', Progress{2, 1}},
                            std::pair{'e', Progress{512, 512}}));
    EXPECT_EQ(heardOn, sdkThread.get_id());
}

TEST(SdkMemoryOperationsInterface, HasItsOperationsInTheOrderOfTheSdk)
{
    EXPECT_EQ(slotOf(&Sdk::isAvailable), 0);
    EXPECT_EQ(slotOf(&Sdk::read), 1);
    EXPECT_EQ(slotOf(&Sdk::write), 2);
    EXPECT_EQ(slotOf(&Sdk::erase), 3);
    EXPECT_EQ(slotOf(&Sdk::integrityCheck), 4);
    EXPECT_EQ(slotOf(&Sdk::addObserver), 5);
    EXPECT_EQ(slotOf(&Sdk::removeObserver), 6);
    EXPECT_EQ(slotOf(&Sdk::IObserver::onReadProgressChanged), 0);
    EXPECT_EQ(slotOf(&Sdk::IObserver::onWriteProgressChanged), 1);
    EXPECT_EQ(slotOf(&Sdk::IObserver::onEraseProgressChanged), 2);
    EXPECT_EQ(slotOf(&Sdk::IObserver::onIntegrityCheckProgressChanged), 3);
}

TEST(MemoryOperationsInterface, HasItsOperationsInAFixedOrder)
{
    EXPECT_EQ(slotOf(&IMemoryOperationsControl::read), 0);
    EXPECT_EQ(slotOf(&IMemoryOperationsControl::write), 1);
    EXPECT_EQ(slotOf(&IMemoryOperationsControl::erase), 2);
    EXPECT_EQ(slotOf(&IMemoryOperationsControl::integrityCheck), 3);
    EXPECT_EQ(slotOf(&IMemoryOperationsControl::addObserver), 4);
    EXPECT_EQ(slotOf(&IMemoryOperationsControl::removeObserver), 5);
    EXPECT_EQ(slotOf(&SdkMemoryOperationsControl::onControlsAboutToBeReleased), 6);
    EXPECT_EQ(slotOf(&SdkMemoryOperationsControl::onControlsAvailable), 7);
}

TEST(MemoryOperationsObserver, PutsTheWriteBeforeTheReadOtherThanTheSdk)
{
    using Observer = IMemoryOperationsControl::IObserver;
    EXPECT_EQ(slotOf(&Observer::onWriteProgressChanged), 0);
    EXPECT_EQ(slotOf(&Observer::onReadProgressChanged), 1);
    EXPECT_EQ(slotOf(&Observer::onEraseProgressChanged), 2);
    EXPECT_EQ(slotOf(&Observer::onIntegrityCheckProgressChanged), 3);
}

} // namespace
} // namespace tarn::tests::sdkmemoryoperationscontrol
