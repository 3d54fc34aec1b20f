#include <console/consoletest.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QThread>

#include <gmock/gmock.h>

#include <array>
#include <csignal>
#include <utility>

#include <fcntl.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <unistd.h>

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

/// Standard output for a program that nobody reads for now, so that the program is soon stuck in what it writes.
class FullPipe {
public:
    static constexpr int size = 4096;

    /// A pipe with room for so many bytes; before them stand spaces.
    explicit FullPipe(int room)
    {
        EXPECT_EQ(::pipe2(m_ends.data(), O_CLOEXEC), 0);
        EXPECT_EQ(::fcntl(m_ends[1], F_SETPIPE_SZ, size), size);
        const QByteArray spaces{size - room, ' '};
        EXPECT_EQ(::write(m_ends[1], spaces.data(), static_cast<std::size_t>(spaces.size())), spaces.size());
    }
    FullPipe(const FullPipe&) = delete;
    FullPipe& operator=(const FullPipe&) = delete;
    ~FullPipe() { ::close(m_ends[0]); }

    void start(QProcess& process)
    {
        process.setChildProcessModifier([this] {
            ::dup2(m_ends[1], STDOUT_FILENO);
            cpu_set_t one; // on which a thread that can go on does so before others that it wakes
            CPU_ZERO(&one);
            CPU_SET(static_cast<unsigned>(::sched_getcpu()), &one);
            ::sched_setaffinity(0, sizeof one, &one);
        });
        process.start();
        EXPECT_TRUE(process.waitForStarted());
        ::close(m_ends[1]);
    }

    /// Waits until something was written, and then nothing more for a while.
    void awaitStuck() const
    {
        const auto atFirst = held();
        const QDeadlineTimer latest{20'000};
        QDeadlineTimer settled{500};
        for (auto last = atFirst; last == atFirst || !settled.hasExpired(); QThread::msleep(1)) {
            ASSERT_FALSE(latest.hasExpired());
            if (const auto now = held(); now != std::exchange(last, now))
                settled.setRemainingTime(500);
        }
    }

    /// Reads all that comes until the program ends.
    [[nodiscard]] QByteArray drain() const
    {
        QByteArray out;
        std::array<char, size> block{};
        for (ssize_t length = 0; (length = ::read(m_ends[0], block.data(), block.size())) > 0;)
            out.append(block.data(), length);
        return out;
    }

private:
    [[nodiscard]] int held() const
    {
        int bytes = 0;
        EXPECT_EQ(::ioctl(m_ends[0], FIONREAD, &bytes), 0);
        return bytes;
    }

    std::array<int, 2> m_ends{};
};

TEST_F(InterruptTest, CtrlCInTheMiddleOfAResultAddsNothingToIt)
{
    FullPipe pipe{FullPipe::size};
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

    FullPipe pipe{300}; // two lines of progress
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
