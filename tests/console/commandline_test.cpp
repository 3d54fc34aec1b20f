#include <console/consoletest.h>

#include <gmock/gmock.h>

#include <utility>

namespace tarn::console {

using testing::HasSubstr;

class CommandLineTest : public ConsoleTest { };

TEST_F(CommandLineTest, HelpNamesEveryCommandAndGivesExamplesAndExitCodes)
{
    const auto outcome = run({QStringLiteral("--help")});
    EXPECT_EQ(outcome.exitCode, 0);
    const auto help = outcome.out.toStdString();
    for (const auto* const word : {"providers", "check-provider", "controls", "files", "lo-leakage", "temperature",
                                   "tour", "--provider", "--address", "--state", "--json", "--color", "--quiet",
                                   "--verbose", "--version", "Examples:", "Exit codes:", "NO_COLOR"})
        EXPECT_THAT(help, HasSubstr(word));
    EXPECT_TRUE(outcome.err.isEmpty());
}

TEST_F(CommandLineTest, EveryCommandHasHelpOfItsOwn)
{
    const QList<QStringList> commands{
        {QStringLiteral("providers")},
        {QStringLiteral("check-provider")},
        {QStringLiteral("controls")},
        {QStringLiteral("files")},
        {QStringLiteral("files"), QStringLiteral("list")},
        {QStringLiteral("files"), QStringLiteral("space")},
        {QStringLiteral("files"), QStringLiteral("read")},
        {QStringLiteral("files"), QStringLiteral("write")},
        {QStringLiteral("files"), QStringLiteral("delete")},
        {QStringLiteral("lo-leakage")},
        {QStringLiteral("lo-leakage"), QStringLiteral("show")},
        {QStringLiteral("lo-leakage"), QStringLiteral("on")},
        {QStringLiteral("lo-leakage"), QStringLiteral("off")},
        {QStringLiteral("temperature")},
        {QStringLiteral("temperature"), QStringLiteral("show")},
        {QStringLiteral("temperature"), QStringLiteral("watch")},
        {QStringLiteral("tour")},
    };
    for (const auto& command : commands) {
        const auto outcome = run(command + QStringList{QStringLiteral("--help")});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_THAT(outcome.out.toStdString(),
                    HasSubstr("Usage: tarn-service " + command.join(QLatin1Char{' '}).toStdString() + " [OPTIONS]"));
    }
}

TEST_F(CommandLineTest, HelpCallsTheWordsByTheirNames)
{
    const auto usage = [this](const char* command) {
        const auto help = run(words(command)).out;
        return help.mid(help.indexOf("Usage:")).split('\n').value(0).toStdString();
    };
    EXPECT_EQ(usage("--help"), "Usage: tarn-service [OPTIONS] NOUN");
    EXPECT_EQ(usage("files --help"), "Usage: tarn-service files [OPTIONS] VERB");
    EXPECT_EQ(usage("files read --help"), "Usage: tarn-service files read [OPTIONS] NAME");
}

TEST_F(CommandLineTest, VersionIsALineOrAnObject)
{
    const auto text = run({QStringLiteral("--version")});
    EXPECT_EQ(text.exitCode, 0);
    EXPECT_THAT(text.out.toStdString(), testing::MatchesRegex("tarn-service [0-9]+\\.[0-9]+\\.[0-9]+\n"));
    const auto json = run({QStringLiteral("--json"), QStringLiteral("--version")});
    EXPECT_EQ(json.exitCode, 0);
    EXPECT_EQ("tarn-service " + json.result().toObject().value(QStringLiteral("version")).toString().toStdString()
                  + "\n",
              text.out.toStdString());
}

TEST_F(CommandLineTest, GlobalOptionsStandBeforeOrAfterTheCommand)
{
    const auto before = run({QStringLiteral("--json"), QStringLiteral("controls")});
    const auto after = run({QStringLiteral("controls"), QStringLiteral("--json")});
    const auto between = run({QStringLiteral("files"), QStringLiteral("--json"), QStringLiteral("list")});
    EXPECT_EQ(before.out, after.out);
    EXPECT_EQ(before.object().value(QStringLiteral("command")).toString(), QStringLiteral("controls"));
    EXPECT_EQ(between.object().value(QStringLiteral("command")).toString(), QStringLiteral("files list"));
}

struct Misuse {
    const char* arguments; ///< separated by blanks
    const char* message; ///< part of it
    const char* hint; ///< part of it
    const char* command; ///< as far as it was understood
};

void PrintTo(const Misuse& value, std::ostream* stream)
{
    *stream << '"' << value.arguments << '"';
}

class Misused : public ConsoleTest, public testing::WithParamInterface<Misuse> {
protected:
    [[nodiscard]] static QStringList arguments()
    {
        return QString::fromUtf8(GetParam().arguments).split(QLatin1Char{' '}, Qt::SkipEmptyParts);
    }
};

TEST_P(Misused, SaysWhatIsWrongAndWhatToDoNext)
{
    const auto outcome = run(arguments());
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_TRUE(outcome.out.isEmpty()) << outcome.out.toStdString();
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr(GetParam().message));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr(GetParam().hint));
    EXPECT_FALSE(outcome.err.contains("is not an option") && outcome.err.contains("one of:"))
        << "a command is no substitute for an option";
}

TEST_P(Misused, SaysTheSameInJson)
{
    const auto json = QStringLiteral("--json");
    QList<QStringList> commands{QStringList{json} + arguments()};
    if (!arguments().endsWith(QStringLiteral("-o")) && !arguments().endsWith(QStringLiteral("--provider")))
        // these take whatever follows
        commands.append(arguments() + QStringList{json});
    for (const auto& command : commands) {
        const auto outcome = run(command);
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_TRUE(outcome.err.isEmpty()) << outcome.err.toStdString();
        EXPECT_EQ(outcome.object().value(QStringLiteral("command")).toString(), QString::fromUtf8(GetParam().command));
        EXPECT_EQ(outcome.error().value(QStringLiteral("code")).toString(), QStringLiteral("usage"));
        EXPECT_THAT(outcome.error().value(QStringLiteral("message")).toString().toStdString(),
                    HasSubstr(GetParam().message));
        EXPECT_THAT(outcome.error().value(QStringLiteral("hint")).toString().toStdString(), HasSubstr(GetParam().hint));
    }
}

INSTANTIATE_TEST_SUITE_P(
    CommandLines, Misused,
    testing::Values(
        Misuse{"", "'tarn-service' needs a command", "one of: providers, check-provider, controls, files", ""},
        Misuse{"bogus", "'bogus' is not a command of 'tarn-service'",
               "one of: providers, check-provider, controls, files", ""},
        Misuse{"files", "'tarn-service files' needs a command", "one of: list, space, read, write, delete", "files"},
        Misuse{"files bogus", "'bogus' is not a command of 'tarn-service files'", "one of: list, space", "files"},
        Misuse{"files list extra", "extra", "'tarn-service files list --help'", "files list"},
        Misuse{"files read", "NAME is required", "'tarn-service files read --help'", "files read"},
        Misuse{"files read a b", "b", "'tarn-service files read --help'", "files read"},
        Misuse{"files read a -o", "-o", "'tarn-service files read --help'", "files read"},
        Misuse{"files write", "PATH is required", "'tarn-service files write --help'", "files write"},
        Misuse{"files write -", "needs a name", "--as NAME", "files write"},
        Misuse{"files write folder/", "needs a name", "--as NAME", "files write"},
        Misuse{"files delete", "NAME is required", "'tarn-service files delete --help'", "files delete"},
        Misuse{"lo-leakage", "needs a command", "one of: show, on, off", "lo-leakage"},
        Misuse{"lo-leakage up", "'up' is not a command", "one of: show, on, off", "lo-leakage"},
        Misuse{"temperature watch --count 0", "'0' is not a whole number from 1",
               "'tarn-service temperature watch --help'", "temperature watch"},
        Misuse{"temperature watch --count -1", "'-1' is not a whole number from 1",
               "'tarn-service temperature watch --help'", "temperature watch"},
        Misuse{"temperature watch --count x", "'x' is not a whole number from 1",
               "'tarn-service temperature watch --help'", "temperature watch"},
        Misuse{"temperature watch --count 1.5", "'1.5' is not a whole number from 1",
               "'tarn-service temperature watch --help'", "temperature watch"},
        Misuse{"temperature watch --count 99999999999999999999999",
               "'99999999999999999999999' is not a whole number from 1", "'tarn-service temperature watch --help'",
               "temperature watch"},
        Misuse{"temperature watch --interval 5", "'5' is not a time such as 500ms", "--help", "temperature watch"},
        Misuse{"system-terms example --ports 65", "--ports: '65' is not a number of ports from 1 to 64",
               "'tarn-service system-terms example --help'", "system-terms example"},
        Misuse{"system-terms write terms.json --value inf", "--value: 'inf' is not a temperature in degrees Celsius",
               "'tarn-service system-terms write --help'", "system-terms write"},
        Misuse{"system-terms write terms.json --value warm", "--value: 'warm' is not a temperature in degrees Celsius",
               "'tarn-service system-terms write --help'", "system-terms write"},
        Misuse{"system-terms plan --overwrite", "--overwrite requires --output",
               "'tarn-service system-terms plan --help'", "system-terms plan"},
        Misuse{"--color pink controls", "pink", "'tarn-service --help' explains the global options", "controls"},
        Misuse{"controls --color pink", "pink", "'tarn-service --help' explains the global options", "controls"},
        Misuse{"--color pink", "pink", "'tarn-service --help' explains the global options", ""},
        Misuse{"files --color pink", "pink", "'tarn-service --help' explains the global options", "files"},
        Misuse{"--quiet=maybe controls", "maybe", "'tarn-service --help' explains the global options", "controls"},
        Misuse{"controls --provider", "--provider", "'tarn-service --help' explains the global options", "controls"},
        Misuse{"--bogus controls", "'--bogus' is not an option of 'tarn-service controls'",
               "'tarn-service controls --help' lists its options, 'tarn-service --help' the global ones", "controls"},
        Misuse{"controls --bogus", "'--bogus' is not an option of 'tarn-service controls'",
               "'tarn-service controls --help' lists its options, 'tarn-service --help' the global ones", "controls"},
        Misuse{"files --bogus", "'--bogus' is not an option of 'tarn-service files'",
               "'tarn-service files --help' lists its options, 'tarn-service --help' the global ones", "files"},
        Misuse{"files read --bogus", "'--bogus' is not an option of 'tarn-service files read'",
               "'tarn-service files read --help' lists its options, 'tarn-service --help' the global ones",
               "files read"},
        Misuse{"--bogus", "'--bogus' is not an option of 'tarn-service'", "'tarn-service --help' lists the options",
               ""},
        Misuse{"--address no-such-option=1 controls", "no-such-option", "drop-every", "controls"},
        Misuse{"--address profile=bogus controls", "bogus", "bare", "controls"}));

TEST_F(CommandLineTest, AnEmptyStateFolderIsRefused)
{
    const auto outcome = run({QStringLiteral("--state"), QString{}, QStringLiteral("controls")});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("--state needs a folder"));
}

TEST_F(CommandLineTest, AStateFolderThatIsNotUtf8IsRefusedAndNotMade)
{
    for (const auto* const command :
         {"--state $'s\\xff' controls", "--state $'\\xef\\xbb\\xbfs' controls", "controls"}) {
        QProcess shell;
        prepare(
            shell,
            {QStringLiteral("-c"),
             QStringLiteral("TARN_SERVICE_STATE=$'s\\xff' " TARN_SERVICE_PROGRAM " ") + QString::fromUtf8(command)});
        shell.setProgram(QStringLiteral("bash"));
        shell.start();
        const auto outcome = finish(shell);
        EXPECT_EQ(outcome.exitCode, 2) << command;
        EXPECT_THAT(outcome.err.toStdString(),
                    testing::AnyOf(HasSubstr("is not UTF-8\n"), HasSubstr("starts with a byte order mark\n")));
    }
    EXPECT_EQ(localNames(), QStringList{});
}

TEST_F(CommandLineTest, AnAddressOrAProviderThatIsNotUtf8IsRefused)
{
    const auto* const foreign = "the address '\uFFFD' is not UTF-8\n";
    const auto* const marked = "profile=pell' starts with a byte order mark\n";
    for (const auto& [command, refusal] :
         {std::pair{"--address $'\\xff' controls", foreign}, std::pair{"--address $'\\xff' tour", foreign},
          std::pair{"--address $'\\xef\\xbb\\xbfprofile=pell' controls", marked},
          std::pair{"--provider $'\\xef\\xbb\\xbfsimulator' controls", "simulator' starts with a byte order mark\n"}}) {
        const auto outcome = runInShell(command);
        EXPECT_EQ(outcome.exitCode, 2) << command;
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr(refusal));
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr("name one that is spelled in UTF-8"));
    }
}

TEST_F(CommandLineTest, JsonAfterTheEndOfOptionsIsAName)
{
    const auto outcome
        = run({QStringLiteral("files"), QStringLiteral("read"), QStringLiteral("--"), QStringLiteral("--json")});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_TRUE(outcome.out.isEmpty());
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("no file '--json'"));
}

TEST_F(CommandLineTest, AFileMayBeNamedLikeACommand)
{
    writeLocal(QStringLiteral("tour"), "x");
    EXPECT_EQ(run({QStringLiteral("files"), QStringLiteral("write"), QStringLiteral("tour")}).exitCode, 0);
    EXPECT_EQ(run({QStringLiteral("files"), QStringLiteral("delete"), QStringLiteral("tour"), QStringLiteral("--yes")})
                  .exitCode,
              0);
}

TEST_F(CommandLineTest, VerboseSaysWhatIsLoadedAndOpenedOnStandardError)
{
    const auto outcome = run({QStringLiteral("-v"), QStringLiteral("--json"), QStringLiteral("controls")});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("provider 'simulator' from /"));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("opened the default instrument of 'simulator' (model "));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("state in " + statePath().toStdString()));
    EXPECT_TRUE(outcome.result().isArray());
}

TEST_F(CommandLineTest, QuietKeepsMessagesBackButNotErrors)
{
    writeLocal(QStringLiteral("a"), "x");
    const QStringList write{QStringLiteral("files"), QStringLiteral("write"), QStringLiteral("a")};
    EXPECT_THAT(run(write).err.toStdString(), HasSubstr("wrote 'a'"));
    EXPECT_TRUE(run(write + QStringList{QStringLiteral("-q")}).err.isEmpty());
    writeLocal(QStringLiteral("a"), "y");
    EXPECT_THAT(run(write + QStringList{QStringLiteral("-q")}).err.toStdString(), HasSubstr("error: "));
}

TEST_F(CommandLineTest, StateNoneKeepsNothing)
{
    writeLocal(QStringLiteral("a"), "x");
    const QStringList none{QStringLiteral("--state"), QStringLiteral("none"), QStringLiteral("--json"),
                           QStringLiteral("files")};
    EXPECT_EQ(run(none + QStringList{QStringLiteral("write"), QStringLiteral("a")}).exitCode, 0);
    EXPECT_TRUE(run(none + QStringList{QStringLiteral("list")}).result().toArray().isEmpty());
    EXPECT_EQ(localNames(), QStringList{QStringLiteral("a")});
}

TEST_F(CommandLineTest, StateGoesWhereTheOptionThenTheEnvironmentThenTheStandardSays)
{
    writeLocal(QStringLiteral("a"), "x");
    const QStringList write{QStringLiteral("files"), QStringLiteral("write"), QStringLiteral("a")};
    EXPECT_EQ(run(QStringList{QStringLiteral("--state"), QStringLiteral("chosen")} + write).exitCode, 0);
    EXPECT_THAT(localNames(), testing::Contains(QStringLiteral("chosen")));
    EXPECT_TRUE(
        run({QStringLiteral("--json"), QStringLiteral("files"), QStringLiteral("list")}).result().toArray().isEmpty());
    setVariable(QStringLiteral("TARN_SERVICE_STATE"), QString{});
    setVariable(QStringLiteral("XDG_STATE_HOME"), path(QStringLiteral("xdg")));
    EXPECT_THAT(run(QStringList{QStringLiteral("-v")} + write).err.toStdString(),
                HasSubstr("state in " + path(QStringLiteral("xdg/tarn-service")).toStdString()));
    setVariable(QStringLiteral("XDG_STATE_HOME"), QStringLiteral("relative"));
    setVariable(QStringLiteral("HOME"), path(QStringLiteral("home")));
    EXPECT_THAT(run(QStringList{QStringLiteral("-v")} + write).err.toStdString(),
                HasSubstr("state in " + path(QStringLiteral("home/.local/state/tarn-service")).toStdString()));
}

} // namespace tarn::console
