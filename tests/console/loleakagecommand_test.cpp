#include <console/consoletest.h>

#include <gmock/gmock.h>

namespace tarn::console {

using testing::HasSubstr;

class LoLeakageCommandTest : public ConsoleTest {
protected:
    Outcome leakage(const QString& address, const QString& verb)
    {
        return run(
            {QStringLiteral("--address"), address, QStringLiteral("--json"), QStringLiteral("lo-leakage"), verb});
    }

    static QString code(const Outcome& outcome) { return outcome.error().value(QStringLiteral("code")).toString(); }

    static bool enabled(const Outcome& outcome)
    {
        const auto value = outcome.result().toObject().value(QStringLiteral("enabled"));
        EXPECT_TRUE(value.isBool());
        return value.toBool();
    }
};

class LoLeakageOnRestlessInstrument : public LoLeakageCommandTest, public testing::WithParamInterface<const char*> { };

TEST_P(LoLeakageOnRestlessInstrument, IsSwitchedAndReadBackByAnotherProcess)
{
    const auto address = QString::fromUtf8(GetParam());
    EXPECT_FALSE(enabled(leakage(address, QStringLiteral("show"))));
    EXPECT_TRUE(enabled(leakage(address, QStringLiteral("on"))));
    EXPECT_TRUE(enabled(leakage(address, QStringLiteral("show"))));
    EXPECT_TRUE(enabled(leakage(address, QStringLiteral("on"))));
    EXPECT_FALSE(enabled(leakage(address, QStringLiteral("off"))));
    EXPECT_FALSE(enabled(leakage(address, QStringLiteral("show"))));
}

INSTANTIATE_TEST_SUITE_P(Addresses, LoLeakageOnRestlessInstrument,
                         testing::Values("", "drop-every=1", "drop-every=2", "drop-every=3",
                                         "drop-every=2,drop-for=20ms", "drop-every=3,completion=inline"));

TEST_F(LoLeakageCommandTest, LoLeakageIsAWordOnStandardOutput)
{
    EXPECT_EQ(run({QStringLiteral("lo-leakage"), QStringLiteral("show")}).out, "off\n");
    const auto on = run({QStringLiteral("lo-leakage"), QStringLiteral("on")});
    EXPECT_TRUE(on.out.isEmpty());
    EXPECT_EQ(on.err, "LO leakage is on\n");
    EXPECT_EQ(run({QStringLiteral("lo-leakage"), QStringLiteral("show")}).out, "on\n");
}

class SwitchThatMayFail : public LoLeakageCommandTest, public testing::WithParamInterface<int> { };

TEST_P(SwitchThatMayFail, SaysWhenTheChangeWasMade)
{
    const auto on = leakage(QStringLiteral("throw-every=%1").arg(GetParam()), QStringLiteral("on"));
    const bool made = enabled(leakage(QString{}, QStringLiteral("show")));
    const auto message = on.error().value(QStringLiteral("message")).toString();
    EXPECT_EQ(made, on.exitCode == 0 || message.contains(QStringLiteral("could not be confirmed")))
        << message.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Operations, SwitchThatMayFail, testing::Range(1, 12));

TEST_F(LoLeakageCommandTest, ASwitchThatTheInstrumentForgetsIsNotCalledDone)
{
    const auto on = runAwkward(QStringLiteral("forgetful"),
                               {QStringLiteral("--json"), QStringLiteral("lo-leakage"), QStringLiteral("on")});
    EXPECT_EQ(on.exitCode, 1);
    EXPECT_EQ(code(on), QStringLiteral("failed"));
    EXPECT_THAT(on.error().value(QStringLiteral("message")).toString().toStdString(),
                HasSubstr("could not be confirmed"));
    EXPECT_EQ(runAwkward(QStringLiteral("forgetful"), {QStringLiteral("lo-leakage"), QStringLiteral("off")}).exitCode,
              0);
}

TEST_F(LoLeakageCommandTest, ASwitchThatIsNotThereWheneverItIsToBeReadIsAFailureAndNotOff)
{
    const auto outcome = runAwkward(QStringLiteral("flickering"), words("--json lo-leakage show"));
    EXPECT_EQ(outcome.exitCode, 1) << outcome.out.toStdString();
    EXPECT_EQ(code(outcome), QStringLiteral("failed"));
    EXPECT_THAT(outcome.error().value(QStringLiteral("message")).toString().toStdString(),
                HasSubstr("keeps dropping its controls"));
}

} // namespace tarn::console
