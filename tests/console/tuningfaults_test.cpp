#include <console/consoletest.h>

#include <gmock/gmock.h>

namespace tarn::console {

using testing::HasSubstr;

class TuningFaultsTest : public ConsoleTest {
protected:
    static QJsonValue changed(const QJsonObject& line, const QString& name)
    {
        for (const auto setting : line.value(QStringLiteral("settings")).toArray())
            if (setting.toObject().value(QStringLiteral("name")) == name)
                return setting.toObject().value(QStringLiteral("value"));
        return QJsonValue::Undefined;
    }
};

class RestlessTuning : public TuningFaultsTest, public testing::WithParamInterface<const char*> { };

TEST_P(RestlessTuning, LosesNoValueAndReportsNoFalseOne)
{
    const auto address = QString::fromUtf8(GetParam());
    writeLocal(QStringLiteral("table"), QByteArray{201, '\x20'});
    for (const auto& [lo, rf] : {std::pair{"20", "21"}, std::pair{"30", "31"}, std::pair{"40", "41"}}) {
        const auto set = runAt(address, words("quill-power set lo-power") + words(lo) + words("rf-power") + words(rf));
        EXPECT_EQ(set.out, QByteArray{"lo-power "} + lo + "\nrf-power " + rf + '\n') << set.err.toStdString();
        EXPECT_EQ(run(words("quill-power get lo-power")).out, QByteArray{lo} + '\n');
        EXPECT_EQ(runAt(address, words("quill-power get rf-power")).out, QByteArray{rf} + '\n');
    }
    EXPECT_EQ(runAt(address, words("quill-power show")).out, run(words("quill-power show")).out);
    EXPECT_EQ(runAt(address, words("sable-synthesis show")).out, run(words("sable-synthesis show")).out);
    const auto load = runAt(address, words("quill-power load rf-power-codes table --yes"));
    EXPECT_EQ(load.exitCode, 0) << load.err.toStdString();
    const auto watch = runAt(address, words("-q quill-power watch --count 1"));
    EXPECT_THAT(watch.out.toStdString(), HasSubstr("lo-power 40, rf-power 41"));
    const auto reset = runAt(address, words("quill-power reset"));
    EXPECT_THAT(reset.out.simplified().toStdString(), HasSubstr("lo-power 64 (was 40) 8 to 120 rf-power 64 (was 41)"));
}

INSTANTIATE_TEST_SUITE_P(Addresses, RestlessTuning,
                         testing::Values("", "drop-every=1", "drop-every=2", "drop-every=3",
                                         "drop-every=2,drop-for=20ms"));

class SetThatMayFail : public TuningFaultsTest, public testing::WithParamInterface<int> { };

TEST_P(SetThatMayFail, SaysWhatWasSet)
{
    const auto set = runAt(QStringLiteral("throw-every=%1").arg(GetParam()),
                           words("--json vell-synthesis set manual-if-enabled on selected-if 0"));
    const auto error = set.error().value(QStringLiteral("message")).toString();
    const auto isSaid = [&](const char* what) { return set.exitCode == 0 || error.contains(QLatin1StringView{what}); };
    EXPECT_EQ(run(words("vell-synthesis get manual-if-enabled")).out == "on\n",
              isSaid("manual-if-enabled was set to on"))
        << error.toStdString();
    EXPECT_EQ(run(words("vell-synthesis get selected-if")).out == "0 (1 MHz)\n", isSaid("selected-if was set to 0"))
        << error.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Operations, SetThatMayFail, testing::Range(1, 16));

TEST_F(TuningFaultsTest, WatchShowsAllSettingsAndThenEachChange)
{
    const auto outcome
        = runAwkward(QStringLiteral("shared"), words("--json quill-power watch --count 4 --interval 5ms"));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out.toStdString();
    const auto lines = outcome.objects("result");
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines.first().value(QStringLiteral("settings")).toArray().size(), 16);
    EXPECT_TRUE(lines.first().contains(QStringLiteral("time")));
    for (const auto& line : lines.sliced(1)) {
        EXPECT_EQ(line.value(QStringLiteral("settings")).toArray().size(), 1);
        EXPECT_TRUE(changed(line, QStringLiteral("lo-power")).isDouble());
    }
}

TEST_F(TuningFaultsTest, WatchSeesWhatALossOfPowerChanges)
{
    ASSERT_EQ(run(words("quill-power set lo-power 20")).exitCode, 0);
    const auto outcome
        = runAt(QStringLiteral("power-loss-every=40"), words("--json quill-power watch --count 2 --interval 10ms"));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out.toStdString();
    const auto lines = outcome.objects("result");
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(changed(lines[0], QStringLiteral("lo-power")), 20);
    EXPECT_EQ(changed(lines[1], QStringLiteral("lo-power")), 64);
    EXPECT_EQ(lines[1].value(QStringLiteral("settings")).toArray().size(), 1);
}

TEST_F(TuningFaultsTest, WatchLooksAgainAsSoonAsTheControlsAreBack)
{
    ASSERT_EQ(run(words("quill-power set lo-power 20")).exitCode, 0);
    // Nothing but the return makes it look again.
    const auto outcome
        = runAt(QStringLiteral("power-loss-every=10"), words("--json quill-power watch --count 2 --interval 24h"));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out.toStdString();
    EXPECT_EQ(changed(outcome.objects("result").last(), QStringLiteral("lo-power")), 64);
}

TEST_F(TuningFaultsTest, WatchLooksOnceASecondUnlessTold)
{
    EXPECT_THAT(run(words("quill-power watch --help")).out.simplified().toStdString(), HasSubstr("[1s]"));
    EXPECT_EQ(run(words("quill-power watch --interval 25h")).exitCode, 2);
    EXPECT_EQ(run(words("quill-power watch --count 0")).exitCode, 2);
}

TEST_F(TuningFaultsTest, WatchEndsWithCtrlC)
{
    QProcess process;
    prepare(process, words("--json quill-power watch"));
    process.start();
    ASSERT_TRUE(process.waitForReadyRead());
    interrupt(process);
    const auto outcome = finish(process);
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_EQ(outcome.objects("error").value(0).value(QStringLiteral("code")), QStringLiteral("interrupted"));
}

TEST_F(TuningFaultsTest, AControlThatGoesForGoodIsSaidToBeLost)
{
    const auto outcome = runAwkward(QStringLiteral("vanishing"), words("--json quill-power show"));
    EXPECT_EQ(outcome.exitCode, 5) << outcome.out.toStdString();
}

} // namespace tarn::console
