#include <console/consoletest.h>
#include <console/outputpipe.h>

#include <QFile>

#include <gmock/gmock.h>

#include <array>
#include <csignal>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace tarn::console {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// Standard streams that are closed, full, a terminal or none.
class StreamsTest : public ConsoleTest {
protected:
    /// Runs the program with its standard output on `descriptor`; -1: closed.
    Outcome runOnto(int descriptor, const QStringList& arguments)
    {
        QProcess process;
        prepare(process, arguments);
        process.setChildProcessModifier([descriptor] {
            if (descriptor < 0)
                ::close(STDOUT_FILENO);
            else
                ::dup2(descriptor, STDOUT_FILENO);
        });
        process.start();
        return finish(process);
    }

    Outcome runOntoClosedPipe(const QStringList& arguments)
    {
        std::array<int, 2> pipe{};
        EXPECT_EQ(::pipe2(pipe.data(), O_CLOEXEC), 0);
        ::close(pipe[0]);
        auto outcome = runOnto(pipe[1], arguments);
        ::close(pipe[1]);
        return outcome;
    }

    /// Runs the program with its standard output in a file that takes `room` more bytes.
    Outcome runOntoFile(qsizetype room, const QStringList& arguments)
    {
        constexpr rlim_t limit = 1U << 30U; // bytes in any one file; the others stay far below
        const int file = ::open(path(QStringLiteral("out")).toUtf8().constData(),
                                O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600);
        EXPECT_EQ(::ftruncate(file, static_cast<off_t>(limit) - room), 0);
        QProcess process;
        prepare(process, arguments);
        process.setChildProcessModifier([file] {
            const rlimit most{limit, limit};
            ::setrlimit(RLIMIT_FSIZE, &most);
            std::signal(SIGXFSZ, SIG_IGN); // an error instead
            ::dup2(file, STDOUT_FILENO);
        });
        process.start();
        ::close(file);
        return finish(process);
    }

    Outcome runOntoFullDevice(const QStringList& arguments)
    {
        const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
        EXPECT_GE(full, 0);
        auto outcome = runOnto(full, arguments);
        ::close(full);
        return outcome;
    }
};

class AnyOutput : public StreamsTest, public testing::WithParamInterface<const char*> {
protected:
    [[nodiscard]] static QStringList command() { return QString::fromUtf8(GetParam()).split(QLatin1Char{' '}); }
};

TEST_P(AnyOutput, ThatNobodyReadsEndsTheProgramQuietly)
{
    const auto outcome = runOntoClosedPipe(command());
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_TRUE(outcome.err.isEmpty()) << outcome.err.toStdString();
}

TEST_P(AnyOutput, ThatCannotBeWrittenIsALocalFileError)
{
    for (const auto& outcome : {runOntoFullDevice(command()), runOnto(-1, command())}) {
        EXPECT_EQ(outcome.exitCode, 9);
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr("cannot write to standard output"));
    }
}

INSTANTIATE_TEST_SUITE_P(Commands, AnyOutput,
                         testing::Values("--help", "--version", "providers", "controls", "--json controls",
                                         "files space", "--json files list", "lo-leakage show", "temperature show",
                                         "temperature watch", "--json temperature watch", "tour", "--json tour"));

TEST_F(StreamsTest, AWatchEndsWhenItsReaderGoesAway)
{
    OutputPipe pipe;
    QProcess process;
    prepare(process, awkward({}) + words("temperature watch"));
    pipe.start(process);
    pipe.awaitWritten();
    pipe.stopReading();
    const auto outcome = finish(process);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_TRUE(outcome.err.isEmpty()) << outcome.err.toStdString();
}

TEST_F(StreamsTest, AnErrorThatCannotBeWrittenAsJsonIsSaidInText)
{
    const auto outcome = runOntoFullDevice(
        {QStringLiteral("--json"), QStringLiteral("files"), QStringLiteral("read"), QStringLiteral("missing")});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("no file 'missing'"));
}

TEST_F(StreamsTest, AClosedStandardOutputIsNotTakenByAFileOfTheProgram)
{
    QProcess process;
    process.setChildProcessModifier([] { ::close(STDOUT_FILENO); });
    startUntil(process, words("-v --address latency=1000s files list"), "opened");
    EXPECT_EQ(QFile::symLinkTarget(QStringLiteral("/proc/%1/fd/1").arg(process.processId())),
              QStringLiteral("/dev/null"));
    interrupt(process);
    EXPECT_EQ(finish(process).exitCode, 130);
}

TEST_F(StreamsTest, ATourThatNobodyReadsLeavesTheInstrumentAsItWas)
{
    ASSERT_EQ(run({QStringLiteral("lo-leakage"), QStringLiteral("on")}).exitCode, 0);
    EXPECT_EQ(runOntoFullDevice({QStringLiteral("tour")}).exitCode, 9);
    EXPECT_TRUE(run({QStringLiteral("files"), QStringLiteral("list")}).out.isEmpty());
    EXPECT_EQ(run({QStringLiteral("lo-leakage"), QStringLiteral("show")}).out, "on\n");
}

TEST_F(StreamsTest, ATourWhoseOutputFillsUpAnywhereLeavesTheInstrumentAsItWasAndSaysNothingElse)
{
    ASSERT_EQ(run(words("lo-leakage on")).exitCode, 0);
    const auto tour = words("--address sim,drop-every=1000000 tour"); // always says the same
    const auto whole = run(tour).out;
    for (qsizetype room = 0; room != whole.size(); room = whole.indexOf('\n', room) + 1) {
        const auto outcome = runOntoFile(room, tour);
        EXPECT_EQ(outcome.exitCode, 9) << room;
        EXPECT_THAT(outcome.err.toStdString(), StartsWith("error: cannot write to standard output")) << room;
    }
    EXPECT_TRUE(run(words("files list")).out.isEmpty());
    EXPECT_EQ(run(words("lo-leakage show")).out, "on\n");
}

TEST_F(StreamsTest, ColourIsForTerminalsOnly)
{
    const QStringList controls{QStringLiteral("controls")};
    EXPECT_THAT(runOnTerminal(controls).out.toStdString(), HasSubstr("\x1b[32myes\x1b[0m"));
    EXPECT_THAT(run(controls).out.toStdString(), Not(HasSubstr("\x1b")));
    EXPECT_THAT(run(QStringList{QStringLiteral("--color"), QStringLiteral("always")} + controls).out.toStdString(),
                HasSubstr("\x1b[32myes"));
    EXPECT_THAT(
        runOnTerminal(QStringList{QStringLiteral("--color"), QStringLiteral("never")} + controls).out.toStdString(),
        Not(HasSubstr("\x1b")));
    EXPECT_THAT(
        run({QStringLiteral("--json"), QStringLiteral("--color"), QStringLiteral("always"), QStringLiteral("controls")})
            .out.toStdString(),
        Not(HasSubstr("\x1b")));
}

TEST_F(StreamsTest, NoColorAndDumbTerminalsAreRespectedUnlessColourIsAskedFor)
{
    const QStringList controls{QStringLiteral("controls")};
    setVariable(QStringLiteral("NO_COLOR"), QStringLiteral("1"));
    EXPECT_THAT(runOnTerminal(controls).out.toStdString(), Not(HasSubstr("\x1b")));
    EXPECT_THAT(
        runOnTerminal(QStringList{QStringLiteral("--color"), QStringLiteral("always")} + controls).out.toStdString(),
        HasSubstr("\x1b[32myes"));
    setVariable(QStringLiteral("NO_COLOR"), QString{});
    EXPECT_THAT(runOnTerminal(controls).out.toStdString(), HasSubstr("\x1b[32myes")) << "empty means not set";
    setVariable(QStringLiteral("TERM"), QStringLiteral("dumb"));
    EXPECT_THAT(runOnTerminal(controls).out.toStdString(), Not(HasSubstr("\x1b")));
}

TEST_F(StreamsTest, ErrorsAreRedOnATerminal)
{
    EXPECT_THAT(runOnTerminal({QStringLiteral("bogus")}).out.toStdString(), HasSubstr("\x1b[31merror:\x1b[0m"));
    EXPECT_THAT(run({QStringLiteral("bogus")}).err.toStdString(), Not(HasSubstr("\x1b")));
}

TEST_F(StreamsTest, ANonBlockingStandardOutputGetsEverything)
{
    OutputPipe pipe;
    pipe.makeNonBlocking();
    QProcess process;
    prepare(process, awkward(QStringLiteral("crowded")) + words("files list"));
    pipe.start(process);
    const auto out = pipe.drain();
    EXPECT_EQ(finish(process).exitCode, 0);
    EXPECT_EQ(out.count('\n'), 1000);
}

TEST_F(StreamsTest, OutputIsUtf8InAnyLocale)
{
    for (const auto& locale : {QStringLiteral("C"), QStringLiteral("POSIX"), QStringLiteral("no_SUCH.locale")}) {
        setVariable(QStringLiteral("LC_ALL"), locale);
        const auto outcome = run({QStringLiteral("temperature"), QStringLiteral("show")});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_THAT(outcome.out.toStdString(), HasSubstr("°C"));
        EXPECT_TRUE(outcome.err.isEmpty()) << outcome.err.toStdString();
    }
}

TEST_F(StreamsTest, MessagesOfQtAreDetails)
{
    setVariable(QStringLiteral("QT_DEBUG_PLUGINS"), QStringLiteral("1"));
    EXPECT_TRUE(run({QStringLiteral("controls")}).err.isEmpty());
    EXPECT_THAT(run({QStringLiteral("-v"), QStringLiteral("controls")}).err.toStdString(),
                HasSubstr("libsimulatorprovider.so"));
}

} // namespace tarn::console
