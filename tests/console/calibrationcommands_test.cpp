#include <console/consoletest.h>

#include <QDateTime>
#include <QFile>

#include <gmock/gmock.h>

namespace tarn::console {

using testing::HasSubstr;
using testing::Not;

/// What the three commands that write calibration data have in common.
struct WriteCommand {
    const char* noun;
    const char* verb;
    const char* doing; ///< how its progress begins
    const char* mismatch; ///< how the instrument refuses the wrong frequencies
    const char* holds; ///< the line of its unit once it is written
};

void PrintTo(const WriteCommand& value, std::ostream* stream)
{
    *stream << value.noun;
}

constexpr WriteCommand systemTerms{"system-terms", "write", "writing the system terms",
                                   "PlanMismatch: the frequencies of the terms", "1  System terms                   "};
constexpr WriteCommand ifsw{"ifsw-calibration", "save", "saving the IF-switch calibration",
                            "PlanMismatch: ", "2  IF switches                    "};
constexpr WriteCommand power{"power-calibration", "save", "saving the power calibration",
                             "PlanMismatch: ", "2  Power                          "};

class CalibrationCommand : public ConsoleTest, public testing::WithParamInterface<WriteCommand> {
protected:
    Outcome command(const QString& rest, const QByteArray& input = {}) { return run(arguments(rest), input); }

    static QStringList arguments(const QString& rest)
    {
        return QStringList{QString::fromUtf8(GetParam().noun)} + rest.split(QLatin1Char{' '});
    }

    QStringList write(const char* options = " --yes") const
    {
        return arguments(QString::fromUtf8(GetParam().verb) + QStringLiteral(" file") + QString::fromUtf8(options));
    }

    /// A file for the instrument's own plan.
    void SetUp() override
    {
        ASSERT_EQ(command(QStringLiteral("plan -o plan")).exitCode, 0);
        writeLocal(QStringLiteral("file"), command(QStringLiteral("example --plan plan")).out);
    }

    bool isStored()
    {
        const auto status = run({QStringLiteral("calibrations"), QStringLiteral("status")}).out;
        EXPECT_THAT(status.toStdString(), HasSubstr(GetParam().holds));
        return status.contains(QByteArray{GetParam().holds} + "valid\n");
    }
};

TEST_P(CalibrationCommand, WritesAnExampleForThePlanOfTheInstrument)
{
    EXPECT_FALSE(isStored());
    const auto outcome = run(write());
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_TRUE(outcome.out.isEmpty());
    const std::string doing = GetParam().doing;
    EXPECT_THAT(outcome.err.toStdString(), testing::StartsWith(doing + ": started\n" + doing + ": "));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr(" %\n"));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr(": written and confirmed by the instrument\n"));
    EXPECT_TRUE(isStored());
}

TEST_P(CalibrationCommand, ReadsStandardInput)
{
    const auto file = readLocal(QStringLiteral("file"));
    const auto verb = QString::fromUtf8(GetParam().verb);
    EXPECT_EQ(command(verb + QStringLiteral(" - --yes"), file).exitCode, 0);
    EXPECT_TRUE(isStored());
    EXPECT_EQ(command(verb + QStringLiteral(" -"), file).exitCode, 4);
}

TEST_P(CalibrationCommand, ShowsPerCentAndTheResultWithJson)
{
    const auto outcome = run(QStringList{QStringLiteral("--json")} + write());
    EXPECT_EQ(outcome.exitCode, 0);
    const auto progress = outcome.objects("progress");
    ASSERT_GT(progress.size(), 1);
    EXPECT_EQ(progress.first(),
              (QJsonObject{{QStringLiteral("operation"), QStringLiteral("write")},
                           {QStringLiteral("done"), 0},
                           {QStringLiteral("total"), 100}}));
    for (qsizetype i = 1; i < progress.size(); ++i)
        EXPECT_LE(progress[i - 1].value(QStringLiteral("done")).toInt(),
                  progress[i].value(QStringLiteral("done")).toInt());
    EXPECT_EQ(progress.last().value(QStringLiteral("done")).toInt(), 100);
    ASSERT_EQ(outcome.objects("result").size(), 1);
    EXPECT_TRUE(outcome.objects("result").first().value(QStringLiteral("confirmed")).toBool());
}

TEST_P(CalibrationCommand, AsksFirstAndChangesNothingWithoutAYes)
{
    const auto refused = run(write(""));
    EXPECT_EQ(refused.exitCode, 4);
    EXPECT_THAT(refused.err.toStdString(), HasSubstr("needs to be confirmed; nothing was changed"));
    const auto no = converse(write(""), {{"[y/N] ", "n\n"}});
    EXPECT_EQ(no.exitCode, 4);
    EXPECT_THAT(no.out.toStdString(), HasSubstr("'file'"));
    EXPECT_THAT(no.out.toStdString(), testing::AnyOf(HasSubstr("now is lost"), HasSubstr("now are lost")));
    EXPECT_FALSE(isStored());
    EXPECT_EQ(converse(write(""), {{"[y/N] ", "y\n"}}).exitCode, 0);
    EXPECT_TRUE(isStored());
}

TEST_P(CalibrationCommand, IsRefusedByTheInstrumentWithTheNameOfTheError)
{
    writeLocal(QStringLiteral("file"), command(QStringLiteral("example")).out);
    const auto outcome = run(write());
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("was refused by the instrument: "));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr(GetParam().mismatch));
    EXPECT_THAT(outcome.err.toStdString(), Not(HasSubstr("confirmed")));
    EXPECT_FALSE(isStored());
}

TEST_P(CalibrationCommand, RefusesABadFileBeforeItOpensTheInstrument)
{
    writeLocal(QStringLiteral("file"), readLocal(QStringLiteral("file")).replace("1000000000", "x"));
    const auto outcome
        = run(QStringList{QStringLiteral("--address"), QStringLiteral("there is no such option=1")} + write());
    EXPECT_EQ(outcome.exitCode, 9);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("'file', line "));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr(": found "));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr(", expected "));
    EXPECT_THAT(outcome.err.toStdString(),
                HasSubstr(std::string{"'tarn-service "} + GetParam().noun + " example' prints a valid file"));
    EXPECT_EQ(run(arguments(QString::fromUtf8(GetParam().verb) + QStringLiteral(" missing --yes"))).exitCode, 9);
    EXPECT_FALSE(isStored());
}

TEST_P(CalibrationCommand, ShowsThePlanAsTextAsJsonAndAsAFile)
{
    const auto text = command(QStringLiteral("plan"));
    const auto json = command(QStringLiteral("plan --json")).result().toObject();
    const auto segments = json.value(QStringLiteral("segments")).toArray();
    EXPECT_EQ(text.out.count('\n'), segments.size());
    EXPECT_EQ(QJsonDocument::fromJson(readLocal(QStringLiteral("plan"))).object(), json);
    EXPECT_EQ(command(QStringLiteral("plan -o plan --json")).result().toObject().value(QStringLiteral("status")),
              QStringLiteral("identical"));
    writeLocal(QStringLiteral("plan"), "mine");
    EXPECT_EQ(command(QStringLiteral("plan -o plan")).exitCode, 4);
    EXPECT_EQ(command(QStringLiteral("plan -o plan --overwrite")).exitCode, 0);
    EXPECT_EQ(QJsonDocument::fromJson(readLocal(QStringLiteral("plan"))).object(), json);
}

TEST_P(CalibrationCommand, IsNotOfferedByABareInstrument)
{
    for (const auto& arguments : {write(), this->arguments(QStringLiteral("plan"))}) {
        const auto outcome = runAt(QStringLiteral("profile=bare"), QStringList{QStringLiteral("--json")} + arguments);
        EXPECT_EQ(outcome.exitCode, 3);
        EXPECT_EQ(outcome.error().value(QStringLiteral("code")).toString(), QStringLiteral("not-offered"));
    }
}

TEST_P(CalibrationCommand, MakesNoExampleOfABadOrEndlessPlan)
{
    writeLocal(QStringLiteral("plan"), "{}");
    EXPECT_EQ(command(QStringLiteral("example --plan plan")).exitCode, 9);
    writeLocal(QStringLiteral("plan"),
               R"({"format": "tarn-frequency-plan/1", "segments": [{"start": 1, "stop": 2, "points": 2147483647}]})");
    const auto outcome = command(QStringLiteral("example --plan plan"));
    EXPECT_EQ(outcome.exitCode, 9);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("found 2147483647 points, expected at most 100000"));
}

TEST_P(CalibrationCommand, MakesNoExampleOfAPlanWhosePointsDoNotAscend)
{
    const auto refusalOf = [&](const char* segments) {
        writeLocal(QStringLiteral("plan"),
                   QByteArray{R"({"format": "tarn-frequency-plan/1", "segments": [)"} + segments + "]}");
        const auto outcome = command(QStringLiteral("example --plan plan"));
        EXPECT_EQ(outcome.exitCode, 9) << segments;
        EXPECT_TRUE(outcome.out.isEmpty());
        return outcome.err.toStdString();
    };
    EXPECT_THAT(refusalOf(R"({"start": 3, "stop": 1, "points": 3})"),
                HasSubstr("$.segments[0].stop: found 1, expected a frequency above the one before it, 3, for"));
    EXPECT_THAT(refusalOf(R"({"start": 3, "stop": 3, "points": 2})"), HasSubstr("$.segments[0].stop: found 3"));
    EXPECT_THAT(refusalOf(R"({"start": 1, "stop": 3, "points": 3}, {"start": 3, "stop": 4, "points": 2})"),
                HasSubstr("$.segments[1].start: found 3, expected a frequency above the one before it, 3, for"));
    writeLocal(
        QStringLiteral("plan"),
        R"({"format": "tarn-frequency-plan/1", "segments": [{"start": 2, "stop": 9, "points": 1}, {"start": 3, "stop": 4, "points": 2}]})");
    EXPECT_EQ(command(QStringLiteral("example --plan plan")).exitCode, 0) << "one point is the start";
}

TEST_P(CalibrationCommand, TakesOverwriteOnlyWithAFileToOverwrite)
{
    EXPECT_EQ(command(QStringLiteral("plan --overwrite")).exitCode, 2);
}

INSTANTIATE_TEST_SUITE_P(Commands, CalibrationCommand, testing::Values(systemTerms, ifsw, power));

class SystemTermsExampleTest : public ConsoleTest { };

TEST_F(SystemTermsExampleTest, HasAsManyPortsAsTheInstrument)
{
    const auto at = [&](const char* rest) { return runAt(QStringLiteral("profile=multiport-lum"), words(rest)); };
    ASSERT_EQ(at("system-terms plan -o plan").exitCode, 0);
    writeLocal(QStringLiteral("four"), at("system-terms example --plan plan --ports 4").out);
    writeLocal(QStringLiteral("two"), at("system-terms example --plan plan").out);
    EXPECT_EQ(at("system-terms write four --yes").exitCode, 0);
    EXPECT_THAT(at("system-terms write two --yes").err.toStdString(), HasSubstr("PortCountMismatch: "));
    for (const auto* const bad : {"0", "65", "-1", "x", "2.5"})
        EXPECT_EQ(run({QStringLiteral("system-terms"), QStringLiteral("example"), QStringLiteral("--ports"),
                       QString::fromUtf8(bad)})
                      .exitCode,
                  2)
            << bad;
}

class CalibrationExample : public ConsoleTest,
                           public testing::WithParamInterface<std::pair<const char*, const char*>> { };

TEST_P(CalibrationExample, OfTheRepositoryIsWhatTheProgramPrints)
{
    const auto& [command, name] = GetParam();
    QFile file{QStringLiteral(TARN_EXAMPLES "/") + QString::fromUtf8(name)};
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    const auto contents = file.readAll();
    EXPECT_EQ(run(words(command)).out, contents);
    EXPECT_EQ(run(words(command) + words("--json")).result().toObject().value(QStringLiteral("example")),
              QString::fromUtf8(contents));
}

INSTANTIATE_TEST_SUITE_P(Kinds, CalibrationExample,
                         testing::Values(std::pair{"system-terms example", "system-terms.json"},
                                         std::pair{"system-terms example-plan", "plan.json"},
                                         std::pair{"ifsw-calibration example", "ifsw-calibration.json"},
                                         std::pair{"power-calibration example", "power-calibration.csv"}));

class SystemTermsCommandTest : public ConsoleTest {
protected:
    static constexpr auto at = "--value 20 --time 2026-01-02T03:04:05Z";

    Outcome terms(const QString& rest)
    {
        return run(QStringLiteral("system-terms %1").arg(rest).split(QLatin1Char{' '}));
    }

    void SetUp() override
    {
        writeLocal(QStringLiteral("terms"), terms(QStringLiteral("example")).out);
        writeLocal(QStringLiteral("plan"), terms(QStringLiteral("example-plan")).out);
    }
};

TEST_F(SystemTermsCommandTest, AreWrittenForAnotherPlanWhereTheInstrumentSupportsThat)
{
    EXPECT_EQ(terms(QStringLiteral("override")).out, "yes\n");
    const auto outcome = terms(QStringLiteral("write terms --plan plan --yes --json -q %1").arg(QLatin1StringView{at}));
    EXPECT_EQ(outcome.result().toObject(),
              (QJsonObject{{QStringLiteral("ports"), 2},
                           {QStringLiteral("frequencies"), 4},
                           {QStringLiteral("plan"), QStringLiteral("given")},
                           {QStringLiteral("time"), QStringLiteral("2026-01-02T03:04:05Z")},
                           {QStringLiteral("temperature"), 20},
                           {QStringLiteral("confirmed"), true}}));

    EXPECT_EQ(terms(QStringLiteral("override --address profile=pell")).out, "no\n");
    const auto refused = terms(QStringLiteral("write terms --plan plan --yes --address profile=pell"));
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.err.toStdString(), HasSubstr("OverrideNotSupported: "));
}

TEST_F(SystemTermsCommandTest, AreMeasuredNowAtThePresentTemperatureUnlessToldOtherwise)
{
    const auto before = QDateTime::currentSecsSinceEpoch();
    const auto result = terms(QStringLiteral("write terms --plan plan --yes --json -q")).result().toObject();
    const auto time = QDateTime::fromString(result.value(QStringLiteral("time")).toString(), Qt::ISODate);
    EXPECT_GE(time.toSecsSinceEpoch(), before);
    EXPECT_LE(time.toSecsSinceEpoch(), QDateTime::currentSecsSinceEpoch());
    EXPECT_NEAR(result.value(QStringLiteral("temperature")).toDouble(), 25, 20);
}

TEST_F(SystemTermsCommandTest, NameTheErrorOfTheInstrument)
{
    const auto refusal = [&](const char* options) {
        const auto outcome = terms(QStringLiteral("write terms --yes %1").arg(QLatin1StringView{options}));
        EXPECT_EQ(outcome.exitCode, 1) << outcome.err.toStdString();
        return outcome.err.toStdString();
    };
    EXPECT_THAT(refusal("--plan plan --value 500"), HasSubstr("TemperatureOutOfRange: "));
    EXPECT_THAT(refusal("--plan plan --address profile=multiport-lum"), HasSubstr("PortCountMismatch: "));
    EXPECT_THAT(refusal("--plan plan --address write-protect=on"), HasSubstr("WriteFailed: "));
}

TEST_F(SystemTermsCommandTest, TakeNoTimeOrTemperatureThatIsNone)
{
    for (const auto* const option : {"--time now", "--time 2026-01-02", "--value nan", "--value warm"})
        EXPECT_EQ(terms(QStringLiteral("write terms --yes %1").arg(QLatin1StringView{option})).exitCode, 2) << option;
}

TEST_F(SystemTermsCommandTest, ShowForeignTextOfAFileEscaped)
{
    writeLocal(QStringLiteral("terms"),
               readLocal(QStringLiteral("terms")).replace("\"ports\"", "\"\\u001b[2J\": 1, \"ports\""));
    const auto outcome = terms(QStringLiteral("write terms --yes"));
    EXPECT_EQ(outcome.exitCode, 9);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("found a member \"\\u{1b}[2J\", expected only "));
}

TEST_F(SystemTermsCommandTest, RefuseABadPlanFileBeforeTheInstrumentIsOpened)
{
    writeLocal(QStringLiteral("plan"), R"({"format": "tarn-frequency-plan/1", "segments": []})");
    const auto outcome = terms(QStringLiteral("write terms --plan plan --yes --address nonsense=1"));
    EXPECT_EQ(outcome.exitCode, 9);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("'plan', $.segments: found an array of 0 elements, expected"));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("'tarn-service system-terms example-plan'"));
}

} // namespace tarn::console
