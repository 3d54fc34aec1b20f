#include <simulator/systemterms.h>

#include <sdk/service/isystemtermscontrol.h>
#include <simulator/calibrationpart.h>

#include <chrono>

namespace tarn::simulator {

namespace {

struct SystemTermsKind {
    using Control = sdk::service::ISystemTermsControl;
    using Data = SystemTerms;

    static constexpr Duration timePerPiece = std::chrono::milliseconds{50};
    static constexpr auto onError = &Control::Observer::onErrorOccurred;
    static auto& slot(Calibrations& calibrations) { return calibrations.systemTerms; }
    static sdk::FrequencyPlan plan() { return systemTermsPlan(); }
    static std::size_t count(const Data& data) { return data.terms.frequencies.size(); }
};

class SystemTermsControl final : public CalibrationControl<SystemTermsKind> {
public:
    using CalibrationControl::CalibrationControl;

    std::uint32_t portCount() override
    {
        return operations().call([this] { return limits().portCount; });
    }

    std::uint32_t maximumPointCount() override
    {
        return operations().call([] { return CalibrationLimits::maximumPointCount; });
    }

    void writeTerms(std::int64_t time, sdk::corrections::ErrorTerms terms, double temperature) override
    {
        writeTermsForPlan(time, systemTermsPlan(), std::move(terms), temperature);
    }

    bool isFrequencyOverrideSupported() override
    {
        return operations().call([this] { return limits().isOverrideSupported; });
    }

    void writeTermsForPlan(std::int64_t time, sdk::FrequencyPlan plan, sdk::corrections::ErrorTerms terms,
                           double temperature) override
    {
        write({.time = time, .plan = std::move(plan), .terms = std::move(terms), .temperature = temperature});
    }
};

} // namespace

MakeControl installSystemTerms(const std::shared_ptr<Bench>& bench)
{
    return installCalibration<SystemTermsKind, SystemTermsControl>(bench);
}

} // namespace tarn::simulator
