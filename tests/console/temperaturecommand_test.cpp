#include <console/consoletest.h>

#include <QDateTime>
#include <QFile>

#include <gmock/gmock.h>

namespace tarn::console {

using testing::HasSubstr;

class TemperatureCommandTest : public ConsoleTest {
protected:
    static QStringList watch(const QStringList& arguments)
    {
        return QStringList{QStringLiteral("--json"), QStringLiteral("temperature"), QStringLiteral("watch")}
        + arguments;
    }

    // What a restless instrument does at a sign of the test's.
    [[nodiscard]] std::function<void()> leave() const
    {
        return [this] { writeLocal(QStringLiteral("away"), {}); };
    }
    [[nodiscard]] std::function<void()> comeBack() const
    {
        return [this] { EXPECT_TRUE(QFile::remove(path(QStringLiteral("away")))); };
    }

    /// Watches an instrument, as `arguments` say, that leaves after the first reading and comes back,
    /// then goes on with `replies`.
    Outcome watchAbsence(const QStringList& arguments, const std::vector<Reply>& replies)
    {
        std::vector<Reply> all{{"°C", {}, leave()}, {"dropped its controls", {}, comeBack()}, {"are back", {}}};
        all.insert(all.end(), replies.begin(), replies.end());
        return converse(awkward(QStringLiteral("restless")) + words("temperature watch") + arguments, all);
    }
};

TEST_F(TemperatureCommandTest, ShowsTheInstrumentAndItsModulesInOrder)
{
    const auto reading
        = runAwkward(QString{}, {QStringLiteral("--json"), QStringLiteral("temperature"), QStringLiteral("show")})
              .result()
              .toObject();
    const auto module = [](const char* name, double temperature) {
        return QJsonObject{{QStringLiteral("name"), QLatin1StringView{name}},
                           {QStringLiteral("temperature"), temperature}};
    };
    const QJsonObject expected{
        {QStringLiteral("temperature"), 30.5},
        {QStringLiteral("modules"), QJsonArray{module("front end", 35.0), module("synth \x1b[31m", 41.25)}}};
    EXPECT_EQ(reading, expected);
}

TEST_F(TemperatureCommandTest, ShowsModuleNamesEscaped)
{
    const auto outcome = runAwkward(QString{}, {QStringLiteral("temperature"), QStringLiteral("show")});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("30.50 °C"));
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("synth \\u{1b}[31m"));
    EXPECT_FALSE(outcome.out.contains('\x1b'));
}

TEST_F(TemperatureCommandTest, ShowsTheSimulatedInstrument)
{
    for (const auto& address : {QString{}, QStringLiteral("drop-every=1")}) {
        const auto reading = run({QStringLiteral("--address"), address, QStringLiteral("--json"),
                                  QStringLiteral("temperature"), QStringLiteral("show")})
                                 .result()
                                 .toObject();
        EXPECT_GT(reading.value(QStringLiteral("temperature")).toDouble(), 0.0);
        EXPECT_FALSE(reading.value(QStringLiteral("modules")).toArray().isEmpty());
    }
}

TEST_F(TemperatureCommandTest, WatchShowsAReadingALineAndEndsAfterTheCount)
{
    const auto outcome = runAwkward(QString{}, watch({QStringLiteral("--count"), QStringLiteral("5")}));
    EXPECT_EQ(outcome.exitCode, 0);
    const auto readings = outcome.objects();
    ASSERT_EQ(readings.size(), 5);
    for (const auto& reading : readings) {
        EXPECT_EQ(reading.value(QStringLiteral("command")).toString(), QStringLiteral("temperature watch"));
        const auto result = reading.value(QStringLiteral("result")).toObject();
        EXPECT_EQ(result.value(QStringLiteral("temperature")).toDouble(), 30.5);
        EXPECT_TRUE(
            QDateTime::fromString(result.value(QStringLiteral("time")).toString(), Qt::ISODateWithMs).isValid());
    }
    EXPECT_EQ(runAwkward(QString{},
                         {QStringLiteral("temperature"), QStringLiteral("watch"), QStringLiteral("--count"),
                          QStringLiteral("3")})
                  .out.count('\n'),
              3);
}

TEST_F(TemperatureCommandTest, AnIntervalIsADayAtMost)
{
    EXPECT_EQ(run(watch({QStringLiteral("--interval"), QStringLiteral("25h")})).exitCode, 2);
    EXPECT_THAT(run(words("temperature watch --help")).out.simplified().toStdString(), HasSubstr("a day at most"));
}

TEST_F(TemperatureCommandTest, WatchGoesOnWhenTheInstrumentIsBack)
{
    const auto outcome = watchAbsence({}, {{"°C", {}}, {"°C", "\x03"}});
    EXPECT_EQ(outcome.exitCode, 130) << outcome.out.toStdString();
}

TEST_F(TemperatureCommandTest, WatchShowsOneReadingInTheInterval)
{
    // The instrument measures every 2 ms; in two absences much of that has passed.
    const auto outcome = watchAbsence(
        words("--interval 24h"), {{{}, {}, leave()}, {"dropped its controls", {}, comeBack()}, {"are back", "\x03"}});
    EXPECT_EQ(outcome.exitCode, 130) << outcome.out.toStdString();
    EXPECT_EQ(outcome.out.count("30.50 °C"), 1) << outcome.out.toStdString();
}

TEST_F(TemperatureCommandTest, WatchEndsWithCtrlC)
{
    QProcess process;
    prepare(process, awkward({}) + watch({}));
    process.start();
    ASSERT_TRUE(process.waitForReadyRead());
    interrupt(process);
    const auto outcome = finish(process);
    EXPECT_EQ(outcome.exitCode, 130);
    const auto last = outcome.objects().last();
    EXPECT_EQ(last.value(QStringLiteral("error")).toObject().value(QStringLiteral("code")).toString(),
              QStringLiteral("interrupted"));
}

} // namespace tarn::console
