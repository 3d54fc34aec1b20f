#include <console/consoletest.h>

#include <gmock/gmock.h>

namespace tarn::console {

using testing::HasSubstr;
using testing::Not;

/// Writes of calibration data that are interrupted, or during which the instrument goes.
class CalibrationFaultsTest : public ConsoleTest {
protected:
    static constexpr auto writeTerms = "system-terms write terms --yes";
    static constexpr auto saveIfsw = "ifsw-calibration save ifsw --yes";
    static constexpr auto savePower = "power-calibration save power --yes";

    void SetUp() override
    {
        const std::pair<const char*, const char*> kinds[]
            = {{"system-terms", "terms"}, {"ifsw-calibration", "ifsw"}, {"power-calibration", "power"}};
        for (const auto& [noun, file] : kinds) {
            const auto name = QString::fromUtf8(noun);
            ASSERT_EQ(run({name, QStringLiteral("plan"), QStringLiteral("-o"), name}).exitCode, 0);
            writeLocal(QString::fromUtf8(file),
                       run({name, QStringLiteral("example"), QStringLiteral("--plan"), name}).out);
        }
    }

    Outcome at(const char* address, const char* command) { return runAt(QString::fromUtf8(address), words(command)); }

    QByteArray status() { return run({QStringLiteral("calibrations"), QStringLiteral("status")}).out; }
};

// ---- controls dropped in the middle

class RestlessCalibration : public CalibrationFaultsTest, public testing::WithParamInterface<const char*> { };

TEST_P(RestlessCalibration, IsWrittenAllTheSame)
{
    for (const auto* const command : {writeTerms, saveIfsw, savePower}) {
        const auto outcome = at(GetParam(), command);
        EXPECT_EQ(outcome.exitCode, 0) << command << ": " << outcome.err.toStdString();
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr("written and confirmed by the instrument"));
    }
    EXPECT_EQ(status().count(" valid\n"), 3) << status().toStdString();
}

INSTANTIATE_TEST_SUITE_P(Addresses, RestlessCalibration,
                         testing::Values("drop-every=1", "drop-every=2", "drop-every=3", "drop-every=4", "drop-every=5",
                                         "drop-every=1,drop-for=20ms", "drop-every=4,drop-for=20ms",
                                         "drop-every=5,drop-for=20ms,speed=20"));

// ---- the instrument goes

struct CalibrationLoss {
    const char* address;
    int exitCode;
    const char* says;
};

void PrintTo(const CalibrationLoss& value, std::ostream* stream)
{
    *stream << value.address;
}

class LostCalibration : public CalibrationFaultsTest, public testing::WithParamInterface<CalibrationLoss> { };

TEST_P(LostCalibration, EndsWithATruthfulCodeAndSaysWhatIsKnown)
{
    const auto& [address, exitCode, says] = GetParam();
    for (const auto* const command : {writeTerms, saveIfsw, savePower}) {
        const auto outcome = at(address, command);
        EXPECT_EQ(outcome.exitCode, exitCode) << outcome.err.toStdString();
        EXPECT_THAT(outcome.err.toStdString(), testing::ContainsRegex(says)) << command;
        EXPECT_THAT(outcome.err.toStdString(), Not(HasSubstr("confirmed")));
    }
    EXPECT_EQ(status().count(" empty\n"), 3) << status().toStdString();
}

TEST_F(CalibrationFaultsTest, AnExceptionOfTheRequestLeavesItUnknownWhatWasWritten)
{
    const auto says = testing::ContainsRegex("(writing|saving) the .* failed: .*told to throw; whether the .* was "
                                             "changed is not known\n  .*again to be sure");
    constexpr auto address = "throw-every=3"; // the first two ask whether the control is there
    EXPECT_THAT(at(address, saveIfsw).err.toStdString(), says);
    EXPECT_THAT(at(address, "power-calibration save power --value 20 --yes").err.toStdString(), says);
    EXPECT_THAT(at(address, "system-terms write terms --value 20 --yes").err.toStdString(), says);
}

INSTANTIATE_TEST_SUITE_P(
    Losses, LostCalibration,
    testing::Values(
        CalibrationLoss{
            "unplug-every=1,drop-for=1000s", 5,
            "lost while (writing|saving) .*: it reported [0-9]+ % as done; whether more of .* is not known"},
        CalibrationLoss{"power-loss-every=1", 1, "failed at [0-9]+ %: .*Failed: .* should be as before"},
        CalibrationLoss{"write-protect=on", 1, "was refused by the instrument: (WriteFailed|Failed): "},
        CalibrationLoss{"fail-every=1", 1, "was refused by the instrument: (WriteFailed|Failed): "},
        CalibrationLoss{"throw-every=1", 1, "told to throw"}));

TEST_F(CalibrationFaultsTest, AnInstrumentThatStaysAwayIsLostWhateverItHasWritten)
{
    for (const auto* const command : {writeTerms, saveIfsw, savePower}) {
        const auto outcome = at("drop-every=1,drop-for=1000s,speed=1", command);
        EXPECT_EQ(outcome.exitCode, 5);
        EXPECT_THAT(outcome.err.toStdString(),
                    testing::ContainsRegex("has dropped its .* control|whether .* was changed is not known"));
        EXPECT_THAT(outcome.err.toStdString(), Not(HasSubstr("confirmed")));
    }
}

// ---- somebody else's write

TEST_F(CalibrationFaultsTest, AWriteIsNotTakenToFailWithSomebodyElses)
{
    const auto outcome = runAwkward(QStringLiteral("shared"), words(saveIfsw));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("written and confirmed by the instrument"));
}

// ---- Ctrl-C

TEST_F(CalibrationFaultsTest, CtrlCWarnsOnceAndEndsWithAdviceTheSecondTime)
{
    for (const auto* const command : {writeTerms, saveIfsw, savePower}) {
        QProcess process;
        startUntil(process, QStringList{QStringLiteral("--address"), QStringLiteral("speed=0.001")} + words(command),
                   ": started");
        interrupt(process);
        const auto warned = awaitError(process, "ends it all the same\n").toStdString();
        EXPECT_THAT(warned, HasSubstr("the instrument may be left with the old or the new "));
        interrupt(process);
        const auto outcome = finish(process);
        EXPECT_EQ(outcome.exitCode, 130);
        EXPECT_THAT(outcome.err.toStdString(),
                    HasSubstr("error: interrupted: the instrument may be left with the old"));
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr("again to be sure of"));
    }
}

TEST_F(CalibrationFaultsTest, CtrlCOnceLetsAWriteComeToItsEnd)
{
    QProcess process;
    startUntil(process, QStringList{QStringLiteral("--address"), QStringLiteral("speed=0.3")} + words(writeTerms),
               ": started");
    interrupt(process);
    const auto outcome = finish(process);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_EQ(outcome.err.count("warning: "), 1);
    EXPECT_THAT(status().toStdString(), HasSubstr("System terms                   valid"));
}

} // namespace tarn::console
