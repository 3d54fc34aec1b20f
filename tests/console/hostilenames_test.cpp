#include <console/consoletest.h>

#include <QFileInfo>

#include <gmock/gmock.h>

namespace tarn::console {

using testing::HasSubstr;

class HostileName : public ConsoleTest, public testing::WithParamInterface<QString> { };

TEST_P(HostileName, IsNeverTakenAsALocalNameUnlessTheUserNamesOne)
{
    const QStringList read{QStringLiteral("--json"), QStringLiteral("files"), QStringLiteral("read"),
                           QStringLiteral("--")};
    const auto refused = runAwkward(QStringLiteral("hostile"), read + QStringList{GetParam()});
    EXPECT_EQ(refused.exitCode, 4);
    EXPECT_EQ(refused.error().value(QStringLiteral("code")).toString(), QStringLiteral("refused"));
    EXPECT_THAT(refused.error().value(QStringLiteral("message")).toString().toStdString(),
                HasSubstr(GetParam().toStdString()));
    EXPECT_THAT(refused.error().value(QStringLiteral("hint")).toString().toStdString(), HasSubstr("-o PATH"));
    EXPECT_EQ(localNames(), QStringList{});
    EXPECT_FALSE(QFileInfo::exists(path(QStringLiteral("../escaped"))));

    const auto done = runAwkward(QStringLiteral("hostile"),
                                 {QStringLiteral("files"), QStringLiteral("read"), QStringLiteral("-o"),
                                  QStringLiteral("mine"), QStringLiteral("--"), GetParam()});
    EXPECT_EQ(done.exitCode, 0) << done.err.toStdString();
    EXPECT_EQ(readLocal(QStringLiteral("mine")), "contents");
    EXPECT_EQ(localNames(), QStringList{QStringLiteral("mine")});
}

INSTANTIATE_TEST_SUITE_P(Names, HostileName,
                         testing::Values(QStringLiteral("../escaped"), QStringLiteral("a/b"), QStringLiteral("a\\b"),
                                         QStringLiteral(".."), QStringLiteral("CON"), QStringLiteral("nul.txt"),
                                         QStringLiteral("-rf"), QStringLiteral("\x1b[2Jclear"),
                                         QStringLiteral("line\nbreak"), QStringLiteral("a\u202etxt"),
                                         QString{300, u'x'}));

class HostileNamesTest : public ConsoleTest { };

TEST_F(HostileNamesTest, AreShownEscaped)
{
    for (const bool terminal : {false, true}) {
        useTestProvider(QStringLiteral("awkward_provider"));
        const QStringList list{QStringLiteral("--provider"), QStringLiteral("awkward"), QStringLiteral("--address"),
                               QStringLiteral("hostile"),    QStringLiteral("--color"), QStringLiteral("never"),
                               QStringLiteral("files"),      QStringLiteral("list")};
        const auto outcome = terminal ? runOnTerminal(list) : run(list);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_FALSE(outcome.out.contains('\x1b'));
        EXPECT_FALSE(outcome.out.contains("\u202e"));
        EXPECT_EQ(outcome.out.count('\n'), 17) << outcome.out.toStdString();
        for (const auto* const name : {"\\u{1b}[2Jclear", "line\\u{a}break", "a\\u{202e}txt", "a\\\\b", "plain.txt"})
            EXPECT_THAT(outcome.out.toStdString(), HasSubstr(name));
    }
}

TEST_F(HostileNamesTest, AreShownEscapedInErrorsToo)
{
    const auto outcome = runAwkward(QStringLiteral("hostile"),
                                    {QStringLiteral("files"), QStringLiteral("read"), QStringLiteral("\x1b[2Jclear")});
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_FALSE(outcome.err.contains('\x1b'));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("\\u{1b}[2Jclear"));
}

TEST_F(HostileNamesTest, AreCarriedAsTheyAreInJson)
{
    const auto list = runAwkward(QStringLiteral("hostile"),
                                 {QStringLiteral("--json"), QStringLiteral("files"), QStringLiteral("list")})
                          .result()
                          .toArray();
    QStringList names;
    for (const auto file : list)
        names.append(file.toObject().value(QStringLiteral("name")).toString());
    EXPECT_THAT(names,
                testing::IsSupersetOf({QStringLiteral("\x1b[2Jclear"), QStringLiteral("line\nbreak"),
                                       QStringLiteral("a\u202etxt"), QStringLiteral("../escaped")}));
}

TEST_F(HostileNamesTest, AreCarriedInJsonWithoutACharacterThatSteersATerminal)
{
    const auto out = runAwkward(QStringLiteral("hostile"),
                                {QStringLiteral("--json"), QStringLiteral("files"), QStringLiteral("list")})
                         .out;
    EXPECT_FALSE(out.contains("\u009b") || out.contains("\x7f") || out.contains("\u202e"));
    EXPECT_TRUE(out.contains("\\u009b\\u007f"));
    EXPECT_TRUE(out.contains("a\\u202etxt"));
}

TEST_F(HostileNamesTest, AreCarriedInJsonWithAByteOrderMarkInTheirMiddle)
{
    const auto name = QStringLiteral("a\uFEFFb");
    const auto outcome = run({QStringLiteral("--json"), QStringLiteral("files"), QStringLiteral("read"), name});
    EXPECT_TRUE(outcome.error().value(QStringLiteral("message")).toString().contains(name));
    EXPECT_TRUE(outcome.out.contains("a\\ufeffb"));
}

TEST_F(HostileNamesTest, ANameThatIsNotUtf8IsAUsageError)
{
    writeLocal(QStringLiteral("a"), "x");
    for (const auto* const command :
         {"files read $'\\xff'", "files delete --yes $'\\xff'", "files write a --as $'\\xff'"}) {
        const auto outcome = runInShell(command);
        EXPECT_EQ(outcome.exitCode, 2) << command;
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr("is not UTF-8\n"));
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr("--as NAME"));
    }
}

TEST_F(HostileNamesTest, ANameWithAByteOrderMarkIsAUsageErrorThatSaysSo)
{
    const auto outcome = run({QStringLiteral("files"), QStringLiteral("read"), QStringLiteral("\uFEFFa")});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("starts with a byte order mark\n"));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("--as NAME"));
}

TEST_F(HostileNamesTest, APlainNameAmongThemIsTaken)
{
    EXPECT_EQ(runAwkward(QStringLiteral("hostile"),
                         {QStringLiteral("files"), QStringLiteral("read"), QStringLiteral("plain.txt")})
                  .exitCode,
              0);
    EXPECT_EQ(localNames(), QStringList{QStringLiteral("plain.txt")});
}

TEST_F(HostileNamesTest, ContentsThatCouldSteerATerminalDoNotReachOne)
{
    useTestProvider(QStringLiteral("awkward_provider"));
    const QStringList read{QStringLiteral("--provider"), QStringLiteral("awkward"), QStringLiteral("--address"),
                           QStringLiteral("hostile"),    QStringLiteral("--color"), QStringLiteral("never"),
                           QStringLiteral("files"),      QStringLiteral("read"),    QStringLiteral("-o"),
                           QStringLiteral("-")};
    for (const auto& name : {QStringLiteral("binary"), QStringLiteral("csi"), QStringLiteral("overwriting")}) {
        const auto refused = runOnTerminal(read + QStringList{name});
        EXPECT_EQ(refused.exitCode, 4) << name.toStdString();
        EXPECT_FALSE(refused.out.contains('\x1b'));
        EXPECT_FALSE(refused.out.contains('\x9b'));
    }
    EXPECT_EQ(runOnTerminal(read + QStringList{QStringLiteral("dos.txt")}).exitCode, 0);
    EXPECT_EQ(run(read + QStringList{QStringLiteral("binary")}).out, "\x1b[2J");
    EXPECT_EQ(runOnTerminal(read + QStringList{QStringLiteral("plain.txt")}).out, "contents");
}

} // namespace tarn::console
