#include <console/consoletest.h>

#include <gmock/gmock.h>

#include <array>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
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

TEST_F(InterruptTest, CtrlCInTheMiddleOfAResultAddsNothingToIt)
{
    // More than a pipe holds, so that the program is stuck in its result once the pipe is full.
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe2(pipe.data(), O_CLOEXEC), 0);
    ASSERT_GT(::fcntl(pipe[1], F_SETPIPE_SZ, 4096), 0);
    QProcess process;
    prepare(process, awkward(QStringLiteral("crowded")) + words("--json files list"));
    process.setChildProcessModifier([&pipe] { ::dup2(pipe[1], STDOUT_FILENO); });
    process.start();
    ASSERT_TRUE(process.waitForStarted());
    ::close(pipe[1]);
    pollfd full{pipe[0], POLLIN, 0};
    ASSERT_EQ(::poll(&full, 1, -1), 1);
    interrupt(process);
    EXPECT_EQ(finish(process).exitCode, 130);
    QByteArray out;
    std::array<char, 4096> block{};
    for (ssize_t length = 0; (length = ::read(pipe[0], block.data(), block.size())) > 0;)
        out.append(block.data(), length);
    ::close(pipe[0]);
    EXPECT_TRUE(out.startsWith("{\"schema\"")) << out.toStdString();
    EXPECT_FALSE(out.contains("interrupted"));
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
