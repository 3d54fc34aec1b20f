// Holds a simulated instrument to the contract, as the author of a provider would his own.

#include <conformance/suite.h>
#include <simulator/open.h>

#include <memory>

namespace {

std::shared_ptr<sdk::IVna> openInstrument()
{
    return tarn::simulator::open({.address = {}, .stateFolder = QStringLiteral("none")}).value();
}

const bool isRegistered = (tarn::conformance::registerTests("Simulated", &openInstrument, {}), true);

} // namespace
