#include <console/consoletest.h>

#include <gmock/gmock.h>

namespace tarn::console {

using testing::HasSubstr;
using testing::Not;

namespace {

/// A value for a setting, and how it is shown, in text and in JSON.
struct Case {
    const char* noun;
    const char* name;
    const char* value;
    const char* text;
    QJsonValue json;
};

void PrintTo(const Case& value, std::ostream* stream)
{
    *stream << value.noun << ' ' << value.name << ' ' << value.value;
}

QJsonValue word(const char* text)
{
    return QString::fromUtf8(text);
}

QJsonValue bounds(double lower, double upper)
{
    return QJsonObject{{QStringLiteral("lower"), lower}, {QStringLiteral("upper"), upper}};
}

/// Each is another value than that of a new instrument.
const Case cases[] = {
    {"quill-power", "lo-power", "20", "20", 20},
    {"quill-power", "rf-power", "0x78", "120", 120},
    {"quill-power", "synt-power-mode", "high", "high", word("high")},
    {"quill-power", "attenuation-mode", "manual", "manual", word("manual")},
    {"quill-power", "attenuation-step", "7", "7", 7},
    {"quill-power", "step-attenuator-mode", "both", "both", word("both")},
    {"quill-power", "discrete-attenuator-enabled", "true", "on", true},
    {"quill-power", "discrete-attenuator-mode", "1", "manual", word("manual")},
    {"quill-power", "common-attenuation-mode", "manual", "manual", word("manual")},
    {"quill-power", "common-attenuation-step", "31", "31", 31},
    {"quill-power", "amp-t-port1", "high", "high", word("high")},
    {"quill-power", "amp-t-port2", "high", "high", word("high")},
    {"quill-power", "amp-r-port1", "high", "high", word("high")},
    {"quill-synthesis", "lo-leakage-mode", "on", "on", true},
    {"quill-synthesis", "manual-if-enabled", "1", "on", true},
    {"quill-synthesis", "selected-if", "2", "2 (7.5 MHz)", 7.5e6},
    {"quill-synthesis", "filter1-frequency", "1.5 GHz", "1.5 GHz", 1.5e9},
    {"quill-synthesis", "manual-ref-enabled", "on", "on", true},
    {"quill-synthesis", "selected-ref", "20MHz", "1 (20 MHz)", 20e6},
    {"dorn-power", "power-control-mode", "manual", "manual", word("manual")},
    {"dorn-power", "lo-power", "63", "63", 63},
    {"dorn-power", "rf-power", "0", "0", 0},
    {"dorn-power", "dac-control-mode", "manual", "manual", word("manual")},
    {"dorn-power", "dac-mode-union", "on", "on", true},
    {"dorn-power", "union-dac", "0xFFF", "4095", 4095},
    {"dorn-power", "dac-a", "100", "100", 100},
    {"dorn-power", "dac-b", "200", "200", 200},
    {"dorn-power", "reference-gain", "18", "18", 18},
    {"dorn-power", "signal-gain", "30", "30", 30},
    {"dorn-synthesis", "reference-frequency", "12.8 MHz", "12.8 MHz", 12.8e6},
    {"sable-power", "dac-mode", "manual", "manual", word("manual")},
    {"sable-power", "power-mode", "high", "high", word("high")},
    {"sable-power", "step-attenuator-mode", "both", "both", word("both")},
    {"sable-power", "discrete-attenuator-mode", "manual", "manual", word("manual")},
    {"sable-power", "power-constant", "level", "level", word("level")},
    {"sable-power", "rf-dac", "100", "100", 100},
    {"sable-power", "split-dac", "101", "101", 101},
    {"sable-power", "split-dds", "102", "102", 102},
    {"sable-power", "attenuation-db", "3.5 dB", "3.5 dB", 3.5},
    {"sable-power", "attenuation-step", "5", "5", 5},
    {"sable-power", "discrete-attenuator-enabled", "on", "on", true},
    {"sable-power", "square-pattern-step", "0.25", "0.25 dB", 0.25},
    {"sable-power", "dds-correction-mode", "user", "user", word("user")},
    {"sable-power", "dds-correction-enabled", "off", "off", false},
    {"sable-synthesis", "lo-power", "20", "20", 20},
    {"sable-synthesis", "rf-power", "21", "21", 21},
    {"sable-synthesis", "rf-power-mode", "fixed", "fixed", word("fixed")},
    {"sable-synthesis", "if-mode", "manual", "manual", word("manual")},
    {"sable-synthesis", "selected-if", "10 MHz", "2 (10 MHz)", 10e6},
    {"sable-synthesis", "capacitor1-mode", "range", "range", word("range")},
    {"sable-synthesis", "capacitor1-range", "10pF..20pF", "10 pF..20 pF", bounds(10e-12, 20e-12)},
    {"sable-synthesis", "capacitor2-mode", "minimum", "minimum", word("minimum")},
    {"sable-synthesis", "capacitor2-range", "2 pF .. 3 pF", "2 pF..3 pF", bounds(2e-12, 3e-12)},
    {"sable-synthesis", "rf-filter-mode", "bypass", "bypass", word("bypass")},
    {"sable-synthesis", "selected-rf-filter", "third", "third", word("third")},
    {"sable-synthesis", "rf-filter1-from", "1 MHz", "1 MHz", 1e6},
    {"sable-synthesis", "rf-filter2-from", "2 MHz", "2 MHz", 2e6},
    {"sable-synthesis", "rf-filter3-from", "3 MHz", "3 MHz", 3e6},
    {"sable-synthesis", "rf-filter4-from", "4 MHz", "4 MHz", 4e6},
    {"sable-synthesis", "dds-switch-freq", "50 MHz", "50 MHz", 50e6},
    {"sable-synthesis", "delay-mode", "manual", "manual", word("manual")},
    {"sable-synthesis", "measure-delay", "1.5ms", "1.5 ms", 1.5e-3},
    {"sable-synthesis", "rf-range-0-frequency", "60 MHz", "60 MHz", 60e6},
    {"sable-synthesis", "rf-range-5-frequency", "8 GHz", "8 GHz", 8e9},
    {"sable-synthesis", "rf-range-0-power", "30", "30", 30},
    {"sable-synthesis", "rf-range-5-power", "31", "31", 31},
    {"vell-synthesis", "manual-if-enabled", "on", "on", true},
    {"vell-synthesis", "selected-if", "30MHz", "4 (30 MHz)", 30e6},
};

} // namespace

class TuningCommandsTest : public ConsoleTest {
protected:
    static QString code(const Outcome& outcome) { return outcome.error().value(QStringLiteral("code")).toString(); }

    static std::string message(const Outcome& outcome)
    {
        return outcome.error().value(QStringLiteral("message")).toString().toStdString();
    }

    static QStringList json(const QStringList& arguments) { return QStringList{QStringLiteral("--json")} + arguments; }

    /// What `show` says of all settings, by their names.
    QMap<QString, QJsonObject> shown(const QString& noun)
    {
        QMap<QString, QJsonObject> settings;
        for (const auto setting : run(json({noun, QStringLiteral("show")})).result().toArray())
            settings.insert(setting.toObject().value(QStringLiteral("name")).toString(), setting.toObject());
        return settings;
    }

    /// Has the program set `arguments` and sees that it did not, nor send any of them.
    Outcome refused(const QStringList& arguments)
    {
        const auto before = shown(arguments.value(0));
        auto outcome = run(json(arguments));
        EXPECT_EQ(outcome.exitCode, 2) << outcome.out.toStdString();
        EXPECT_EQ(code(outcome), QStringLiteral("usage"));
        EXPECT_EQ(shown(arguments.value(0)), before);
        return outcome;
    }
};

class EverySetting : public TuningCommandsTest, public testing::WithParamInterface<Case> { };

TEST_P(EverySetting, IsSetAndReadBackByAnotherProcessOnARestlessInstrument)
{
    const auto& [noun, name, value, text, expected] = GetParam();
    const auto setting = QString::fromUtf8(name);
    const auto before = shown(QString::fromUtf8(noun));
    for (const auto* const address : {"", "drop-every=2"}) {
        const auto set
            = runAt(QString::fromUtf8(address),
                    json({QString::fromUtf8(noun), QStringLiteral("set"), setting, QString::fromUtf8(value)}));
        EXPECT_EQ(set.exitCode, 0) << set.out.toStdString();
        const auto result = set.result().toArray().at(0).toObject();
        EXPECT_EQ(result.value(QStringLiteral("name")), setting);
        EXPECT_EQ(result.value(QStringLiteral("sent")), expected);
        EXPECT_EQ(result.value(QStringLiteral("value")), expected);
        const QStringList get{QString::fromUtf8(noun), QStringLiteral("get"), setting};
        EXPECT_EQ(runAt(QString::fromUtf8(address), get).out, QByteArray{text} + '\n');
        EXPECT_EQ(run(json(get)).result().toObject().value(QStringLiteral("value")), expected);
    }
    const auto after = shown(QString::fromUtf8(noun));
    EXPECT_NE(after[setting], before[setting]);
    EXPECT_EQ(after[setting].value(QStringLiteral("value")), expected);
}

INSTANTIATE_TEST_SUITE_P(Cases, EverySetting, testing::ValuesIn(cases));

TEST_F(TuningCommandsTest, EverySettingThatCanBeSetHasItsCase)
{
    QStringList expected;
    for (const auto& each : cases)
        expected.append(QString::fromUtf8(each.noun) + u' ' + QString::fromUtf8(each.name));
    QStringList writable;
    for (const auto* const noun : {"quill-power", "quill-synthesis", "dorn-power", "dorn-synthesis", "sable-power",
                                   "sable-synthesis", "vell-synthesis"}) {
        const auto settings = shown(QString::fromUtf8(noun));
        for (auto each = settings.begin(); each != settings.end(); ++each) {
            const auto isInnerRow
                = each.key().contains(QStringLiteral("rf-range-")) && each.key()[9] != u'0' && each.key()[9] != u'5';
            if (!each->value(QStringLiteral("readOnly")).toBool() && !isInnerRow)
                writable.append(QString::fromUtf8(noun) + u' ' + each.key());
        }
    }
    expected.sort();
    writable.sort();
    EXPECT_EQ(writable, expected);
}

TEST_F(TuningCommandsTest, ShowIsATableWithUnitsAndLimits)
{
    const auto outcome = run(words("quill-power show"));
    const auto text = outcome.out.toStdString();
    EXPECT_THAT(text, testing::StartsWith("NAME                         VALUE      LIMITS\n"));
    for (const auto* const line :
         {"\nlo-power                     64         8 to 120\n",
          "\nmax-power-code               120        read-only\n",
          "\nsynt-power-mode              normal     normal, high\n", "\nattenuation-step             10         \n",
          "\ndiscrete-attenuator-enabled  off        on, off\n"})
        EXPECT_THAT(text, HasSubstr(line));
    const auto sable = run(words("sable-synthesis show")).out.simplified().toStdString();
    for (const auto* const part : {"selected-if 1 (4 MHz) 0 (1 MHz), 1 (4 MHz), 2 (10 MHz) ",
                                   "capacitor1-range not set 0 F or more", "measure-delay 100 us 0 s or more",
                                   "rf-range-3-frequency 3 GHz 0 Hz or more", "rf-default-range-5-power 50 read-only"})
        EXPECT_THAT(sable, HasSubstr(part));
    EXPECT_THAT(run(words("dorn-power show")).out.simplified().toStdString(),
                HasSubstr("signal-gain 12 0, 6, 12, 18, 30"));
}

TEST_F(TuningCommandsTest, ShowInJsonCarriesUnitsLimitsAndChoices)
{
    const auto quill = shown(QStringLiteral("quill-power"));
    const auto lo = quill[QStringLiteral("lo-power")];
    EXPECT_EQ(lo.value(QStringLiteral("value")), 64);
    EXPECT_TRUE(lo.value(QStringLiteral("unit")).isNull());
    EXPECT_EQ(lo.value(QStringLiteral("limits")),
              (QJsonObject{{QStringLiteral("minimum"), 8}, {QStringLiteral("maximum"), 120}}));
    EXPECT_EQ(quill[QStringLiteral("max-power-code")].value(QStringLiteral("readOnly")), true);
    const auto dorn = shown(QStringLiteral("dorn-synthesis"))[QStringLiteral("reference-frequency")];
    EXPECT_EQ(dorn.value(QStringLiteral("unit")), QStringLiteral("Hz"));
    EXPECT_EQ(dorn.value(QStringLiteral("choices")), (QJsonArray{5e6, 10e6, 12.8e6, 25e6}));
    EXPECT_TRUE(shown(QStringLiteral("sable-synthesis"))[QStringLiteral("capacitor1-range")]
                    .value(QStringLiteral("value"))
                    .isNull());
}

TEST_F(TuningCommandsTest, SetsSeveralPairsInTheirOrder)
{
    const auto set = run(words("quill-power set lo-power 20 rf-power 0x20 synt-power-mode high"));
    EXPECT_EQ(set.exitCode, 0);
    EXPECT_EQ(set.out, "lo-power 20\nrf-power 32\nsynt-power-mode high\n");
    // The frequencies must ascend after each of them.
    EXPECT_EQ(run(words("sable-synthesis set rf-range-1-frequency 2GHz rf-range-0-frequency 1GHz")).exitCode, 1);
    EXPECT_EQ(run(words("sable-synthesis set rf-range-1-frequency 1GHz rf-range-0-frequency 700MHz")).exitCode, 0);
}

TEST_F(TuningCommandsTest, TakesAUnitThatIsAWordOfItsOwn)
{
    EXPECT_EQ(run(words("quill-synthesis set filter1-frequency 1.001 MHz selected-if 10 MHz")).out,
              "filter1-frequency 1.001 MHz\nselected-if 3 (10 MHz)\n");
    const auto filter = run(words("--json quill-synthesis get filter1-frequency")).result().toObject();
    EXPECT_EQ(filter.value(QStringLiteral("value")), 1001000);
    EXPECT_EQ(message(refused(words("quill-synthesis set MHz 10"))), "quill-synthesis has no setting 'MHz'");
}

TEST_F(TuningCommandsTest, LeavesWhatOnlyTheInstrumentKnowsToIt)
{
    const auto step = run(words("--json quill-power set attenuation-step -1"));
    EXPECT_EQ(step.exitCode, 1);
    EXPECT_THAT(message(step), HasSubstr("-1 is not from 0 to 70"));
    EXPECT_THAT(message(run(words("--json sable-power set attenuation-db -1.5"))), HasSubstr("-1.5"));
}

TEST_F(TuningCommandsTest, SendsNothingIfOneOfThemIsWrong)
{
    for (const auto* const pairs :
         {"lo-power 20 rf-power 121", "lo-power 20 rf-power", "lo-power 20 no-such 1", "lo-power 20 rf-power ten",
          "lo-power 20 max-power-code 5", "lo-power 20 lo-power 21", "lo-power 7", "lo-power -20"})
        refused(words("quill-power set") + words(pairs));
}

TEST_F(TuningCommandsTest, SaysWhatIsWrongAndWhatIsAccepted)
{
    EXPECT_EQ(message(refused(words("quill-power set lo-power 121"))),
              "lo-power: '121' is out of the limits; it takes 8 to 120");
    EXPECT_EQ(message(refused(words("dorn-power set lo-power 64"))),
              "lo-power: '64' is out of the limits; it takes 0 to 63");
    EXPECT_EQ(message(refused(words("dorn-power set dac-a 4096"))),
              "dac-a: '4096' is out of the limits; it takes 0 to 4095");
    EXPECT_EQ(message(refused(words("sable-power set rf-dac 65536"))),
              "rf-dac: '65536' does not fit into it; it holds 0 to 65535");
    EXPECT_EQ(message(refused(words("sable-synthesis set lo-power 256"))),
              "lo-power: '256' does not fit into it; it holds 0 to 255");
    EXPECT_EQ(message(refused(words("quill-power set attenuation-step 2147483648"))),
              "attenuation-step: '2147483648' does not fit into it; it holds -2147483648 to 2147483647");
    EXPECT_EQ(message(refused(words("quill-power set lo-power 20 lo-power 21"))), "lo-power is given twice");
    EXPECT_EQ(message(refused(words("quill-power set max-power-code 5"))), "max-power-code can only be shown");
    EXPECT_EQ(message(refused(words("quill-power set lo-power"))), "lo-power is given without a value");
    EXPECT_THAT(message(refused(words("quill-synthesis set filter1-frequency nan"))), HasSubstr("a number in Hz"));
    EXPECT_THAT(message(refused(words("dorn-synthesis set reference-frequency 11MHz"))),
                HasSubstr("it takes 5 MHz, 10 MHz, 12.8 MHz, 25 MHz"));
    EXPECT_THAT(message(refused(words("sable-synthesis set capacitor1-range 20pF..10pF"))), HasSubstr("above"));
    EXPECT_THAT(message(refused(words("sable-synthesis set rf-range-6-power 30"))),
                HasSubstr("sable-synthesis has no setting 'rf-range-6-power'"));
    const auto unknown = refused(words("vell-synthesis set no-such 1"));
    EXPECT_EQ(message(unknown), "vell-synthesis has no setting 'no-such'");
    EXPECT_EQ(unknown.error().value(QStringLiteral("hint")),
              QStringLiteral("its settings: manual-if-enabled, selected-if, supported-ifs"));
    EXPECT_EQ(code(run(words("--json vell-synthesis get no-such"))), QStringLiteral("usage"));
}

TEST_F(TuningCommandsTest, SaysWhenTheInstrumentShowsOtherwise)
{
    const auto excluded
        = run(words("--json quill-power set attenuation-mode manual common-attenuation-mode manual lo-power 20"));
    EXPECT_EQ(excluded.exitCode, 1);
    EXPECT_EQ(code(excluded), QStringLiteral("failed"));
    EXPECT_EQ(message(excluded), "attenuation-mode was set to manual, but the instrument shows automatic");
    EXPECT_EQ(run(words("quill-power get lo-power")).out, "20\n");
    const auto forgotten = runAwkward(QStringLiteral("forgetful"), words("--json quill-power set lo-power 20"));
    EXPECT_EQ(forgotten.exitCode, 1);
    EXPECT_EQ(message(forgotten), "lo-power was set to 20, but the instrument shows 10");
}

TEST_F(TuningCommandsTest, PassesOnWhatTheInstrumentSays)
{
    const auto beyond = run(words("--json sable-power set rf-dac 20 split-dac 60000"));
    EXPECT_EQ(beyond.exitCode, 1);
    EXPECT_THAT(message(beyond), testing::StartsWith("split-dac could not be set to 60000: "));
    EXPECT_THAT(message(beyond), HasSubstr("60000 is not from 0 to 4095"));
    EXPECT_THAT(message(beyond), HasSubstr("; before that, rf-dac was set to 20"));
    EXPECT_EQ(run(words("sable-power get rf-dac")).out, "20\n");
    const auto alone = run(words("--json sable-power set split-dac 60000"));
    EXPECT_THAT(message(alone), Not(HasSubstr("before that")));

    const auto argument = run(
        {QStringLiteral("quill-power"), QStringLiteral("set"), QStringLiteral("lo-power"), QStringLiteral("\x1b[2J")});
    EXPECT_EQ(argument.exitCode, 2);
    EXPECT_FALSE(argument.err.contains('\x1b'));

    const auto hostile = runAwkward(QStringLiteral("throwing"), words("quill-power set lo-power 20"));
    EXPECT_EQ(hostile.exitCode, 1);
    EXPECT_THAT(hostile.err.toStdString(), HasSubstr("the amplifier \\u{1b}[31mcaught fire"));
    EXPECT_FALSE(hostile.err.contains('\x1b'));
    const auto table = runAwkward(QStringLiteral("throwing"), words("quill-power load rf-power-codes - --yes"), "x");
    EXPECT_THAT(table.err.toStdString(), HasSubstr("the table \\u{1b}[31mburns"));
}

TEST_F(TuningCommandsTest, ResetShowsWhatItHasChanged)
{
    ASSERT_EQ(run(words("quill-power set lo-power 20 amp-t-port1 high")).exitCode, 0);
    const auto text = run(words("quill-power reset")).out.simplified().toStdString();
    EXPECT_THAT(text, HasSubstr("lo-power 64 (was 20) 8 to 120 rf-power 64 8 to 120"));
    EXPECT_THAT(text, HasSubstr("amp-t-port1 low (was high)"));
    ASSERT_EQ(run(words("quill-synthesis set manual-if-enabled on")).exitCode, 0);
    const auto settings = run(words("--json quill-synthesis reset")).result().toArray();
    ASSERT_EQ(settings.size(), 8);
    for (const auto setting : settings) {
        const auto name = setting.toObject().value(QStringLiteral("name")).toString();
        EXPECT_EQ(setting.toObject().value(QStringLiteral("changed")), name == QStringLiteral("manual-if-enabled"));
    }
    EXPECT_EQ(run(words("quill-synthesis get manual-if-enabled")).out, "off\n");
}

TEST_F(TuningCommandsTest, LoadSendsTheBytesOfAFileAndSaysThatTheyAreNotReadBack)
{
    const struct {
        const char* noun;
        const char* table;
        int length;
    } tables[] = {{"quill-power", "rf-power-codes", 201},
                  {"quill-power", "lo-power-codes", 0},
                  {"dorn-power", "receiver-correction", 0},
                  {"dorn-power", "power-calibration", 0},
                  {"sable-power", "power-calibration", 0}};
    for (const auto& [noun, table, known] : tables) {
        const QStringList load{QString::fromUtf8(noun), QStringLiteral("load"), QString::fromUtf8(table),
                               QStringLiteral("-"), QStringLiteral("--yes")};
        const auto wrong = run(json(load), "x");
        EXPECT_EQ(wrong.exitCode, 1);
        const auto said = QString::fromStdString(message(wrong));
        EXPECT_THAT(said.toStdString(), HasSubstr("is 1 bytes long and not "));
        const auto length = said.mid(said.lastIndexOf(u' ') + 1).toInt(); // the instrument says it
        ASSERT_GT(length, 0) << said.toStdString();
        writeLocal(QStringLiteral("table"), QByteArray{length, '\x20'});
        const auto loaded = run(json({QString::fromUtf8(noun), QStringLiteral("load"), QString::fromUtf8(table),
                                      QStringLiteral("table"), QStringLiteral("--yes")}));
        EXPECT_EQ(loaded.exitCode, 0) << loaded.out.toStdString();
        EXPECT_EQ(loaded.result(),
                  (QJsonObject{{QStringLiteral("table"), QString::fromUtf8(table)},
                               {QStringLiteral("size"), length},
                               {QStringLiteral("compared"), false}}));
        const auto again = run(load, QByteArray{length, '\x20'});
        EXPECT_EQ(again.exitCode, 0);
        EXPECT_TRUE(again.out.isEmpty());
        EXPECT_THAT(again.err.toStdString(), HasSubstr("the instrument does not let them be read back"));
    }
}

TEST_F(TuningCommandsTest, LoadAsksFirstAndRefusesWhatIsNoTable)
{
    writeLocal(QStringLiteral("table"), QByteArray{201, '\x20'});
    writeLocal(QStringLiteral("empty"), {});
    const auto load = words("--json quill-power load rf-power-codes");
    const auto unasked = run(load + words("table"));
    EXPECT_EQ(unasked.exitCode, 4);
    EXPECT_EQ(code(unasked), QStringLiteral("refused"));
    EXPECT_THAT(message(unasked), HasSubstr("replacing the table rf-power-codes needs to be confirmed"));
    EXPECT_EQ(run(load + words("missing --yes")).exitCode, 9);
    const auto empty = run(load + words("empty --yes"));
    EXPECT_EQ(empty.exitCode, 9);
    EXPECT_THAT(message(empty), HasSubstr("'empty' is empty; nothing was sent"));
    const auto unknown = run(words("--json quill-power load no-such table --yes"));
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_EQ(unknown.error().value(QStringLiteral("hint")),
              QStringLiteral("its tables: rf-power-codes, lo-power-codes"));
    EXPECT_EQ(run(words("dorn-synthesis load x y")).exitCode, 2);

    const auto no = runOnTerminal(words("quill-power load rf-power-codes table"), "n\n");
    EXPECT_EQ(no.exitCode, 4);
    EXPECT_THAT(no.out.toStdString(),
                HasSubstr("Replace the instrument's table rf-power-codes with 201 bytes? It cannot be read back."));
    EXPECT_EQ(runOnTerminal(words("quill-power load rf-power-codes table"), "y\n").exitCode, 0);
}

TEST_F(TuningCommandsTest, HelpNamesTheSettingsAndTables)
{
    const auto set = run(words("sable-synthesis set --help")).out.simplified().toStdString();
    EXPECT_THAT(set, HasSubstr("lo-power power code of the local oscillator"));
    EXPECT_THAT(set, HasSubstr("rf-power-mode where the RF power code comes from: fixed, table"));
    EXPECT_THAT(set, HasSubstr("measure-delay delay before a measurement: ns, us, ms or s"));
    EXPECT_THAT(set, HasSubstr("rf-range-N-power power code of row N of the RF power range table"));
    EXPECT_THAT(set, Not(HasSubstr("supported-ifs")));
    EXPECT_THAT(run(words("sable-synthesis get --help")).out.toStdString(), HasSubstr("supported-ifs"));
    EXPECT_THAT(run(words("quill-power load --help")).out.toStdString(), HasSubstr("rf-power-codes"));
    EXPECT_THAT(run(words("quill-power --help")).out.toStdString(), HasSubstr("quill-power show"));
    EXPECT_THAT(run(words("sable-power --help")).out.toStdString(), Not(HasSubstr("reset")));
}

TEST_F(TuningCommandsTest, SaysWhenTheInstrumentDoesNotHaveThem)
{
    writeLocal(QStringLiteral("table.bin"), "a table");
    for (const auto* const verb :
         {"show", "get lo-power", "set lo-power 20", "reset", "watch --count 1", "load rf-power-codes table.bin"}) {
        const auto outcome = runAt(QStringLiteral("profile=bare"), words("--json quill-power") + words(verb));
        EXPECT_EQ(outcome.exitCode, 3);
        EXPECT_EQ(code(outcome), QStringLiteral("not-offered")) << verb;
    }
}

} // namespace tarn::console
