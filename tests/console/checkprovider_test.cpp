#include <console/consoletest.h>

#include <gmock/gmock.h>

namespace tarn::console {

using testing::HasSubstr;
using testing::Not;

class CheckProviderTest : public ConsoleTest {
protected:
    /// The row of that guarantee in the result.
    static QJsonObject rowOf(const QJsonObject& result, const char* name)
    {
        for (const auto row : result.value(QStringLiteral("guarantees")).toArray()) {
            if (row.toObject().value(QStringLiteral("name")).toString() == QString::fromUtf8(name))
                return row.toObject();
        }
        ADD_FAILURE() << "no guarantee " << name;
        return {};
    }

    static std::string verdictOf(const QJsonObject& result, const char* name)
    {
        return rowOf(result, name).value(QStringLiteral("verdict")).toString().toStdString();
    }
};

TEST_F(CheckProviderTest, ShowsThatTheSimulatorKeepsEveryGuarantee)
{
    const auto outcome = runAt(QStringLiteral("drop-every=5"), words("check-provider --writes"));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    const auto text = outcome.out.toStdString();
    EXPECT_THAT(text, HasSubstr("GUARANTEE              VERDICT      SEEN\nkeys                   kept         "));
    EXPECT_THAT(text, testing::ContainsRegex("handles-expire +kept .*; [0-9]+ drop"));
    EXPECT_THAT(text, HasSubstr(" 0 broken"));
    EXPECT_THAT(text, Not(HasSubstr("What to do")));
    EXPECT_TRUE(outcome.err.isEmpty()) << outcome.err.toStdString();
}

TEST_F(CheckProviderTest, SaysWhatWasFoundAndWhatToDo)
{
    const auto outcome = runAt(QStringLiteral("profile=pell,misbehave=twice"), words("check-provider"));
    EXPECT_EQ(outcome.exitCode, 1);
    const auto text = outcome.out.toStdString();
    EXPECT_THAT(text,
                testing::ContainsRegex("one-completion +broken +[0-9]+ calls of up to [0-9.]+ ms; [0-9]+ requests"));
    EXPECT_THAT(text, HasSubstr("\n    A request that returns is completed exactly once"));
    EXPECT_THAT(text, HasSubstr("\n    - file-memory fileList was completed 2 times\n"));
    EXPECT_THAT(text, HasSubstr("\n    What to do: "));
    EXPECT_THAT(text, testing::ContainsRegex("values-survive +not-checked +it can only be checked by changing"));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("error: the provider 'simulator' breaks 1 of 11 guarantees"));
}

TEST_F(CheckProviderTest, SaysTheSameInJson)
{
    const auto outcome = runAt(QStringLiteral("profile=pell,misbehave=drop"), words("--json check-provider"));
    EXPECT_EQ(outcome.exitCode, 1);
    ASSERT_EQ(outcome.objects().size(), 2);
    const auto result = outcome.objects("result").value(0);
    EXPECT_FALSE(result.value(QStringLiteral("conforming")).toBool(true));
    EXPECT_EQ(verdictOf(result, "keys"), "kept");
    EXPECT_EQ(verdictOf(result, "refused-alone"), "not-checked");
    const auto row = rowOf(result, "one-completion");
    EXPECT_EQ(row.value(QStringLiteral("verdict")).toString(), QStringLiteral("broken"));
    const auto finding = row.value(QStringLiteral("findings")).toArray().first().toObject();
    EXPECT_EQ(finding.value(QStringLiteral("where")).toString(), QStringLiteral("file-memory fileList"));
    EXPECT_EQ(finding.value(QStringLiteral("what")).toString(),
              QStringLiteral("let go of its completion without calling it"));
    EXPECT_GT(row.value(QStringLiteral("seen")).toObject().value(QStringLiteral("requests")).toInteger(), 3);
    EXPECT_EQ(outcome.objects("error").value(0).value(QStringLiteral("code")).toString(),
              QStringLiteral("not-conforming"));
}

TEST_F(CheckProviderTest, FindsThePeculiaritiesOfAnotherProvider)
{
    // It offers one control at every second question only.
    const auto outcome = runAwkward(QStringLiteral("flickering"), words("--json check-provider"));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(verdictOf(outcome.objects("result").value(0), "keys"), "broken");
}

TEST_F(CheckProviderTest, GivesUpACallThatDoesNotComeBackAndEnds)
{
    const auto outcome = runAwkward(QStringLiteral("stuck=lo-leakage"), words("--timeout 500ms --json check-provider"));
    EXPECT_EQ(outcome.exitCode, 1);
    const auto result = outcome.objects("result").value(0);
    EXPECT_THAT(QJsonDocument{rowOf(result, "slots")}.toJson().toStdString(),
                HasSubstr("has not returned within 500 ms"));
    EXPECT_EQ(outcome.objects("error").value(0).value(QStringLiteral("code")).toString(),
              QStringLiteral("not-conforming"));
}

TEST_F(CheckProviderTest, ChangesARealInstrumentOnlyWithConsent)
{
    const auto refused = runAwkward({}, words("check-provider --writes"));
    EXPECT_EQ(refused.exitCode, 4);
    EXPECT_THAT(refused.err.toStdString(), HasSubstr("checking the provider with --writes needs to be confirmed"));
    EXPECT_TRUE(refused.out.isEmpty());
    const auto agreed = runAwkward(QStringLiteral("forgetful"), words("check-provider --writes --yes"));
    EXPECT_THAT(agreed.out.toStdString(), HasSubstr("lo-leakage isEnabled was set to 1 and is 0"));
}

TEST_F(CheckProviderTest, NeedsAnInstrumentThatCanBeOpened)
{
    EXPECT_EQ(runAwkward(QStringLiteral("busy"), words("check-provider")).exitCode, 3);
    const auto wrong = run(words("check-provider --await-drop soon"));
    EXPECT_EQ(wrong.exitCode, 2);
    EXPECT_THAT(wrong.err.toStdString(), HasSubstr("'soon' is not a time such as 30s"));
}

TEST_F(CheckProviderTest, EndsAfterCtrlCWithTheInstrumentAsItWas)
{
    QProcess process;
    startUntil(process, words("-v --address latency=50ms check-provider --writes"), "checking one-completion");
    interrupt(process);
    const auto outcome = finish(process);
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("error: interrupted"));
    EXPECT_THAT(outcome.out.toStdString(), Not(HasSubstr("put back")));
}

} // namespace tarn::console
