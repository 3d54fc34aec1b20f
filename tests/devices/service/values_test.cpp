// The values that the controls hand over: equal are those whose every field is.

#include <devices/service/ifilememorycontrol.h>
#include <devices/service/ipotentiometerscontrol.h>
#include <devices/service/iusbidcontrol.h>
#include <devices/service/progress.h>
#include <devices/service/sdksablesynthesiscontrol.h>
#include <devices/service/sdktemperaturecontrol.h>
#include <devices/service/sdkvellfactorypowercalibrationcontrol.h>
#include <devices/service/sdkvellifswcalibrationcontrol.h>

#include <gtest/gtest.h>

#include <vector>

namespace tarn::tests::values {
namespace {

using namespace devices::service;

/// `others` differ from `value` in one field each.
template <class Value>
void expectDifferent(const Value& value, const std::vector<Value>& others)
{
    const Value copy = value;
    EXPECT_TRUE(value == copy);
    for (std::size_t field = 0; field != others.size(); ++field)
        EXPECT_FALSE(value == others[field]) << "field " << field;
}

TEST(Values, OfTheMemoriesAreEqualWhenEveryFieldIs)
{
    using Files = IFileMemoryControl;
    using Usb = IUsbIdControl;
    expectDifferent<Files::FileInfo>({}, {{QStringLiteral("a"), 0}, {{}, 1}});
    expectDifferent<Files::SpaceInfo>({}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
    expectDifferent<IPotentiometersControl::Potentiometer>({}, {{"a", 0, 0}, {{}, 1, 0}, {{}, 0, 1}});
    expectDifferent<Usb::UsbId>({}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
    expectDifferent<Usb::DeviceProperties>(
        {}, {{{1, 0, 0}, {}, 1, {}}, {{}, "a", 1, {}}, {{}, {}, 2, {}}, {{}, {}, 1, {std::byte{1}}}});
    expectDifferent<Progress>({}, {{1, 0}, {0, 1}});
}

TEST(Values, OfTheCalibrationsAndTheTemperaturesAreEqualWhenEveryFieldIs)
{
    using Ifsw = SdkVellIfswCalibrationControl;
    using Receiver = Ifsw::ReceiverCalibration;
    const Receiver receiver{{{}}, {}};
    expectDifferent<Ifsw::IfswRatio>({}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
    expectDifferent<Ifsw::IfswLinearity>({}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
    expectDifferent<Receiver>({}, {receiver, {{}, {{}}}});
    expectDifferent<Ifsw::IfswCalibrationData>(
        {}, {{{1}, {}, {}, {}}, {{}, receiver, {}, {}}, {{}, {}, receiver, {}}, {{}, {}, {}, receiver}});
    expectDifferent<SdkVellFactoryPowerCalibrationControl::PowerCalPoint>({},
                                                                          {{1, 0, 0, false, false, 0, false, 0, 0},
                                                                           {0, 1, 0, false, false, 0, false, 0, 0},
                                                                           {0, 0, 1, false, false, 0, false, 0, 0},
                                                                           {0, 0, 0, true, false, 0, false, 0, 0},
                                                                           {0, 0, 0, false, true, 0, false, 0, 0},
                                                                           {0, 0, 0, false, false, 1, false, 0, 0},
                                                                           {0, 0, 0, false, false, 0, true, 0, 0},
                                                                           {0, 0, 0, false, false, 0, false, 1, 0},
                                                                           {0, 0, 0, false, false, 0, false, 0, 1}});
    expectDifferent<SdkSableSynthesisControl::RfPowerRange>({}, {{1, 0}, {0, 1}});
    expectDifferent<SdkTemperatureControl::ModuleTemperature>({}, {{QStringLiteral("a"), 0}, {{}, 1}});
}

} // namespace
} // namespace tarn::tests::values
