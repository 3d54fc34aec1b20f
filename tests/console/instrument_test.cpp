#include <console/consoletest.h>

#include <QDirIterator>
#include <QFile>

#include <gmock/gmock.h>

namespace tarn::console {

using testing::HasSubstr;

/// What the program makes of instruments that are well, restless, ill or gone.
class InstrumentTest : public ConsoleTest {
protected:
    static QString code(const Outcome& outcome) { return outcome.error().value(QStringLiteral("code")).toString(); }
};

TEST_F(InstrumentTest, ControlsAreListedInTheOrderOfTheRegistryWithTheirKeys)
{
    const auto entry = [](const char* name, const char* key, bool available) {
        return QJsonObject{{QStringLiteral("name"), QLatin1StringView{name}},
                           {QStringLiteral("registryKey"), QLatin1StringView{key}},
                           {QStringLiteral("available"), available}};
    };
    const auto expected = [&](bool available) {
        return QJsonArray{entry("file-memory", "0xe85f16739b17b339", available),
                          entry("potentiometers", "0xc51b6fb2ae2584d2", available),
                          entry("usb-id", "0xec20f733872b6ac0", available),
                          entry("serial-number", "0x2e23977c2578988d", available),
                          entry("memory-operations", "0x5664961726404671", available),
                          entry("quill-synthesis", "0xb6c338d276ce98fb", available),
                          entry("quill-power", "0x897c141e29e7e690", available),
                          entry("sable-synthesis", "0x2b979d4013cdeecd", available),
                          entry("sable-power", "0xdbaebee9402174ae", available),
                          entry("lo-leakage", "0x39ce7f28fb8c58bd", available),
                          entry("dorn-power", "0xeaf356a0b2ef79a5", available),
                          entry("dorn-synthesis", "0x374b2cb5ef097bee", available),
                          entry("vell-synthesis", "0xa045ab34ea41df44", available),
                          entry("system-terms", "0x10b13a8fe293bf50", available),
                          entry("ifsw-calibration", "0x2ab54beb7022049e", available),
                          entry("power-calibration", "0xa95918a8462c534c", available),
                          entry("corrections", "0x1a94c41b6c234d42", available),
                          entry("temperature", "0xeba4ba7306e6b9a2", available),
                          entry("calibrations-1", "0x6dd4c2f3a3d1aaab", available),
                          entry("calibrations-2", "0x0b8ee0a3ce2543ab", available)};
    };
    const QStringList controls{QStringLiteral("--json"), QStringLiteral("controls")};
    EXPECT_EQ(run(controls).result().toArray(), expected(true));
    const auto bare = run(QStringList{QStringLiteral("--address"), QStringLiteral("profile=bare")} + controls);
    EXPECT_EQ(bare.exitCode, 0);
    EXPECT_EQ(bare.result().toArray(), expected(false));
    EXPECT_THAT(run({QStringLiteral("controls")}).out.toStdString(),
                HasSubstr("lo-leakage           0x39ce7f28fb8c58bd yes\n"));
}

class ControlCommand : public InstrumentTest, public testing::WithParamInterface<const char*> {
protected:
    [[nodiscard]] static QStringList command()
    {
        return QStringList{QStringLiteral("--json")} + QString::fromUtf8(GetParam()).split(QLatin1Char{' '});
    }
};

TEST_P(ControlCommand, SaysThatTheInstrumentNeverHadTheControl)
{
    const auto outcome = run(QStringList{QStringLiteral("--address"), QStringLiteral("profile=bare")} + command());
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(code(outcome), QStringLiteral("not-offered"));
    EXPECT_THAT(outcome.error().value(QStringLiteral("hint")).toString().toStdString(),
                HasSubstr("tarn-service controls"));
}

TEST_P(ControlCommand, SaysThatTheInstrumentHadTheControlAndLostIt)
{
    const auto outcome = runAwkward(QStringLiteral("vanishing"), command());
    EXPECT_EQ(outcome.exitCode, 5) << outcome.out.toStdString();
    EXPECT_EQ(code(outcome), QStringLiteral("instrument-lost"));
}

INSTANTIATE_TEST_SUITE_P(Commands, ControlCommand,
                         testing::Values("files list", "files space", "files read a", "files write /dev/null --as a",
                                         "files delete a --yes", "potentiometers list", "potentiometers read 0",
                                         "potentiometers write 0 1", "potentiometers write 0 1 --eeprom", "usb show",
                                         "usb list", "usb write 1234:2 --yes", "serial show", "serial write 1 --yes",
                                         "memory read -o a", "memory write /dev/null --yes", "memory erase --yes",
                                         "memory check", "lo-leakage show", "lo-leakage on", "lo-leakage off",
                                         "temperature show", "temperature watch"));

TEST_F(InstrumentTest, AnInstrumentThatStaysAwayIsLost)
{
    writeLocal(QStringLiteral("a"), "x");
    const auto outcome
        = run({QStringLiteral("--address"), QStringLiteral("drop-every=1,drop-for=1000s"), QStringLiteral("--json"),
               QStringLiteral("files"), QStringLiteral("write"), QStringLiteral("a")});
    EXPECT_EQ(outcome.exitCode, 5);
    EXPECT_EQ(code(outcome), QStringLiteral("instrument-lost"));
    EXPECT_TRUE(run({QStringLiteral("files"), QStringLiteral("list")}).out.isEmpty());
}

TEST_F(InstrumentTest, AFileMemoryThatCannotBeUsedIsAFailureAndNotALostInstrument)
{
    const auto outcome = runAwkward(QStringLiteral("unformatted"),
                                    {QStringLiteral("--json"), QStringLiteral("files"), QStringLiteral("list")});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(code(outcome), QStringLiteral("failed"));
    EXPECT_THAT(outcome.error().value(QStringLiteral("message")).toString().toStdString(),
                HasSubstr("the memory cannot be used"));
}

TEST_F(InstrumentTest, ThatAControlIsThereIsSeenWithoutUsingIt)
{
    // The first two operations take the values over; whoever looks only is not counted.
    EXPECT_EQ(run(words("--address throw-every=3 temperature show")).exitCode, 0);
    EXPECT_EQ(run(words("--address throw-every=2 temperature show")).exitCode, 1);
}

TEST_F(InstrumentTest, AnExceptionOfTheInstrumentIsAFailureWithItsText)
{
    for (const auto& verb : {QStringLiteral("show"), QStringLiteral("on")}) {
        const auto json
            = runAwkward(QStringLiteral("throwing"), {QStringLiteral("--json"), QStringLiteral("lo-leakage"), verb});
        EXPECT_EQ(json.exitCode, 1);
        EXPECT_THAT(json.error().value(QStringLiteral("message")).toString().toStdString(),
                    testing::EndsWith("the synthesizer \x1b[31mcaught fire"));
        const auto text = runAwkward(QStringLiteral("throwing"), {QStringLiteral("lo-leakage"), verb});
        EXPECT_EQ(text.exitCode, 1);
        EXPECT_THAT(text.err.toStdString(), HasSubstr("the synthesizer \\u{1b}[31mcaught fire\n"));
    }
}

TEST_F(InstrumentTest, ALackOfMemoryIsAFailureThatSaysSo)
{
    const auto outcome = runAwkward(QStringLiteral("exhausted"), words("lo-leakage show"));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("error: there is not enough memory"));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("close other programs"));
}

struct Refusal {
    const char* address;
    int exitCode;
    const char* code;
};

void PrintTo(const Refusal& value, std::ostream* stream)
{
    *stream << value.address;
}

class InstrumentThatCannotBeOpened : public InstrumentTest, public testing::WithParamInterface<Refusal> { };

TEST_P(InstrumentThatCannotBeOpened, EndsWithTheCodeOfTheReason)
{
    const auto outcome
        = runAwkward(QString::fromUtf8(GetParam().address), {QStringLiteral("--json"), QStringLiteral("controls")});
    EXPECT_EQ(outcome.exitCode, GetParam().exitCode);
    EXPECT_EQ(code(outcome), QString::fromUtf8(GetParam().code));
    EXPECT_FALSE(outcome.error().value(QStringLiteral("message")).toString().isEmpty());
    EXPECT_FALSE(outcome.error().value(QStringLiteral("hint")).toString().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Reasons, InstrumentThatCannotBeOpened,
                         testing::Values(Refusal{"absent", 3, "not-found"}, Refusal{"invalid", 2, "usage"},
                                         Refusal{"busy", 3, "busy"}, Refusal{"state", 9, "local-file"},
                                         Refusal{"broken", 1, "failed"}, Refusal{"nothing", 1, "failed"}));

TEST_F(InstrumentTest, AnInstrumentInUseByAnotherProcessIsBusyAndTheHolderIsNamed)
{
    QProcess holder;
    prepare(holder, {QStringLiteral("temperature"), QStringLiteral("watch")});
    holder.start();
    ASSERT_TRUE(holder.waitForReadyRead());
    const auto outcome = run({QStringLiteral("--json"), QStringLiteral("controls")});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(code(outcome), QStringLiteral("busy"));
    EXPECT_THAT(outcome.error().value(QStringLiteral("message")).toString().toStdString(),
                HasSubstr(std::to_string(holder.processId())));
    interrupt(holder);
    EXPECT_EQ(finish(holder).exitCode, 130);
    EXPECT_EQ(run({QStringLiteral("controls")}).exitCode, 0);
}

TEST_F(InstrumentTest, ADamagedStateIsALocalFileErrorAndStaysAsItIs)
{
    EXPECT_EQ(run(words("lo-leakage on")).exitCode, 0);
    QDirIterator files{statePath(), {QStringLiteral("*.json")}, QDir::Files, QDirIterator::Subdirectories};
    ASSERT_TRUE(files.hasNext());
    QFile file{files.next()};
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write("damaged"), 7);
    file.close();
    const auto outcome = run({QStringLiteral("--json"), QStringLiteral("controls")});
    EXPECT_EQ(outcome.exitCode, 9);
    EXPECT_EQ(code(outcome), QStringLiteral("local-file"));
    EXPECT_THAT(outcome.error().value(QStringLiteral("message")).toString().toStdString(),
                HasSubstr(file.fileName().toStdString()));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "damaged");
}

TEST_F(InstrumentTest, TwoInstrumentsKeepTheirStatesApart)
{
    EXPECT_EQ(run(words("--address one lo-leakage on")).exitCode, 0);
    EXPECT_EQ(run(words("--address two lo-leakage show")).out, "off\n");
    EXPECT_EQ(run(words("--address one lo-leakage show")).out, "on\n");
}

} // namespace tarn::console
