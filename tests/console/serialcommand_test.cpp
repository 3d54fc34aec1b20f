#include <console/consoletest.h>

#include <gmock/gmock.h>

namespace tarn::console {

using testing::HasSubstr;

class SerialCommandTest : public ConsoleTest {
protected:
    Outcome serial(const char* command, const QByteArray& input = {})
    {
        return run(QStringList{QStringLiteral("serial")} + words(command), input);
    }
};

TEST_F(SerialCommandTest, EveryNumberOf32BitsIsWrittenAndShownByAnotherProcess)
{
    for (const auto* const number : {"0", "4294967295", "20417"}) {
        const auto written = serial((std::string{"write --yes "} + number).c_str());
        EXPECT_EQ(written.exitCode, 0) << written.err.toStdString();
        EXPECT_THAT(written.err.toStdString(), HasSubstr("read back and compared"));
        EXPECT_EQ(serial("show").out.toStdString(), std::string{number} + '\n');
    }
}

TEST_F(SerialCommandTest, OtherNumbersAreUsageErrors)
{
    const auto before = serial("show").out;
    for (const auto* const number : {"4294967296", "1x", "0x10", "", "1.5", "-- -1"}) {
        const auto outcome = serial((std::string{"write --yes "} + number).c_str());
        EXPECT_EQ(outcome.exitCode, 2) << number;
    }
    EXPECT_EQ(serial("show").out, before);
}

TEST_F(SerialCommandTest, WriteSaysHowFarItIsAndWhatIsThere)
{
    const auto first = run(words("--json serial write 7 --yes"));
    EXPECT_FALSE(first.objects("progress").isEmpty());
    const auto second = run(words("--json serial write 7 --yes"));
    EXPECT_TRUE(second.objects("progress").isEmpty());
    const auto result = [](const char* status) {
        return QList<QJsonObject>{
            {{QStringLiteral("serialNumber"), 7}, {QStringLiteral("status"), QLatin1StringView{status}}}};
    };
    EXPECT_EQ(first.objects("result"), result("written"));
    EXPECT_EQ(second.objects("result"), result("identical"));
    EXPECT_EQ(run(words("--json serial show")).result(),
              (QJsonValue{QJsonObject{{QStringLiteral("serialNumber"), 7}}}));
}

TEST_F(SerialCommandTest, WriteWithoutATerminalNeedsYesAndOnOneAsks)
{
    ASSERT_EQ(serial("write 7 --yes").exitCode, 0);
    const auto refused = serial("write 8", "y\n");
    EXPECT_EQ(refused.exitCode, 4);
    EXPECT_THAT(refused.err.toStdString(), HasSubstr("--yes"));
    const auto declined = runOnTerminal(words("serial write 8"), "n\n");
    EXPECT_EQ(declined.exitCode, 4);
    EXPECT_THAT(declined.out.toStdString(), HasSubstr("Change the instrument's serial number from 7 to 8? [y/N]"));
    EXPECT_EQ(serial("show").out, "7\n");
    EXPECT_EQ(runOnTerminal(words("serial write 8"), "y\n").exitCode, 0);
    EXPECT_EQ(serial("show").out, "8\n");
}

TEST_F(SerialCommandTest, AWriteThatTheInstrumentForgetsIsNotCalledDone)
{
    const auto outcome = runAwkward(QStringLiteral("forgetful"), words("serial write 9 --yes"));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("could not be confirmed"));
}

} // namespace tarn::console
