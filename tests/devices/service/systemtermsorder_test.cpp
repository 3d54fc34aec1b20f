// In which order a write of system terms converts what it is given, in a program whose calls of the
// three conversions pass through here.

#include <devices/service/sdksystemtermscontrol.h>

#include <support/devicehandle.h>

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

namespace tarn::tests::systemtermsorder {
namespace {

using SdkTerms = sdk::corrections::ErrorTerms;
using Plan = std::vector<vna::FrequencySegment>;
using testing::ElementsAre;

std::vector<std::string> journal;

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names for what is wrapped
qint64 realSeconds(const QDateTime* time) asm("__real__ZNK9QDateTime16toSecsSinceEpochEv");
SdkTerms realTerms(const vna::ErrorTerms& terms) asm("__real__ZN4tarn7devices15errorTermsToSdkERKNS_3vna10ErrorTermsE");
sdk::FrequencyPlan realPlan(const Plan& plan) asm(
    "__real__ZN4tarn7devices7service18toSdkFrequencyPlanERKSt6vectorINS_3vna16FrequencySegmentESaIS4_EE");

qint64 convertTime(const QDateTime* time) asm("__wrap__ZNK9QDateTime16toSecsSinceEpochEv");
SdkTerms
convertTerms(const vna::ErrorTerms& terms) asm("__wrap__ZN4tarn7devices15errorTermsToSdkERKNS_3vna10ErrorTermsE");
sdk::FrequencyPlan convertPlan(const Plan& plan) asm(
    "__wrap__ZN4tarn7devices7service18toSdkFrequencyPlanERKSt6vectorINS_3vna16FrequencySegmentESaIS4_EE");
// NOLINTEND(bugprone-reserved-identifier)

qint64 convertTime(const QDateTime* time)
{
    journal.emplace_back("time");
    return realSeconds(time);
}

SdkTerms convertTerms(const vna::ErrorTerms& terms)
{
    journal.emplace_back("terms");
    return realTerms(terms);
}

sdk::FrequencyPlan convertPlan(const Plan& plan)
{
    journal.emplace_back("plan");
    return realPlan(plan);
}

namespace {

class Terms final : public sdk::service::ISystemTermsControl {
public:
    void addObserver(Observer* /*observer*/) override { }
    void removeObserver(Observer* /*observer*/) override { }
    sdk::FrequencyPlan frequencyPlan() override { return {}; }
    std::uint32_t portCount() override { return 1; }
    std::uint32_t maximumPointCount() override { return 1; }
    bool isFrequencyOverrideSupported() override { return true; }
    void writeTerms(std::int64_t /*time*/, SdkTerms /*terms*/, double /*temperature*/) override
    {
        journal.emplace_back("write");
    }
    void writeTermsForPlan(std::int64_t /*time*/, sdk::FrequencyPlan /*plan*/, SdkTerms /*terms*/,
                           double /*temperature*/) override
    {
        journal.emplace_back("write for plan");
    }
};

class SystemTermsOrder : public testing::Test {
protected:
    SystemTermsOrder() { journal.clear(); }

    using Sdk = sdk::service::ISystemTermsControl;
    devices::service::SdkSystemTermsControl control{handleTo<Sdk>(std::make_shared<Terms>())};
    devices::service::SdkSystemTermsControl unavailable{handleTo<Sdk>(std::shared_ptr<Terms>{})};
    const QDateTime time = QDateTime::fromSecsSinceEpoch(1);
};

TEST_F(SystemTermsOrder, TheTimeIsConvertedThenTheTermsThenThePlan)
{
    control.requestWriteTerms(time, 1.0, Plan{{1e9, 2e9, 2}}, {});
    EXPECT_THAT(journal, ElementsAre("time", "terms", "plan", "write for plan"));
}

TEST_F(SystemTermsOrder, TheTimeIsConvertedThenTheTermsIfThereIsNoPlan)
{
    control.requestWriteTerms(time, 1.0, {});
    EXPECT_THAT(journal, ElementsAre("time", "terms", "write"));
}

TEST_F(SystemTermsOrder, NothingIsConvertedForNobody)
{
    unavailable.requestWriteTerms(time, 1.0, Plan{{1e9, 2e9, 2}}, {});
    unavailable.requestWriteTerms(time, 1.0, {});
    EXPECT_THAT(journal, testing::IsEmpty());
}

} // namespace
} // namespace tarn::tests::systemtermsorder
