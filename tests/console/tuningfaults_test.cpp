#include <console/consoletest.h>

#include <QFile>

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

TEST_F(TuningFaultsTest, WatchLooksAgainAsSoonAsTheControlsAreBack)
{
    // Nothing but the return makes it look again. It is with other settings, as after a loss of power.
    const auto leave = [this] { writeLocal(QStringLiteral("away"), {}); };
    const auto comeBack = [this] { EXPECT_TRUE(QFile::remove(path(QStringLiteral("away")))); };
    const auto outcome
        = converse(awkward(QStringLiteral("restless")) + words("quill-power watch --count 2 --interval 24h"),
                   {{"amp-r-port1 low", {}, leave}, {"dropped its controls", {}, comeBack}});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out.toStdString();
    EXPECT_THAT(outcome.out.toStdString(), testing::ContainsRegex("  lo-power 20\r?\n$"));
}

TEST_F(TuningFaultsTest, WatchLooksOnceASecondUnlessTold)
{
    EXPECT_THAT(run(words("quill-power watch --help")).out.simplified().toStdString(), HasSubstr("[1s]"));
    EXPECT_EQ(run(words("quill-power watch --interval 25h")).exitCode, 2);
    EXPECT_EQ(run(words("quill-power watch --count 0")).exitCode, 2);
}

TEST_F(TuningFaultsTest, WatchEndsWhenItsReaderHasGone)
{
    QProcess shell;
    prepare(shell, words("quill-power watch --interval 24h"));
    shell.setArguments(QStringList{QStringLiteral("-c"),
                                   QStringLiteral("\"$0\" \"$@\" | head -n 1; exit \"${PIPESTATUS[0]}\""),
                                   shell.program()}
                       + shell.arguments());
    shell.setProgram(QStringLiteral("bash"));
    shell.start();
    const auto outcome = finish(shell);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out.count('\n'), 1);
}

TEST_F(TuningFaultsTest, WatchDoesNotChaseAnInstrumentThatDropsItsControlsWhenItLooks)
{
    QProcess process;
    prepare(process, words("--address drop-every=2,drop-for=1ms quill-power watch --interval 24h"));
    process.start();
    ASSERT_TRUE(process.waitForReadyRead());
    process.waitForFinished(1000); // of watching: does not end
    interrupt(process);
    const auto outcome = finish(process);
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_LT(outcome.err.count("the controls are back"), 400);
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
