#include <devices/service/sdkvellifswcalibrationcontrol.h>

#include <devices/icontrollifecycleobserver.h>
#include <support/adaptertest.h>
#include <support/contractoperations.h>
#include <support/mockvellifswcalibrationcontrol.h>

#include <gmock/gmock.h>

#include <cstddef>
#include <type_traits>
#include <vector>

using tarn::devices::IControlLifecycleObserver;
using tarn::devices::service::SdkVellIfswCalibrationControl;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::NiceMock;
using testing::StrictMock;

namespace tarn::tests::sdkvellifswcalibrationcontrol {
namespace {

using Sdk = sdk::service::IVellIfswCalibrationControl;
using Control = SdkVellIfswCalibrationControl;
using Data = Control::IfswCalibrationData;

static_assert(std::is_base_of_v<IControlLifecycleObserver, Control>);

// Three 64-bit numbers, two lists, one list and three receivers; the same on both sides.
template <class T>
constexpr bool hasTheShape = sizeof(typename T::IfswRatio) == 24 && sizeof(typename T::IfswLinearity) == 24
    && offsetof(typename T::IfswRatio, intermediateFrequency) == 0 && offsetof(typename T::IfswRatio, magnitude) == 8
    && offsetof(typename T::IfswRatio, phase) == 16 && offsetof(typename T::IfswLinearity, level) == 0
    && offsetof(typename T::IfswLinearity, magnitudeError) == 8 && offsetof(typename T::IfswLinearity, phaseError) == 16
    && offsetof(typename T::ReceiverCalibration, ratios) < offsetof(typename T::ReceiverCalibration, linearities)
    && offsetof(typename T::IfswCalibrationData, frequencies) < offsetof(typename T::IfswCalibrationData, reference)
    && offsetof(typename T::IfswCalibrationData, reference) < offsetof(typename T::IfswCalibrationData, reflection)
    && offsetof(typename T::IfswCalibrationData, reflection) < offsetof(typename T::IfswCalibrationData, transmission);
static_assert(hasTheShape<Sdk> && hasTheShape<Control>);

struct IfswContract {
    using Sdk = sdk::service::IVellIfswCalibrationControl;
    using Adapter = SdkVellIfswCalibrationControl;
    using Mock = NiceMock<MockVellIfswCalibrationControl>;
    using Inside = std::function<void()>;

    static std::vector<Operation<Adapter, Mock>> operations()
    {
        return {frequencyPlanOperation<Adapter, Mock>(),
                {"saveCalibrationData", noResult<Adapter>([](Adapter& adapter) { adapter.saveCalibrationData({}); }),
                 [](Mock& mock, const Inside& inside) {
                     ON_CALL(mock, saveCalibrationData).WillByDefault(testing::InvokeWithoutArgs(inside));
                 }}};
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(Ifsw, AdapterContract, IfswContract);

class SdkVellIfswCalibrationControlTest : public AdapterTest<Sdk, Control, StrictMock<MockVellIfswCalibrationControl>> {
protected:
    /// What the SDK gets when `data` is saved.
    Sdk::IfswCalibrationData save(Data data)
    {
        Sdk::IfswCalibrationData saved;
        EXPECT_CALL(*mock, saveCalibrationData).WillOnce([&](Sdk::IfswCalibrationData given) {
            saved = std::move(given);
        });
        control.saveCalibrationData(std::move(data));
        return saved;
    }
};

TEST_F(SdkVellIfswCalibrationControlTest, SavesEveryRecordInItsPlace)
{
    const Data data{{30, 10, 20},
                    {{{1, 2, 3}, {4, 5, 6}}, {{7, 8, 9}}},
                    {{{11, 12, 13}}, {{14, 15, 16}, {17, 18, 19}}},
                    {{{21, 22, 23}}, {{24, 25, 26}}}};
    const Sdk::IfswCalibrationData expected{{30, 10, 20},
                                            {{{1, 2, 3}, {4, 5, 6}}, {{7, 8, 9}}},
                                            {{{11, 12, 13}}, {{14, 15, 16}, {17, 18, 19}}},
                                            {{{21, 22, 23}}, {{24, 25, 26}}}};
    EXPECT_EQ(save(data), expected);
}

TEST_F(SdkVellIfswCalibrationControlTest, SavesEmptyListsAsEmptyLists)
{
    EXPECT_EQ(save({}), Sdk::IfswCalibrationData{});
    const auto saved = save({{}, {{}, {{1, 2, 3}}}, {{{4, 5, 6}}, {}}, {}});
    EXPECT_THAT(saved.frequencies, IsEmpty());
    EXPECT_THAT(saved.reference.ratios, IsEmpty());
    EXPECT_THAT(saved.reference.linearities, ElementsAre(Sdk::IfswLinearity{1, 2, 3}));
    EXPECT_THAT(saved.reflection.ratios, ElementsAre(Sdk::IfswRatio{4, 5, 6}));
    EXPECT_THAT(saved.reflection.linearities, IsEmpty());
}

TEST_F(SdkVellIfswCalibrationControlTest, HandsTheFirstListOverWithoutCopyingIt)
{
    Data data{{1, 2, 3}, {}, {}, {}};
    const auto* const numbers = data.frequencies.data();
    EXPECT_EQ(save(std::move(data)).frequencies.data(), numbers);
}

} // namespace
} // namespace tarn::tests::sdkvellifswcalibrationcontrol
