#include <devices/errortermsconversion.h>

#include <gmock/gmock.h>

#include <cmath>
#include <complex>
#include <limits>
#include <utility>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace tarn::tests {
namespace {

using devices::errorTermsToSdk;
using Complex = std::complex<double>;

/// Terms of which no two have a number in common.
vna::ErrorTerms distinctTerms(std::size_t ports, const std::vector<double>& frequencies)
{
    vna::ErrorTerms terms{ports, frequencies};
    double last = 0;
    const auto next = [&last] {
        last += 1;
        return Complex{last, -last / 3};
    };
    for (std::size_t point = 0; point != frequencies.size(); ++point) {
        for (std::size_t receiver = 1; receiver <= ports; ++receiver) {
            terms.reflection(point, receiver) = {next(), next(), next()};
            for (std::size_t source = 1; source <= ports; ++source) {
                if (source != receiver)
                    terms.transmission(point, receiver, source) = {next(), next(), next()};
            }
        }
    }
    return terms;
}

TEST(ErrorTermsToSdk, KeepsEveryTermUnderItsPortAndItsPoint)
{
    for (const std::size_t ports : {1U, 2U, 3U, 4U}) {
        const auto terms = distinctTerms(ports, {1e9, 2e9, 3e9});
        const auto converted = errorTermsToSdk(terms);
        EXPECT_THAT(converted.frequencies, ElementsAre(1e9, 2e9, 3e9));
        ASSERT_THAT(converted.ports, SizeIs(ports));
        ASSERT_THAT(converted.portPairs, SizeIs(ports * (ports - 1)));
        for (std::size_t point = 0; point != 3; ++point) {
            for (std::size_t port = 1; port <= ports; ++port) {
                const auto& from = terms.reflection(point, port);
                EXPECT_EQ(converted.ports[port - 1].directivity.at(point), from.directivity);
                EXPECT_EQ(converted.ports[port - 1].sourceMatch.at(point), from.sourceMatch);
                EXPECT_EQ(converted.ports[port - 1].reflectionTracking.at(point), from.reflectionTracking);
            }
            for (const auto& pair : converted.portPairs) {
                const auto& from = terms.transmission(point, pair.receiverPort, pair.sourcePort);
                EXPECT_EQ(pair.loadMatch.at(point), from.loadMatch);
                EXPECT_EQ(pair.transmissionTracking.at(point), from.transmissionTracking);
                EXPECT_EQ(pair.isolation.at(point), from.isolation);
            }
        }
    }
}

TEST(ErrorTermsToSdk, OrdersThePairsBySourceThenByReceiver)
{
    std::vector<std::pair<std::uint32_t, std::uint32_t>> order;
    for (const auto& pair : errorTermsToSdk(vna::ErrorTerms{3, {1e9}}).portPairs)
        order.emplace_back(pair.sourcePort, pair.receiverPort);
    using P = std::pair<std::uint32_t, std::uint32_t>;
    EXPECT_THAT(order, ElementsAre(P{1, 2}, P{1, 3}, P{2, 1}, P{2, 3}, P{3, 1}, P{3, 2}));
}

TEST(ErrorTermsToSdk, TakesTermsWithoutPortsOrWithoutFrequencies)
{
    EXPECT_EQ(errorTermsToSdk({}), sdk::corrections::ErrorTerms{});

    const auto noPoint = errorTermsToSdk(vna::ErrorTerms{2, {}});
    EXPECT_THAT(noPoint.frequencies, IsEmpty());
    ASSERT_THAT(noPoint.ports, SizeIs(2));
    ASSERT_THAT(noPoint.portPairs, SizeIs(2));
    EXPECT_THAT(noPoint.ports[1].directivity, IsEmpty());
    EXPECT_THAT(noPoint.portPairs[1].isolation, IsEmpty());

    const auto noPort = errorTermsToSdk(vna::ErrorTerms{0, {1e9}});
    EXPECT_THAT(noPort.frequencies, ElementsAre(1e9));
    EXPECT_THAT(noPort.ports, IsEmpty());
    EXPECT_THAT(noPort.portPairs, IsEmpty());
}

TEST(ErrorTermsToSdk, ChecksAndSortsNothing)
{
    const double infinity = std::numeric_limits<double>::infinity();
    vna::ErrorTerms terms{1, {2e9, 1e9, -infinity}};
    terms.reflection(1, 1).directivity = {std::nan(""), infinity};
    const auto converted = errorTermsToSdk(terms);
    EXPECT_THAT(converted.frequencies, ElementsAre(2e9, 1e9, -infinity));
    EXPECT_TRUE(std::isnan(converted.ports[0].directivity[1].real()));
    EXPECT_EQ(converted.ports[0].directivity[1].imag(), infinity);
}

TEST(ErrorTermsToSdk, TakesNoMoreMemoryThanTheTermsNeed)
{
    const auto isTight = [](const auto& list) { return list.capacity() == list.size(); };
    const auto converted = errorTermsToSdk(vna::ErrorTerms{3, std::vector<double>(5)});
    EXPECT_TRUE(isTight(converted.frequencies));
    EXPECT_TRUE(isTight(converted.ports));
    EXPECT_TRUE(isTight(converted.portPairs));
    for (const auto& [directivity, sourceMatch, reflectionTracking] : converted.ports)
        EXPECT_TRUE(isTight(directivity) && isTight(sourceMatch) && isTight(reflectionTracking));
    for (const auto& pair : converted.portPairs)
        EXPECT_TRUE(isTight(pair.loadMatch) && isTight(pair.transmissionTracking) && isTight(pair.isolation));
}

// The example of the declaration: what the converted terms say an ideal through is measured as.
TEST(ErrorTermsToSdk, KeepsTheMeaningOfTheTerms)
{
    vna::ErrorTerms terms{2, {1e9, 2e9}};
    terms.reflection(1, 1) = {0.01, 0.1, 0.9};
    terms.transmission(1, 2, 1) = {0.05, 0.95, 0.001};
    const auto converted = errorTermsToSdk(terms);

    const auto& port = converted.ports[0];
    const auto& pair = converted.portPairs[0];
    EXPECT_EQ(pair.sourcePort, 1U);
    EXPECT_EQ(pair.receiverPort, 2U);
    const Complex loop = 1.0 - port.sourceMatch[1] * pair.loadMatch[1];
    const Complex s11 = port.directivity[1] + port.reflectionTracking[1] * pair.loadMatch[1] / loop;
    const Complex s21 = pair.isolation[1] + pair.transmissionTracking[1] / loop;
    EXPECT_NEAR(s11.real(), 0.0552261, 1e-7);
    EXPECT_NEAR(s21.real(), 0.9557739, 1e-7);
}

} // namespace
} // namespace tarn::tests
