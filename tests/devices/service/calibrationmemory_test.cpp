// How a write of calibration data allocates its lists, in a program that watches the large blocks it allocates.

#include <devices/errortermsconversion.h>
#include <devices/service/sdksystemtermscontrol.h>
#include <devices/service/sdkvellfactorypowercalibrationcontrol.h>
#include <devices/service/sdkvellifswcalibrationcontrol.h>

#include <support/allocationprobe.h>
#include <support/devicehandle.h>
#include <support/plaincontrols.h>

#include <gmock/gmock.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

namespace tarn::tests::calibrationmemory {
namespace {

using testing::ElementsAre;

std::vector<std::size_t> blocks;

/// The sizes of the large blocks that `operation` allocates, in their order.
template <class Operation>
std::vector<std::size_t> allocatedBy(Operation operation)
{
    AllocationProbe::watchAllocations([](std::size_t size) { blocks.push_back(size); });
    operation();
    AllocationProbe::watchAllocations(nullptr);
    return std::exchange(blocks, {});
}

TEST(CalibrationMemory, EachReceiverGetsRoomForItsLinearitiesThenForItsRatiosAtOnce)
{
    using Sdk = sdk::service::IVellIfswCalibrationControl;
    using Control = devices::service::SdkVellIfswCalibrationControl;
    constexpr std::size_t count = AllocationProbe::large / sizeof(Sdk::IfswRatio);
    const auto receiver = [](std::size_t ratioCount, std::size_t linearityCount) {
        return Control::ReceiverCalibration{std::vector<Control::IfswRatio>(ratioCount),
                                            std::vector<Control::IfswLinearity>(linearityCount)};
    };
    Control::IfswCalibrationData data{std::vector<double>(AllocationProbe::large), receiver(count + 1, count + 2),
                                      receiver(count + 3, count + 4), receiver(count + 5, count + 6)};
    Control control{handleTo<Sdk>(std::make_shared<PlainVellIfswCalibrationControl>())};

    const auto allocated = allocatedBy([&] { control.saveCalibrationData(std::move(data)); });
    constexpr auto ratios = [](std::size_t length) { return length * sizeof(Sdk::IfswRatio); };
    constexpr auto linearities = [](std::size_t length) { return length * sizeof(Sdk::IfswLinearity); };
    EXPECT_THAT(allocated,
                ElementsAre(linearities(count + 2), ratios(count + 1), linearities(count + 4), ratios(count + 3),
                            linearities(count + 6), ratios(count + 5)));
}

TEST(CalibrationMemory, ThePointsOfAPowerCalibrationGetTheirRoomAtOnce)
{
    using Sdk = sdk::service::IVellFactoryPowerCalibrationControl;
    using Control = devices::service::SdkVellFactoryPowerCalibrationControl;
    constexpr std::size_t count = AllocationProbe::large / sizeof(Sdk::PowerCalPoint) + 1;
    std::vector<Control::PowerCalPoint> points(count);
    Control control{handleTo<Sdk>(std::make_shared<PlainVellFactoryPowerCalibrationControl>())};

    const auto allocated = allocatedBy([&] { control.saveCalibrationData({}, 0.0, std::move(points)); });
    EXPECT_THAT(allocated, ElementsAre(count * sizeof(Sdk::PowerCalPoint)));
}

TEST(CalibrationMemory, TheTermsOfAWriteForAPlanAreConvertedAndNotCopied)
{
    const vna::ErrorTerms terms{1, std::vector<double>(AllocationProbe::large)};
    devices::service::SdkSystemTermsControl control{
        handleTo<sdk::service::ISystemTermsControl>(std::make_shared<PlainSystemTermsControl>())};

    const auto converted = allocatedBy([&] { std::ignore = devices::errorTermsToSdk(terms); });
    EXPECT_THAT(converted, testing::SizeIs(4)) << "the frequencies and three traces";
    EXPECT_EQ(allocatedBy([&] { control.requestWriteTerms({}, 0.0, {{}}, terms); }), converted);
}

} // namespace
} // namespace tarn::tests::calibrationmemory
