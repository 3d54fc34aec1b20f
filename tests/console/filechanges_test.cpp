#include <console/filestest.h>

#include <gmock/gmock.h>

namespace tarn::console {

using testing::HasSubstr;

class FileChangesTest : public FilesTest { };

TEST_F(FileChangesTest, WriteOfTheSameContentsAgainIsDoneAlready)
{
    writeLocal(QStringLiteral("a"), "x");
    EXPECT_EQ(filesJson({QStringLiteral("write"), QStringLiteral("a")})
                  .result()
                  .toObject()
                  .value(QStringLiteral("status"))
                  .toString(),
              QStringLiteral("written"));
    EXPECT_EQ(filesJson({QStringLiteral("write"), QStringLiteral("a")})
                  .result()
                  .toObject()
                  .value(QStringLiteral("status"))
                  .toString(),
              QStringLiteral("identical"));
}

TEST_F(FileChangesTest, WriteReplacesAFileOfTheInstrumentOnlyOnRequest)
{
    writeLocal(QStringLiteral("a"), "old");
    ASSERT_EQ(write(QStringLiteral("a")).exitCode, 0);
    writeLocal(QStringLiteral("a"), "new");
    const auto refused = write(QStringLiteral("a"));
    EXPECT_EQ(refused.exitCode, 4);
    EXPECT_THAT(refused.err.toStdString(), HasSubstr("--overwrite"));
    const QStringList read{QStringLiteral("read"), QStringLiteral("a"), QStringLiteral("-o"), QStringLiteral("-")};
    EXPECT_EQ(files(read).out, "old");
    EXPECT_EQ(files({QStringLiteral("write"), QStringLiteral("a"), QStringLiteral("--overwrite")}).exitCode, 0);
    EXPECT_EQ(files(read).out, "new");
}

TEST_F(FileChangesTest, WriteTakesANameAndTheLastPartOfThePathWithoutOne)
{
    writeLocal(QStringLiteral("a"), "x");
    ASSERT_EQ(write(path(QStringLiteral("a"))).exitCode, 0);
    ASSERT_EQ(
        files({QStringLiteral("write"), QStringLiteral("a"), QStringLiteral("--as"), QStringLiteral("other")}).exitCode,
        0);
    EXPECT_EQ(files({QStringLiteral("list")}).out, "         1  a\n         1  other\n");
}

TEST_F(FileChangesTest, WriteReadsStandardInput)
{
    ASSERT_EQ(files({QStringLiteral("write"), QStringLiteral("-"), QStringLiteral("--as"), QStringLiteral("piped")},
                    everyByte())
                  .exitCode,
              0);
    EXPECT_EQ(files({QStringLiteral("read"), QStringLiteral("piped"), QStringLiteral("-o"), QStringLiteral("-")}).out,
              everyByte());
}

TEST_F(FileChangesTest, WriteOfALocalFileThatCannotBeReadIsALocalFileError)
{
    for (const auto& name : {QStringLiteral("missing"), QStringLiteral(".")}) {
        const auto outcome = filesJson({QStringLiteral("write"), name});
        EXPECT_EQ(outcome.exitCode, 9);
        EXPECT_EQ(outcome.error().value(QStringLiteral("code")).toString(), QStringLiteral("local-file"));
    }
}

TEST_F(FileChangesTest, WriteIntoAFullMemoryFailsAndLeavesItAsItWas)
{
    const auto free
        = filesJson({QStringLiteral("space")}).result().toObject().value(QStringLiteral("free")).toInteger();
    writeLocal(QStringLiteral("large"), QByteArray{static_cast<qsizetype>(free) + 1, 'x'});
    const auto outcome = write(QStringLiteral("large"));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("full"));
    EXPECT_TRUE(files({QStringLiteral("list")}).out.isEmpty());
}

TEST_F(FileChangesTest, AWriteThatTheInstrumentForgetsIsNotCalledDone)
{
    writeLocal(QStringLiteral("a"), "x");
    const auto outcome = runAwkward(QStringLiteral("forgetful"),
                                    {QStringLiteral("files"), QStringLiteral("write"), QStringLiteral("a")});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("could not be confirmed"));
}

TEST_F(FileChangesTest, ALookAtWhatWasWrittenIsTakenAgainWhenItFails)
{
    writeLocal(QStringLiteral("a"), "x");
    const auto outcome = runAt(QStringLiteral("fail-every=3"), words("files write a")); // list, write, list
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("read back and compared"));
}

TEST_F(FileChangesTest, DeleteWithoutATerminalNeedsYes)
{
    writeLocal(QStringLiteral("a"), "x");
    ASSERT_EQ(write(QStringLiteral("a")).exitCode, 0);
    const auto refused = files({QStringLiteral("delete"), QStringLiteral("a")}, "y\n");
    EXPECT_EQ(refused.exitCode, 4);
    EXPECT_THAT(refused.err.toStdString(), HasSubstr("--yes"));
    EXPECT_EQ(files({QStringLiteral("list")}).out, "         1  a\n");
    EXPECT_EQ(filesJson({QStringLiteral("delete"), QStringLiteral("a"), QStringLiteral("--yes")})
                  .result()
                  .toObject()
                  .value(QStringLiteral("name"))
                  .toString(),
              QStringLiteral("a"));
    EXPECT_TRUE(files({QStringLiteral("list")}).out.isEmpty());
    EXPECT_EQ(files({QStringLiteral("delete"), QStringLiteral("a"), QStringLiteral("--yes")}).exitCode, 3);
}

TEST_F(FileChangesTest, DeleteOnATerminalAsks)
{
    writeLocal(QStringLiteral("a"), "x");
    ASSERT_EQ(write(QStringLiteral("a")).exitCode, 0);
    const QStringList remove{QStringLiteral("files"), QStringLiteral("delete"), QStringLiteral("a")};
    for (const auto* const answer : {"n\n", "\n", "yesterday\n", "\x04"}) {
        const auto declined = runOnTerminal(remove, answer);
        EXPECT_EQ(declined.exitCode, 4) << answer;
        EXPECT_THAT(declined.out.toStdString(), HasSubstr("Delete 'a' (1 bytes) from the instrument? [y/N]"));
    }
    EXPECT_EQ(files({QStringLiteral("list")}).out, "         1  a\n");
    for (const auto* const answer : {"y\n", "Y\n", "yes\n", "YES\n", "Yes\n"}) {
        ASSERT_EQ(write(QStringLiteral("a")).exitCode, 0);
        EXPECT_EQ(runOnTerminal(remove, answer).exitCode, 0) << answer;
        EXPECT_TRUE(files({QStringLiteral("list")}).out.isEmpty());
    }
}

TEST_F(FileChangesTest, ADeletionThatTheInstrumentForgetsIsNotCalledDone)
{
    const auto outcome = runAwkward(
        QStringLiteral("forgetful"),
        {QStringLiteral("files"), QStringLiteral("delete"), QStringLiteral("fixed"), QStringLiteral("--yes")});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("could not be confirmed"));
}

} // namespace tarn::console
