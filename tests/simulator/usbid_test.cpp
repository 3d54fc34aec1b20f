#include <simulator/manualinstrument.h>

#include <sdk/models.h>
#include <simulator/error.h>
#include <support/success.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace tarn::simulator {
namespace {

using namespace std::chrono_literals;
using test::Journal;
using test::LifecycleObserver;
using test::ManualInstrument;
using testing::ElementsAre;
using testing::IsEmpty;
namespace models = sdk::models;

using tests::success;

Settings settingsOf(Profile profile, CompletionMode mode = CompletionMode::Thread)
{
    Settings settings;
    settings.profile = profile;
    settings.completion = mode;
    return settings;
}

test::UsbId::UsbId identityOf(test::UsbId& usb, sdk::Model model)
{
    const auto records = usb.supportedDevices();
    return std::ranges::find(records, model, &test::UsbId::DeviceRecord::model)->usbId;
}

TEST(UsbIdListTest, HasOneIdentityForEachModelOfTheCatalogue)
{
    const ManualInstrument instrument;
    const auto records = instrument.control<test::UsbId>()->supportedDevices();
    ASSERT_EQ(records.size(), 70U);
    EXPECT_EQ(records.front().model, models::pell::pell101);
    EXPECT_EQ(records.back().model, models::multiport::common::common1007);
    std::set<std::string_view> names;
    std::set<std::uint16_t> products;
    std::set<std::array<std::byte, 16>> guids;
    for (const auto& record : records) {
        EXPECT_EQ(record.usbId.vendorId, 0xF3A7);
        EXPECT_GE(record.hardwareRevision, 1U);
        EXPECT_TRUE(names.insert(record.model.name()).second) << record.model.name();
        EXPECT_TRUE(products.insert(record.usbId.productId).second) << record.model.name();
        EXPECT_TRUE(guids.insert(record.deviceInterfaceGuid).second) << record.model.name();
    }
    for (const auto& family : families()) {
        for (const auto model : family.models) {
            EXPECT_TRUE(names.contains(model.name())) << model.name();
            EXPECT_EQ(familyOf(model), family.profile);
        }
    }
}

class UsbIdTest : public testing::TestWithParam<CompletionMode> {
protected:
    ManualInstrument instrument{settingsOf(Profile::Vell, GetParam())};
    std::shared_ptr<test::UsbId> usb = instrument.control<test::UsbId>();
};

INSTANTIATE_TEST_SUITE_P(Modes, UsbIdTest, testing::Values(CompletionMode::Thread, CompletionMode::Inline));

TEST_P(UsbIdTest, IsThatOfTheModel)
{
    EXPECT_TRUE(usb->isAvailable());
    EXPECT_EQ(usb->currentDevice().model, models::vell::vell801);
    EXPECT_THAT(usb->supportedDevices(), testing::Contains(usb->currentDevice()));
}

TEST_P(UsbIdTest, DecidesTheModelAndTheControlsOnceTheyAreOfferedAnew)
{
    Journal journal;
    LifecycleObserver observer{journal};
    instrument.vna->addObserver(&observer);
    ASSERT_NE(instrument.control<test::Leakage>(), nullptr);
    observer.atRelease = [&] {
        EXPECT_EQ(instrument.vna->model(), models::vell::vell801);
        EXPECT_NE(instrument.control<test::Leakage>(), nullptr);
    };
    observer.atOffer = [&] { EXPECT_EQ(instrument.vna->model(), models::pell::pell103); };
    const auto pell = identityOf(*usb, models::pell::pell103);
    EXPECT_EQ(test::write(*usb, pell), success);
    EXPECT_THAT(journal.take(), ElementsAre("about to be released", "available")) << "before the completion";
    EXPECT_EQ(instrument.vna->model(), models::pell::pell103);
    EXPECT_EQ(instrument.control<test::Leakage>(), nullptr) << "this family has none";
    ASSERT_NE(instrument.control<test::UsbId>(), nullptr);
    EXPECT_NE(instrument.control<test::UsbId>(), usb);
    EXPECT_EQ(instrument.control<test::UsbId>()->currentDevice().usbId, pell);
    observer.atRelease = nullptr;
    observer.atOffer = nullptr;
    EXPECT_EQ(test::write(*usb, identityOf(*usb, models::vell::vell801)), success);
    EXPECT_NE(instrument.control<test::Leakage>(), nullptr) << "and has it again";
    instrument.vna->removeObserver(&observer);
}

TEST_P(UsbIdTest, IsReportedWhenTheControlsComeBack)
{
    instrument.vna->drop();
    EXPECT_EQ(test::write(*usb, identityOf(*usb, models::marl::marl302)), success);
    EXPECT_EQ(instrument.vna->model(), models::vell::vell801);
    EXPECT_EQ(usb->currentDevice().model, models::vell::vell801);
    instrument.vna->offer();
    EXPECT_EQ(instrument.vna->model(), models::marl::marl302);
}

TEST_P(UsbIdTest, IsRefusedWhenNoModelHasIt)
{
    Journal journal;
    LifecycleObserver observer{journal};
    instrument.vna->addObserver(&observer);
    const auto own = usb->currentDevice().usbId;
    auto otherVendor = own;
    ++otherVendor.vendorId;
    auto otherProduct = own;
    otherProduct.productId = 0;
    auto otherRelease = own;
    ++otherRelease.deviceRelease;
    for (const auto& wrong : {otherVendor, otherProduct, otherRelease, test::UsbId::UsbId{0, 0, 0}})
        EXPECT_EQ(test::write(*usb, wrong), Error::BadIdentity);
    EXPECT_EQ(usb->currentDevice().usbId, own);
    EXPECT_THAT(journal.take(), IsEmpty());
    instrument.vna->removeObserver(&observer);
}

TEST_P(UsbIdTest, IsProtectedWithTheMemory)
{
    FaultPlan plan;
    plan.writeProtect = true;
    instrument.vna->faults().setPlan(plan);
    EXPECT_EQ(test::write(*usb, identityOf(*usb, models::marl::marl302)), Error::WriteProtected);
    EXPECT_EQ(instrument.control<test::UsbId>(), usb);
    EXPECT_EQ(instrument.vna->model(), models::vell::vell801);
}

TEST_P(UsbIdTest, CanBeWrittenFromANotification)
{
    Journal journal;
    LifecycleObserver observer{journal};
    instrument.vna->addObserver(&observer);
    instrument.vna->drop();
    std::promise<std::error_code> result;
    bool isAsked = false;
    observer.atOffer = [&] {
        if (!std::exchange(isAsked, true))
            usb->writeUsbId(identityOf(*usb, models::marl::marl302), [&](auto code) { result.set_value(code); });
    };
    instrument.vna->offer();
    EXPECT_EQ(result.get_future().get(), success);
    instrument.vna->waitUntilIdle();
    EXPECT_THAT(journal.take(), ElementsAre("about to be released", "available", "about to be released", "available"));
    EXPECT_EQ(instrument.vna->model(), models::marl::marl302);
    instrument.vna->removeObserver(&observer);
}

TEST_P(UsbIdTest, ChangesOnlyTheModelOfAnInstrumentWithEveryControl)
{
    const ManualInstrument full{settingsOf(Profile::Full, GetParam())};
    auto& control = *full.control<test::UsbId>();
    const auto pell = identityOf(control, models::pell::pell101);
    const auto held = full.control<test::UsbId>();
    EXPECT_EQ(test::write(*held, pell), success);
    EXPECT_EQ(full.vna->model(), models::pell::pell101);
    EXPECT_NE(full.control<test::Leakage>(), nullptr);
}

TEST_P(UsbIdTest, CanBeWrittenWhenTheDeviceIsGone)
{
    instrument.vna.reset();
    EXPECT_EQ(test::write(*usb, identityOf(*usb, models::marl::marl302)), success);
    EXPECT_EQ(usb->currentDevice().model, models::vell::vell801) << "nothing offers it anew";
}

} // namespace
} // namespace tarn::simulator
