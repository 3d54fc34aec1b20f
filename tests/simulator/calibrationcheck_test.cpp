#include <simulator/calibrationfixture.h>

#include <sdk/models.h>
#include <simulator/calibrationcheck.h>

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <random>

namespace tarn::simulator {
namespace {

using TermsError = test::Terms::Error;
using IfswError = test::Ifsw::Error;
using PowerError = test::Power::Error;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

template <class Error, class Data>
struct Case {
    const char* what;
    std::optional<Error> error;
    std::function<void(Data&)> change;
};

/// Checks each case: `good` data with one change.
template <class Error, class Data>
void expectErrors(const Data& good, const std::vector<Case<Error, Data>>& cases, const CalibrationLimits& limits = {})
{
    EXPECT_EQ(check(good, limits), std::nullopt);
    for (const auto& [what, error, change] : cases) {
        auto data = good;
        change(data);
        EXPECT_EQ(check(data, limits), error) << what;
    }
}

SystemTerms termsFor(const std::vector<double>& frequencies, const sdk::FrequencyPlan& plan)
{
    return {test::measured, plan, test::makeTerms(frequencies), test::warm};
}

TEST(SystemTermsCheckTest, NamesTheReasonOfARefusal)
{
    using D = SystemTerms;
    const auto good = test::Kind<test::Terms>::data();
    expectErrors<TermsError, D>(
        good,
        {
            {"no frequency", TermsError::NoTerms, [](D& d) { d.terms.frequencies.clear(); }},
            {"no port", TermsError::NoTerms, [](D& d) { d.terms.ports.clear(); }},
            {"nothing", TermsError::NoTerms, [](D& d) { d.terms = {}; }},
            {"short directivity", TermsError::InvalidTerms, [](D& d) { d.terms.ports[0].directivity.pop_back(); }},
            {"long source match", TermsError::InvalidTerms, [](D& d) { d.terms.ports[1].sourceMatch.push_back({}); }},
            {"no tracking", TermsError::InvalidTerms, [](D& d) { d.terms.ports[1].reflectionTracking.clear(); }},
            {"short load match", TermsError::InvalidTerms, [](D& d) { d.terms.portPairs[0].loadMatch.pop_back(); }},
            {"no transmission", TermsError::InvalidTerms,
             [](D& d) { d.terms.portPairs[0].transmissionTracking.clear(); }},
            {"long isolation", TermsError::InvalidTerms, [](D& d) { d.terms.portPairs[1].isolation.push_back({}); }},
            {"missing pair", TermsError::InvalidTerms, [](D& d) { d.terms.portPairs.pop_back(); }},
            {"pair too many", TermsError::InvalidTerms,
             [](D& d) { d.terms.portPairs.push_back(d.terms.portPairs.back()); }},
            {"pairs in another order", TermsError::InvalidTerms,
             [](D& d) { std::swap(d.terms.portPairs[0], d.terms.portPairs[1]); }},
            {"pair of one port", TermsError::InvalidTerms, [](D& d) { d.terms.portPairs[0].receiverPort = 1; }},
            {"port zero", TermsError::InvalidTerms, [](D& d) { d.terms.portPairs[0].sourcePort = 0; }},
            {"no number", TermsError::InvalidTerms, [](D& d) { d.terms.ports[0].directivity[3] = {nan, 0.0}; }},
            {"infinite imaginary part", TermsError::InvalidTerms,
             [](D& d) { d.terms.portPairs[1].isolation[0] = {0.0, infinity}; }},
            {"frequency not a number", TermsError::InvalidTerms, [](D& d) { d.terms.frequencies[2] = nan; }},
            {"infinite frequency", TermsError::InvalidTerms, [](D& d) { d.terms.frequencies.back() = infinity; }},
            {"one port", TermsError::PortCountMismatch,
             [](D& d) { d.terms = test::makeTerms(d.terms.frequencies, 1); }},
            {"four ports", TermsError::PortCountMismatch,
             [](D& d) { d.terms = test::makeTerms(d.terms.frequencies, 4); }},
            {"descending", TermsError::FrequenciesNotAscending,
             [](D& d) { std::swap(d.terms.frequencies[4], d.terms.frequencies[5]); }},
            {"repeated", TermsError::FrequenciesNotAscending,
             [](D& d) { d.terms.frequencies[4] = d.terms.frequencies[5]; }},
            {"too low", TermsError::FrequencyOutOfRange, [](D& d) { d.terms.frequencies.front() = 99'999.0; }},
            {"too high", TermsError::FrequencyOutOfRange, [](D& d) { d.terms.frequencies.back() = 8.5e9 + 1.0; }},
            {"beside a point", TermsError::PlanMismatch, [](D& d) { d.terms.frequencies[2] *= 1.0 + 1e-8; }},
            {"beside a point by rounding", std::nullopt, [](D& d) { d.terms.frequencies[2] *= 1.0 + 1e-12; }},
            {"point too few", TermsError::PlanMismatch,
             [](D& d) {
                 d.terms.frequencies.pop_back();
                 d.terms = test::makeTerms(d.terms.frequencies);
             }},
            {"point too many", TermsError::PlanMismatch,
             [](D& d) {
                 d.terms.frequencies.push_back(8.1e9);
                 d.terms = test::makeTerms(d.terms.frequencies);
             }},
            {"empty plan", TermsError::PlanMismatch, [](D& d) { d.plan = {}; }},
            {"segment without points", TermsError::PlanMismatch,
             [](D& d) { d.plan.segments.push_back({8e9, 8e9, 0}); }},
            {"segment with less than none", TermsError::PlanMismatch, [](D& d) { d.plan.segments[0].pointCount = -3; }},
            {"huge segment", TermsError::PlanMismatch,
             [](D& d) { d.plan.segments[0].pointCount = std::numeric_limits<std::int32_t>::max(); }},
            {"plan not a number", TermsError::PlanMismatch, [](D& d) { d.plan.segments[0].startFrequency = nan; }},
            {"too cold", TermsError::TemperatureOutOfRange, [](D& d) { d.temperature = 4.9; }},
            {"coldest", std::nullopt, [](D& d) { d.temperature = 5.0; }},
            {"warmest", std::nullopt, [](D& d) { d.temperature = 50.0; }},
            {"too warm", TermsError::TemperatureOutOfRange, [](D& d) { d.temperature = 50.1; }},
            {"no temperature", TermsError::TemperatureOutOfRange, [](D& d) { d.temperature = nan; }},
            {"before the epoch", std::nullopt, [](D& d) { d.time = -1; }},
            {"first reason of several", TermsError::NoTerms,
             [](D& d) {
                 d.terms = {};
                 d.temperature = nan;
             }},
        });
}

TEST(SystemTermsCheckTest, TakesAnotherPlanWhereThatIsSupported)
{
    const auto other = termsFor({100e3, 8.5e9}, {{{100e3, 100e3, 1}, {8.5e9, 8.5e9, 1}}});
    EXPECT_EQ(check(other, {}), std::nullopt);
    CalibrationLimits limits;
    limits.isOverrideSupported = false;
    EXPECT_EQ(check(other, limits), TermsError::OverrideNotSupported);
    EXPECT_EQ(check(test::Kind<test::Terms>::data(), limits), std::nullopt) << "its own plan";
    auto empty = other;
    empty.terms = {};
    EXPECT_EQ(check(empty, limits), TermsError::OverrideNotSupported) << "before all other reasons";
}

TEST(SystemTermsCheckTest, HasRoomForSoManyPoints)
{
    const auto many = [](std::int32_t count) {
        const sdk::FrequencyPlan plan{{{1e6, 8e9, count}}};
        return termsFor(test::pointsOf(plan), plan);
    };
    EXPECT_EQ(check(many(20'001), {}), std::nullopt);
    EXPECT_EQ(check(many(20'002), {}), TermsError::WriteFailed);
}

TEST(SystemTermsCheckTest, WantsThePortsOfTheInstrument)
{
    auto data = test::Kind<test::Terms>::data();
    for (const std::uint32_t portCount : {1U, 3U, 4U}) {
        data.terms = test::makeTerms(data.terms.frequencies, portCount);
        CalibrationLimits limits;
        limits.portCount = portCount;
        EXPECT_EQ(check(data, limits), std::nullopt);
        limits.portCount = portCount + 1;
        EXPECT_EQ(check(data, limits), TermsError::PortCountMismatch);
    }
}

TEST(IfswCheckTest, NamesTheReasonOfARefusal)
{
    using D = IfswCalibration;
    std::vector<Case<IfswError, D>> cases{
        {"nothing", IfswError::NoData, [](D& d) { d = {}; }},
        {"no frequency", IfswError::NoData, [](D& d) { d.frequencies.clear(); }},
        {"point too few", IfswError::PlanMismatch, [](D& d) { d.frequencies.pop_back(); }},
        {"point too many", IfswError::PlanMismatch, [](D& d) { d.frequencies.push_back(9e9); }},
        {"unsorted", IfswError::PlanMismatch, [](D& d) { std::swap(d.frequencies[1], d.frequencies[2]); }},
        {"not a number", IfswError::PlanMismatch, [](D& d) { d.frequencies[1] = nan; }},
        {"first reason of two", IfswError::NoData,
         [](D& d) {
             d.frequencies.pop_back();
             d.reference.ratios.clear();
         }},
    };
    for (const auto receiver : {&D::reference, &D::reflection, &D::transmission}) {
        const auto add = [&](const char* what, std::optional<IfswError> error, auto change) {
            cases.push_back({what, error, [receiver, change](D& d) { change(d.*receiver); }});
        };
        using R = test::Ifsw::ReceiverCalibration;
        add("no ratio", IfswError::NoData, [](R& r) { r.ratios.clear(); });
        add("no linearity", IfswError::NoData, [](R& r) { r.linearities.clear(); });
        add("no intermediate frequency", IfswError::ValueOutOfRange,
            [](R& r) { r.ratios[1].intermediateFrequency = 0.0; });
        add("highest intermediate frequency", std::nullopt, [](R& r) { r.ratios[1].intermediateFrequency = 100e6; });
        add("higher", IfswError::ValueOutOfRange, [](R& r) { r.ratios[1].intermediateFrequency = 100e6 + 1.0; });
        add("no magnitude", IfswError::ValueOutOfRange, [](R& r) { r.ratios[0].magnitude = 0.0; });
        add("infinite magnitude", IfswError::ValueOutOfRange, [](R& r) { r.ratios[0].magnitude = infinity; });
        add("phase", IfswError::ValueOutOfRange, [](R& r) { r.ratios[0].phase = -360.5; });
        add("no phase", IfswError::ValueOutOfRange, [](R& r) { r.ratios[0].phase = nan; });
        add("level", IfswError::ValueOutOfRange, [](R& r) { r.linearities[0].level = 30.5; });
        add("low level", IfswError::ValueOutOfRange, [](R& r) { r.linearities[0].level = -150.5; });
        add("magnitude error", IfswError::ValueOutOfRange, [](R& r) { r.linearities[0].magnitudeError = -20.5; });
        add("phase error", IfswError::ValueOutOfRange, [](R& r) { r.linearities[0].phaseError = nan; });
    }
    expectErrors(test::makeIfsw(), cases);
}

TEST(PowerCheckTest, NamesTheReasonOfARefusal)
{
    using D = PowerCalibration;
    constexpr auto nanF = std::numeric_limits<float>::quiet_NaN();
    expectErrors<PowerError, D>(
        test::Kind<test::Power>::data(),
        {
            {"nothing", PowerError::NoData, [](D& d) { d.points.clear(); }},
            {"one level", std::nullopt, [](D& d) { d.points.erase(d.points.begin()); }},
            {"frequency left out", PowerError::PlanMismatch,
             [](D& d) { d.points.erase(d.points.begin() + 2, d.points.begin() + 4); }},
            {"frequency of its own", PowerError::PlanMismatch, [](D& d) { d.points[3].frequency += 1e3; }},
            {"frequency that comes back", PowerError::PlanMismatch, [](D& d) { d.points.push_back(d.points.front()); }},
            {"unsorted", PowerError::PlanMismatch, [](D& d) { std::swap(d.points[1], d.points[2]); }},
            {"frequency not a number", PowerError::PlanMismatch, [](D& d) { d.points[1].frequency = nan; }},
            {"nominal power", PowerError::ValueOutOfRange, [](D& d) { d.points[1].nominalPower = 40.5F; }},
            {"measured power", PowerError::ValueOutOfRange, [](D& d) { d.points[1].measuredPower = -150.5F; }},
            {"receiver power", PowerError::ValueOutOfRange, [](D& d) { d.points[1].receiverPower = nanF; }},
            {"amplification", PowerError::ValueOutOfRange, [](D& d) { d.points[1].sourceAttenuation = -0.5F; }},
            {"attenuation", PowerError::ValueOutOfRange, [](D& d) { d.points[1].receiverAttenuation = 120.5F; }},
            {"too cold", PowerError::ValueOutOfRange, [](D& d) { d.temperature = 4.9; }},
            {"no temperature", PowerError::ValueOutOfRange, [](D& d) { d.temperature = nan; }},
            {"first reason of two", PowerError::PlanMismatch,
             [](D& d) {
                 d.points.pop_back();
                 d.points.pop_back();
                 d.temperature = nan;
             }},
        });
}

TEST(CalibrationLimitsTest, AreThoseOfTheFamily)
{
    for (const auto& family : families()) {
        const auto limits = calibrationLimits(family.profile, family.model());
        const bool isMultiport = family.profile == Profile::MultiportLum || family.profile == Profile::MultiportCommon;
        EXPECT_EQ(limits.portCount, isMultiport ? 4U : 2U) << family.name;
        EXPECT_EQ(limits.isOverrideSupported, family.profile != Profile::Pell && family.profile != Profile::Wisp)
            << family.name;
        EXPECT_EQ(limits.hasFactoryCalibrations, family.profile == Profile::Vell) << family.name;
        EXPECT_TRUE(calibrationLimits(Profile::Full, family.model()).hasFactoryCalibrations) << family.name;
    }
}

TEST(ArchiveTest, GivesBackWhatWasWritten)
{
    const auto expectSame = [](const auto& data) {
        const Writer writer{data};
        std::remove_cvref_t<decltype(data)> copy{};
        Reader reader{writer.bytes()};
        reader(copy);
        EXPECT_TRUE(reader.isComplete());
        EXPECT_TRUE(copy == data);
    };
    expectSame(test::Kind<test::Terms>::data());
    expectSame(test::Kind<test::Ifsw>::data());
    expectSame(test::Kind<test::Power>::data());
    expectSame(SystemTerms{});
}

TEST(ArchiveTest, NoticesBytesThatAreMissingOrTooMany)
{
    const Writer writer{test::Kind<test::Ifsw>::data()};
    for (const auto& bytes : {writer.bytes().chopped(1), writer.bytes().left(7), writer.bytes() + 'x', QByteArray{}}) {
        IfswCalibration data{};
        Reader reader{bytes};
        reader(data);
        EXPECT_FALSE(reader.isComplete()) << bytes.size();
    }
}

TEST(ArchiveTest, TakesAnyBytesWithoutRunningOutOfMemory)
{
    std::mt19937 random{1};
    for (int round = 0; round < 2000; ++round) {
        const Writer writer{test::Kind<test::Power>::data()};
        auto bytes = writer.bytes();
        for (int i = 0; i < 3; ++i)
            bytes[static_cast<qsizetype>(random() % 40)] = static_cast<char>(random());
        SystemTerms data{};
        Reader reader{bytes};
        reader(data);
        EXPECT_LE(data.plan.segments.size(), static_cast<std::size_t>(bytes.size()));
        PowerCalibration points{};
        Reader other{bytes};
        other(points);
        EXPECT_LE(points.points.size(), static_cast<std::size_t>(bytes.size()));
    }
}

} // namespace
} // namespace tarn::simulator
