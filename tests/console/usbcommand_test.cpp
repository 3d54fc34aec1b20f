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

} // namespace tarn::console
