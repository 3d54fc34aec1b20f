#include "dorntuning.h"

namespace tarn::tests::sdkdornsynthesiscontrol {
namespace {

using Sdk = DornSynthesis::Sdk;

static_assert(std::is_same_v<decltype(std::declval<Sdk&>().availableReferenceFrequencies()),
                             decltype(std::declval<DornSynthesis::Adapter&>().availableReferenceFrequencies())>);

TEST(DornSynthesisInterface, HasItsOperationsInTheOrderOfTheSdk)
{
    expectSlots(&Sdk::availableReferenceFrequencies, &Sdk::currentReferenceFrequency, &Sdk::setReferenceFrequency);
}

} // namespace
} // namespace tarn::tests::sdkdornsynthesiscontrol
