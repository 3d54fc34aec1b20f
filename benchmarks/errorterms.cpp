// System error terms of two ports, brought into the SDK's form and written: the library's way against `reserve` and
// `push_back` of the same fields.

#include "fakes.h"
#include "ways.h"

#include <devices/errortermsconversion.h>
#include <devices/service/sdksystemtermscontrol.h>

#include <QDateTime>

#include <complex>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tarn::benchmarks {
namespace {

using sdk::corrections::ErrorTerms;

vna::ErrorTerms terms(std::size_t points)
{
    vna::ErrorTerms result{2, std::vector<double>(points, 1e9)};
    for (std::size_t point = 0; point != points; ++point) {
        const std::complex<double> value{static_cast<double>(point), 1};
        for (std::size_t port = 1; port <= 2; ++port) {
            result.reflection(point, port) = {value, -value, 1.0 + value};
            result.transmission(point, port, 3 - port) = {value, 2.0 + value, -value};
        }
    }
    return result;
}

[[gnu::noinline]] ErrorTerms plainToSdk(const vna::ErrorTerms& from)
{
    const auto points = from.frequencies().size();
    ErrorTerms to{{from.frequencies().begin(), from.frequencies().end()}, {}, {}};
    to.ports.reserve(2);
    to.portPairs.reserve(2);
    for (std::uint32_t number = 1; number <= 2; ++number) {
        ErrorTerms::Port port;
        port.directivity.reserve(points);
        port.sourceMatch.reserve(points);
        port.reflectionTracking.reserve(points);
        ErrorTerms::PortPair pair{number, 3 - number, {}, {}, {}};
        pair.loadMatch.reserve(points);
        pair.transmissionTracking.reserve(points);
        pair.isolation.reserve(points);
        for (std::size_t point = 0; point != points; ++point) {
            const auto& reflection = from.reflection(point, number);
            port.directivity.push_back(reflection.directivity);
            port.sourceMatch.push_back(reflection.sourceMatch);
            port.reflectionTracking.push_back(reflection.reflectionTracking);
            const auto& transmission = from.transmission(point, 3 - number, number);
            pair.loadMatch.push_back(transmission.loadMatch);
            pair.transmissionTracking.push_back(transmission.transmissionTracking);
            pair.isolation.push_back(transmission.isolation);
        }
        to.ports.push_back(std::move(port));
        to.portPairs.push_back(std::move(pair));
    }
    return to;
}

using Sdk = sdk::service::ISystemTermsControl;

/// Forgets what it is given.
class SystemTerms final : public Sdk {
public:
    void addObserver(Observer* /*observer*/) override { }
    void removeObserver(Observer* /*observer*/) override { }
    [[nodiscard]] sdk::FrequencyPlan frequencyPlan() override { return {}; }
    [[nodiscard]] std::uint32_t portCount() override { return 2; }
    [[nodiscard]] std::uint32_t maximumPointCount() override { return 0; }
    void writeTerms(std::int64_t /*time*/, ErrorTerms written, double /*temperature*/) override { consume(written); }
    [[nodiscard]] bool isFrequencyOverrideSupported() override { return true; }
    void writeTermsForPlan(std::int64_t /*time*/, sdk::FrequencyPlan plan, ErrorTerms written,
                           double /*temperature*/) override
    {
        consume(plan);
        consume(written);
    }
};

/// Terms on their way through the adapter, which must hand them on without a copy.
std::vector<Way> writes(std::size_t points)
{
    const auto of = "write of error terms, " + std::to_string(points);
    const auto withPlan = "write of error terms with a plan, " + std::to_string(points);
    const auto from = std::make_shared<const vna::ErrorTerms>(terms(points));
    const auto device = std::make_shared<SystemTerms>();
    const auto adapter = adapterOf<devices::service::SdkSystemTermsControl, Sdk>(device);
    const QDateTime time = QDateTime::fromSecsSinceEpoch(1'000'000'000, Qt::UTC);
    const std::vector<vna::FrequencySegment> plan{{1e6, 2e6, 3}};
    return {
        repeated(of, "library", [=] { adapter->requestWriteTerms(time, 23.0, *from); }),
        repeated(of, "push_back", [=] { device->writeTerms(time.toSecsSinceEpoch(), plainToSdk(*from), 23.0); }),
        repeated(withPlan, "library", [=] { adapter->requestWriteTerms(time, 23.0, plan, *from); }),
        repeated(withPlan, "push_back",
                 [=] {
                     const auto copy = plan; // as the call takes it
                     sdk::FrequencyPlan to;
                     to.segments.reserve(copy.size());
                     for (const auto& [start, stop, count] : copy)
                         to.segments.push_back({start, stop, static_cast<std::int32_t>(count)});
                     device->writeTermsForPlan(time.toSecsSinceEpoch(), std::move(to), plainToSdk(*from), 23.0);
                 }),
    };
}

std::vector<Way> conversion(std::size_t points)
{
    const auto row = "error terms, " + std::to_string(points);
    const auto from = std::make_shared<const vna::ErrorTerms>(terms(points));
    return {
        repeated(row, "library", [from] { return devices::errorTermsToSdk(*from); }),
        repeated(row, "push_back", [from] { return plainToSdk(*from); }),
    };
}

} // namespace

std::vector<Way> allWays()
{
    auto ways = forEach(isCounted ? Sizes{1'000} : Sizes{1'000, 30'000, 1'000'000}, &conversion);
    for (auto& way : writes(1'000))
        ways.push_back(std::move(way));
    return ways;
}

} // namespace tarn::benchmarks
