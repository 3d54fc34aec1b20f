#include <console/consoletest.h>

#include <QDir>
#include <QFile>

#include <gmock/gmock.h>

namespace tarn::console {

using testing::HasSubstr;
using testing::Not;

class MemoryCommandTest : public ConsoleTest {
protected:
    /// A memory small enough to be quick, large enough for tenths.
    static constexpr auto address = "memory-size=64KiB";

    Outcome memory(const char* command, const QByteArray& input = {}) { return run(arguments(command), input); }
    Outcome memoryJson(const char* command) { return run(QStringList{QStringLiteral("--json")} + arguments(command)); }
    Outcome onTerminal(const char* command, const QByteArray& input)
    {
        return runOnTerminal(arguments(command), input);
    }

    static QStringList arguments(const char* command)
    {
        return QStringList{QStringLiteral("--address"), QLatin1StringView{address}, QStringLiteral("memory")}
        + words(command);
    }

    static QByteArray image(char first)
    {
        QByteArray bytes;
        for (int i = 0; i < 50'001; ++i)
            bytes.append(static_cast<char>(first + i * 7 + i / 256));
        return bytes;
    }

    /// Writes an image into the instrument.
    void put(const QByteArray& contents)
    {
        writeLocal(QStringLiteral("image"), contents);
        ASSERT_EQ(memory("write image --yes").exitCode, 0);
    }

    /// What the instrument's memory holds.
    QByteArray held()
    {
        const auto outcome = memory("read -o -");
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
        return outcome.out;
    }
};

TEST_F(MemoryCommandTest, AnImageComesBackByteForByteInAnotherProcess)
{
    writeLocal(QStringLiteral("image"), image(1));
    const auto written = memory("write image --yes");
    EXPECT_EQ(written.exitCode, 0) << written.err.toStdString();
    EXPECT_TRUE(written.out.isEmpty());
    EXPECT_THAT(written.err.toStdString(), HasSubstr("wrote 'image' (50001 bytes), read back and compared\n"));
    EXPECT_EQ(memory("read -o back").exitCode, 0);
    EXPECT_EQ(readLocal(QStringLiteral("back")), image(1));
    EXPECT_EQ(memory("check").exitCode, 0);
    EXPECT_EQ(memory("erase --yes").exitCode, 0);
    EXPECT_EQ(held(), (QByteArray{65536, '\xFF'}));
    EXPECT_EQ(memory("check").exitCode, 0);
}

TEST_F(MemoryCommandTest, WriteReadsStandardInput)
{
    EXPECT_EQ(memory("write - --yes", image(2)).exitCode, 0);
    EXPECT_EQ(held(), image(2));
}

TEST_F(MemoryCommandTest, ReadNeverReplacesALocalFileWithoutOverwrite)
{
    put(image(1));
    writeLocal(QStringLiteral("back"), "mine");
    EXPECT_EQ(memory("read -o back").exitCode, 4);
    EXPECT_EQ(readLocal(QStringLiteral("back")), "mine");
    EXPECT_EQ(memory("read -o back --overwrite").exitCode, 0);
    EXPECT_EQ(readLocal(QStringLiteral("back")), image(1));
    const auto again = memoryJson("read -o back").objects("result");
    ASSERT_EQ(again.size(), 1);
    const QJsonObject expected{{QStringLiteral("path"), QStringLiteral("back")},
                               {QStringLiteral("size"), 50'001},
                               {QStringLiteral("status"), QStringLiteral("identical")}};
    EXPECT_EQ(again.first(), expected);
}

TEST_F(MemoryCommandTest, ReadNeedsAPathAndDoesNotShareStandardOutputWithJsonOrATerminal)
{
    EXPECT_EQ(memory("read").exitCode, 2);
    EXPECT_EQ(memoryJson("read -o -").exitCode, 2);
    EXPECT_EQ(onTerminal("read -o -", {}).exitCode, 4);
}

TEST_F(MemoryCommandTest, ALocalFileThatCannotBeReadIsALocalFileErrorAndNothingIsChanged)
{
    put(image(1));
    EXPECT_EQ(memory("write missing --yes").exitCode, 9);
    EXPECT_EQ(memory("read -o missing/back").exitCode, 9);
    EXPECT_EQ(held(), image(1));
}

TEST_F(MemoryCommandTest, AnImageThatIsTooLongIsRefusedAndTheMemoryIsAsItWas)
{
    put(image(1));
    writeLocal(QStringLiteral("long"), QByteArray{65537, 'x'});
    const auto outcome = memory("write long --yes");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("the memory should be as it was"));
    EXPECT_EQ(held(), image(1));
}

TEST_F(MemoryCommandTest, AnEmptyImageIsRefusedAndTheMemoryIsAsItWas)
{
    put(image(1));
    writeLocal(QStringLiteral("empty"), {});
    const auto outcome = memory("write empty --yes");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("the memory should be as it was"));
    EXPECT_EQ(memory("write - --yes").exitCode, 1);
    EXPECT_EQ(held(), image(1));
}

TEST_F(MemoryCommandTest, AFileLargerThanAnyMemoryIsALocalFileError)
{
    writeLocal(QStringLiteral("vast"), "x");
    ASSERT_TRUE(QFile{path(QStringLiteral("vast"))}.resize(qint64{1} << 40U)); // takes no space
    const auto outcome = memory("write vast --yes");
    EXPECT_EQ(outcome.exitCode, 9);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("cannot read 'vast': File too large"));
    EXPECT_THAT(outcome.err.toStdString(), Not(HasSubstr("started")));
}

TEST_F(MemoryCommandTest, AWrongChecksumIsAFailure)
{
    put(image(1));
    const auto outcome
        = runAt(QStringLiteral("memory-size=64KiB,corrupt=on"), {QStringLiteral("memory"), QStringLiteral("check")});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("error: the integrity check failed"));
}

// ---- asking

TEST_F(MemoryCommandTest, ChangesWithoutATerminalNeedYes)
{
    put(image(1));
    writeLocal(QStringLiteral("image"), image(2));
    for (const auto* const command : {"write image", "erase"}) {
        const auto refused = memory(command, "y\n");
        EXPECT_EQ(refused.exitCode, 4) << command;
        EXPECT_THAT(refused.err.toStdString(), HasSubstr("--yes"));
    }
    EXPECT_EQ(held(), image(1));
}

TEST_F(MemoryCommandTest, ChangesOnATerminalAskAndTellWhatIsLost)
{
    put(image(1));
    writeLocal(QStringLiteral("image"), image(2));
    for (const auto* const answer : {"n\n", "\n", "\x04"}) {
        const auto write = onTerminal("write image", answer);
        EXPECT_EQ(write.exitCode, 4) << answer;
        EXPECT_THAT(write.out.toStdString(),
                    HasSubstr("Write 'image' (50001 bytes) into the instrument's memory? The image that it holds now "
                              "is lost. [y/N]"));
        const auto erase = onTerminal("erase", answer);
        EXPECT_EQ(erase.exitCode, 4) << answer;
        EXPECT_THAT(erase.out.toStdString(), HasSubstr("Erase the instrument's whole memory?"));
    }
    EXPECT_EQ(held(), image(1));
    EXPECT_EQ(onTerminal("write image", "y\n").exitCode, 0);
    EXPECT_EQ(held(), image(2));
    EXPECT_EQ(onTerminal("erase", "y\n").exitCode, 0);
    EXPECT_EQ(held().count('\xFF'), 65536);
}

// ---- progress

TEST_F(MemoryCommandTest, ProgressIsALineAtTheStartAtEachTenthAndAtTheEnd)
{
    const auto erased = memory("erase --yes").err;
    const auto lines = erased.split('\n');
    ASSERT_EQ(lines.size(), 2 * 11 + 2) << erased.toStdString();
    EXPECT_EQ(lines.at(0), "erasing the memory: started");
    for (int tenth = 1; tenth <= 9; ++tenth)
        EXPECT_THAT(lines.at(tenth).toStdString(),
                    testing::MatchesRegex("erasing the memory: " + std::to_string(tenth) + "[0-9] % of 64.0 KiB"));
    EXPECT_THAT(lines.at(10).toStdString(), testing::MatchesRegex("erasing the memory: done, 64.0 KiB in .* s"));
    EXPECT_EQ(lines.at(11), "reading the memory: started");
    EXPECT_THAT(lines.at(21).toStdString(), testing::StartsWith("reading the memory: done"));
    EXPECT_EQ(lines.at(22), "erased the memory, read back and found empty");
}

TEST_F(MemoryCommandTest, ProgressOnATerminalIsABarWithRateAndRemainingTimeThatIsGoneInTheEnd)
{
    const auto shown = onTerminal("erase --yes", {}).out;
    EXPECT_THAT(shown.toStdString(), HasSubstr("\rerasing the memory ["));
    EXPECT_THAT(shown.toStdString(), HasSubstr("100 % of 64.0 KiB"));
    EXPECT_THAT(shown.toStdString(), HasSubstr("/s, 0 s left"));
    EXPECT_THAT(shown.toStdString(), Not(HasSubstr("started")));
    EXPECT_TRUE(shown.endsWith("\r\x1b[Kerased the memory, read back and found empty\r\n")) << shown.toStdString();
}

TEST_F(MemoryCommandTest, ADumbTerminalGetsLines)
{
    setVariable(QStringLiteral("TERM"), QStringLiteral("dumb"));
    const auto shown = onTerminal("check", {}).out;
    EXPECT_THAT(shown.toStdString(), HasSubstr("checking the memory: started"));
    EXPECT_FALSE(shown.contains('\x1b'));
}

TEST_F(MemoryCommandTest, ProgressWithJsonIsAnObjectForEachStep)
{
    const auto outcome = memoryJson("erase --yes");
    EXPECT_TRUE(outcome.err.isEmpty()) << outcome.err.toStdString();
    qint64 done = -1;
    int erasing = 0;
    for (const auto& step : outcome.objects("progress")) {
        EXPECT_EQ(step.size(), 3);
        EXPECT_EQ(step.value(QStringLiteral("total")).toInteger(), 65536);
        if (step.value(QStringLiteral("operation")) != QLatin1StringView{"erase"})
            continue;
        EXPECT_GT(step.value(QStringLiteral("done")).toInteger(), done);
        done = step.value(QStringLiteral("done")).toInteger();
        ++erasing;
    }
    EXPECT_GE(erasing, 11);
    EXPECT_EQ(done, 65536);
    ASSERT_EQ(outcome.objects("result").size(), 1);
    EXPECT_EQ(outcome.objects("result").first(), (QJsonObject{{QStringLiteral("size"), 65536}}));
    EXPECT_TRUE(outcome.objects().last().contains(QStringLiteral("result")));
}

TEST_F(MemoryCommandTest, QuietShowsNoProgress)
{
    const auto quiet = memory("erase --yes -q");
    EXPECT_EQ(quiet.exitCode, 0);
    EXPECT_TRUE(quiet.err.isEmpty());
    EXPECT_EQ(memoryJson("erase --yes -q").objects().size(), 1);
    EXPECT_THAT(onTerminal("check -q", {}).out.toStdString(), testing::IsEmpty());
}

TEST_F(MemoryCommandTest, AReadToAPlaceWhereNoFileCanBeIsRefusedBeforeTheInstrumentIsAsked)
{
    ASSERT_TRUE(QFile::link(QStringLiteral("elsewhere"), path(QStringLiteral("link"))));
    ASSERT_TRUE(QDir{path({})}.mkdir(QStringLiteral("folder")));
    writeLocal(QStringLiteral("file"), "x");
    for (const auto& [where, exitCode] : {std::pair{"link", 4}, {"folder", 9}, {"missing/x", 9}, {"file/x", 9}}) {
        const auto outcome = memory((std::string{"read -o "} + where).c_str());
        EXPECT_EQ(outcome.exitCode, exitCode) << where;
        EXPECT_THAT(outcome.err.toStdString(), Not(HasSubstr("started"))) << where;
    }
}

// ---- what must not be called done

TEST_F(MemoryCommandTest, AChangeThatTheInstrumentForgetsIsNotCalledDone)
{
    writeLocal(QStringLiteral("image"), "x");
    for (const auto* const command : {"memory write image --yes", "memory erase --yes"}) {
        const auto outcome = runAwkward(QStringLiteral("forgetful"), words(command));
        EXPECT_EQ(outcome.exitCode, 1) << command;
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr("could not be confirmed"));
        EXPECT_EQ(runAwkward(QStringLiteral("well"), words(command)).exitCode, 0) << command;
    }
}

} // namespace tarn::console
