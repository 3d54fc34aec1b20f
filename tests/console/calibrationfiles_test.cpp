#include <console/ifswfile.h>
#include <console/planfile.h>
#include <console/powerfile.h>
#include <console/printing.h>
#include <console/termsfile.h>

#include <QFile>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <random>

namespace tarn::console {

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

// NOLINTBEGIN(cert-msc32-c,cert-msc51-cpp): the same data in every run is what a test wants

/// Numbers of every sign and size, and the awkward ones.
class Numbers {
public:
    explicit Numbers(unsigned int seed)
        : m_engine{seed}
    {
    }

    std::size_t upTo(std::size_t most) { return std::uniform_int_distribution<std::size_t>{0, most}(m_engine); }

    template <class Number = double>
    Number any(double decades)
    {
        static constexpr std::array<Number, 6> awkward{0, -0.0F, 1, -1, 0.1F, 16777216};
        if (upTo(9) == 0)
            return awkward.at(upTo(awkward.size() - 1));
        const auto magnitude = std::pow(10.0, std::uniform_real_distribution{-decades, decades}(m_engine));
        return static_cast<Number>(upTo(1) == 0 ? magnitude : -magnitude);
    }

    std::complex<double> complex() { return {any(250), any(250)}; }

    std::vector<double> ascending(std::size_t count)
    {
        std::vector<double> values{std::abs(any(9))};
        while (values.size() < count)
            values.push_back(values.back() + std::uniform_real_distribution{1.0, 1e9}(m_engine));
        return values;
    }

private:
    std::mt19937 m_engine;
};

// NOLINTEND(cert-msc32-c,cert-msc51-cpp)

const SourceFile file{"a file", "some example"};

QByteArray bytes(const std::string& text)
{
    return QByteArray::fromStdString(text);
}

std::string committed(const char* name)
{
    QFile example{QStringLiteral(TARN_EXAMPLES "/") + QString::fromUtf8(name)};
    EXPECT_TRUE(example.open(QIODevice::ReadOnly)) << name;
    return example.readAll().toStdString();
}

} // namespace

// ---- what is written is read

TEST(CalibrationFile, OfAnyPlanIsReadAsItWasWritten)
{
    Numbers numbers{1};
    for (int run = 0; run < 200; ++run) {
        FrequencyPlan plan(1 + numbers.upTo(5));
        for (auto& segment : plan)
            segment = {std::abs(numbers.any(12)), std::abs(numbers.any(12)),
                       static_cast<std::uint32_t>(1 + numbers.upTo(0x7FFF'FFFE))};
        EXPECT_EQ(readPlanFile(file, bytes(planFileText(plan))), plan);
    }
}

TEST(CalibrationFile, OfAnyErrorTermsIsReadAsItWasWritten)
{
    Numbers numbers{2};
    for (int run = 0; run < 200; ++run) {
        vna::ErrorTerms terms{1 + numbers.upTo(3), numbers.ascending(1 + numbers.upTo(7))};
        for (std::size_t point = 0; point < terms.frequencies().size(); ++point) {
            for (std::size_t source = 1; source <= terms.portCount(); ++source) {
                terms.reflection(point, source) = {numbers.complex(), numbers.complex(), numbers.complex()};
                for (std::size_t receiver = 1; receiver <= terms.portCount(); ++receiver)
                    if (receiver != source)
                        terms.transmission(point, receiver, source)
                            = {numbers.complex(), numbers.complex(), numbers.complex()};
            }
        }
        EXPECT_EQ(readTermsFile(file, bytes(termsFileText(terms))), terms);
    }
}

TEST(CalibrationFile, OfAnyIfSwitchDataIsReadAsItWasWritten)
{
    Numbers numbers{3};
    for (int run = 0; run < 200; ++run) {
        IfswData data;
        data.frequencies = numbers.ascending(1 + numbers.upTo(7));
        for (auto* const receiver : {&data.reference, &data.reflection, &data.transmission}) {
            receiver->ratios.resize(1 + numbers.upTo(3));
            for (auto& ratio : receiver->ratios)
                ratio = {numbers.any(250), numbers.any(250), numbers.any(250)};
            receiver->linearities.resize(1 + numbers.upTo(3));
            for (auto& linearity : receiver->linearities)
                linearity = {numbers.any(250), numbers.any(250), numbers.any(250)};
        }
        EXPECT_EQ(readIfswFile(file, bytes(ifswFileText(data))), data);
    }
}

TEST(CalibrationFile, OfAnyPowerPointsIsReadAsItWasWritten)
{
    Numbers numbers{4};
    const auto level = [&] { return numbers.any<float>(35); };
    const auto flag = [&] { return numbers.upTo(1) == 1; };
    for (int run = 0; run < 200; ++run) {
        std::vector<PowerPoint> points;
        for (const auto frequency : numbers.ascending(1 + numbers.upTo(7)))
            for (auto levels = 1 + numbers.upTo(2); levels > 0; --levels)
                points.push_back({frequency, level(), level(), flag(), flag(), level(), flag(), level(), level()});
        EXPECT_EQ(readPowerFile(file, bytes(powerFileText(points))), points);
    }
}

TEST(CalibrationFile, OfErrorTermsMayHaveItsMembersAndPairsInAnyOrder)
{
    const auto terms = readTermsFile(file, R"({"portPairs": [
        {"isolation": [[1, 2]], "source": 2, "receiver": 1, "loadMatch": [[3, 4]], "transmissionTracking": [[5, 6]]},
        {"isolation": [[7, 8]], "source": 1, "receiver": 2, "loadMatch": [[9, 10]], "transmissionTracking": [[11, 12]]}],
        "ports": [{"port": 1, "directivity": [[13, 14]], "sourceMatch": [[15, 16]], "reflectionTracking": [[17, 18]]},
        {"port": 2, "directivity": [[0, 0]], "sourceMatch": [[0, 0]], "reflectionTracking": [[0, 0]]}],
        "frequencies": [0], "format": "tarn-system-terms/1"})");
    EXPECT_EQ(terms.transmission(0, 1, 2), (vna::TransmissionTerms{{3, 4}, {5, 6}, {1, 2}}));
    EXPECT_EQ(terms.transmission(0, 2, 1), (vna::TransmissionTerms{{9, 10}, {11, 12}, {7, 8}}));
    EXPECT_EQ(terms.reflection(0, 1), (vna::ReflectionTerms{{13, 14}, {15, 16}, {17, 18}}));
}

TEST(CalibrationFile, OfPowerPointsMayHaveBlanksCommentsAndForeignLineEnds)
{
    const auto text = powerFileText(examplePowerPoints(pointsOf(examplePlan())));
    auto foreign = bytes(text);
    foreign.replace("\n", " \r\n\r\n # a remark, with a comma\r\n").replace(",", " ,\t").prepend("\xEF\xBB\xBF");
    EXPECT_EQ(readPowerFile(file, foreign), readPowerFile(file, bytes(text)));
}

TEST(CalibrationFile, OfPowerPointsMayHoldTheSmallestAndTheLargestNumbers)
{
    constexpr std::array numbers{std::numeric_limits<float>::denorm_min(), -std::numeric_limits<float>::max()};
    auto points = examplePowerPoints(std::array{1e9});
    points.front().measuredPower = numbers.front();
    points.back().measuredPower = numbers.back();
    EXPECT_EQ(readPowerFile(file, bytes(powerFileText(points))), points);
}

// ---- the examples

TEST(CalibrationFile, TheExamplesAreThoseThatThePlanMakes)
{
    const auto frequencies = pointsOf(examplePlan());
    EXPECT_THAT(frequencies, ElementsAre(1e9, 2e9, 3e9, 4e9));
    EXPECT_EQ(committed("plan.json"), planFileText(examplePlan()));
    EXPECT_EQ(committed("system-terms.json"), termsFileText(exampleTerms(2, frequencies)));
    EXPECT_EQ(committed("ifsw-calibration.json"), ifswFileText(exampleIfswData(frequencies)));
    EXPECT_EQ(committed("power-calibration.csv"), powerFileText(examplePowerPoints(frequencies)));
}

TEST(CalibrationFile, TheExamplesAreAccepted)
{
    EXPECT_EQ(readPlanFile(file, bytes(committed("plan.json"))), examplePlan());
    EXPECT_EQ(readTermsFile(file, bytes(committed("system-terms.json"))).portCount(), 2U);
    EXPECT_EQ(readIfswFile(file, bytes(committed("ifsw-calibration.json"))).frequencies.size(), 4U);
    EXPECT_EQ(readPowerFile(file, bytes(committed("power-calibration.csv"))).size(), 8U);
}

TEST(CalibrationFile, PointsOfAPlanAreSpacedEvenlyBothEndsIncluded)
{
    EXPECT_THAT(pointsOf(FrequencyPlan{{10, 20, 3}, {7, 9, 1}, {5, 1, 2}, {1, 2, 0}}),
                ElementsAre(10, 15, 20, 7, 5, 1));
    EXPECT_EQ(pointsOf(FrequencyPlan{{0.1, 0.7, 7}}).back(), 0.7);
}

// ---- what is not accepted

enum class Kind { Plan, Terms, Ifsw, Power };

void read(Kind kind, const QByteArray& contents)
{
    switch (kind) {
    case Kind::Plan:
        static_cast<void>(readPlanFile(file, contents));
        break;
    case Kind::Terms:
        static_cast<void>(readTermsFile(file, contents));
        break;
    case Kind::Ifsw:
        static_cast<void>(readIfswFile(file, contents));
        break;
    case Kind::Power:
        static_cast<void>(readPowerFile(file, contents));
        break;
    }
}

constexpr std::array<const char*, 4> exampleNames{"plan.json", "system-terms.json", "ifsw-calibration.json",
                                                  "power-calibration.csv"};

struct Mistake {
    Kind kind;
    const char* good; ///< what stands in the example
    const char* bad; ///< and is replaced, once, by this
    const char* message;
};

void PrintTo(const Mistake& value, std::ostream* stream)
{
    *stream << value.good << " -> " << value.bad;
}

TEST(CalibrationFile, ThatCannotHoldItsTermsIsRefusedBeforeMemoryIsTakenForThem)
{
    std::string text = R"({"format": "tarn-system-terms/1", "frequencies": [0)";
    for (int i = 1; i < 20'000; ++i)
        text.append(",").append(std::to_string(i));
    text += R"(], "portPairs": [], "ports": [{})";
    for (int i = 1; i < 64; ++i)
        text += ",{}";
    text += "]}";
    try {
        read(Kind::Terms, bytes(text));
        ADD_FAILURE() << "accepted";
    } catch (const Error& error) {
        EXPECT_EQ(error.message(),
                  "'a file', $: found fewer numbers than that, expected 12288 complex numbers for each of "
                  "20000 frequencies");
    }
}

class BadCalibrationFile : public testing::TestWithParam<Mistake> { };

TEST_P(BadCalibrationFile, IsRefusedWithPlaceWhatWasFoundAndWhatWasExpected)
{
    const auto& [kind, good, bad, message] = GetParam();
    auto text = committed(exampleNames.at(static_cast<std::size_t>(kind)));
    const auto at = text.find(good);
    ASSERT_NE(at, std::string::npos);
    text.replace(at, std::string_view{good}.size(), bad);
    try {
        read(kind, bytes(text));
        ADD_FAILURE() << "accepted";
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::LocalFile);
        EXPECT_EQ(error.message(), std::string{"'a file', "} + message);
        EXPECT_THAT(error.hint(), HasSubstr("'tarn-service some example'"));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Plan, BadCalibrationFile,
    testing::Values(
        Mistake{Kind::Plan, "1000000000", "x", "line 4, column 15: found a mistake (illegal number), expected JSON"},
        Mistake{Kind::Plan, "plan/1", "plan/2",
                R"($.format: found "tarn-frequency-plan/2", expected "tarn-frequency-plan/1")"},
        Mistake{Kind::Plan, R"("format")", R"("form")", R"($: found no member "format", expected one)"},
        Mistake{Kind::Plan, R"("segments")", R"("other": 1, "segments")",
                R"($: found a member "other", expected only format, segments)"},
        Mistake{Kind::Plan, R"("segments")", R"("123456789 123456789 123456789 12345678ä and more": 1, "segments")",
                R"($: found a member "123456789 123456789 123456789 12345678ä...", expected only format, segments)"},
        Mistake{Kind::Plan, "plan/1", "plan/1 123456789 123456😀 and more",
                R"($.format: found "tarn-frequency-plan/1 123456789 123456...", expected "tarn-frequency-plan/1")"},
        Mistake{Kind::Plan, "1000000000", "-1",
                "$.segments[0].start: found -1, expected a frequency in hertz, not below 0"},
        Mistake{Kind::Plan, "1000000000", "null", "$.segments[0].start: found null, expected a finite number"},
        Mistake{Kind::Plan, R"("points": 1})", R"("points": 0})",
                "$.segments[1].points: found 0, expected a whole number from 1 to 2147483647"},
        Mistake{Kind::Plan, R"("points": 1})", R"("points": 1.5})",
                "$.segments[1].points: found 1.5, expected a whole number from 1 to 2147483647"},
        Mistake{Kind::Plan, R"("points": 1})", R"("points": 2147483648})",
                "$.segments[1].points: found 2147483648, expected a whole number from 1 to 2147483647"}));

INSTANTIATE_TEST_SUITE_P(
    Terms, BadCalibrationFile,
    testing::Values(
        Mistake{Kind::Terms, "2000000000", "1000000000",
                "$.frequencies[1]: found 1000000000, expected a frequency above the one before it, 1000000000"},
        Mistake{Kind::Terms, "[1000000000", "[-1000000000",
                "$.frequencies[0]: found -1000000000, expected a frequency in hertz, not below 0"},
        Mistake{Kind::Terms, "[1000000000, 2000000000, 3000000000, 4000000000]", "[]",
                "$.frequencies: found an array of 0 elements, expected at least one frequency in hertz"},
        Mistake{Kind::Terms, "[0.012, 0.01]", R"([0.012, "x"])",
                R"($.ports[0].directivity[2][1]: found "x", expected a finite number)"},
        Mistake{Kind::Terms, "[0.012, 0.01]", "0.012",
                "$.ports[0].directivity[2]: found 0.012, expected a complex number: [real, imaginary]"},
        Mistake{
            Kind::Terms, "[0.012, 0.01]", "[0.012, 0.01, 0]",
            "$.ports[0].directivity[2]: found an array of 3 elements, expected a complex number: [real, imaginary]"},
        Mistake{Kind::Terms, ", [0.013, 0.01]", "",
                "$.ports[0].directivity: found an array of 3 elements, expected 4 values, one for each frequency"},
        Mistake{Kind::Terms, "\"port\": 2", "\"port\": 1",
                "$.ports[1].port: found 1, expected 2: the ports stand in order, the first is 1"},
        Mistake{Kind::Terms, R"("source": 2)", R"("source": 3)",
                "$.portPairs[1].source: found 3, expected a whole number from 1 to 2"},
        Mistake{Kind::Terms, R"("source": 2)", R"("source": 1)",
                "$.portPairs[1].receiver: found 1, expected another port than the source"},
        Mistake{Kind::Terms, "\"source\": 2,\n      \"receiver\": 1", "\"source\": 1,\n      \"receiver\": 2",
                "$.portPairs[1]: found source 1 with receiver 2 again, expected every pair once"}));

INSTANTIATE_TEST_SUITE_P(
    Ifsw, BadCalibrationFile,
    testing::Values(
        Mistake{Kind::Ifsw, "0.999", "true", "$.reference.ratios[0].magnitude: found true, expected a finite number"},
        Mistake{Kind::Ifsw, R"("phaseError": -0.05)", R"("phase": -0.05)",
                R"($.reference.linearities[1]: found no member "phaseError", expected one)"},
        Mistake{Kind::Ifsw, R"("reflection": {)", R"("reflection": [], "x": {)",
                R"($: found a member "x", expected only format, frequencies, reference, reflection, transmission)"}));

INSTANTIATE_TEST_SUITE_P(
    Power, BadCalibrationFile,
    testing::Values(
        Mistake{Kind::Power, "receiver_power_dbm", "power",
                "line 2: found 'frequency_hz,nominal_power_dbm,measured_power_dbm,source_amplifier,source_attenu...', "
                "expected the header 'frequency_hz,nominal_power_dbm,measured_power_dbm,source_amplifier,"
                "source_attenuator,source_attenuation_db,receiver_attenuator,receiver_attenuation_db,"
                "receiver_power_dbm'"},
        Mistake{Kind::Power, "0.25,on", "0.25,yes",
                "line 3, column source_amplifier: found 'yes', expected 'on' or 'off'"},
        Mistake{Kind::Power, "-20.25", "-20.25 dBm",
                "line 4, column measured_power_dbm: found '-20.25 dBm', expected a finite number"},
        Mistake{Kind::Power, "-20.25", "nan",
                "line 4, column measured_power_dbm: found 'nan', expected a finite number"},
        Mistake{Kind::Power, "-20.25", "1e40",
                "line 4, column measured_power_dbm: found '1e40', expected a number of 32 bits: 0, or from 1e-45 to "
                "3.4028235e+38 apart from its sign"},
        Mistake{Kind::Power, "-20.25", "-1e-60",
                "line 4, column measured_power_dbm: found '-1e-60', expected a number of 32 bits: 0, or from 1e-45 to "
                "3.4028235e+38 apart from its sign"},
        Mistake{Kind::Power, "2000000000", "1e400",
                "line 5, column frequency_hz: found '1e400', expected a number of 64 bits: 0, or from 5e-324 to "
                "1.7976931348623157e+308 apart from its sign"},
        Mistake{Kind::Power, "-20.25", "1e40 dBm",
                "line 4, column measured_power_dbm: found '1e40 dBm', expected a finite number"},
        Mistake{Kind::Power, "0.25,on",
                "0.25,123456789 123456789 123456789 123456789 123456789 123456789 123456789 123456789€ and more",
                "line 3, column source_amplifier: found '123456789 123456789 123456789 123456789 123456789 123456789 "
                "123456789 123456789...', expected 'on' or 'off'"},
        Mistake{Kind::Power, "-20.25", "", "line 4, column measured_power_dbm: found '', expected a finite number"},
        Mistake{Kind::Power, "-20.25,", "", "line 4: found 8 fields, expected 9, separated by commas"},
        Mistake{Kind::Power, "2000000000", "999999999",
                "line 5, column frequency_hz: found '999999999', expected a frequency not below the one before it, "
                "1000000000"},
        Mistake{Kind::Power, "1000000000", "-1",
                "line 3, column frequency_hz: found '-1', expected a frequency in hertz, not below 0"}));

TEST(CalibrationFile, ThatIsEmptyIsRefused)
{
    for (const auto kind : {Kind::Plan, Kind::Terms, Kind::Ifsw, Kind::Power})
        EXPECT_THROW(read(kind, {}), Error);
    EXPECT_THROW(read(Kind::Power, bytes(powerFileText({}))), Error);
    EXPECT_THROW(read(Kind::Plan, bytes(planFileText({}))), Error);
    EXPECT_THROW(read(Kind::Terms, bytes(termsFileText(vna::ErrorTerms{0, {1}}))), Error);
    EXPECT_THROW(read(Kind::Ifsw, bytes(ifswFileText({}))), Error);
}

TEST(CalibrationFile, OfErrorTermsNeedsEveryPair)
{
    const std::string full = termsFileText(exampleTerms(3, {1}));
    const auto last = full.rfind(",\n    {");
    const auto fewer = full.substr(0, last) + full.substr(full.rfind("\n  ]"));
    try {
        read(Kind::Terms, bytes(fewer));
        ADD_FAILURE() << fewer;
    } catch (const Error& error) {
        EXPECT_THAT(error.message(), HasSubstr("$.portPairs: found an array of 5 elements, expected 6 pairs"));
    }
}

} // namespace tarn::console
