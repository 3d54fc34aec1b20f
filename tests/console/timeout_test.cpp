#include <console/consoletest.h>
#include <console/outputpipe.h>

#include <QElapsedTimer>

#include <gmock/gmock.h>

#include <chrono>
#include <thread>
#include <tuple>
#include <utility>

namespace tarn::console {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

/// Instruments that do not answer.
class TimeoutTest : public ConsoleTest {
protected:
    static constexpr auto advice = "  check the instrument and its connection, or give it more time with --timeout";

    void SetUp() override
    {
        writeLocal(QStringLiteral("image"), QByteArray{60'000, 'n'});
        writeLocal(QStringLiteral("table"), QByteArray{201, '\x20'});
        const QStringList ifsw{QStringLiteral("ifsw-calibration")};
        ASSERT_EQ(run(ifsw + words("plan -o plan")).exitCode, 0);
        writeLocal(QStringLiteral("ifsw"), run(ifsw + words("example --plan plan")).out);
    }

    static QStringList impatient(const char* command) { return words("--timeout 300ms") + words(command); }

    /// For where something must have been answered before.
    static QStringList patient(const char* command) { return words("--timeout 2s") + words(command); }

    /// Runs a command to its end, which must come soon.
    Outcome at(const QString& address, const QStringList& command)
    {
        const bool isStuck = address.startsWith(QStringLiteral("stuck="));
        QElapsedTimer timer;
        timer.start();
        auto outcome = isStuck ? runAwkward(address, command) : runAt(address, command);
        EXPECT_LT(timer.elapsed(), 50'000);
        return outcome;
    }

    QByteArray held() { return run(words("memory read -o -")).out; }
};

struct Unanswered {
    const char* address;
    const char* command;
    const char* says;
    const char* hint;
    bool isAfterAnswers = false; ///< whether the instrument answers before
};

void PrintTo(const Unanswered& value, std::ostream* stream)
{
    *stream << value.address << ' ' << value.command;
}

class UnansweredCommand : public TimeoutTest, public testing::WithParamInterface<Unanswered> { };

TEST_P(UnansweredCommand, EndsInTimeAndSaysWhatIsKnown)
{
    const auto& [address, command, says, hint, isAfterAnswers] = GetParam();
    const auto outcome = at(QString::fromUtf8(address), isAfterAnswers ? patient(command) : impatient(command));
    const auto err = outcome.err.toStdString();
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_THAT(err, HasSubstr(std::string{"error: the instrument did not answer in time"} + says));
    EXPECT_THAT(err, HasSubstr(std::string{advice} + hint));
    EXPECT_EQ(outcome.err.count("error: "), 1) << err;
    EXPECT_EQ(outcome.out, QByteArray{});
}

constexpr auto silent = "latency=1000s";
constexpr auto keepsSecond = "misbehave=keep,misbehave-every=2"; // keeps the answer of every second request
constexpr auto unchanged = "; nothing was changed\n";
constexpr auto retry = "\n";
constexpr auto filesHint = "; the instrument is as it was; 'tarn-service files list'";
constexpr auto lookHint = "; what was under way may or may not have been done; look before doing it again\n";

INSTANTIATE_TEST_SUITE_P(
    Requests, UnansweredCommand,
    testing::Values(
        Unanswered{silent, "files list", "\n", filesHint}, Unanswered{silent, "files space", "\n", filesHint},
        Unanswered{keepsSecond, "files write image", "\n",
                   "; whether 'image' was written is not known; 'tarn-service files list'", true},
        Unanswered{silent, "serial show", " when it was to read its serial number\n", unchanged},
        Unanswered{keepsSecond, "-q serial write 5 --yes",
                   " while writing the serial number: it reported 4 of 4 steps as done; whether more of the serial "
                   "number was changed is not known\n",
                   "; 'tarn-service serial show' tells", true},
        Unanswered{silent, "potentiometers read 0", " when it was to read a potentiometer\n", unchanged},
        Unanswered{silent, "potentiometers write 0 9",
                   " while setting the potentiometer: it reported no progress; whether its RAM value was changed is "
                   "not known\n",
                   "; set it again"},
        Unanswered{keepsSecond, "potentiometers write 0 9 --eeprom",
                   " while writing the potentiometer's EEPROM: it reported no progress; whether its value was changed",
                   "; 'tarn-service potentiometers read 0' tells", true},
        Unanswered{silent, "usb write f3a7:0101 --yes",
                   " while writing the USB identity: it reported no progress; whether the USB identity was changed",
                   "; 'tarn-service usb show' tells"},
        Unanswered{silent, "-q memory check", " when it was to check its memory\n", unchanged},
        Unanswered{silent, "-q memory read -o read", " when it was to read its memory\n", unchanged},
        Unanswered{silent, "-q memory erase --yes",
                   " while erasing the memory: it reported no progress; whether the memory was changed is not known\n",
                   "; once the instrument is there, erase its memory again"},
        Unanswered{"memory-size=64KiB,speed=0.001", "-q memory write image --yes",
                   " while writing the memory: it reported 0 of 60000 bytes as done; whether more of the memory was "
                   "changed is not known\n",
                   "; once the instrument is there, 'tarn-service memory check'", true}));

INSTANTIATE_TEST_SUITE_P(
    Calls, UnansweredCommand,
    testing::Values(
        Unanswered{"stuck=opening", "controls", "\n", retry}, Unanswered{"stuck=files", "files list", "\n", retry},
        Unanswered{"stuck=potentiometers", "potentiometers list", "\n", retry},
        Unanswered{"stuck=usb", "usb show", "\n", retry}, Unanswered{"stuck=control", "lo-leakage show", "\n", retry},
        Unanswered{"stuck=lo-leakage", "lo-leakage show", "\n", retry},
        Unanswered{"stuck=lo-leakage-set", "lo-leakage on", "\n", lookHint, true},
        Unanswered{"stuck=temperature", "temperature show", "\n", retry},
        Unanswered{"stuck=quill", "quill-power show", "\n", retry},
        Unanswered{"stuck=quill-set", "quill-power set lo-power 11", "\n", lookHint, true},
        Unanswered{"stuck=quill-load", "quill-power load rf-power-codes table --yes", "\n", lookHint, true},
        Unanswered{"stuck=quill-reset", "quill-power reset", "\n", lookHint, true},
        Unanswered{"stuck=corrections", "corrections list", "\n", retry},
        Unanswered{"stuck=corrections-set", "corrections disable crosstalk", "\n", lookHint, true},
        Unanswered{"stuck=calibrations", "calibrations status", "\n", retry},
        Unanswered{"stuck=ifsw-plan", "ifsw-calibration plan", "\n", retry},
        Unanswered{"stuck=memory-write", "-q memory write image --yes", ": the memory may be left partly written\n",
                   "; once the instrument is there, 'tarn-service memory check'", true}));

INSTANTIATE_TEST_SUITE_P(
    CalibrationWrites, UnansweredCommand,
    testing::Values(
        Unanswered{"stuck=ifsw-save", "-q ifsw-calibration save ifsw --yes",
                   ": the instrument may be left with the old or the new IF-switch calibration\n",
                   "; 'tarn-service calibrations status'", true},
        Unanswered{"stuck=ifsw-write", "-q ifsw-calibration save ifsw --yes",
                   " while saving the IF-switch calibration: it reported 40 % as done; whether more of the IF-switch "
                   "calibration was changed is not known\n",
                   "; 'tarn-service calibrations status'", true},
        Unanswered{"stuck=ifsw-end", "-q ifsw-calibration save ifsw --yes",
                   ": the instrument may be left with the old or the new IF-switch calibration\n",
                   "; 'tarn-service calibrations status'", true}));

// ---- watches, which wait for ever for something to happen

class StuckWatch : public TimeoutTest, public testing::WithParamInterface<std::pair<const char*, const char*>> { };

TEST_P(StuckWatch, Ends)
{
    const auto& [call, command] = GetParam();
    const auto outcome = at(QStringLiteral("stuck=") + QString::fromUtf8(call), impatient(command));
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("error: the instrument did not answer in time\n"));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr(advice));
}

INSTANTIATE_TEST_SUITE_P(Calls, StuckWatch,
                         testing::Values(std::pair{"temperature", "temperature watch"},
                                         std::pair{"quill", "quill-power watch"},
                                         std::pair{"corrections", "corrections watch"},
                                         std::pair{"calibrations", "calibrations watch"},
                                         std::pair{"calibrations-again", "calibrations watch"}));

TEST_F(TimeoutTest, AWatchThatHasShownSomethingEndsWithAnErrorObject)
{
    const auto outcome
        = at(QStringLiteral("stuck=calibrations-again"), words("-q --json") + impatient("calibrations watch"));
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_FALSE(outcome.objects("result").isEmpty());
    ASSERT_EQ(outcome.objects("error").size(), 1);
    EXPECT_EQ(outcome.objects("error").first().value(QStringLiteral("code")).toString(),
              QStringLiteral("instrument-lost"));
    EXPECT_EQ(outcome.objects().last().value(QStringLiteral("error")).toObject(), outcome.objects("error").first());
    EXPECT_TRUE(outcome.err.isEmpty());
}

TEST_F(TimeoutTest, AWatchWaitsForWhatHappensAsLongAsItTakes)
{
    QProcess process;
    prepare(process, words("--timeout 1s corrections watch"));
    process.start();
    EXPECT_FALSE(process.waitForFinished(5000));
    interrupt(process);
    EXPECT_EQ(finish(process).exitCode, 130);
}

TEST_F(TimeoutTest, AWatchWaitsForItsReaderAsLongAsItTakes)
{
    OutputPipe pipe; // is full after a moment
    QProcess process;
    prepare(process, awkward({}) + words("--timeout 1s --json temperature watch"));
    pipe.start(process);
    EXPECT_FALSE(process.waitForFinished(5000));
    pipe.stopReading();
    EXPECT_EQ(finish(process).exitCode, 0);
}

// ---- questions

TEST_F(TimeoutTest, AQuestionWaitsAsLongAsItTakes)
{
    const auto outcome = converse(patient("serial write 5"),
                                  {{"[y/N] ", "n\n", [] { std::this_thread::sleep_for(std::chrono::seconds{6}); }}});
    EXPECT_EQ(outcome.exitCode, 4) << outcome.out.toStdString();
}

// ---- progress

TEST_F(TimeoutTest, ALongOperationMayTakeMuchLongerThanTheTimeoutWhileItGetsOn)
{
    QElapsedTimer timer;
    timer.start();
    const auto outcome
        = at(QStringLiteral("memory-size=64KiB,speed=0.2"), words("--timeout 1500ms memory write image --yes"));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_GT(timer.elapsed(), 3000);
    EXPECT_EQ(at(QStringLiteral("memory-size=64KiB"), words("memory read -o -")).out, QByteArray(60'000, 'n'));
}

// ---- the end of the program

TEST_F(TimeoutTest, AnInstrumentThatCannotBeClosedTakesNothingBack)
{
    const auto shown = at(QStringLiteral("stuck=closing"), patient("--json lo-leakage show"));
    EXPECT_EQ(shown.exitCode, 5);
    ASSERT_EQ(shown.objects("result").size(), 1);
    EXPECT_EQ(shown.objects().size(), 1);
    EXPECT_THAT(shown.err.toStdString(), HasSubstr("did not answer in time while it was being closed\n"));
    EXPECT_THAT(shown.err.toStdString(), HasSubstr("; the command was done before\n"));

    const auto failed = at(QStringLiteral("stuck=closing"), patient("files read none"));
    EXPECT_EQ(failed.exitCode, 3);
    EXPECT_THAT(failed.err.toStdString(),
                ContainsRegex("error: the instrument has no file 'none'\n.*\nerror: the "
                              "instrument did not answer in time while it was being closed"));
    EXPECT_THAT(failed.err.toStdString(), Not(HasSubstr("the command was done")));
}

TEST_F(TimeoutTest, AProviderThatCannotBeUnloadedTakesNothingBack)
{
    const auto outcome = at(QStringLiteral("stuck=unloading"), patient("--json lo-leakage show"));
    EXPECT_EQ(outcome.exitCode, 5);
    ASSERT_EQ(outcome.objects("result").size(), 1);
    EXPECT_EQ(outcome.objects().size(), 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("did not answer in time while it was being closed\n"));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("; the command was done before\n"));
}

TEST_F(TimeoutTest, IsAnErrorObjectWithJson)
{
    for (const auto* const address : {silent, "stuck=files"}) {
        const auto outcome = at(QString::fromUtf8(address), impatient("--json files list"));
        EXPECT_EQ(outcome.exitCode, 5);
        EXPECT_EQ(outcome.object().value(QStringLiteral("command")).toString(), QStringLiteral("files list"));
        EXPECT_EQ(outcome.error().value(QStringLiteral("code")).toString(), QStringLiteral("instrument-lost"));
        EXPECT_THAT(outcome.error().value(QStringLiteral("message")).toString().toStdString(),
                    HasSubstr("did not answer in time"));
        EXPECT_THAT(outcome.error().value(QStringLiteral("hint")).toString().toStdString(), HasSubstr("--timeout"));
    }
}

TEST_F(TimeoutTest, LeavesEverythingElseOfTheInstrumentAsItWas)
{
    ASSERT_EQ(run(words("files write image")).exitCode, 0);
    const auto before = held();
    EXPECT_EQ(at(QString::fromUtf8(silent), impatient("-q memory read -o read")).exitCode, 5);
    EXPECT_EQ(at(QString::fromUtf8(silent), impatient("files delete image --yes")).exitCode, 5);
    EXPECT_FALSE(localNames().contains(QStringLiteral("read")));
    EXPECT_EQ(held(), before);
    EXPECT_EQ(run(words("files read image -o -")).out, QByteArray(60'000, 'n'));
}

TEST_F(TimeoutTest, SaysThatAnAnswerCameTooLateUnlessItIsQuiet)
{
    constexpr auto late = "warning: the instrument answered 'serialNumber' of its serial-number control too late; the "
                          "answer does not count\n";
    EXPECT_THAT(at(QString::fromUtf8(silent), impatient("serial show")).err.toStdString(), HasSubstr(late));
    EXPECT_THAT(at(QString::fromUtf8(silent), impatient("-q serial show")).err.toStdString(),
                Not(HasSubstr("warning")));
}

TEST_F(TimeoutTest, ProvidersThatDoNotTellTheirAddressesAreNotWaitedFor)
{
    useTestProvider(QStringLiteral("awkward_provider"));
    setVariable(QStringLiteral("AWKWARD_STUCK"), QStringLiteral("addresses"));
    const auto outcome = run(impatient("providers"));
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("did not answer in time"));
}

// ---- the tour

TEST_F(TimeoutTest, ATourThatIsStuckSaysWhatRemains)
{
    for (const auto& [call, says, remedy, last] :
         {std::tuple{"lo-leakage-set", "before the instrument was put back as it was: LO leakage may still be on\n",
                     "'tarn-service lo-leakage off' puts it back\n", "y\n"},
          std::tuple{"ifsw-plan", "error: the instrument did not answer in time\n", "; the instrument is as it was\n",
                     "n\n"}}) {
        auto outcome
            = converse(awkward(QStringLiteral("stuck=") + QString::fromUtf8(call)) + patient("-q --color never tour"),
                       {{"[y/N] ", "n\n"}, {"[y/N] ", "n\n"}, {"[y/N] ", last}});
        EXPECT_EQ(outcome.exitCode, 5);
        const auto shown = outcome.out.replace("\r\n", "\n").toStdString();
        EXPECT_THAT(shown, HasSubstr(says));
        EXPECT_THAT(shown, HasSubstr(remedy));
    }
}

TEST_F(TimeoutTest, ATourPutsBackWhatItHasChangedWhenARequestIsNotAnswered)
{
    int putBack = 0;
    for (int every = 2; every <= 8; ++every) {
        const auto outcome = at(QStringLiteral("misbehave=keep,misbehave-every=%1,drop-chance=0").arg(every),
                                words("--timeout 1s tour"));
        const auto err = outcome.err.toStdString();
        EXPECT_EQ(outcome.exitCode, 5) << every << err;
        const auto files = run(words("files list")).out;
        const bool isSaid = outcome.err.contains("the tour could not put the instrument back as it was");
        EXPECT_TRUE(files.isEmpty() || isSaid) << every << files.toStdString() << err;
        putBack
            += outcome.err.contains("could not be confirmed: the instrument did not answer in time") && !isSaid ? 1 : 0;
        if (!files.isEmpty()) {
            EXPECT_EQ(
                run(words("files delete")
                    + QStringList{QString::fromUtf8(files.simplified().split(' ').last()), QStringLiteral("--yes")})
                    .exitCode,
                0);
        }
    }
    EXPECT_GT(putBack, 0);
}

// ---- the option

class WrongTimeout : public TimeoutTest, public testing::WithParamInterface<const char*> { };

TEST_P(WrongTimeout, IsAUsageErrorThatSaysHowATimeIsWritten)
{
    const auto value = QString::fromUtf8(GetParam());
    const auto outcome = run({QStringLiteral("--timeout=") + value, QStringLiteral("controls")});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(outcome.err.toStdString(),
                HasSubstr("error: --timeout: '" + value.toStdString()
                          + "' is not a time such as 30, 500ms or 2min, from a millisecond to a day\n"
                            "  'tarn-service --help' explains the global options\n"));
}

INSTANTIATE_TEST_SUITE_P(Values, WrongTimeout,
                         testing::Values("0", "0ms", "0.0001", "-1", "+1", "x", "1x", "ms", "1 s", ".", "1.2.3", "nan",
                                         "25h", "86401", "1e3"));

TEST_F(TimeoutTest, IsTakenInSecondsOrWithAUnit)
{
    for (const auto* const value : {"30", "0.5", "1ms", "500ms", "2s", "2min", "24h", "86400"})
        EXPECT_EQ(
            run(QStringList{QStringLiteral("--timeout"), QString::fromUtf8(value)} + words("system-terms example-plan"))
                .exitCode,
            0)
            << value;
    EXPECT_EQ(at(QStringLiteral("latency=20s"), words("--timeout 0.1 files list")).exitCode, 5);
    EXPECT_EQ(at(QStringLiteral("latency=300ms"), words("--timeout 10 files list")).exitCode, 0);
    EXPECT_EQ(at(QStringLiteral("latency=300ms"), words("files list --timeout 10")).exitCode, 0);
}

TEST_F(TimeoutTest, IsHalfAMinuteUnlessSaidOtherwise)
{
    EXPECT_THAT(run(words("--help")).out.toStdString(),
                ContainsRegex("--timeout TIME +How long the instrument may take without progress, in seconds or\n? *as "
                              "500ms or 2min \\[30\\]"));
    EXPECT_EQ(at(QStringLiteral("latency=1200ms"), words("files list")).exitCode, 0);
}

TEST_F(TimeoutTest, IsCompletedWhileItIsTyped)
{
    EXPECT_EQ(run(words("completion words -- --time")).out, "--timeout\n");
}

} // namespace tarn::console
