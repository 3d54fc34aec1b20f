#include "velltuning.h"

namespace tarn::tests::sdkvellsynthesiscontrol {
namespace {

using Sdk = VellSynthesis::Sdk;

TEST(VellSynthesisInterface, HasItsOperationsInTheOrderOfTheSdk)
{
    expectSlots(&Sdk::setManualIfEnabled, &Sdk::manualIfEnabled, &Sdk::setSelectedIf, &Sdk::selectedIf,
                &Sdk::supportedIfs);
}

} // namespace
} // namespace tarn::tests::sdkvellsynthesiscontrol
