#include <devices/errortermsconversion.h>

#include <cstddef>
#include <cstdint>

namespace tarn::devices {

namespace {

using sdk::corrections::ErrorTerms;

ErrorTerms::Port port(const vna::ErrorTerms& terms, std::size_t number)
{
    const auto points = terms.frequencies().size();
    ErrorTerms::Port result;
    for (auto* const trace : {&result.directivity, &result.sourceMatch, &result.reflectionTracking})
        trace->reserve(points);
    for (std::size_t point = 0; point != points; ++point) {
        const auto& from = terms.reflection(point, number);
        result.directivity.push_back(from.directivity);
        result.sourceMatch.push_back(from.sourceMatch);
        result.reflectionTracking.push_back(from.reflectionTracking);
    }
    return result;
}

ErrorTerms::PortPair portPair(const vna::ErrorTerms& terms, std::size_t source, std::size_t receiver)
{
    const auto points = terms.frequencies().size();
    ErrorTerms::PortPair result{static_cast<std::uint32_t>(source), static_cast<std::uint32_t>(receiver), {}, {}, {}};
    for (auto* const trace : {&result.loadMatch, &result.transmissionTracking, &result.isolation})
        trace->reserve(points);
    for (std::size_t point = 0; point != points; ++point) {
        const auto& from = terms.transmission(point, receiver, source);
        result.loadMatch.push_back(from.loadMatch);
        result.transmissionTracking.push_back(from.transmissionTracking);
        result.isolation.push_back(from.isolation);
    }
    return result;
}

} // namespace

ErrorTerms errorTermsToSdk(const vna::ErrorTerms& terms)
{
    const auto ports = terms.portCount();
    ErrorTerms result{{terms.frequencies().begin(), terms.frequencies().end()}, {}, {}};
    result.ports.reserve(ports);
    for (std::size_t number = 1; number <= ports; ++number)
        result.ports.push_back(port(terms, number));
    result.portPairs.reserve(ports * (ports - 1)); // of no port: 0, whatever the other factor
    for (std::size_t source = 1; source <= ports; ++source) {
        for (std::size_t receiver = 1; receiver <= ports; ++receiver) {
            if (receiver != source)
                result.portPairs.push_back(portPair(terms, source, receiver));
        }
    }
    return result;
}

} // namespace tarn::devices
