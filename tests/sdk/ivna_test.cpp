#include <sdk/completion.h>
#include <sdk/itemperaturecontrol.h>
#include <sdk/ivna.h>
#include <sdk/service/iloleakagecontrol.h>

#include <support/fakevna.h>
#include <support/mockloleakagecontrol.h>
#include <support/virtualslot.h>

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

namespace tarn::tests {
namespace {

using Sdk = sdk::service::ILoLeakageControl;

static_assert(sizeof(sdk::Key) == 8 && std::is_same_v<std::underlying_type_t<sdk::Key>, std::uint64_t>);
static_assert(std::is_scoped_enum_v<sdk::Key>, "no registry key is taken for an SDK key");
static_assert(std::is_same_v<sdk::Completion<>, std::function<void(std::error_code)>>);
static_assert(std::is_same_v<sdk::Completion<int>, std::function<void(int, std::error_code)>>);

TEST(IVna, HandsOutAControlUnderItsKeyWithItsType)
{
    FakeVna device;
    const auto control = std::make_shared<MockLoLeakageControl>();
    device.offer<Sdk>(Sdk::key, control);
    const std::shared_ptr<Sdk> handed = static_cast<sdk::IVna&>(device).control<Sdk>(Sdk::key);
    EXPECT_EQ(handed, control);
    EXPECT_EQ(handed.use_count(), 3) << "the device's, the test's and this one";
}

TEST(IVna, HandsOutAnEmptyReferenceForAKeyItLacks)
{
    FakeVna device;
    EXPECT_EQ(static_cast<sdk::IVna&>(device).control<Sdk>(Sdk::key), nullptr);
}

TEST(IVna, KeepsAnOwnedNullOwned)
{
    FakeVna device;
    const auto owner = std::make_shared<int>();
    device.offerFrom(Sdk::key, [&] { return std::shared_ptr<void>{owner, nullptr}; });
    const auto handed = static_cast<sdk::IVna&>(device).control<Sdk>(Sdk::key);
    EXPECT_EQ(handed.get(), nullptr);
    EXPECT_EQ(handed.use_count(), 2);
}

TEST(IVna, HasItsOperationsInAFixedOrder)
{
    EXPECT_EQ(slotOf(static_cast<std::shared_ptr<void> (sdk::IVna::*)(sdk::Key)>(&sdk::IVna::control)), 0);
    EXPECT_EQ(slotOf(&sdk::IVna::addObserver), 1);
    EXPECT_EQ(slotOf(&sdk::IVna::removeObserver), 2);
    EXPECT_EQ(slotOf(&sdk::IVna::model), 3);
    EXPECT_EQ(slotOf(&sdk::IVna::Observer::onControlsAboutToBeReleased), 0);
    EXPECT_EQ(slotOf(&sdk::IVna::Observer::onControlsAvailable), 1);
}

} // namespace
} // namespace tarn::tests
