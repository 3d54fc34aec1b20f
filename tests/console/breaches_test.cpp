#include <console/consoletest.h>

#include <QElapsedTimer>

#include <gmock/gmock.h>

#include <vector>

namespace tarn::console {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

/// Instruments that break their word about the end of a request.
class BreachesTest : public ConsoleTest {
protected:
    using Commands = std::vector<const char*>;

    const Commands reads{"files list", "files space", "serial show", "potentiometers read 0", "-q memory check"};
    const Commands changes{"files write image",         "serial write 5 --yes",        "potentiometers write 0 9",
                           "usb write f3a7:0101 --yes", "-q memory write image --yes", "-q memory erase --yes"};
    static constexpr const char* saves = "-q ifsw-calibration save ifsw --yes";

    void SetUp() override
    {
        writeLocal(QStringLiteral("image"), QByteArray{6'000, 'n'});
        const QStringList ifsw{QStringLiteral("ifsw-calibration")};
        ASSERT_EQ(run(ifsw + words("plan -o plan")).exitCode, 0);
        writeLocal(QStringLiteral("ifsw"), run(ifsw + words("example --plan plan")).out);
    }

    /// Runs a command to its end, which must come soon.
    Outcome at(const char* misbehaviour, const char* command, const char* timeout = "20s")
    {
        QElapsedTimer timer;
        timer.start();
        auto outcome = runAt(QStringLiteral("memory-size=64KiB,speed=unlimited,") + QString::fromUtf8(misbehaviour),
                             words("--timeout") + words(timeout) + words(command));
        EXPECT_LT(timer.elapsed(), 50'000) << misbehaviour << ' ' << command;
        EXPECT_EQ(outcome.err.count("error: "), outcome.exitCode == 0 ? 0 : 1) << outcome.err.toStdString();
        return outcome;
    }

    /// The same for one that waits in vain.
    Outcome inVain(const char* misbehaviour, const char* command) { return at(misbehaviour, command, "300ms"); }
};

TEST_F(BreachesTest, TheFirstOfTwoAnswersCounts)
{
    for (const auto* const completion : {"misbehave=twice", "misbehave=twice,completion=inline"}) {
        for (const auto& commands : {reads, changes}) {
            for (const auto* const command : commands)
                EXPECT_EQ(at(completion, command).exitCode, 0) << command;
        }
        EXPECT_EQ(at(completion, saves).exitCode, 0);
    }
}

TEST_F(BreachesTest, AreWarnedOfOnceForEachOperationUnlessItIsToBeQuiet)
{
    constexpr auto warning
        = "warning: the instrument answered 'fileList' of its file-memory control more than once; the "
          "first answer counts\n";
    const auto outcome = at("misbehave=twice", "files write image"); // lists the files twice
    EXPECT_EQ(outcome.err.count(warning), 1) << outcome.err.toStdString();
    EXPECT_EQ(outcome.err.count("warning: "), 3) << outcome.err.toStdString(); // and writes one and reads it
    EXPECT_EQ(at("misbehave=twice", "-q files list").err, QByteArray{});
}

TEST_F(BreachesTest, ARequestThatIsGivenUpFails)
{
    for (const auto* const completion : {"misbehave=drop", "misbehave=drop,completion=inline"}) {
        for (const auto* const command : reads) {
            const auto outcome = at(completion, command);
            EXPECT_EQ(outcome.exitCode, 1) << command;
            EXPECT_THAT(outcome.err.toStdString(), HasSubstr("gave the request up without an answer\n")) << command;
        }
    }
}

TEST_F(BreachesTest, OfAChangeThatIsGivenUpItIsNotKnownWhetherItWasMade)
{
    for (const auto* const command : {"-q memory write image --yes", "potentiometers write 0 9"}) {
        const auto outcome = at("misbehave=drop", command);
        EXPECT_EQ(outcome.exitCode, 1) << command;
        EXPECT_THAT(
            outcome.err.toStdString(),
            ContainsRegex("failed: .*gave the request up without an answer; whether .* was changed is not known\n"));
    }
    EXPECT_THAT(at("misbehave=drop,misbehave-every=2", "files write image").err.toStdString(),
                HasSubstr("whether 'image' was written is not known"));
}

TEST_F(BreachesTest, AnAnswerThatIsKeptIsWaitedForNoLongerThanTheTimeout)
{
    for (const auto& commands : {reads, changes, {saves}}) {
        for (const auto* const command : commands)
            EXPECT_EQ(inVain("misbehave=keep", command).exitCode, 5) << command;
    }
}

TEST_F(BreachesTest, AnAnswerThatComesWhenNobodyWaitsAnyMoreDoesNoHarm)
{
    for (const auto* const misbehaviour : {"misbehave=at-end", "misbehave=late,delay=20s"}) {
        for (const auto* const command : {"files list", "potentiometers write 0 9", "-q memory read -o read", saves})
            EXPECT_EQ(inVain(misbehaviour, command).exitCode, 5) << misbehaviour << ' ' << command;
    }
}

TEST_F(BreachesTest, AnAnswerThatComesLateButInTimeIsOne)
{
    EXPECT_EQ(at("misbehave=late,delay=50ms", "serial show").exitCode, 0);
}

TEST_F(BreachesTest, AnExceptionCountsAndNotTheAnswerAfterIt)
{
    const auto outcome = at("misbehave=throw-late,delay=10ms", "serial show");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(),
                HasSubstr("warning: the instrument answered 'serialNumber' of its serial-number control and failed as "
                          "well; the failure counts\n"));
}

TEST_F(BreachesTest, ControlsThatGoWithTheRequestAreLost)
{
    const auto outcome = at("misbehave=drop-controls,drop-for=1ms", "serial show");
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("dropped its controls each time"));
}

class HangingOperation : public BreachesTest, public testing::WithParamInterface<const char*> { };

TEST_P(HangingOperation, EndsInTimeWhateverTheControl)
{
    const auto outcome = inVain("hang-every=1", GetParam());
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("error: the instrument did not answer in time"));
    EXPECT_THAT(outcome.err.toStdString(), Not(HasSubstr("warning")));
}

INSTANTIATE_TEST_SUITE_P(Commands, HangingOperation,
                         testing::Values("files list", "potentiometers list", "usb show", "usb list", "serial show",
                                         "-q memory check", "lo-leakage show", "temperature show", "temperature watch",
                                         "corrections list", "corrections watch", "calibrations status",
                                         "calibrations watch", "system-terms plan", "system-terms override",
                                         "ifsw-calibration plan", "power-calibration plan", "quill-power show",
                                         "quill-power watch", "quill-synthesis show", "sable-power show",
                                         "sable-synthesis show", "dorn-power show", "dorn-synthesis show",
                                         "vell-synthesis show", "tour"));

TEST_F(BreachesTest, ATourEndsWhicheverOperationHangs)
{
    for (const int every : {3, 10, 30, 100}) {
        const auto outcome = at(qPrintable(QStringLiteral("hang-every=%1,drop-chance=0").arg(every)), "tour", "2s");
        EXPECT_EQ(outcome.exitCode, 5) << every;
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr("error: the instrument did not answer in time"));
    }
}

} // namespace tarn::console
