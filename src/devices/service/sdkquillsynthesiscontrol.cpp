#include <devices/service/sdkquillsynthesiscontrol.h>

#include <devices/service/access.h>
#include <devices/service/convertall.h>

#include <utility>

namespace tarn::devices::service {

using Sdk = sdk::service::IQuillSynthesisControl;

SdkQuillSynthesisControl::SdkQuillSynthesisControl(ReacquiringControl<sdk::service::IQuillSynthesisControl> control)
    : m_control{std::move(control)}
{
}

bool SdkQuillSynthesisControl::loLeakageMode() const
{
    return valueOr(false, m_control, &Sdk::loLeakageMode);
}

void SdkQuillSynthesisControl::setLoLeakageMode(bool enabled)
{
    ifAvailable(m_control, &Sdk::setLoLeakageMode, enabled);
}

bool SdkQuillSynthesisControl::manualIfEnabled() const
{
    return valueOr(false, m_control, &Sdk::manualIfEnabled);
}

void SdkQuillSynthesisControl::enableManualIf(bool enabled)
{
    ifAvailable(m_control, &Sdk::setManualIfEnabled, enabled);
}

int SdkQuillSynthesisControl::selectedIf() const
{
    return valueOr(0, m_control, &Sdk::selectedIf);
}

void SdkQuillSynthesisControl::setSelectedIf(int index)
{
    ifAvailable(m_control, &Sdk::setSelectedIf, index);
}

std::vector<double> SdkQuillSynthesisControl::supportedIfs() const
{
    return valueOr(std::vector<double>{}, m_control, &Sdk::supportedIfs, copyOf<double>);
}

double SdkQuillSynthesisControl::filter1Frequency() const
{
    return valueOr(0.0, m_control, &Sdk::filter1Frequency);
}

void SdkQuillSynthesisControl::setFilter1Frequency(double frequency)
{
    ifAvailable(m_control, &Sdk::setFilter1Frequency, frequency);
}

bool SdkQuillSynthesisControl::manualRefEnabled() const
{
    return valueOr(false, m_control, &Sdk::manualRefEnabled);
}

void SdkQuillSynthesisControl::enableManualRef(bool enabled)
{
    ifAvailable(m_control, &Sdk::setManualRefEnabled, enabled);
}

int SdkQuillSynthesisControl::selectedRef() const
{
    return valueOr(0, m_control, &Sdk::selectedRef);
}

void SdkQuillSynthesisControl::setSelectedRef(int index)
{
    ifAvailable(m_control, &Sdk::setSelectedRef, index);
}

std::vector<double> SdkQuillSynthesisControl::supportedRefs() const
{
    return valueOr(std::vector<double>{}, m_control, &Sdk::supportedRefs, copyOf<double>);
}

void SdkQuillSynthesisControl::reset()
{
    ifAvailable(m_control, &Sdk::reset);
}

} // namespace tarn::devices::service
