#include <vna/errorterms.h>
#include <vna/frequencysegment.h>

#include <gmock/gmock.h>

#include <complex>
#include <cstddef>
#include <set>
#include <type_traits>

using testing::ElementsAre;
using testing::IsEmpty;

namespace tarn::tests {
namespace {

using vna::ErrorTerms;
using vna::FrequencySegment;

static_assert(offsetof(FrequencySegment, start) == 0 && offsetof(FrequencySegment, stop) == 8);
static_assert(offsetof(FrequencySegment, pointCount) == 16
              && std::is_same_v<decltype(FrequencySegment::pointCount), std::uint32_t>);
static_assert(std::is_nothrow_move_constructible_v<ErrorTerms> && std::is_copy_assignable_v<ErrorTerms>);

TEST(ErrorTerms, BeginWithNeitherPortsNorFrequencies)
{
    const ErrorTerms terms;
    EXPECT_EQ(terms.portCount(), 0U);
    EXPECT_THAT(terms.frequencies(), IsEmpty());
    EXPECT_EQ(terms, ErrorTerms(0, {}));
}

TEST(ErrorTerms, AreZeroUntilTheyAreSet)
{
    const ErrorTerms terms{2, {1e9, 2e9}};
    EXPECT_THAT(terms.frequencies(), ElementsAre(1e9, 2e9));
    EXPECT_EQ(terms.reflection(1, 2), vna::ReflectionTerms{});
    EXPECT_EQ(terms.transmission(1, 2, 1), vna::TransmissionTerms{});
}

TEST(ErrorTerms, KeepOnePlaceForEachPortAndEachOrderedPairOfPorts)
{
    for (const std::size_t ports : {1U, 2U, 3U, 4U}) {
        ErrorTerms terms{ports, {1e9, 2e9, 3e9}};
        double next = 1;
        for (std::size_t point = 0; point != 3; ++point) {
            for (std::size_t receiver = 1; receiver <= ports; ++receiver) {
                terms.reflection(point, receiver).directivity = next++;
                for (std::size_t source = 1; source <= ports; ++source) {
                    if (source != receiver)
                        terms.transmission(point, receiver, source).isolation = next++;
                }
            }
        }
        std::set<double> seen; // two terms in one place would have overwritten each other
        const auto& read = terms;
        for (std::size_t point = 0; point != 3; ++point) {
            for (std::size_t receiver = 1; receiver <= ports; ++receiver) {
                seen.insert(read.reflection(point, receiver).directivity.real());
                for (std::size_t source = 1; source <= ports; ++source) {
                    if (source != receiver)
                        seen.insert(read.transmission(point, receiver, source).isolation.real());
                }
            }
        }
        EXPECT_EQ(seen.size(), 3 * ports * ports);
        EXPECT_FALSE(seen.contains(0.0));
    }
}

TEST(ErrorTerms, AreEqualWhenFrequenciesAndAllTermsAre)
{
    const ErrorTerms terms{2, {1e9}};
    EXPECT_EQ(terms, ErrorTerms(2, {1e9}));
    EXPECT_NE(terms, ErrorTerms(2, {2e9}));
    EXPECT_NE(terms, ErrorTerms(1, {1e9}));
    auto other = terms;
    other.transmission(0, 1, 2).loadMatch = {0.0, 1e-9};
    EXPECT_NE(terms, other);
    other = terms;
    other.reflection(0, 2).sourceMatch = 1.0;
    EXPECT_NE(terms, other);
}

} // namespace
} // namespace tarn::tests
