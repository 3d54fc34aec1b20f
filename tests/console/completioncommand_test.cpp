#include <console/consoletest.h>

#include <gmock/gmock.h>

namespace tarn::console {

class CompletionCommandTest : public ConsoleTest {
protected:
    /// What the script of the program proposes to bash for a line of `words`.
    QStringList proposedByBash(const QStringList& words)
    {
        writeLocal(QStringLiteral("completion.bash"), run({QStringLiteral("completion"), QStringLiteral("bash")}).out);
        QProcess bash;
        bash.setWorkingDirectory(path(QString{}));
        const auto program = QStringLiteral(TARN_SERVICE_PROGRAM);
        bash.start(QStringLiteral("bash"),
                   QStringList{QStringLiteral("-c"),
                               QStringLiteral("source completion.bash; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); "
                                              "_tarn_service \"$1\"; printf '%s\\n' \"${COMPREPLY[@]}\""),
                               QStringLiteral("bash"), program}
                       + words);
        const auto outcome = finish(bash);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
        return QString::fromUtf8(outcome.out).split(QLatin1Char{'\n'}, Qt::SkipEmptyParts);
    }
};

TEST_F(CompletionCommandTest, ProposesWhatTheLastWordMayBecome)
{
    const auto outcome = run(words("completion words -- --address x files re"));
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "read\n");
    EXPECT_TRUE(outcome.err.isEmpty());
}

TEST_F(CompletionCommandTest, GivesProposalsAsJson)
{
    EXPECT_EQ(run(words("--json completion words -- lo-leakage o")).result(),
              (QJsonArray{QStringLiteral("off"), QStringLiteral("on")}));
}

TEST_F(CompletionCommandTest, ProposesSettingsTheirValuesAndTables)
{
    EXPECT_EQ(run(words("completion words -- quill-power get lo-")).out, "lo-power\n");
    EXPECT_EQ(run(words("completion words -- quill-power set discrete-attenuator-enabled o")).out, "off\non\n");
    EXPECT_EQ(run(words("completion words -- quill-power set lo-power 7 synt-power-mode ")).out, "high\nnormal\n");
    EXPECT_EQ(run(words("completion words -- dorn-power load p")).out, "power-calibration\n");
    EXPECT_EQ(run(words("completion words -- dorn-power load power-calibration f")).out, "");
    EXPECT_EQ(run(words("completion words -- quill-power set min-")).out, ""); // can only be shown
}

TEST_F(CompletionCommandTest, ServesBash)
{
    EXPECT_EQ(proposedByBash({QStringLiteral("files"), QStringLiteral("re")}), QStringList{QStringLiteral("read")});
    EXPECT_EQ(proposedByBash({QStringLiteral("usb"), QString{}}),
              (QStringList{QStringLiteral("list"), QStringLiteral("show"), QStringLiteral("write")}));
    EXPECT_EQ(proposedByBash({QStringLiteral("files"), QStringLiteral("read"), QString{}}), QStringList{});
}

TEST_F(CompletionCommandTest, AsksForAWord)
{
    EXPECT_EQ(run(words("completion words")).exitCode, 2);
}

} // namespace tarn::console
