// What the adapters that only get and set do alike.

#include "tuningcontrols.h"

#include <support/adaptercontract.h>
#include <support/devicehandle.h>

#include <type_traits>

namespace tarn::tests::tuningcontrols {
namespace {

template <class... Tuned>
testing::Types<ContractOf<Tuned>...> contractsOf(testing::Types<Tuned...>);

using Contracts = decltype(contractsOf(TuningControls{}));
INSTANTIATE_TYPED_TEST_SUITE_P(Tuning, AdapterContract, Contracts, TuningName);

template <class Adapter, class Sdk>
constexpr bool isPlain = !std::is_polymorphic_v<Adapter> && !std::is_copy_constructible_v<Adapter>
    && sizeof(Adapter) == sizeof(devices::ReacquiringControl<Sdk>);
static_assert(isPlain<QuillSynthesis::Adapter, QuillSynthesis::Sdk>);
static_assert(isPlain<DornPower::Adapter, DornPower::Sdk>);
static_assert(isPlain<DornSynthesis::Adapter, DornSynthesis::Sdk>);
static_assert(isPlain<SablePower::Adapter, SablePower::Sdk>);
static_assert(isPlain<SableSynthesis::Adapter, SableSynthesis::Sdk>);
static_assert(isPlain<VellSynthesis::Adapter, VellSynthesis::Sdk>);

template <class Tuning>
class TuningControl : public testing::Test {
protected:
    using Sdk = typename Tuning::Sdk;

    std::shared_ptr<typename Tuning::Mock> sdk = std::make_shared<typename Tuning::Mock>();
};

TYPED_TEST_SUITE(TuningControl, TuningControls, TuningName);

TYPED_TEST(TuningControl, ConstructionCallsNothing)
{
    const typename TypeParam::Adapter adapter{handleTo<typename TypeParam::Sdk>(this->sdk)};
    EXPECT_THAT(this->sdk->takeCalls(), testing::IsEmpty());
}

TYPED_TEST(TuningControl, EveryOperationMakesItsOneCallAndHandsItsValuesOn)
{
    typename TypeParam::Adapter adapter{handleTo<typename TypeParam::Sdk>(this->sdk)};
    const auto operations = TypeParam::operations();
    for (const auto& entry : operations.entries) {
        SCOPED_TRACE(entry.operation.name);
        entry.check(adapter, *this->sdk);
    }
}

} // namespace
} // namespace tarn::tests::tuningcontrols
