#include <console/consoletest.h>

#include <gmock/gmock.h>

namespace tarn::console {

using testing::HasSubstr;

class UsbCommandTest : public ConsoleTest {
protected:
    QJsonObject current(const QString& address = {})
    {
        const auto outcome = runAt(address, words("--json usb show"));
        EXPECT_EQ(outcome.exitCode, 0);
        return outcome.result().toObject();
    }

    Outcome write(const QString& identity, const QString& address = {})
    {
        return runAt(address, {QStringLiteral("usb"), QStringLiteral("write"), identity, QStringLiteral("--yes")});
    }
};

TEST_F(UsbCommandTest, ListShowsEveryIdentityAndMarksThePresentOne)
{
    const auto list = run(words("--json usb list")).result().toArray();
    ASSERT_GT(list.size(), 1);
    int marked = 0;
    for (const auto value : list) {
        auto object = value.toObject();
        const bool isCurrent = object.take(QStringLiteral("current")).toBool();
        EXPECT_EQ(isCurrent, object == current());
        marked += isCurrent ? 1 : 0;
    }
    EXPECT_EQ(marked, 1);
    const auto text = run(words("usb list")).out;
    EXPECT_EQ(text.count('\n'), list.size());
    EXPECT_EQ(text.count("* "), 1);
}

class UsbOnRestlessInstrument : public UsbCommandTest, public testing::WithParamInterface<const char*> { };

TEST_P(UsbOnRestlessInstrument, IsGivenAnIdentityByNameOrNumbersAndComesBackAsThatModel)
{
    const auto address = QString::fromUtf8(GetParam());
    const auto first = write(QStringLiteral("Pell 102"), address);
    EXPECT_EQ(first.exitCode, 0) << first.err.toStdString();
    EXPECT_THAT(first.err.toStdString(), HasSubstr("(Pell 102), read back and compared"));
    const auto pell = current();
    EXPECT_EQ(pell.value(QStringLiteral("model")).toString(), QStringLiteral("Pell 102"));
    EXPECT_EQ(write(QStringLiteral("Zinnia 203"), address).exitCode, 0);
    EXPECT_EQ(current().value(QStringLiteral("model")).toString(), QStringLiteral("Zinnia 203"));
    EXPECT_EQ(write(pell.value(QStringLiteral("usbId")).toString(), address).exitCode, 0);
    EXPECT_EQ(current(), pell);
    EXPECT_THAT(run(words("-v usb show")).err.toStdString(), HasSubstr("Pell 102"));
}

INSTANTIATE_TEST_SUITE_P(Addresses, UsbOnRestlessInstrument,
                         testing::Values("", "drop-every=1", "drop-every=2,drop-for=20ms", "completion=inline"));

TEST_F(UsbCommandTest, APresentIdentityIsNotWrittenAgain)
{
    const auto again = runAt(QString{},
                             {QStringLiteral("--json"), QStringLiteral("usb"), QStringLiteral("write"),
                              current().value(QStringLiteral("usbId")).toString()});
    EXPECT_EQ(again.exitCode, 0);
    EXPECT_EQ(again.result().toObject().value(QStringLiteral("status")).toString(), QStringLiteral("identical"));
}

TEST_F(UsbCommandTest, AnUnknownIdentityIsNotFoundAndAnAmbiguousOneIsAUsageError)
{
    for (const auto& identity : {QStringLiteral("Pell"), QStringLiteral("ffff:ffff"), QStringLiteral("1:"),
                                 QStringLiteral(":"), QStringLiteral("f3a7:0x0101"), QString{}}) {
        const auto outcome = write(identity);
        EXPECT_EQ(outcome.exitCode, 3) << identity.toStdString();
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr("usb list"));
    }
    EXPECT_EQ(
        runAwkward(QStringLiteral("well"), {QStringLiteral("usb"), QStringLiteral("write"), QStringLiteral("Pell 102")})
            .exitCode,
        2);
}

TEST_F(UsbCommandTest, WriteWithoutATerminalNeedsYesAndOnOneAsks)
{
    ASSERT_EQ(write(QStringLiteral("Pell 101")).exitCode, 0);
    const QStringList command{QStringLiteral("usb"), QStringLiteral("write"), QStringLiteral("Pell 102")};
    EXPECT_EQ(run(command, "y\n").exitCode, 4);
    const auto declined = runOnTerminal(command, "n\n");
    EXPECT_EQ(declined.exitCode, 4);
    EXPECT_THAT(declined.out.toStdString(), HasSubstr("(Pell 101) to "));
    EXPECT_EQ(current().value(QStringLiteral("model")).toString(), QStringLiteral("Pell 101"));
    EXPECT_EQ(runOnTerminal(command, "y\n").exitCode, 0);
    EXPECT_EQ(current().value(QStringLiteral("model")).toString(), QStringLiteral("Pell 102"));
}

TEST_F(UsbCommandTest, AWriteThatTheInstrumentForgetsIsNotCalledDone)
{
    const auto outcome = runAwkward(QStringLiteral("forgetful"), words("usb write 1234:2 --yes"));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("could not be confirmed"));
    EXPECT_EQ(runAwkward(QStringLiteral("well"), words("usb write 1234:2 --yes")).exitCode, 0);
}

// ---- names that must not be trusted

TEST_F(UsbCommandTest, NamesOfModelsAreShownEscaped)
{
    setVariable(QStringLiteral("NO_COLOR"), QStringLiteral("1"));
    const auto list = runAwkward(QStringLiteral("hostile"), words("usb list")).out.toStdString();
    EXPECT_THAT(list, HasSubstr("  One \\u{1b}[2J    revision 1"));
    EXPECT_THAT(list, HasSubstr("  Two \\u{1b}[2J\\u{202e} revision 2"));
    EXPECT_THAT(runAwkward(QStringLiteral("hostile"), words("usb show")).out.toStdString(),
                HasSubstr("  One \\u{1b}[2J    revision 1"));
    const auto written = runAwkward(QStringLiteral("hostile"), words("-v usb write 1234:2 --yes"));
    EXPECT_EQ(written.exitCode, 0);
    EXPECT_THAT(written.err.toStdString(),
                HasSubstr("wrote the USB identity 1234:0002 (Two \\u{1b}[2J\\u{202e}), read"));
    EXPECT_THAT(written.err.toStdString(), HasSubstr("(model Awkward \\u{1b}[2J)"));
    const auto missing = runAwkward(QStringLiteral("hostile"), words("system-terms plan"));
    EXPECT_EQ(missing.exitCode, 3);
    EXPECT_THAT(missing.err.toStdString(), HasSubstr("this instrument (Awkward \\u{1b}[2J) has no"));
    for (const auto& said : {QByteArray::fromStdString(list), written.err, missing.err})
        EXPECT_FALSE(said.contains('\x1b')) << said.toStdString();
}

TEST_F(UsbCommandTest, NamesOfModelsAreAskedForEscapedAndCarriedInJsonAsTheyAre)
{
    const auto asked
        = converse(awkward(QStringLiteral("hostile")) + words("--color never usb write 1234:2"), {{"[y/N] ", "n\n"}});
    EXPECT_EQ(asked.exitCode, 4);
    EXPECT_THAT(asked.out.toStdString(), HasSubstr("from 1234:0001 (One \\u{1b}[2J) to 1234:0002 (Two \\u{1b}[2J"));
    EXPECT_FALSE(asked.out.contains('\x1b'));
    const auto shown = runAwkward(QStringLiteral("hostile"), words("usb show --json"));
    EXPECT_EQ(shown.result().toObject().value(QStringLiteral("model")).toString(), QStringLiteral("One \x1b[2J"));
    EXPECT_FALSE(shown.out.contains('\x1b'));
}

} // namespace tarn::console
