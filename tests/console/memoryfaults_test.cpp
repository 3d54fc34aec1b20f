#include <console/consoletest.h>

#include <gmock/gmock.h>

namespace tarn::console {

using testing::HasSubstr;
using testing::Not;

/// Long operations that are interrupted, or during which the instrument goes.
class MemoryFaultsTest : public ConsoleTest {
protected:
    void SetUp() override
    {
        writeLocal(QStringLiteral("image"), QByteArray{60'000, 'n'});
        writeLocal(QStringLiteral("old"), QByteArray{50'000, 'o'});
        ASSERT_EQ(at("", "memory write old --yes").exitCode, 0);
    }

    static QString address(const QString& options)
    {
        return QStringLiteral("memory-size=64KiB") + (options.isEmpty() ? QString{} : QStringLiteral(",") + options);
    }

    Outcome at(const char* options, const char* command)
    {
        return runAt(address(QString::fromUtf8(options)), words(command));
    }

    QByteArray held() { return at("", "memory read -o -").out; }
};

// ---- Ctrl-C. The instrument is so slow that no operation comes to its end.

struct LongCommand {
    const char* options;
    const char* command;
    const char* leftBehind;
    const char* advice;
};

void PrintTo(const LongCommand& value, std::ostream* stream)
{
    *stream << value.command;
}

constexpr auto slowly = "speed=0.001";
constexpr auto changing = "a change of the instrument is under way\n"; // is said on standard error

class InterruptedChange : public MemoryFaultsTest, public testing::WithParamInterface<LongCommand> {
protected:
    static QStringList command()
    {
        return QStringList{QStringLiteral("-v"), QStringLiteral("--address"),
                           address(QString::fromUtf8(GetParam().options))}
        + words(GetParam().command);
    }
};

TEST_P(InterruptedChange, WarnsOnceAndEndsWithAdviceTheSecondTime)
{
    const auto& [options, what, leftBehind, advice] = GetParam();
    QProcess process;
    startUntil(process, command(), changing);
    interrupt(process);
    const auto warned = awaitError(process, "ends it all the same\n");
    EXPECT_THAT(warned.toStdString(), HasSubstr("warning: "));
    EXPECT_THAT(warned.toStdString(), HasSubstr(leftBehind));
    interrupt(process);
    const auto outcome = finish(process);
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr(std::string{"error: interrupted: "} + leftBehind));
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr(advice));
    EXPECT_THAT(outcome.err.toStdString(), Not(HasSubstr("warning")));
    EXPECT_TRUE(outcome.out.isEmpty());
}

TEST_P(InterruptedChange, EndsWithAnErrorObjectWithJson)
{
    const auto& [options, what, leftBehind, advice] = GetParam();
    QProcess process;
    startUntil(process, QStringList{QStringLiteral("--json")} + command(), changing);
    interrupt(process);
    awaitError(process, "ends it all the same\n");
    interrupt(process);
    const auto outcome = finish(process);
    EXPECT_EQ(outcome.exitCode, 130);
    ASSERT_EQ(outcome.objects("error").size(), 1);
    const auto error = outcome.objects("error").first();
    EXPECT_EQ(error.value(QStringLiteral("code")).toString(), QStringLiteral("interrupted"));
    EXPECT_THAT(error.value(QStringLiteral("message")).toString().toStdString(), HasSubstr(leftBehind));
    EXPECT_THAT(error.value(QStringLiteral("hint")).toString().toStdString(), HasSubstr(advice));
}

INSTANTIATE_TEST_SUITE_P(
    Commands, InterruptedChange,
    testing::Values(
        LongCommand{slowly, "memory write image --yes", "the memory may be left partly written", "memory check"},
        LongCommand{slowly, "memory erase --yes", "the memory may be left partly erased", "erase its memory again"},
        LongCommand{slowly, "serial write 5 --yes", "the serial number may be left", "serial show"},
        LongCommand{"latency=1000s", "usb write f3a7:0101 --yes",
                    "the USB identity may be left neither the old nor the new one", "usb show"},
        LongCommand{"delay-every=5,delay=1000s", "potentiometers write 0 9 --eeprom",
                    "the potentiometer's EEPROM may be left with neither", "potentiometers read 0"}));

TEST_F(MemoryFaultsTest, CtrlCOnceLetsAChangeWithoutProgressComeToItsEnd)
{
    for (const auto* const command : {"usb write f3a7:0101 --yes", "potentiometers write 0 9 --eeprom"}) {
        QProcess process;
        startUntil(process,
                   QStringList{QStringLiteral("-v"), QStringLiteral("--address"), address(QStringLiteral("latency=2s"))}
                       + words(command),
                   changing);
        interrupt(process);
        const auto outcome = finish(process);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
        EXPECT_EQ(outcome.err.count("warning: "), 1);
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr("read back and compared"));
    }
    EXPECT_EQ(at("", "potentiometers read 0").out, "9\n");
    EXPECT_THAT(at("", "usb show").out.toStdString(), testing::StartsWith("f3a7:0101 "));
}

TEST_F(MemoryFaultsTest, CtrlCWhileAChangeIsReadBackSaysThatItWasMade)
{
    for (const int presses : {1, 2}) {
        QProcess process;
        const auto slow
            = presses == 1 ? QStringLiteral("delay-every=5,delay=3s") : QStringLiteral("delay-every=5,delay=1000s");
        startUntil(process, QStringList{QStringLiteral("--address"), address(slow)} + words("serial write 77 --yes"),
                   "writing the serial number: done");
        interrupt(process);
        const auto warned = awaitError(process, "ends it all the same\n");
        EXPECT_THAT(warned.toStdString(), HasSubstr("the serial number 77 was written but not compared"));
        if (presses == 2)
            interrupt(process);
        const auto outcome = finish(process);
        EXPECT_EQ(outcome.exitCode, presses == 1 ? 0 : 130);
        EXPECT_THAT(outcome.err.toStdString(),
                    HasSubstr(presses == 1 ? "read back and compared"
                                           : "interrupted: the serial number 77 was written but not compared"));
        EXPECT_EQ(at("", "serial show").out, "77\n");
        ASSERT_EQ(at("", "serial write 5 --yes").exitCode, 0);
    }
}

TEST_F(MemoryFaultsTest, CtrlCOnceLetsAChangeComeToItsEnd)
{
    QProcess process;
    startUntil(process,
               QStringList{QStringLiteral("--address"), address(QStringLiteral("speed=0.3"))}
                   + words("memory write image --yes"),
               "writing the memory: started");
    interrupt(process);
    const auto outcome = finish(process);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_EQ(outcome.err.count("warning: "), 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("read back and compared"));
    EXPECT_EQ(held(), (QByteArray{60'000, 'n'}));
}

TEST_F(MemoryFaultsTest, CtrlCEndsARequestThatChangesNothingAtOnce)
{
    for (const auto* const command : {"memory read -o back", "memory check"}) {
        QProcess process;
        startUntil(process,
                   QStringList{QStringLiteral("--address"), QStringLiteral("large,speed=0.001")} + words(command),
                   ": started");
        interrupt(process);
        const auto outcome = finish(process);
        EXPECT_EQ(outcome.exitCode, 130) << command;
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr("error: interrupted\n"));
    }
    EXPECT_EQ(localNames(), (QStringList{QStringLiteral("image"), QStringLiteral("old")}));
}

// ---- controls dropped in the middle

class RestlessMemory : public MemoryFaultsTest, public testing::WithParamInterface<const char*> { };

TEST_P(RestlessMemory, IsWrittenReadCheckedAndErasedAllTheSame)
{
    for (const auto* const command : {"memory write image --yes", "memory read -o back", "memory check",
                                      "potentiometers write 1 17 --eeprom", "serial write 12 --yes"}) {
        const auto outcome = at(GetParam(), command);
        EXPECT_EQ(outcome.exitCode, 0) << command << ": " << outcome.err.toStdString();
    }
    EXPECT_EQ(readLocal(QStringLiteral("back")), (QByteArray{60'000, 'n'}));
    EXPECT_EQ(held(), (QByteArray{60'000, 'n'}));
    EXPECT_EQ(at("", "serial show").out, "12\n");
    EXPECT_EQ(at("", "potentiometers read 1").out, "17\n");
    EXPECT_EQ(at(GetParam(), "memory erase --yes").exitCode, 0);
    EXPECT_EQ(held(), (QByteArray{65536, '\xFF'}));
}

INSTANTIATE_TEST_SUITE_P(Addresses, RestlessMemory,
                         testing::Values("drop-every=1", "drop-every=2", "drop-every=3", "drop-every=1,drop-for=20ms",
                                         "drop-every=2,completion=inline", "power-loss-every=2",
                                         "unplug-every=2,drop-for=20ms"));

struct Loss {
    const char* options;
    const char* command;
    int exitCode;
    std::vector<const char*> says;
};

void PrintTo(const Loss& value, std::ostream* stream)
{
    *stream << value.options << ": " << value.command;
}

class LostMemory : public MemoryFaultsTest, public testing::WithParamInterface<Loss> { };

TEST_P(LostMemory, EndsWithATruthfulCodeAndSaysWhatIsKnown)
{
    const auto& [options, command, exitCode, says] = GetParam();
    const auto outcome = at(options, command);
    EXPECT_EQ(outcome.exitCode, exitCode) << outcome.err.toStdString();
    for (const auto* const part : says)
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr(part));
    EXPECT_THAT(outcome.err.toStdString(), Not(HasSubstr("compared")));
}

constexpr auto powerLoss = "power-loss-every=1";
constexpr auto unplugged = "unplug-every=1,drop-for=1000s";
// The write is what is dropped, fails as well, and so is not known to have been made.
constexpr auto lostDuringTheFourth = "drop-every=4,drop-for=1000s,fail-every=2";
constexpr auto lostDuringTheFifth = "drop-every=5,drop-for=1000s,fail-every=2";
constexpr auto protectedFromWrites = "write-protect=on";

INSTANTIATE_TEST_SUITE_P(
    Losses, LostMemory,
    testing::Values(Loss{powerLoss,
                         "memory write image --yes",
                         5,
                         {"lost while writing the memory: it reported ", " of 60000 bytes as done",
                          "whether more of the memory was changed is not known", "memory check"}},
                    Loss{powerLoss, "memory erase --yes", 5, {"lost while erasing the memory", " of 65536 bytes"}},
                    Loss{powerLoss, "serial write 5 --yes", 5, {"lost while writing the serial number", "serial show"}},
                    Loss{powerLoss, "memory read -o back", 5, {"dropped its controls each time it was to read"}},
                    Loss{powerLoss, "memory check", 5, {"dropped its controls each time it was to check"}},
                    Loss{unplugged, "memory write image --yes", 5, {"lost while writing the memory: it reported "}},
                    Loss{unplugged, "memory read -o back", 5, {"has dropped its memory-operations control"}},
                    Loss{"unplug-every=2,drop-for=1000s",
                         "memory write image --yes",
                         5,
                         {"the image was written, but this could not be confirmed: the instrument has dropped"}},
                    Loss{lostDuringTheFourth,
                         "serial write 9 --yes",
                         5,
                         {"lost while writing the serial number", "whether the serial number was changed is not known",
                          "serial show"}},
                    Loss{lostDuringTheFifth,
                         "potentiometers write 0 9 --eeprom",
                         5,
                         {"lost while writing the potentiometer's EEPROM",
                          "whether its value was changed is not known"}},
                    Loss{"throw-every=4",
                         "serial write 9 --yes",
                         1,
                         {"writing the serial number failed: ", "whether the serial number was changed is not known",
                          "serial show"}},
                    Loss{protectedFromWrites, "memory write image --yes", 1, {"the memory should be as it was"}},
                    Loss{protectedFromWrites, "memory erase --yes", 1, {"the memory should be as it was"}},
                    Loss{protectedFromWrites, "serial write 5 --yes", 1, {"the serial number should be as it was"}},
                    Loss{protectedFromWrites,
                         "usb write f3a7:0101 --yes",
                         1,
                         {"whether the USB identity was changed is not known", "usb show"}}));

TEST_F(MemoryFaultsTest, APowerLossInTheMiddleIsSeenByTheCheckAndMendedByAnotherWrite)
{
    ASSERT_EQ(at(powerLoss, "memory write image --yes").exitCode, 5);
    EXPECT_EQ(at("", "memory check").exitCode, 1);
    EXPECT_EQ(at("", "memory write image --yes").exitCode, 0);
    EXPECT_EQ(at("", "memory check").exitCode, 0);
    EXPECT_EQ(held(), (QByteArray{60'000, 'n'}));
}

TEST_F(MemoryFaultsTest, ARefusedChangeLeavesEverythingAsItWas)
{
    EXPECT_EQ(at(protectedFromWrites, "memory write image --yes").exitCode, 1);
    EXPECT_EQ(at(protectedFromWrites, "memory erase --yes").exitCode, 1);
    EXPECT_EQ(held(), (QByteArray{50'000, 'o'}));
}

} // namespace tarn::console
