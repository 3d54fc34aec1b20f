#include <console/consoletest.h>

#include <QDateTime>

#include <gmock/gmock.h>

#include <map>

namespace tarn::console {

using testing::ElementsAre;
using testing::HasSubstr;

/// The commands of the corrections and of the calibration units.
class CorrectionsCommandTest : public ConsoleTest {
protected:
    /// The entry of a correction in the list.
    QJsonObject correction(const char* name)
    {
        const auto list = run(words("corrections list --json")).result().toArray();
        for (const auto& entry : list)
            if (entry.toObject().value(QStringLiteral("name")).toString() == QString::fromUtf8(name))
                return entry.toObject();
        ADD_FAILURE() << name;
        return {};
    }

    static QJsonObject state(const char* name, bool valid, bool enabled, bool modifiable)
    {
        return {{QStringLiteral("name"), QString::fromUtf8(name)},
                {QStringLiteral("valid"), valid},
                {QStringLiteral("enabled"), enabled},
                {QStringLiteral("modifiable"), modifiable}};
    }

    /// The "event" of each result.
    static std::vector<std::string> events(const Outcome& outcome)
    {
        std::vector<std::string> names;
        for (const auto& result : outcome.objects("result")) {
            names.push_back(result.value(QStringLiteral("event")).toString().toStdString());
            EXPECT_TRUE(
                QDateTime::fromString(result.value(QStringLiteral("time")).toString(), Qt::ISODateWithMs).isValid());
        }
        return names;
    }
};

TEST_F(CorrectionsCommandTest, AreListedWithTheirStates)
{
    EXPECT_EQ(run(words("corrections list --json")).result().toArray().size(), 10);
    EXPECT_EQ(correction("system"), state("system", false, false, true));
    EXPECT_EQ(correction("port-extension"), state("port-extension", true, true, true));
    EXPECT_EQ(correction("reference-oscillator"), state("reference-oscillator", true, true, false));
    const auto text = run(words("corrections list")).out.toStdString();
    EXPECT_THAT(text, HasSubstr("port-extension         yes    yes      yes\n"));
    EXPECT_THAT(text, HasSubstr("reference-oscillator   yes    yes      no\n"));
}

TEST_F(CorrectionsCommandTest, AreSwitchedAndReadBackByAnotherProcess)
{
    for (const auto& address : {QString{}, QStringLiteral("drop-every=1"), QStringLiteral("drop-every=2")}) {
        auto off = runAt(address, words("corrections disable crosstalk --json")).result().toObject();
        EXPECT_EQ(off.take(QStringLiteral("status")).toString(), QStringLiteral("written"));
        EXPECT_EQ(off, state("crosstalk", true, false, true));
        EXPECT_EQ(correction("crosstalk"), off);
        EXPECT_THAT(runAt(address, words("corrections disable crosstalk")).err.toStdString(), HasSubstr("off already"));
        EXPECT_EQ(runAt(address, words("corrections enable crosstalk")).exitCode, 0);
        EXPECT_EQ(correction("crosstalk"), state("crosstalk", true, true, true));
    }
}

TEST_F(CorrectionsCommandTest, ThatCannotBeSwitchedAreRefused)
{
    const auto refusal = [&](const char* command, int exitCode) {
        const auto outcome = run(words(command));
        EXPECT_EQ(outcome.exitCode, exitCode) << command;
        return outcome.err.toStdString();
    };
    EXPECT_THAT(refusal("corrections enable system", 1), HasSubstr("no valid data for it"));
    EXPECT_THAT(refusal("corrections disable reference-oscillator", 1), HasSubstr("cannot be switched now"));
    EXPECT_THAT(refusal("corrections enable nonsense", 2), HasSubstr("name one of system, "));
    EXPECT_THAT(refusal("corrections enable source-power --address profile=pell", 3),
                HasSubstr("no source-power correction"));
    EXPECT_THAT(refusal("corrections list --address profile=bare", 3), HasSubstr("no corrections control"));
}

TEST_F(CorrectionsCommandTest, WatchShowsSupportedThenValidAtOnce)
{
    const auto outcome = run(words("corrections watch --count 2 --json"));
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(events(outcome), ElementsAre("supported", "valid"));
    const auto results = outcome.objects("result");
    EXPECT_EQ(results[0].value(QStringLiteral("corrections")).toArray().size(), 10);
    EXPECT_EQ(results[1].value(QStringLiteral("corrections")).toArray(),
              (QJsonArray{QStringLiteral("port-extension"), QStringLiteral("crosstalk"), QStringLiteral("temperature"),
                          QStringLiteral("reference-oscillator")}));
}

TEST_F(CorrectionsCommandTest, WatchShowsSupportedThenValidAfterEachReoffer)
{
    // The questions of the watch itself make this instrument drop its controls again and again.
    const auto outcome = runAt(QStringLiteral("drop-every=3"), words("corrections watch --count 8 --json"));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_THAT(events(outcome),
                ElementsAre("supported", "valid", "supported", "valid", "supported", "valid", "supported", "valid"));
}

TEST_F(CorrectionsCommandTest, WatchNeverTakesAnAbsenceForAnAnswer)
{
    // How many answers there are depends on when it drops them: two at least. Now and then it does so before the
    // watch begins, and there is no return to be seen.
    QProcess process;
    prepare(process, words("--address drop-every=1,drop-for=100ms --json corrections watch"));
    process.start();
    Outcome outcome;
    while (outcome.out.count('\n') < 2 && process.waitForReadyRead())
        outcome.out += process.readAllStandardOutput();
    while (process.waitForReadyRead(500)) // those of a return
        outcome.out += process.readAllStandardOutput();
    interrupt(process);
    outcome.out += finish(process).out;
    const auto events = outcome.objects("result");
    EXPECT_GE(events.size(), 2);
    for (const auto& event : events)
        EXPECT_FALSE(event.value(QStringLiteral("corrections")).toArray().isEmpty());
}

TEST_F(CorrectionsCommandTest, WatchShowsEachTimeThatOneIsSwitched)
{
    const auto outcome = runAwkward(QStringLiteral("shared"), words("corrections watch --count 6 --json"));
    EXPECT_EQ(outcome.exitCode, 0);
    std::vector<bool> switches;
    for (const auto& result : outcome.objects("result")) {
        if (result.value(QStringLiteral("event")) != QLatin1StringView{"enabled"})
            continue;
        EXPECT_EQ(result.value(QStringLiteral("correction")).toString(), QStringLiteral("crosstalk"));
        switches.push_back(result.value(QStringLiteral("enabled")).toBool());
    }
    EXPECT_THAT(switches, testing::AnyOf(ElementsAre(true, false, true, false), ElementsAre(false, true, false, true)));
    EXPECT_THAT(runAwkward(QStringLiteral("shared"), words("corrections watch --count 6")).out.toStdString(),
                testing::AllOf(HasSubstr("  enabled: crosstalk on\n"), HasSubstr("  enabled: crosstalk off\n")));
}

TEST_F(CorrectionsCommandTest, WatchesEndWithCtrlC)
{
    for (const auto* const command : {"corrections watch --json", "calibrations watch --json"}) {
        QProcess process;
        prepare(process, words(command));
        process.start();
        ASSERT_TRUE(process.waitForReadyRead());
        interrupt(process);
        const auto outcome = finish(process);
        EXPECT_EQ(outcome.exitCode, 130);
        EXPECT_EQ(outcome.objects("error").size(), 1);
    }
}

TEST_F(CorrectionsCommandTest, CalibrationUnitsAreShownByController)
{
    EXPECT_EQ(
        QJsonDocument{run(words("calibrations status --json")).result().toArray()}.toJson(QJsonDocument::Compact),
        R"([{"controller":1,"units":[{"name":"System terms","status":"empty"}]},)"
        R"({"controller":2,"units":[{"name":"IF switches","status":"empty"},{"name":"Power","status":"empty"}]}])");
    const auto one = runAt(QStringLiteral("profile=pell"), words("calibrations status --json"));
    EXPECT_EQ(one.result().toArray().size(), 1);
    EXPECT_EQ(runAt(QStringLiteral("profile=bare"), words("calibrations status")).exitCode, 3);
    EXPECT_EQ(runAt(QStringLiteral("profile=bare"), words("calibrations watch")).exitCode, 3);
}

TEST_F(CorrectionsCommandTest, CalibrationUnitsOfAnInstrumentThatWasAwayWhileItWasOpenedAreAwaited)
{
    const auto outcome = runAwkward(QStringLiteral("late"), words("calibrations status --json"));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_EQ(outcome.result().toArray().size(), 1);
}

TEST_F(CorrectionsCommandTest, CalibrationWatchShowsEveryControllerAtOnceAndAfterReoffers)
{
    EXPECT_THAT(events(run(words("calibrations watch --count 2 --json"))), ElementsAre("status", "status"));
    const auto outcome = runAt(QStringLiteral("drop-every=3"), words("calibrations watch --count 12 --json"));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_THAT(events(outcome), testing::Contains("configuration"));
    EXPECT_EQ(outcome.objects("result").size(), 12);
}

TEST_F(CorrectionsCommandTest, CalibrationWatchShowsEveryControllerThoughItsOwnQuestionsDropThem)
{
    const auto outcome
        = runAt(QStringLiteral("drop-every=1,drop-for=100ms"), words("calibrations watch --count 26 --json"));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    std::map<int, int> lines;
    for (const auto& result : outcome.objects("result"))
        ++lines[result.value(QStringLiteral("controller")).toInt()];
    EXPECT_EQ(lines[1] + lines[2], 26);
    EXPECT_GE(lines[1], 10);
    EXPECT_GE(lines[2], 10);
}

TEST_F(CorrectionsCommandTest, WatchEndsWithAnExceptionOfTheInstrument)
{
    for (const auto* const address : {"throw-every=1", "throw-every=2", "throw-every=2,drop-every=1"}) {
        const auto outcome = runAt(QString::fromUtf8(address), words("corrections watch"));
        EXPECT_EQ(outcome.exitCode, 1) << address;
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr("told to throw")) << address;
    }
}

TEST_F(CorrectionsCommandTest, CalibrationWatchEndsWithAnExceptionOfTheInstrument)
{
    const auto outcome = runAt(QStringLiteral("throw-every=1"), words("calibrations watch"));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("told to throw"));
}

TEST_F(CorrectionsCommandTest, CalibrationWatchShowsHowFarASavingHasCome)
{
    const auto outcome = runAwkward(QStringLiteral("shared"), words("calibrations watch --count 6 --json"));
    EXPECT_EQ(outcome.exitCode, 0);
    std::vector<int> percents;
    for (const auto& result : outcome.objects("result")) {
        EXPECT_EQ(result.value(QStringLiteral("controller")).toInt(), 1);
        if (result.value(QStringLiteral("event")) == QLatin1StringView{"saving"})
            percents.push_back(result.value(QStringLiteral("percent")).toInt());
    }
    ASSERT_EQ(percents.size(), 5U);
    for (std::size_t i = 1; i < percents.size(); ++i)
        EXPECT_EQ(percents[i], percents[i - 1] % 100 + 25);
    const auto text = runAwkward(QStringLiteral("shared"), words("calibrations watch --count 6")).out.toStdString();
    EXPECT_THAT(text, HasSubstr("  1  saving: 100 %\n"));
    EXPECT_THAT(text, HasSubstr("  1  status: terms \\u{1b}[31m saving;\n"));
}

} // namespace tarn::console
