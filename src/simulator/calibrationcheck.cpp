#include <simulator/calibrationcheck.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>

namespace tarn::simulator {

namespace {

using Terms = sdk::corrections::ErrorTerms;
using TermsError = sdk::service::ISystemTermsControl::Error;
using Ifsw = sdk::service::IVellIfswCalibrationControl;
using PowerError = sdk::service::IVellFactoryPowerCalibrationControl::Error;

/// Also false for what is no number.
bool isIn(double least, double value, double most)
{
    return value >= least && value <= most;
}

bool isTemperature(double value)
{
    return isIn(CalibrationLimits::lowestTemperature, value, CalibrationLimits::highestTemperature);
}

bool isAscending(const std::vector<double>& frequencies)
{
    return std::ranges::adjacent_find(frequencies, std::greater_equal{}) == frequencies.end();
}

bool isWhole(const Terms::Trace& trace, std::size_t length)
{
    return trace.size() == length && std::ranges::all_of(trace, [](const auto& value) {
               return std::isfinite(value.real()) && std::isfinite(value.imag());
           });
}

bool isWhole(const Terms& terms)
{
    const auto length = terms.frequencies.size();
    for (const auto& port : terms.ports) {
        if (!isWhole(port.directivity, length) || !isWhole(port.sourceMatch, length)
            || !isWhole(port.reflectionTracking, length))
            return false;
    }
    auto pair = terms.portPairs.begin();
    for (std::size_t source = 1; source <= terms.ports.size(); ++source) {
        for (std::size_t receiver = 1; receiver <= terms.ports.size(); ++receiver) {
            if (receiver == source)
                continue;
            if (pair == terms.portPairs.end() || pair->sourcePort != source || pair->receiverPort != receiver
                || !isWhole(pair->loadMatch, length) || !isWhole(pair->transmissionTracking, length)
                || !isWhole(pair->isolation, length))
                return false;
            ++pair;
        }
    }
    return pair == terms.portPairs.end()
        && std::ranges::all_of(terms.frequencies, [](double frequency) { return std::isfinite(frequency); });
}

bool isInReach(const std::vector<double>& frequencies)
{
    return std::ranges::all_of(frequencies, [](double frequency) {
        return isIn(CalibrationLimits::lowestFrequency, frequency, CalibrationLimits::highestFrequency);
    });
}

std::vector<const Ifsw::ReceiverCalibration*> receiversOf(const IfswCalibration& data)
{
    return {&data.reference, &data.reflection, &data.transmission};
}

bool isInRange(const Ifsw::IfswRatio& ratio)
{
    const auto isPositive = [](double value, double most) { return value > 0.0 && value <= most; };
    return isPositive(ratio.intermediateFrequency, 100e6) && isPositive(ratio.magnitude, 10.0)
        && isIn(-360.0, ratio.phase, 360.0);
}

bool isInRange(const Ifsw::IfswLinearity& linearity)
{
    return isIn(-150.0, linearity.level, 30.0) && isIn(-20.0, linearity.magnitudeError, 20.0)
        && isIn(-360.0, linearity.phaseError, 360.0);
}

bool isInRange(const PowerCalibration::Point& point)
{
    const auto isPower = [](double power) { return isIn(-150.0, power, 40.0); };
    const auto isAttenuation = [](double attenuation) { return isIn(0.0, attenuation, 120.0); };
    return isPower(point.nominalPower) && isPower(point.measuredPower) && isPower(point.receiverPower)
        && isAttenuation(point.sourceAttenuation) && isAttenuation(point.receiverAttenuation);
}

/// Whether all elements of `list` are.
template <class T>
bool areInRange(const std::vector<T>& list)
{
    return std::ranges::all_of(list, [](const auto& element) { return isInRange(element); });
}

/// The frequencies of the points, each one once for the points that follow each other.
std::vector<double> frequenciesOf(const std::vector<PowerCalibration::Point>& points)
{
    std::vector<double> frequencies;
    for (const auto& point : points) {
        if (frequencies.empty() || point.frequency != frequencies.back())
            frequencies.push_back(point.frequency);
    }
    return frequencies;
}

} // namespace

std::optional<TermsError> check(const SystemTerms& data, const CalibrationLimits& limits)
{
    const auto& frequencies = data.terms.frequencies;
    if (!limits.isOverrideSupported && data.plan != systemTermsPlan())
        return TermsError::OverrideNotSupported;
    if (frequencies.empty() || data.terms.ports.empty())
        return TermsError::NoTerms;
    if (!isWhole(data.terms))
        return TermsError::InvalidTerms;
    if (data.terms.ports.size() != limits.portCount)
        return TermsError::PortCountMismatch;
    if (!isAscending(frequencies))
        return TermsError::FrequenciesNotAscending;
    if (!isInReach(frequencies))
        return TermsError::FrequencyOutOfRange;
    if (!arePointsOf(data.plan, frequencies))
        return TermsError::PlanMismatch;
    if (!isTemperature(data.temperature))
        return TermsError::TemperatureOutOfRange;
    if (frequencies.size() > CalibrationLimits::maximumPointCount)
        return TermsError::WriteFailed;
    return std::nullopt;
}

std::optional<Ifsw::Error> check(const IfswCalibration& data, const CalibrationLimits& /*limits*/)
{
    const auto receivers = receiversOf(data);
    const auto isEmpty = [](const auto* receiver) { return receiver->ratios.empty() || receiver->linearities.empty(); };
    const auto isTaken
        = [](const auto* receiver) { return areInRange(receiver->ratios) && areInRange(receiver->linearities); };
    if (data.frequencies.empty() || std::ranges::any_of(receivers, isEmpty))
        return Ifsw::Error::NoData;
    if (!arePointsOf(ifswPlan(), data.frequencies))
        return Ifsw::Error::PlanMismatch;
    if (!std::ranges::all_of(receivers, isTaken))
        return Ifsw::Error::ValueOutOfRange;
    return std::nullopt;
}

std::optional<PowerError> check(const PowerCalibration& data, const CalibrationLimits& /*limits*/)
{
    if (data.points.empty())
        return PowerError::NoData;
    if (!arePointsOf(powerPlan(), frequenciesOf(data.points)))
        return PowerError::PlanMismatch;
    if (!areInRange(data.points) || !isTemperature(data.temperature))
        return PowerError::ValueOutOfRange;
    return std::nullopt;
}

} // namespace tarn::simulator
