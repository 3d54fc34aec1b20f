#include <console/consoletest.h>
#include <console/outputpipe.h>

#include <QFile>

#include <gmock/gmock.h>

#include <csignal>

namespace tarn::console {

using testing::HasSubstr;

class InterruptTest : public ConsoleTest { };

class Interrupted : public InterruptTest, public testing::WithParamInterface<bool> { };

TEST_P(Interrupted, ARequestThatTakesLongEndsWithCtrlC)
{
    auto arguments = words("-v --address latency=1000s files list");
    if (GetParam())
        arguments.prepend(QStringLiteral("--json"));
    QProcess process;
    startUntil(process, arguments, "opened");
    interrupt(process);
    const auto outcome = finish(process);
    EXPECT_EQ(outcome.exitCode, 130);
    if (GetParam())
        EXPECT_EQ(outcome.error().value(QStringLiteral("code")).toString(), QStringLiteral("interrupted"));
    else
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr("error: interrupted"));
}

INSTANTIATE_TEST_SUITE_P(Formats, Interrupted, testing::Bool());

TEST_F(InterruptTest, CtrlCInTheMiddleOfAResultAddsNothingToIt)
{
    OutputPipe pipe;
    QProcess process;
    prepare(process, awkward(QStringLiteral("crowded")) + words("--json files list")); // more than the pipe holds
    pipe.start(process);
    pipe.awaitStuck();
    interrupt(process);
    EXPECT_EQ(finish(process).exitCode, 130);
    const auto out = pipe.drain();
    EXPECT_TRUE(out.trimmed().startsWith("{\"schema\"")) << out.toStdString();
    EXPECT_FALSE(out.contains("interrupted"));
}

/// A command that nobody reads is stuck in a line of progress, and Ctrl-C has come twice.
class StuckInAPart : public InterruptTest {
protected:
    void SetUp() override
    {
        writeLocal(QStringLiteral("image"), QByteArray{1'000'000, 'n'}); // takes the instrument 14 seconds
        prepare(process, words("--json --address memory-size=1MiB,speed=1 memory write image --yes"));
        pipe.start(process);
        pipe.awaitStuck();
        send(SIGTERM); // is recorded only
        send(SIGINT);
        awaitSignalsTaken();
        EXPECT_FALSE(process.waitForFinished(100));
    }

    void send(int signal) const
    {
        ASSERT_GT(process.processId(), 0);
        ASSERT_EQ(::kill(static_cast<pid_t>(process.processId()), signal), 0);
    }

    /// Waits until no signal is pending.
    void awaitSignalsTaken() const
    {
        QFile status{QStringLiteral("/proc/%1/status").arg(process.processId())};
        for (bool isPending = true; isPending; status.close()) {
            ASSERT_TRUE(status.open(QIODevice::ReadOnly));
            const auto contents = status.readAll();
            ASSERT_TRUE(contents.contains("ShdPnd:"));
            isPending = !contents.contains("ShdPnd:\t0000000000000000\n");
        }
    }

    OutputPipe pipe{300}; // two lines of progress
    QProcess process;
};

TEST_F(StuckInAPart, TheLastWordsFollowOnceItIsWritten)
{
    send(SIGHUP); // adds nothing
    Outcome outcome;
    outcome.out = pipe.drain();
    EXPECT_EQ(finish(process).exitCode, 130);
    EXPECT_EQ(outcome.objects("progress").size(), 3) << "two that had room, and the one that was being written";
    ASSERT_EQ(outcome.objects("error").size(), 1);
    EXPECT_EQ(outcome.objects("error").first().value(QStringLiteral("code")).toString(), QStringLiteral("interrupted"));
    EXPECT_EQ(outcome.objects().last().value(QStringLiteral("error")).toObject(), outcome.objects("error").first());
}

TEST_F(StuckInAPart, TheLastWordsDoNotWaitForAReaderWhoHasStopped)
{
    EXPECT_EQ(finish(process).exitCode, 130); // after five seconds
    const auto out = pipe.drain();
    EXPECT_TRUE(out.trimmed().startsWith("{\"schema\"")) << out.toStdString();
    EXPECT_FALSE(out.contains("interrupted"));
}

TEST_F(StuckInAPart, AnotherCtrlCEndsTheWaiting)
{
    send(SIGINT);
    ASSERT_TRUE(process.waitForFinished(4000)); // without that, it takes five seconds
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
}

TEST_F(InterruptTest, CtrlCIsIgnoredWhereWhoeverStartedTheProgramIgnoresIt)
{
    writeLocal(QStringLiteral("a"), "x");
    ASSERT_EQ(run({QStringLiteral("files"), QStringLiteral("write"), QStringLiteral("a")}).exitCode, 0);
    std::signal(SIGINT, SIG_IGN);
    const auto outcome = converse({QStringLiteral("files"), QStringLiteral("delete"), QStringLiteral("a")},
                                  {{"[y/N] ", "\x03"}, {"^C", "y\n"}});
    std::signal(SIGINT, SIG_DFL);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out.toStdString();
    EXPECT_TRUE(run({QStringLiteral("files"), QStringLiteral("list")}).out.isEmpty());
}

} // namespace tarn::console
