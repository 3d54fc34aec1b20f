#include <console/consoletest.h>

#include <QDir>
#include <QFile>

#include <gmock/gmock.h>

namespace tarn::console {

using testing::HasSubstr;

class ProvidersTest : public ConsoleTest {
protected:
    Outcome providers() { return run({QStringLiteral("--json"), QStringLiteral("providers")}); }

    /// The reason for which the only file in the provider folder was refused.
    static std::string refusal(const Outcome& outcome)
    {
        EXPECT_EQ(outcome.exitCode, 0);
        const auto result = outcome.result().toObject();
        EXPECT_TRUE(result.value(QStringLiteral("providers")).toArray().isEmpty());
        const auto refused = result.value(QStringLiteral("refused")).toArray();
        EXPECT_EQ(refused.size(), 1);
        return refused.first().toObject().value(QStringLiteral("reason")).toString().toStdString();
    }
};

TEST_F(ProvidersTest, TheSimulatorIsFoundNextToTheProgramWithEveryOptionOfItsAddresses)
{
    const auto list = providers().result().toObject().value(QStringLiteral("providers")).toArray();
    ASSERT_EQ(list.size(), 1);
    const auto simulator = list.first().toObject();
    EXPECT_EQ(simulator.value(QStringLiteral("name")).toString(), QStringLiteral("simulator"));
    EXPECT_FALSE(simulator.value(QStringLiteral("description")).toString().isEmpty());
    EXPECT_FALSE(simulator.value(QStringLiteral("addressSyntax")).toString().isEmpty());
    EXPECT_TRUE(QFile::exists(simulator.value(QStringLiteral("file")).toString()));
    EXPECT_FALSE(simulator.value(QStringLiteral("addresses")).toArray().isEmpty());
    QStringList names;
    for (const auto option : simulator.value(QStringLiteral("addressOptions")).toArray())
        names.append(option.toObject().value(QStringLiteral("name")).toString());
    EXPECT_THAT(names,
                testing::IsSupersetOf({QStringLiteral("profile"), QStringLiteral("seed"), QStringLiteral("latency"),
                                       QStringLiteral("drop-every"), QStringLiteral("fail")}));
    const auto text = run({QStringLiteral("providers")}).out.toStdString();
    for (const auto& name : names)
        EXPECT_THAT(text, HasSubstr("\n    " + name.toStdString() + "="));
}

TEST_F(ProvidersTest, APlugInForAnotherVersionIsRefusedBeforeItsCodeRuns)
{
    useTestProvider(QStringLiteral("wrong_interface_provider"));
    const auto reason = refusal(providers());
    EXPECT_THAT(reason, HasSubstr("'tarn.DeviceProvider/999'"));
    EXPECT_THAT(reason, HasSubstr("'tarn.DeviceProvider/2'"));
}

TEST_F(ProvidersTest, APlugInWhoseRootObjectIsSomethingElseIsRefused)
{
    useTestProvider(QStringLiteral("wrong_root_provider"));
    EXPECT_THAT(refusal(providers()), HasSubstr("WrongRootProvider"));
}

TEST_F(ProvidersTest, APlugInThatNeedsAFunctionWhichNobodyHasIsRefusedWhenItIsLoaded)
{
    useTestProvider(QStringLiteral("missing_function_provider"));
    EXPECT_THAT(refusal(providers()), HasSubstr("openWithAFunctionThatIsMissing"));
}

TEST_F(ProvidersTest, AFileThatIsNoPlugInIsRefused)
{
    writeLocal(QStringLiteral("libnothing.so"), "not a library");
    writeLocal(QStringLiteral("readme.txt"), "not even called one");
    setVariable(QStringLiteral("TARN_SERVICE_PROVIDERS"), path(QString{}));
    EXPECT_THAT(refusal(providers()), HasSubstr("not a Qt plug-in"));
    const auto text = run({QStringLiteral("providers")});
    EXPECT_EQ(text.exitCode, 0);
    EXPECT_THAT(text.err.toStdString(), HasSubstr("libnothing.so"));
}

TEST_F(ProvidersTest, RefusedFilesDoNotKeepTheOthersFromWorking)
{
    setVariable(QStringLiteral("TARN_SERVICE_PROVIDERS"),
                QStringList{QStringLiteral(TARN_TEST_PROVIDERS "/wrong_root_provider"),
                            QStringLiteral(TARN_TEST_PROVIDERS "/awkward_provider"),
                            QStringLiteral(TARN_TEST_PROVIDERS "/awkward_provider")}
                    .join(QDir::listSeparator()));
    const auto result = providers().result().toObject();
    EXPECT_EQ(result.value(QStringLiteral("providers")).toArray().size(), 1);
    const auto refused = result.value(QStringLiteral("refused")).toArray();
    ASSERT_EQ(refused.size(), 2);
    EXPECT_THAT(refused.last().toObject().value(QStringLiteral("reason")).toString().toStdString(),
                HasSubstr("already"));
    EXPECT_EQ(run({QStringLiteral("--provider"), QStringLiteral("awkward"), QStringLiteral("controls")}).exitCode, 0);
}

TEST_F(ProvidersTest, AnUnknownProviderIsNotFoundAndTheOthersAreNamed)
{
    const auto outcome = run(
        {QStringLiteral("--json"), QStringLiteral("--provider"), QStringLiteral("bogus"), QStringLiteral("controls")});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.error().value(QStringLiteral("code")).toString(), QStringLiteral("not-found"));
    EXPECT_THAT(outcome.error().value(QStringLiteral("message")).toString().toStdString(), HasSubstr("'bogus'"));
    EXPECT_THAT(outcome.error().value(QStringLiteral("hint")).toString().toStdString(), HasSubstr("simulator"));
}

TEST_F(ProvidersTest, WithoutAnyProviderTheFoldersAreNamed)
{
    setVariable(QStringLiteral("TARN_SERVICE_PROVIDERS"), path(QStringLiteral("nowhere")));
    const auto outcome = run({QStringLiteral("controls")});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr(path(QStringLiteral("nowhere")).toStdString()));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("TARN_SERVICE_PROVIDERS"));
    EXPECT_EQ(run({QStringLiteral("providers")}).exitCode, 0);
}

TEST_F(ProvidersTest, WhoeverAsksForAPlugInThatIsRefusedHearsWhy)
{
    useTestProvider(QStringLiteral("wrong_interface_provider"));
    const auto outcome = run({QStringLiteral("--provider"), QStringLiteral("wrong"), QStringLiteral("controls")});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("not used: "));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("'tarn.DeviceProvider/999'"));
}

} // namespace tarn::console
