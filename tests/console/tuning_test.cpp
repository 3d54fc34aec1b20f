#include <console/tuning.h>

#include <console/commandtable.h>
#include <console/tuningcommand.h>
#include <support/fakevna.h>
#include <support/recordedquillcontrols.h>

#include <QCoreApplication>

#include <gmock/gmock.h>

#include <set>

namespace tarn::console {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

using Words = std::vector<std::string>;
using QuillPower = devices::service::SdkQuillPowerControl;

const Tuning* const tunings[]
    = {&quillPowerTuning(), &quillSynthesisTuning(), &dornPowerTuning(),    &dornSynthesisTuning(),
       &sablePowerTuning(), &sableSynthesisTuning(), &vellSynthesisTuning()};

} // namespace

TEST(Tuning, HasSettingsOfDifferentNamesEachWithAPurpose)
{
    for (const auto* const tuning : tunings) {
        std::set<std::string> names;
        for (const auto& setting : tuning->described()) {
            EXPECT_THAT(setting.name, testing::MatchesRegex("[a-zN]+[0-9]?(-[a-zN]+[0-9]?)*")) << tuning->name;
            EXPECT_FALSE(setting.purpose.empty()) << setting.name;
            EXPECT_TRUE(names.insert(setting.name).second) << setting.name;
        }
    }
}

TEST(Tuning, NamesAHarmlessSettingThatCanBeChanged)
{
    for (const auto* const tuning : tunings) {
        const auto found = std::ranges::find(tuning->settings, tuning->harmless, &Setting::name);
        ASSERT_NE(found, tuning->settings.end()) << tuning->name;
        EXPECT_FALSE(found->isReadOnly()) << tuning->name;
        EXPECT_TRUE(!valueWords(found->form).empty() || found->limits) << tuning->name;
    }
}

TEST(Tuning, KnowsWhatMayStandNext)
{
    const auto next = [](const Words& given) { return quillPowerTuning().candidates(given); };
    EXPECT_THAT(next({}), IsEmpty());
    EXPECT_THAT(next({"show"}), IsEmpty());
    EXPECT_THAT(next({"get"}), Contains("max-power-code"));
    EXPECT_THAT(next({"get", "lo-power"}), IsEmpty());
    EXPECT_THAT(next({"set"}), Contains("lo-power"));
    EXPECT_THAT(next({"set"}), Not(Contains("max-power-code")));
    EXPECT_THAT(next({"set", "synt-power-mode"}), ElementsAre("normal", "high"));
    EXPECT_THAT(next({"set", "discrete-attenuator-enabled"}), ElementsAre("on", "off"));
    EXPECT_THAT(next({"set", "lo-power"}), IsEmpty());
    EXPECT_THAT(next({"set", "no-such"}), IsEmpty());
    EXPECT_THAT(next({"set", "lo-power", "20"}), Contains("rf-power"));
    EXPECT_THAT(next({"set", "lo-power", "20"}), Not(Contains("lo-power")));
    EXPECT_THAT(next({"load"}), ElementsAre("rf-power-codes", "lo-power-codes"));
    EXPECT_THAT(next({"load", "rf-power-codes"}), IsEmpty());
}

TEST(Tuning, ProposesTheFirstRowsOfATable)
{
    const auto next = [](const Words& given) { return sableSynthesisTuning().candidates(given); };
    EXPECT_THAT(next({"get"}),
                testing::IsSupersetOf({"rf-range-0-frequency", "rf-range-9-power", "rf-default-range-9-power"}));
    EXPECT_THAT(next({"set"}), Contains("rf-range-9-power"));
    EXPECT_THAT(next({"set"}), Not(Contains("rf-default-range-0-power")));
    EXPECT_THAT(next({"get"}), Not(Contains("rf-range-10-power")));
}

TEST(Tuning, HearsEachChangeSignalOnTheThreadOfTheContext)
{
    int arguments = 0;
    const QCoreApplication application{arguments, nullptr};
    const auto device = std::make_shared<tests::FakeVna>();
    device->offer<sdk::service::IQuillPowerControl>(sdk::service::IQuillPowerControl::key,
                                                    std::make_shared<tests::RecordedQuillPowerControl>());
    const Instrument instrument{device, Output{{}, {}}, std::chrono::seconds{30}};
    const auto control = quillPowerTuning().control(instrument);
    const QObject context;
    int heard = 0;
    quillPowerTuning().connect(control, context, [&] { ++heard; });
    std::any_cast<const std::shared_ptr<QuillPower>&>(control)->reset(); // emits all of them
    EXPECT_EQ(heard, 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(heard, 13);
}

} // namespace tarn::console
