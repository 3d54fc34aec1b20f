#include <console/consoletest.h>

#include <gmock/gmock.h>

namespace tarn::console {

using testing::HasSubstr;
using testing::Not;

class PotentiometersCommandTest : public ConsoleTest {
protected:
    Outcome potentiometers(const QStringList& arguments)
    {
        return run(QStringList{QStringLiteral("potentiometers")} + arguments);
    }
    Outcome potentiometers(const char* command) { return potentiometers(words(command)); }

    QJsonObject first() { return run(words("--json potentiometers list")).result().toArray().first().toObject(); }
};

TEST_F(PotentiometersCommandTest, AnEepromValueIsWrittenByIndexOrNameAndReadByAnotherProcess)
{
    const auto name = first().value(QStringLiteral("name")).toString();
    const auto written = potentiometers("write 0 17 --eeprom");
    EXPECT_EQ(written.exitCode, 0) << written.err.toStdString();
    EXPECT_THAT(written.err.toStdString(), HasSubstr("read back and compared"));
    EXPECT_EQ(potentiometers({QStringLiteral("read"), name}).out, "17\n");
    EXPECT_EQ(
        potentiometers({QStringLiteral("write"), name, QStringLiteral("18"), QStringLiteral("--eeprom")}).exitCode, 0);
    EXPECT_EQ(potentiometers("read 0").out, "18\n");
    auto expected = first();
    expected.insert(QStringLiteral("eeprom"), 18);
    EXPECT_EQ(run(words("--json potentiometers read 0")).result().toObject(), expected);
}

TEST_F(PotentiometersCommandTest, AnEepromValueThatIsThereIsNotWrittenAgain)
{
    const auto status = [this] {
        return run(words("--json potentiometers write 0 17 --eeprom"))
            .result()
            .toObject()
            .value(QStringLiteral("status"))
            .toString();
    };
    EXPECT_EQ(status(), QStringLiteral("written"));
    EXPECT_EQ(status(), QStringLiteral("identical"));
}

TEST_F(PotentiometersCommandTest, ARamValueLeavesTheEepromAsItIsAndIsNotCalledCompared)
{
    const auto before = potentiometers("read 0").out;
    const auto outcome = potentiometers("write 0 19");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("to 19 in RAM"));
    EXPECT_THAT(outcome.err.toStdString(), Not(HasSubstr("compared")));
    EXPECT_EQ(potentiometers("read 0").out, before);
    const auto result = run(words("--json potentiometers write 0 19")).result().toObject();
    EXPECT_EQ(result.value(QStringLiteral("memory")).toString(), QStringLiteral("ram"));
    EXPECT_EQ(result.value(QStringLiteral("compared")), QJsonValue{false});
}

TEST_F(PotentiometersCommandTest, AValueOutOfRangeIsAUsageErrorAndARangeMayBeNegative)
{
    const auto before = potentiometers("read 0").out;
    for (const auto* const command : {"write 0 -1 --eeprom", "write 0 100000 --eeprom", "write 0 x", "write 0"})
        EXPECT_EQ(potentiometers(command).exitCode, 2) << command;
    EXPECT_THAT(potentiometers("write 0 0x11").err.toStdString(), HasSubstr("'0x11' is not a whole number"));
    EXPECT_EQ(potentiometers("read 0").out, before);
    EXPECT_EQ(potentiometers("write 0 010 --eeprom").exitCode, 0);
    EXPECT_EQ(potentiometers("read 0").out, "10\n") << "a leading zero means nothing";
    EXPECT_EQ(potentiometers("write 2 -5 --eeprom").exitCode, 0);
    EXPECT_EQ(potentiometers("read 2").out, "-5\n");
}

TEST_F(PotentiometersCommandTest, OneThatTheInstrumentDoesNotHaveIsNotFound)
{
    for (const auto* const command : {"read 1000", "read bogus", "write 1000 1", "read 18446744073709551616"}) {
        const auto outcome = potentiometers(command);
        EXPECT_EQ(outcome.exitCode, 3) << command;
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr("potentiometers list"));
    }
}

TEST_F(PotentiometersCommandTest, ANameGoesBeforeAnIndexAndMustBeTheOnlyOne)
{
    EXPECT_EQ(runAwkward(QStringLiteral("well"), words("potentiometers read 0")).out, "3\n");
    EXPECT_EQ(runAwkward(QStringLiteral("well"), words("potentiometers read 1")).out, "2\n");
    EXPECT_EQ(runAwkward(QStringLiteral("well"), words("potentiometers read twin")).exitCode, 2);
}

TEST_F(PotentiometersCommandTest, NamesAreShownEscaped)
{
    const auto list = runAwkward(QStringLiteral("well"), words("potentiometers list")).out;
    EXPECT_FALSE(list.contains('\x1b'));
    EXPECT_THAT(list.toStdString(), HasSubstr("\\u{1b}[2Jclear"));
}

TEST_F(PotentiometersCommandTest, AWriteThatTheInstrumentForgetsIsNotCalledDone)
{
    const auto outcome = runAwkward(QStringLiteral("forgetful"), words("potentiometers write 1 5 --eeprom"));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("could not be confirmed"));
}

} // namespace tarn::console
