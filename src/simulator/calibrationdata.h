#pragma once

#include <sdk/corrections/errorterms.h>
#include <sdk/frequencyplan.h>
#include <sdk/service/ivellfactorypowercalibrationcontrol.h>
#include <sdk/service/ivellifswcalibrationcontrol.h>
#include <simulator/archive.h>

#include <cstdint>
#include <vector>

namespace tarn::simulator {

/// System error terms as they are stored.
struct SystemTerms {
    std::int64_t time = 0; ///< when they were measured, in seconds since the Unix epoch
    sdk::FrequencyPlan plan; ///< whose points their frequencies are
    sdk::corrections::ErrorTerms terms;
    double temperature = 0.0; ///< of the instrument then, in degrees Celsius

    friend bool operator==(const SystemTerms&, const SystemTerms&) = default;
};

/// An IF-switch calibration as it is stored.
using IfswCalibration = sdk::service::IVellIfswCalibrationControl::IfswCalibrationData;

/// A factory power calibration as it is stored.
struct PowerCalibration {
    using Point = sdk::service::IVellFactoryPowerCalibrationControl::PowerCalPoint;

    std::int64_t time = 0; ///< when it was measured, in seconds since the Unix epoch
    std::vector<Point> points;
    double temperature = 0.0; ///< of the instrument then, in degrees Celsius

    friend bool operator==(const PowerCalibration&, const PowerCalibration&) = default;
};

// The members, in the order in which they are stored.

void fields(auto& archive, Is<SystemTerms> auto& data)
{
    archive(data.time, data.plan.segments, data.terms.frequencies, data.terms.ports, data.terms.portPairs,
            data.temperature);
}

void fields(auto& archive, Is<sdk::FrequencyPlan::Segment> auto& segment)
{
    archive(segment.startFrequency, segment.stopFrequency, segment.pointCount);
}

void fields(auto& archive, Is<sdk::corrections::ErrorTerms::Port> auto& port)
{
    archive(port.directivity, port.sourceMatch, port.reflectionTracking);
}

void fields(auto& archive, Is<sdk::corrections::ErrorTerms::PortPair> auto& pair)
{
    archive(pair.sourcePort, pair.receiverPort, pair.loadMatch, pair.transmissionTracking, pair.isolation);
}

void fields(auto& archive, Is<IfswCalibration> auto& data)
{
    archive(data.frequencies, data.reference, data.reflection, data.transmission);
}

void fields(auto& archive, Is<sdk::service::IVellIfswCalibrationControl::ReceiverCalibration> auto& receiver)
{
    archive(receiver.ratios, receiver.linearities);
}

void fields(auto& archive, Is<sdk::service::IVellIfswCalibrationControl::IfswRatio> auto& ratio)
{
    archive(ratio.intermediateFrequency, ratio.magnitude, ratio.phase);
}

void fields(auto& archive, Is<sdk::service::IVellIfswCalibrationControl::IfswLinearity> auto& linearity)
{
    archive(linearity.level, linearity.magnitudeError, linearity.phaseError);
}

void fields(auto& archive, Is<PowerCalibration> auto& data)
{
    archive(data.time, data.points, data.temperature);
}

void fields(auto& archive, Is<PowerCalibration::Point> auto& point)
{
    archive(point.frequency, point.nominalPower, point.measuredPower, point.isSourceAmplifierOn,
            point.isSourceAttenuatorOn, point.sourceAttenuation, point.isReceiverAttenuatorOn,
            point.receiverAttenuation, point.receiverPower);
}

} // namespace tarn::simulator
