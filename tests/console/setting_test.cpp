#include <console/setting.h>

#include <QJsonArray>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace tarn::console {

using testing::HasSubstr;

namespace {

using List = std::vector<double>;
using Bounds = utils::Range<double>;

Reading of(SettingForm form, Limits limits = {})
{
    return {
        {"it", "a purpose", std::move(form), [](const std::any&) { return SettingValue{}; }}, 0.0, std::move(limits)};
}

std::string parsed(const Reading& reading, const std::string& text)
{
    const auto value = parseSetting(reading, text);
    return value ? valueText(reading, *value) : "no: " + value.error();
}

const Limits upTo20{.lower = 8, .upper = 20};
const Limits notNegative{.lower = 0};

} // namespace

TEST(Setting, TakesACodeWithinItsLimits)
{
    const auto reading = of(code(), upTo20);
    for (const auto* const text : {"8", "0x8"})
        EXPECT_EQ(parsed(reading, text), "8");
    EXPECT_EQ(parsed(reading, "20"), "20");
    for (const auto* const text : {"7", "21", "-8", "0x15", "99999999999"})
        EXPECT_THAT(parsed(reading, text),
                    HasSubstr(std::string{"'"} + text + "' is out of the limits; it takes 8 to 20"));
    for (const auto* const text : {"", "8.0", "eight", "nan", "99999999999999999999"})
        EXPECT_THAT(parsed(reading, text),
                    HasSubstr("is not a whole number, decimal or hexadecimal (0x1F); it takes 8 to 20"));
}

TEST(Setting, ShowsNoLimitsThatAreOnlyThoseOfItsType)
{
    const auto reading = of(code(), {.lower = -128, .upper = 127, .areOfType = true});
    EXPECT_EQ(acceptedText(reading), "");
    EXPECT_FALSE(json(reading).contains(QStringLiteral("limits")));
    EXPECT_EQ(parsed(reading, "-128"), "-128");
    EXPECT_EQ(parsed(reading, "127"), "127");
    EXPECT_EQ(parsed(reading, "128"), "no: it: '128' does not fit into it; it holds -128 to 127");
    EXPECT_EQ(parsed(reading, "x"), "no: it: 'x' is not a whole number, decimal or hexadecimal (0x1F)");
}

TEST(Setting, TakesACodeOfItsList)
{
    const auto reading = of(code(), {.list = List{0, 6, 12}});
    EXPECT_EQ(parsed(reading, "6"), "6");
    EXPECT_EQ(parsed(reading, "5"), "no: it: '5' is out of the limits; it takes 0, 6, 12");
    EXPECT_THAT(parsed(of(code(), {.list = List{}}), "5"), HasSubstr("the instrument lists none"));
}

TEST(Setting, TakesAQuantityOfItsListWhateverItsRounding)
{
    const auto reading = of(quantity(Unit::Hertz), {.list = List{10e6, 12.8e6}});
    EXPECT_EQ(parseSetting(reading, "12.8 MHz"), SettingValue{12.8e6});
    EXPECT_EQ(parseSetting(reading, "12.8000000000000005MHz"), SettingValue{12.8e6});
    EXPECT_THAT(parsed(reading, "12.81MHz"), HasSubstr("it takes 10 MHz, 12.8 MHz"));
}

TEST(Setting, TakesAQuantityThatIsNotNegative)
{
    const auto reading = of(quantity(Unit::Second), notNegative);
    EXPECT_EQ(parsed(reading, "1.5ms"), "1.5 ms");
    EXPECT_EQ(parsed(reading, "0"), "0 s");
    EXPECT_THAT(parsed(reading, "-1ms"), HasSubstr("it takes 0 s or more"));
    for (const auto* const text : {"nan", "inf", "1 Hz", "fast"})
        EXPECT_THAT(parsed(reading, text), HasSubstr("is not a number in ns, us, ms or s; it takes 0 s or more"))
            << text;
}

TEST(Setting, TakesAChoiceByNameOrNumber)
{
    const auto reading = of(choice({"fixed", "table"}, 1));
    EXPECT_EQ(parseSetting(reading, "fixed"), SettingValue{1.0});
    EXPECT_EQ(parseSetting(reading, "2"), SettingValue{2.0});
    for (const auto* const text : {"0", "3", "Fixed", "", "fix"})
        EXPECT_THAT(parsed(reading, text),
                    HasSubstr("is not one of its names or their numbers; it takes fixed, table"));
    EXPECT_EQ(valueText(reading, 7.0), "7");
    EXPECT_EQ(valueText(reading, 0.0), "0");
    EXPECT_EQ(valueText(reading, 3.0), "3");
    EXPECT_EQ(valueJson(reading, 7.0), 7);
    EXPECT_EQ(valueJson(reading, 2.0), QStringLiteral("table"));
}

TEST(Setting, ShowsWhatIsNoNumber)
{
    const auto none = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(valueText(of(quantity(Unit::Hertz)), none), "nan Hz");
    EXPECT_TRUE(std::isnan(valueJson(of(quantity(Unit::Hertz)), none).toDouble()));
    EXPECT_TRUE(std::isnan(valueJson(of(choice({"fixed", "table"})), none).toDouble()));
    EXPECT_TRUE(valueJson(of(position(Unit::Hertz), {.list = List{1e6, 2e6}}), none).isNull());
}

TEST(Setting, TakesASwitchInThreeSpellings)
{
    const auto reading = of(onOff());
    for (const auto* const text : {"on", "true", "1"})
        EXPECT_EQ(parsed(reading, text), "on");
    for (const auto* const text : {"off", "false", "0"})
        EXPECT_EQ(parsed(reading, text), "off");
    for (const auto* const text : {"2", "ON", "yes", ""})
        EXPECT_THAT(parsed(reading, text), HasSubstr("is not on, off, true, false, 1 or 0; it takes on, off"));
    EXPECT_EQ(valueJson(reading, 1.0), true);
    EXPECT_EQ(valueJson(reading, 0.0), false);
}

TEST(Setting, TakesAPositionOrWhatStandsThere)
{
    const auto reading = of(position(Unit::Hertz), {.list = List{5e6, 10e6}});
    EXPECT_EQ(parsed(reading, "1"), "1 (10 MHz)");
    EXPECT_EQ(parsed(reading, "10MHz"), "1 (10 MHz)");
    EXPECT_EQ(parsed(reading, "5 MHz"), "0 (5 MHz)");
    EXPECT_EQ(parsed(reading, "10000000"), "1 (10 MHz)");
    for (const auto* const text : {"2", "-1", "7MHz", "10000001"})
        EXPECT_THAT(parsed(reading, text), HasSubstr("is out of the limits; it takes 0 (5 MHz), 1 (10 MHz)")) << text;
    EXPECT_THAT(parsed(reading, "x"), HasSubstr("is not a position in the list or a number in Hz, kHz, MHz or GHz"));
    EXPECT_EQ(valueText(reading, 9.0), "9");
    EXPECT_THAT(parsed(of(position(Unit::Hertz), {.list = List{}}), "0"), HasSubstr("lists none"));
}

TEST(Setting, TakesARangeWithItsLowerEndFirst)
{
    const auto reading = of(range(Unit::Farad), notNegative);
    EXPECT_EQ(parseSetting(reading, "10pF..20pF"), (SettingValue{Bounds{10e-12, 20e-12}}));
    EXPECT_EQ(parsed(reading, "10 pF .. 20 pF"), "10 pF..20 pF");
    EXPECT_EQ(parsed(reading, "1pF..1pF"), "1 pF..1 pF");
    EXPECT_THAT(parsed(reading, "20pF..10pF"), HasSubstr("has its lower end, 20 pF, above its upper one, 10 pF"));
    EXPECT_THAT(parsed(reading, "1..5pF"), HasSubstr("its lower end, 1 F, above"));
    EXPECT_THAT(parsed(reading, "-1pF..10pF"), HasSubstr("it takes 0 F or more"));
    for (const auto* const text : {"10pF", "10pF..", "..20pF", "..", "", "10pF..20pF..30pF", "nan..1"})
        EXPECT_THAT(parsed(reading, text), HasSubstr("is not LOWER..UPPER, each a number in pF, nF, uF or F")) << text;
    EXPECT_THAT(parsed(of(range(Unit::Farad), {.lower = 0, .upper = 1}), "0.5..2"), HasSubstr("it takes 0 F to 1 F"));
}

TEST(Setting, ShowsWhatIsNotSetAndLists)
{
    EXPECT_EQ(valueText(of(quantity(Unit::Hertz)), {}), "not set");
    EXPECT_TRUE(valueJson(of(quantity(Unit::Hertz)), {}).isNull());
    EXPECT_EQ(valueText(of(list(Unit::Hertz)), List{5e6, 1e9}), "5 MHz, 1 GHz");
    EXPECT_EQ(valueText(of(list(Unit::Hertz)), List{}), "none");
    EXPECT_EQ(valueJson(of(list(Unit::Hertz)), List{5e6, 1e9}), (QJsonArray{5e6, 1e9}));
    EXPECT_THAT(parsed(of(list(Unit::Hertz)), "5 MHz"), HasSubstr("it can only be shown"));
}

TEST(Setting, IsAWordThatIsUnderstood)
{
    const auto expectAgain = [](const Reading& reading, const SettingValue& value, const std::string& word) {
        EXPECT_EQ(valueWord(reading, value), word);
        EXPECT_EQ(parseSetting(reading, word), value) << word;
    };
    expectAgain(of(code(), upTo20), 9.0, "9");
    expectAgain(of(choice({"a", "b"}, 1)), 2.0, "b");
    expectAgain(of(onOff()), 1.0, "on");
    expectAgain(of(quantity(Unit::Hertz), notNegative), 12.8e6, "12.8MHz");
    expectAgain(of(range(Unit::Farad), notNegative), Bounds{10e-12, 20e-12}, "10pF..20pF");
    expectAgain(of(position(Unit::Hertz), {.list = List{5e6, 10e6}}), 1.0, "1");
}

TEST(Setting, SaysHowItsValuesAreWritten)
{
    EXPECT_EQ(formText(code()), "");
    EXPECT_EQ(formText(choice({"a", "b"})), "a, b");
    EXPECT_EQ(formText(onOff()), "on, off");
    EXPECT_EQ(formText(quantity(Unit::Decibel)), "dB");
    EXPECT_EQ(formText(range(Unit::Farad)), "LOWER..UPPER in pF, nF, uF or F");
}

TEST(Setting, GivesMachinesWhatStandsAtAPositionAndThePosition)
{
    auto reading = of(position(Unit::Hertz), {.list = List{5e6, 10e6}});
    reading.value = 1.0;
    EXPECT_EQ(json(reading).value(QStringLiteral("value")), 10e6);
    EXPECT_EQ(json(reading).value(QStringLiteral("position")), 1);
    EXPECT_EQ(json(reading).value(QStringLiteral("unit")), QStringLiteral("Hz"));
    EXPECT_EQ(json(reading).value(QStringLiteral("choices")), (QJsonArray{5e6, 10e6}));
    reading.value = 2.0;
    EXPECT_TRUE(json(reading).value(QStringLiteral("value")).isNull());
    EXPECT_EQ(json(reading).value(QStringLiteral("position")), 2);
    EXPECT_FALSE(json(of(code())).contains(QStringLiteral("position")));
}

TEST(Setting, IsAnObjectForMachines)
{
    auto reading = of(quantity(Unit::Hertz), notNegative);
    reading.value = 5e6;
    const QJsonObject bounds{{QStringLiteral("minimum"), 0}, {QStringLiteral("maximum"), QJsonValue::Null}};
    const QJsonObject expected{{QStringLiteral("name"), QStringLiteral("it")},
                               {QStringLiteral("value"), 5e6},
                               {QStringLiteral("unit"), QStringLiteral("Hz")},
                               {QStringLiteral("limits"), bounds},
                               {QStringLiteral("readOnly"), true}};
    EXPECT_EQ(json(reading), expected);
    reading.setting.write = [](const std::any&, const SettingValue&) { };
    EXPECT_EQ(json(reading).value(QStringLiteral("readOnly")), false);
    EXPECT_EQ(json(of(choice({"a", "b"}))).value(QStringLiteral("choices")),
              (QJsonArray{QStringLiteral("a"), QStringLiteral("b")}));
    EXPECT_EQ(json(of(onOff())).value(QStringLiteral("choices")), (QJsonArray{true, false}));
    EXPECT_EQ(json(of(code(), {.list = List{1, 3}})).value(QStringLiteral("choices")), (QJsonArray{1, 3}));
    EXPECT_TRUE(json(of(code(), upTo20)).value(QStringLiteral("unit")).isNull());
}

TEST(Setting, HasAnotherValueIfThereAreTwo)
{
    auto two = of(choice({"a", "b"}));
    EXPECT_EQ(otherValue(two), SettingValue{1.0});
    two.value = 1.0;
    EXPECT_EQ(otherValue(two), SettingValue{0.0});
    auto listed = of(quantity(Unit::Hertz), {.list = List{5e6, 10e6}});
    listed.value = 5e6;
    EXPECT_EQ(otherValue(listed), SettingValue{10e6});
    listed.limits.list = List{5e6};
    EXPECT_FALSE(otherValue(listed));
}

} // namespace tarn::console
