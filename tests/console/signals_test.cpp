#include <console/consoletest.h>

#include <gmock/gmock.h>

#include <csignal>

namespace tarn::console {

using testing::HasSubstr;
using testing::Not;

/// Ctrl-C at a question, during a change, and the signals that are handled like it.
class SignalsTest : public ConsoleTest {
protected:
    SignalsTest()
    {
        for (const int signal : {SIGTERM, SIGHUP})
            std::signal(signal, SIG_DFL); // the program inherits it
        writeLocal(QStringLiteral("a"), "x");
        writeLocal(QStringLiteral("image"), QByteArray{60'000, 'n'});
    }

    /// A write of the memory that takes some seconds.
    const QStringList changeThatEnds = words("--address memory-size=64KiB,speed=0.3 memory write image --yes");

    static void send(const QProcess& process, int signal)
    {
        ASSERT_EQ(process.state(), QProcess::Running);
        ASSERT_EQ(::kill(static_cast<pid_t>(process.processId()), signal), 0);
    }

    /// The hint with which a request that hangs in the instrument ends at Ctrl-C.
    std::string hintAfter(const QByteArray& marker, const char* arguments)
    {
        QProcess process;
        startUntil(process, words("-v --json") + words(arguments), marker);
        interrupt(process);
        const auto outcome = finish(process);
        EXPECT_EQ(outcome.exitCode, 130);
        return outcome.error().value(QStringLiteral("hint")).toString().toStdString();
    }
};

// ---- questions

class QuestionInterrupted : public SignalsTest, public testing::WithParamInterface<const char*> { };

TEST_P(QuestionInterrupted, EndsTheProgramWithNothingDone)
{
    ASSERT_EQ(run(words("files write a")).exitCode, 0);
    const auto number = run(words("serial show")).out;
    const auto outcome = converse(words(GetParam()), {{"[y/N] ", "\x03"}});
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("interrupted at the question"));
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("what was asked for was not done"));
    EXPECT_EQ(run(words("files list")).out, "         1  a\n");
    EXPECT_EQ(run(words("serial show")).out, number);
}

INSTANTIATE_TEST_SUITE_P(Commands, QuestionInterrupted,
                         testing::Values("files delete a", "memory erase", "memory write a", "serial write 5",
                                         "--json files delete a"));

// ---- what may have been done

TEST_F(SignalsTest, AnInterruptedChangeMayOrMayNotHaveBeenMade)
{
    for (const auto* const command :
         {"--address delay-every=5,delay=1000s files write a", "--address delay-every=3,delay=1000s lo-leakage on"})
        EXPECT_THAT(hintAfter("change of the instrument is under way", command),
                    HasSubstr("may or may not have been done"))
            << command;
}

TEST_F(SignalsTest, AnInterruptedLookClaimsNoChange)
{
    EXPECT_EQ(hintAfter("opened", "--address latency=1000s files space"), "");
}

// ---- other signals

struct Signal {
    int number;
    const char* name;
};

void PrintTo(const Signal& value, std::ostream* stream)
{
    *stream << value.name;
}

class OtherSignal : public SignalsTest, public testing::WithParamInterface<Signal> { };

TEST_P(OtherSignal, EndsTheProgramAsCtrlCDoes)
{
    QProcess process;
    startUntil(process, words("-v --json --address latency=1000s files list"), "opened");
    send(process, GetParam().number);
    const auto outcome = finish(process);
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_EQ(outcome.error().value(QStringLiteral("code")).toString(), QStringLiteral("interrupted"));
}

TEST_P(OtherSignal, OnlyWarnsDuringAChangeOfTheMemory)
{
    QProcess process;
    startUntil(process, words("--address memory-size=64KiB,speed=0.001 memory write a --yes"), "memory: started");
    send(process, GetParam().number);
    EXPECT_THAT(awaitError(process, "ends it all the same\n").toStdString(), HasSubstr("left partly written"));
    send(process, SIGTERM);
    const auto outcome = finish(process);
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("error: interrupted: the memory may be left partly written"));
}

TEST_P(OtherSignal, IsIgnoredWhereWhoeverStartedTheProgramIgnoresIt)
{
    std::signal(GetParam().number, SIG_IGN);
    QProcess process;
    startUntil(process, changeThatEnds, "memory: started");
    std::signal(GetParam().number, SIG_DFL);
    send(process, GetParam().number);
    interrupt(process);
    const auto outcome = finish(process);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_EQ(outcome.err.count("warning: "), 1);
}

INSTANTIATE_TEST_SUITE_P(Signals, OtherSignal, testing::Values(Signal{SIGTERM, "SIGTERM"}, Signal{SIGHUP, "SIGHUP"}));

TEST_F(SignalsTest, AHangUpThatTerminalAndShellReportCountsOnce)
{
    QProcess process;
    startUntil(process, changeThatEnds, "memory: started");
    send(process, SIGHUP);
    awaitError(process, "ends it all the same\n");
    send(process, SIGHUP);
    EXPECT_EQ(finish(process).exitCode, 0);
}

} // namespace tarn::console
