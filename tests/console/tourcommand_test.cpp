#include <console/consoletest.h>

#include <gmock/gmock.h>

#include <string_view>
#include <vector>

namespace tarn::console {

using testing::HasSubstr;
using testing::Not;

class TourCommandTest : public ConsoleTest {
protected:
    /// Everything that the instrument keeps.
    QByteArray kept()
    {
        auto all = run({QStringLiteral("files"), QStringLiteral("list")}).out;
        for (const auto* const noun : {"lo-leakage", "quill-power", "quill-synthesis", "sable-power", "sable-synthesis",
                                       "dorn-power", "dorn-synthesis", "vell-synthesis"})
            all += run({QString::fromUtf8(noun), QStringLiteral("show")}).out;
        return all;
    }

    void SetUp() override
    {
        writeLocal(QStringLiteral("mine"), "contents");
        ASSERT_EQ(run({QStringLiteral("files"), QStringLiteral("write"), QStringLiteral("mine")}).exitCode, 0);
        ASSERT_EQ(run({QStringLiteral("lo-leakage"), QStringLiteral("on")}).exitCode, 0);
    }
};

TEST_F(TourCommandTest, ShowsEveryControlOnARestlessInstrumentAndLeavesItAsItWas)
{
    const auto before = kept();
    const auto outcome = run({QStringLiteral("tour")});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    const auto text = outcome.out.toStdString();
    for (const auto* const part : {"file-memory",
                                   "potentiometers",
                                   "usb-id",
                                   "serial-number",
                                   "memory-operations",
                                   "quill-synthesis",
                                   "quill-power",
                                   "sable-synthesis",
                                   "sable-power",
                                   "lo-leakage",
                                   "dorn-power",
                                   "dorn-synthesis",
                                   "vell-synthesis",
                                   "set manual-if-enabled",
                                   "set amp-r-port1",
                                   "set delay-mode",
                                   "put back",
                                   "system-terms",
                                   "ifsw-calibration",
                                   "power-calibration",
                                   "corrections",
                                   "temperature",
                                   "calibrations-1",
                                   "calibrations-2",
                                   "read back and compared",
                                   "switched back",
                                   "dropped meanwhile",
                                   "20 of 20 controls seen",
                                   "all came back"})
        EXPECT_THAT(text, HasSubstr(part));
    EXPECT_EQ(outcome.out.count("put back"), 7); // a setting of each tuning control
    EXPECT_LE(outcome.out.count('\n'), 240);
    EXPECT_EQ(kept(), before);
}

TEST_F(TourCommandTest, SaysInJsonWhatCameBackAndHowOftenTheControlsWereDropped)
{
    const auto outcome = run({QStringLiteral("--json"), QStringLiteral("tour")});
    EXPECT_EQ(outcome.exitCode, 0);
    const auto objects = outcome.objects();
    ASSERT_EQ(objects.size(), 21);
    for (const auto& object : objects.first(20)) {
        EXPECT_EQ(object.value(QStringLiteral("command")).toString(), QStringLiteral("tour"));
        const auto result = object.value(QStringLiteral("result")).toObject();
        EXPECT_TRUE(result.value(QStringLiteral("available")).toBool());
        EXPECT_FALSE(result.value(QStringLiteral("shown")).toArray().isEmpty());
    }
    const auto summary = objects.last().value(QStringLiteral("result")).toObject();
    EXPECT_GE(summary.value(QStringLiteral("drops")).toInteger(), 2);
    EXPECT_EQ(summary.value(QStringLiteral("drops")), summary.value(QStringLiteral("returns")));
    EXPECT_EQ(summary.value(QStringLiteral("visited")).toInteger(), 20);
}

TEST_F(TourCommandTest, CarriesLabelsInJsonAsTheyAre)
{
    const auto objects = runAwkward({}, words("--json tour")).objects();
    QStringList labels;
    for (const auto& object : objects)
        for (const auto shown :
             object.value(QStringLiteral("result")).toObject().value(QStringLiteral("shown")).toArray())
            labels.append(shown.toObject().value(QStringLiteral("label")).toString());
    EXPECT_THAT(labels, testing::Contains(QStringLiteral("synth \x1b[31m")));
    EXPECT_THAT(runAwkward({}, words("tour")).out.toStdString(), HasSubstr("synth \\u{1b}[31m"));
}

TEST_F(TourCommandTest, HasASimulatedInstrumentDropItsControlsWhateverItsAddress)
{
    for (const auto* const address : {"", "sim", "sim,seed=7", "drop-for=1ms"}) {
        const auto outcome = runAt(QString::fromUtf8(address), {QStringLiteral("tour")});
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
        EXPECT_THAT(outcome.out.toStdString(), HasSubstr("all came back")) << address;
    }
}

TEST_F(TourCommandTest, LeavesAnAddressThatSaysWhenControlsAreDroppedAlone)
{
    for (const auto* const address : {"sim,drop-every=1000000", "drop-chance=0"}) {
        const auto calm = runAt(QString::fromUtf8(address), {QStringLiteral("tour")});
        EXPECT_EQ(calm.exitCode, 0) << calm.err.toStdString();
        EXPECT_THAT(calm.out.toStdString(), HasSubstr("kept its controls")) << address;
    }
}

TEST_F(TourCommandTest, SaysInItsHelpWhatItChanges)
{
    const auto help = run({QStringLiteral("tour"), QStringLiteral("--help")}).out.toStdString();
    for (const auto* const part : {"writes a file", "switches LO leakage", "one setting of each power stage",
                                   "'drop-every=2'", "without asking"})
        EXPECT_THAT(help, HasSubstr(part));
}

TEST_F(TourCommandTest, TakesTheAddressThatItIsGiven)
{
    const auto bare = run({QStringLiteral("--address"), QStringLiteral("profile=bare"), QStringLiteral("tour")});
    EXPECT_EQ(bare.exitCode, 0);
    EXPECT_THAT(bare.out.toStdString(), HasSubstr("This instrument does not have it."));
    EXPECT_THAT(bare.out.toStdString(), HasSubstr("0 of 20 controls seen"));
}

struct Trouble {
    const char* option;
    int every;
};

void PrintTo(const Trouble& value, std::ostream* stream)
{
    *stream << value.option << '=' << value.every;
}

class TroubledTour : public TourCommandTest, public testing::WithParamInterface<Trouble> { };

TEST_P(TroubledTour, LeavesTheInstrumentAsItWasOrSaysWhatRemains)
{
    const auto before = kept();
    const auto address = QStringLiteral("%1=%2").arg(QLatin1StringView{GetParam().option}).arg(GetParam().every);
    const auto outcome = run({QStringLiteral("--address"), address, QStringLiteral("-q"), QStringLiteral("tour")});
    const bool mayFail = GetParam().option != std::string_view{"drop-every"};
    EXPECT_TRUE(outcome.exitCode == 0 || (mayFail && outcome.exitCode == 1)) << outcome.err.toStdString();
    EXPECT_EQ(outcome.err.isEmpty(), outcome.exitCode == 0) << outcome.err.toStdString();
    EXPECT_EQ(kept(), before);
}

std::vector<Trouble> troubles()
{
    std::vector<Trouble> all;
    for (int every = 1; every <= 16; ++every) {
        for (const auto* const option : {"fail-every", "throw-every", "drop-every"})
            all.push_back({option, every});
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(Operations, TroubledTour, testing::ValuesIn(troubles()));

TEST_F(TourCommandTest, SaysWhatRemainsInAnInstrumentThatCannotBePutBack)
{
    // This instrument accepts that the file be deleted, and keeps it.
    const auto outcome = converse(awkward(QStringLiteral("clinging")) + words("-q tour"), {{"[y/N] ", "y\n"}});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.out.toStdString(), testing::ContainsRegex("its file 'tarn-tour-[0-9a-f]+.bin' may still"));
    EXPECT_THAT(outcome.out.toStdString(),
                testing::ContainsRegex("'tarn-service files delete tarn-tour-[0-9a-f]+.bin --yes'"));
}

TEST_F(TourCommandTest, ChangesNothingOnARealInstrumentWithoutConsent)
{
    const auto outcome = runAwkward(QString{}, {QStringLiteral("tour")}, "y\ny\n");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("A real Awkward 1"));
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("Not done without your consent: write a file"));
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("Not done without your consent: switch LO leakage on"));
    EXPECT_THAT(outcome.out.toStdString(), Not(HasSubstr("switched")));
}

TEST_F(TourCommandTest, AsksForConsentOnATerminal)
{
    const auto outcome = runOnTerminal(awkward({}) + words("--color never tour"), "n\nn\ny\n");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("Not done without your consent: write a file"));
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("Shall the tour set amp-r-port1 to high for a moment?"));
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("Not done without your consent: set amp-r-port1"));
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("Shall the tour switch LO leakage on for a moment?"));
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("switched back"));
}

TEST_F(TourCommandTest, CtrlCAtAQuestionEndsItBeforeTheChange)
{
    const auto outcome = converse(awkward({}) + words("--color never tour"), {{"[y/N] ", "n\n"}, {"[y/N] ", "\x03"}});
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("error: interrupted at the question"));
    EXPECT_THAT(outcome.out.toStdString(), Not(HasSubstr("switched")));
}

TEST_F(TourCommandTest, CtrlCEndsItWithTheInstrumentAsItWas)
{
    // Ctrl-C comes while this instrument takes the file of the tour.
    const auto outcome
        = converse(awkward(QStringLiteral("interrupting")) + words("--color never tour"), {{"[y/N] ", "y\n"}});
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("the instrument has deleted a file"));
    EXPECT_THAT(outcome.out.toStdString(), HasSubstr("the instrument is as it was"));
    EXPECT_THAT(outcome.out.toStdString(), Not(HasSubstr("lo-leakage")));
}

/// A tour that hangs in the instrument while it writes its file.
class HangingTour : public TourCommandTest, public testing::WithParamInterface<bool> { };

TEST_P(HangingTour, SaysAtTheSecondCtrlCWhatItLeavesBehind)
{
    const bool json = GetParam();
    QProcess process;
    startUntil(process,
               words("-v --address drop-every=1000000,delay-every=7,delay=1000s tour")
                   + (json ? words("--json") : QStringList{}),
               "a change of the tour is open");
    interrupt(process);
    EXPECT_THAT(awaitError(process, "once more ends it at once\n").toStdString(),
                HasSubstr("warning: interrupted; the instrument is being put back as it was"));
    interrupt(process);
    const auto outcome = finish(process);
    EXPECT_EQ(outcome.exitCode, 130);
    const auto error = json ? outcome.objects("error").value(0) : QJsonObject{};
    EXPECT_EQ(error.value(QStringLiteral("code")).toString(), json ? QStringLiteral("interrupted") : QString{});
    const auto said = json ? error.value(QStringLiteral("message")).toString().toStdString()
            + error.value(QStringLiteral("hint")).toString().toStdString()
                           : outcome.err.toStdString();
    EXPECT_THAT(said, testing::ContainsRegex("its file 'tarn-tour-[0-9a-f]+.bin' may still be there"));
    EXPECT_THAT(said, testing::ContainsRegex("'tarn-service files delete tarn-tour-[0-9a-f]+.bin --yes' removes it"));
}

INSTANTIATE_TEST_SUITE_P(Formats, HangingTour, testing::Bool());

} // namespace tarn::console
