#include <console/ifswfile.h>
#include <console/planfile.h>
#include <console/powerfile.h>
#include <console/termsfile.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <random>
#include <string_view>

namespace tarn::console {

using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const SourceFile damagedFile{"a file", "some example"};

/// Damages a text in some places, the same way in every run.
class Mutator {
public:
    std::string damaged(std::string text)
    {
        for (auto count = 1 + upTo(3); count > 0; --count)
            damage(text);
        return text;
    }

private:
    std::size_t upTo(std::size_t most) { return std::uniform_int_distribution<std::size_t>{0, most}(m_engine); }

    void damage(std::string& text)
    {
        static constexpr std::array<std::string_view, 28> tokens{
            "{",    "}",    "[",     "]",   ",",  ":", "\"",   "-", ".", "e",  "1e999", "1e-999",
            "null", "true", "\"x\"", "NaN", "\n", "#", "\xff", "0", "9", "on", ",,",    "9007199254740993",
            "-1.5", "0.25", "2",     "3e9"};
        if (upTo(2) > 0)
            return damageValue(text, tokens.at(upTo(tokens.size() - 1)));
        const auto at = upTo(text.size());
        const auto length = std::min(upTo(12), text.size() - at);
        switch (upTo(5)) {
        case 0:
            text.erase(at, length);
            break;
        case 1:
            text.insert(at, tokens.at(upTo(tokens.size() - 1)));
            break;
        case 2:
            text.replace(at, length, tokens.at(upTo(tokens.size() - 1)));
            break;
        case 3:
            text.insert(at, text.substr(upTo(text.size()), upTo(40)));
            break;
        case 4:
            text.resize(at);
            break;
        default:
            if (at < text.size())
                text[at] = static_cast<char>(upTo(255));
        }
    }

    /// Puts `token` in the place of a number or a word, so that the text around it stays whole.
    void damageValue(std::string& text, std::string_view token)
    {
        static constexpr std::string_view characters
            = "0123456789.-+abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
        const auto at = text.find_first_of(characters, upTo(text.size()));
        if (at == std::string::npos)
            return;
        const auto end = std::min(text.find_first_not_of(characters, at), text.size());
        const auto begin = text.find_last_not_of(characters, at) + 1;
        text.replace(begin, end - begin, token);
    }

    std::mt19937 m_engine{20261121}; // NOLINT(cert-msc32-c,cert-msc51-cpp)
};

/// Reads damaged variants of `example`: each is refused with file, place, what was found and what was
/// expected, or accepted and then read as the same again.
template <class Read, class Write>
void fuzz(const std::string& example, Read read, Write write)
{
    Mutator mutator;
    int accepted = 0;
    int refused = 0;
    for (int run = 0; run < 3'000; ++run) {
        const auto text = mutator.damaged(example);
        try {
            const auto data = read(damagedFile, QByteArray::fromStdString(text));
            ++accepted;
            ASSERT_EQ(read(damagedFile, QByteArray::fromStdString(write(data))), data) << text;
        } catch (const Error& error) {
            ++refused;
            ASSERT_EQ(error.code(), ErrorCode::LocalFile) << text;
            ASSERT_THAT(error.message(),
                        AllOf(AnyOf(StartsWith("'a file', line "), StartsWith("'a file', $"),
                                    StartsWith("'a file', the last line")),
                              HasSubstr(": found "), HasSubstr(", expected ")))
                << text;
            ASSERT_LT(error.message().size(), 600U) << text;
        }
    }
    EXPECT_GT(accepted, 20);
    EXPECT_GT(refused, 500);
}

} // namespace

TEST(CalibrationFileFuzz, OfAPlan)
{
    fuzz(planFileText(examplePlan()), &readPlanFile, [](const FrequencyPlan& plan) { return planFileText(plan); });
}

TEST(CalibrationFileFuzz, OfErrorTerms)
{
    fuzz(termsFileText(exampleTerms(2, {1e9, 2e9})), &readTermsFile, &termsFileText);
}

TEST(CalibrationFileFuzz, OfIfSwitchData)
{
    fuzz(ifswFileText(exampleIfswData({1e9, 2e9})), &readIfswFile, &ifswFileText);
}

TEST(CalibrationFileFuzz, OfPowerPoints)
{
    fuzz(powerFileText(examplePowerPoints(std::array{1e9, 2e9})), &readPowerFile,
         [](const std::vector<PowerPoint>& points) { return powerFileText(points); });
}

} // namespace tarn::console
