#include <console/filestest.h>

#include <QFile>
#include <QFileInfo>

#include <gmock/gmock.h>

namespace tarn::console {

using testing::HasSubstr;

class FilesCommandTest : public FilesTest { };

struct RoundTrip {
    QString name;
    QByteArray contents;
    QString address;
};

void PrintTo(const RoundTrip& value, std::ostream* stream)
{
    *stream << '"' << value.name.toStdString() << "\" on '" << value.address.toStdString() << '\'';
}

class FileRoundTrip : public FilesCommandTest, public testing::WithParamInterface<RoundTrip> { };

TEST_P(FileRoundTrip, ComesBackByteForByteInAnotherProcess)
{
    const auto& [name, contents, address] = GetParam();
    const auto on = [&](const QStringList& arguments) {
        return run(QStringList{QStringLiteral("--address"), address, QStringLiteral("files")} + arguments);
    };
    writeLocal(name, contents);
    const auto written = on({QStringLiteral("write"), name});
    ASSERT_EQ(written.exitCode, 0) << written.err.toStdString();
    EXPECT_TRUE(written.out.isEmpty());
    const auto read = on({QStringLiteral("read"), name, QStringLiteral("-o"), QStringLiteral("copy")});
    ASSERT_EQ(read.exitCode, 0) << read.err.toStdString();
    EXPECT_EQ(readLocal(QStringLiteral("copy")), contents);
    EXPECT_EQ(on({QStringLiteral("read"), name, QStringLiteral("-o"), QStringLiteral("-")}).out, contents);
    EXPECT_EQ(on({QStringLiteral("delete"), name, QStringLiteral("--yes")}).exitCode, 0);
    EXPECT_EQ(on({QStringLiteral("read"), name, QStringLiteral("-o"), QStringLiteral("copy")}).exitCode, 3);
}

INSTANTIATE_TEST_SUITE_P(
    Files, FileRoundTrip,
    testing::Values(RoundTrip{QStringLiteral("text.md"), "# Title\n", QString{}},
                    RoundTrip{QStringLiteral("binary"), everyByte(), QString{}},
                    RoundTrip{QStringLiteral("empty"), QByteArray{}, QString{}},
                    RoundTrip{QStringLiteral("Zähler €.bin"), "x", QString{}},
                    RoundTrip{QStringLiteral("large"), everyByte().repeated(200), QString{}},
                    RoundTrip{QStringLiteral("dropped-1"), everyByte(), QStringLiteral("drop-every=1")},
                    RoundTrip{QStringLiteral("dropped-2"), everyByte(), QStringLiteral("drop-every=2")},
                    RoundTrip{QStringLiteral("dropped-3"), everyByte(), QStringLiteral("drop-every=3")},
                    RoundTrip{QStringLiteral("away"), everyByte(), QStringLiteral("drop-every=3,drop-for=20ms")},
                    RoundTrip{QStringLiteral("inline"), everyByte(), QStringLiteral("completion=inline,drop-every=3")},
                    RoundTrip{QStringLiteral("slow"), everyByte(), QStringLiteral("latency=2ms")}));

TEST_F(FilesCommandTest, ListShowsSizesAndNames)
{
    writeLocal(QStringLiteral("b.bin"), "12345");
    writeLocal(QStringLiteral("ä"), "1");
    ASSERT_EQ(write(QStringLiteral("b.bin")).exitCode, 0);
    ASSERT_EQ(write(QStringLiteral("ä")).exitCode, 0);
    EXPECT_EQ(files({QStringLiteral("list")}).out.toStdString(), "         5  b.bin\n         1  ä\n");
    const QJsonArray expected{
        QJsonObject{{QStringLiteral("name"), QStringLiteral("b.bin")}, {QStringLiteral("size"), 5}},
        QJsonObject{{QStringLiteral("name"), QStringLiteral("ä")}, {QStringLiteral("size"), 1}}};
    EXPECT_EQ(filesJson({QStringLiteral("list")}).result().toArray(), expected);
}

TEST_F(FilesCommandTest, ListOfNothingIsASuccessAndSaysSo)
{
    const auto text = files({QStringLiteral("list")});
    EXPECT_EQ(text.exitCode, 0);
    EXPECT_TRUE(text.out.isEmpty());
    EXPECT_EQ(text.err, "the file memory holds no files\n");
    const auto json = filesJson({QStringLiteral("list")});
    EXPECT_EQ(json.result(), QJsonValue{QJsonArray{}});
    EXPECT_TRUE(json.err.isEmpty());
}

TEST_F(FilesCommandTest, SpaceShrinksByWhatIsWritten)
{
    const auto before = filesJson({QStringLiteral("space")}).result().toObject();
    writeLocal(QStringLiteral("a"), QByteArray{5000, 'x'});
    ASSERT_EQ(write(QStringLiteral("a")).exitCode, 0);
    const auto after = filesJson({QStringLiteral("space")}).result().toObject();
    const auto number = [](const QJsonObject& space, const char* member) {
        return space.value(QLatin1StringView{member}).toInteger(-1);
    };
    EXPECT_GT(number(before, "total"), 0);
    EXPECT_EQ(number(before, "total"), number(after, "total"));
    EXPECT_GE(number(before, "free") - number(after, "free"), 5000);
    EXPECT_EQ(number(after, "used") + number(after, "free"), number(after, "total"));
    EXPECT_THAT(files({QStringLiteral("space")}).out.toStdString(),
                HasSubstr(std::to_string(number(after, "free")) + " free"));
}

TEST_F(FilesCommandTest, SpaceBeyondTheIntegersOfJsonIsStillANumber)
{
    const auto space = runAwkward(QStringLiteral("huge"),
                                  {QStringLiteral("--json"), QStringLiteral("files"), QStringLiteral("space")})
                           .result()
                           .toObject();
    EXPECT_EQ(space.value(QStringLiteral("total")).toDouble(), 18446744073709551615.0);
}

TEST_F(FilesCommandTest, ReadWithoutAPathWritesThePlainNameHere)
{
    writeLocal(QStringLiteral("a"), "contents");
    ASSERT_EQ(write(QStringLiteral("a")).exitCode, 0);
    ASSERT_TRUE(QFile::remove(path(QStringLiteral("a"))));
    const auto outcome = filesJson({QStringLiteral("read"), QStringLiteral("a")});
    const QJsonObject expected{{QStringLiteral("name"), QStringLiteral("a")},
                               {QStringLiteral("size"), 8},
                               {QStringLiteral("path"), QStringLiteral("a")},
                               {QStringLiteral("status"), QStringLiteral("written")}};
    EXPECT_EQ(outcome.result().toObject(), expected);
    EXPECT_EQ(readLocal(QStringLiteral("a")), "contents");
    EXPECT_EQ(localNames(), QStringList{QStringLiteral("a")});
}

TEST_F(FilesCommandTest, ReadNeverReplacesALocalFileWithoutOverwrite)
{
    writeLocal(QStringLiteral("a"), "instrument");
    ASSERT_EQ(write(QStringLiteral("a")).exitCode, 0);
    EXPECT_EQ(files({QStringLiteral("read"), QStringLiteral("a")}).exitCode, 0) << "identical already";
    writeLocal(QStringLiteral("a"), "mine");
    const auto refused = files({QStringLiteral("read"), QStringLiteral("a")});
    EXPECT_EQ(refused.exitCode, 4);
    EXPECT_THAT(refused.err.toStdString(), HasSubstr("--overwrite"));
    EXPECT_EQ(readLocal(QStringLiteral("a")), "mine");
    EXPECT_EQ(files({QStringLiteral("read"), QStringLiteral("a"), QStringLiteral("-o"), QStringLiteral("a")}).exitCode,
              4);
    EXPECT_EQ(readLocal(QStringLiteral("a")), "mine");
    EXPECT_EQ(files({QStringLiteral("read"), QStringLiteral("a"), QStringLiteral("--overwrite")}).exitCode, 0);
    EXPECT_EQ(readLocal(QStringLiteral("a")), "instrument");
    EXPECT_EQ(localNames(), QStringList{QStringLiteral("a")});
}

TEST_F(FilesCommandTest, ReadNeverWritesThroughALink)
{
    writeLocal(QStringLiteral("a"), "instrument");
    ASSERT_EQ(write(QStringLiteral("a")).exitCode, 0);
    ASSERT_TRUE(QFile::remove(path(QStringLiteral("a"))));
    writeLocal(QStringLiteral("target"), "mine");
    ASSERT_TRUE(QFile::link(path(QStringLiteral("target")), path(QStringLiteral("a"))));
    for (const auto& option : {QStringLiteral("-q"), QStringLiteral("--overwrite")}) {
        const auto refused = filesJson({QStringLiteral("read"), QStringLiteral("a"), option});
        EXPECT_EQ(refused.exitCode, 4);
        EXPECT_EQ(refused.error().value(QStringLiteral("code")).toString(), QStringLiteral("refused"));
    }
    EXPECT_EQ(readLocal(QStringLiteral("target")), "mine");
    EXPECT_TRUE(QFileInfo{path(QStringLiteral("a"))}.isSymLink());
}

TEST_F(FilesCommandTest, ReadOntoADeviceIsRefusedWithTheWayToStandardOutput)
{
    writeLocal(QStringLiteral("a"), "x");
    ASSERT_EQ(write(QStringLiteral("a")).exitCode, 0);
    for (const auto* const device : {"/dev/stdout", "/dev/null"}) { // a link, and no file
        const auto refused = filesJson(words("read a --overwrite -o") + words(device));
        EXPECT_EQ(refused.exitCode, 4);
        EXPECT_THAT(refused.error().value(QStringLiteral("hint")).toString().toStdString(), HasSubstr("with -o -"));
    }
}

TEST_F(FilesCommandTest, ReadOfAFileThatIsNotThereIsNotFound)
{
    const auto outcome = filesJson({QStringLiteral("read"), QStringLiteral("missing")});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.error().value(QStringLiteral("code")).toString(), QStringLiteral("not-found"));
    EXPECT_EQ(localNames(), QStringList{});
}

TEST_F(FilesCommandTest, ReadToAPlaceThatCannotBeWrittenIsALocalFileError)
{
    writeLocal(QStringLiteral("a"), "x");
    ASSERT_EQ(write(QStringLiteral("a")).exitCode, 0);
    const auto outcome
        = filesJson({QStringLiteral("read"), QStringLiteral("a"), QStringLiteral("-o"), QStringLiteral("missing/a")});
    EXPECT_EQ(outcome.exitCode, 9);
    EXPECT_EQ(outcome.error().value(QStringLiteral("code")).toString(), QStringLiteral("local-file"));
}

TEST_F(FilesCommandTest, JsonAndContentsDoNotShareStandardOutput)
{
    const auto outcome
        = filesJson({QStringLiteral("read"), QStringLiteral("a"), QStringLiteral("-o"), QStringLiteral("-")});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.error().value(QStringLiteral("code")).toString(), QStringLiteral("usage"));
}

TEST_F(FilesCommandTest, TheInstrumentsOwnWordsAreTheErrorOfAFailedRequest)
{
    const auto outcome = run({QStringLiteral("--address"), QStringLiteral("fail-every=1,fail=corrupt"),
                              QStringLiteral("--json"), QStringLiteral("files"), QStringLiteral("list")});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.error().value(QStringLiteral("code")).toString(), QStringLiteral("failed"));
    EXPECT_FALSE(outcome.error().value(QStringLiteral("message")).toString().isEmpty());
}

} // namespace tarn::console
