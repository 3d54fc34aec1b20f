#pragma once

#include <simulator/bench.h>
#include <simulator/longoperation.h>
#include <simulator/offeredobservers.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

namespace tarn::simulator {

// What the parts of an instrument that store calibration data have in common. What they differ in is their `Kind`:
//
//     Control            the contract's interface
//     Data               what is stored
//     plan()             the frequencies at which it is to be measured
//     slot(calibrations) where it is stored
//     count(data)        how many pieces the data has, each of which takes
//     timePerPiece       to write in real memory
//     onError            the notification of an error

/// One of these parts.
template <class Kind>
struct CalibrationPart {
    explicit CalibrationPart(Bench& theBench)
        : bench{theBench}
        , slot{Kind::slot(theBench.calibrations)}
    {
    }

    Bench& bench;
    StoredCalibration<typename Kind::Data>& slot;
    OfferedObservers<typename Kind::Control::Observer> observers;
};

/// Writes data in up to 100 steps. An interruption leaves the old data.
template <class Kind>
class CalibrationWrite final : public LongOperation {
    using Observer = typename Kind::Control::Observer;
    using Error = typename Kind::Control::Error;

public:
    CalibrationWrite(std::shared_ptr<CalibrationPart<Kind>> part, typename Kind::Data data)
        : m_part{std::move(part)}
        , m_data{std::move(data)}
    {
    }

    std::error_code begin() override
    {
        const auto& bench = m_part->bench;
        if (bench.faults.isWriteProtected())
            return simulator::Error::WriteProtected;
        m_refusal = check(m_data, bench.calibrations.limits());
        if (m_refusal)
            return std::make_error_code(std::errc::invalid_argument);
        m_total = static_cast<std::uint32_t>(Kind::count(m_data));
        return {};
    }

    [[nodiscard]] std::uint32_t total() const override { return m_total; }
    [[nodiscard]] std::uint32_t piece() const override { return ((m_total - 1) / percent) + 1; }

    [[nodiscard]] Duration time(std::uint32_t from, std::uint32_t to) const override
    {
        return scaled(m_part->bench.settings, Kind::timePerPiece * (to - from));
    }

    std::error_code work(std::uint32_t /*from*/, std::uint32_t /*to*/) override { return {}; }

    void notify(std::uint32_t done) override
    {
        if (done == 0) {
            m_part->observers.tell(&Observer::onWriteStarted);
            m_part->slot.startSaving();
        }
        m_part->observers.tellNow(&Observer::onWriteProgressChanged,
                                  static_cast<unsigned int>(std::uint64_t{done} * percent / m_total));
        m_part->slot.tellProgress({.done = done, .total = m_total});
    }

    std::error_code close(std::error_code result) override
    {
        if (result.value() == 0)
            result = m_part->slot.store(std::move(m_data), m_part->bench.calibrations.limits());
        m_part->slot.endSaving();
        return result;
    }

    void complete(std::error_code result) override
    {
        if (result.value() == 0)
            m_part->observers.tell(&Observer::onWriteFinished);
        else
            m_part->observers.tell(Kind::onError, m_refusal.value_or(Error::WriteFailed));
    }

private:
    static constexpr std::uint32_t percent = 100;

    const std::shared_ptr<CalibrationPart<Kind>> m_part;
    typename Kind::Data m_data;
    std::optional<Error> m_refusal;
    std::uint32_t m_total = 0;
};

/// What the controls have in common.
template <class Kind>
class CalibrationControl : public Kind::Control {
public:
    using Observer = typename Kind::Control::Observer;

    CalibrationControl(std::shared_ptr<Bench> bench, std::shared_ptr<CalibrationPart<Kind>> part)
        : m_bench{std::move(bench)}
        , m_part{std::move(part)}
    {
    }

    void addObserver(Observer* observer) final { m_part->observers.add(observer); }
    void removeObserver(Observer* observer) final { m_part->observers.remove(observer); }
    [[nodiscard]] sdk::FrequencyPlan frequencyPlan() final { return operations().call(&Kind::plan); }

protected:
    [[nodiscard]] Operations& operations() const { return m_bench->operations; }
    [[nodiscard]] CalibrationLimits limits() const { return m_bench->calibrations.limits(); }

    void write(typename Kind::Data data)
    {
        operations().enqueue(std::make_shared<CalibrationWrite<Kind>>(m_part, std::move(data)));
    }

private:
    const std::shared_ptr<Bench> m_bench;
    const std::shared_ptr<CalibrationPart<Kind>> m_part;
};

/// Puts the part into an instrument, with `Control` as the way to it.
template <class Kind, class Control>
[[nodiscard]] MakeControl installCalibration(const std::shared_ptr<Bench>& bench)
{
    auto part = std::make_shared<CalibrationPart<Kind>>(*bench);
    bench->endRegistrations.emplace_back([part] { part->observers.endOffer(); });
    return [bench, part]() -> std::shared_ptr<typename Kind::Control> {
        bench->atOffer.emplace_back([part] { part->observers.beginOffer(); });
        part->observers.open();
        return std::make_shared<Control>(bench, part);
    };
}

} // namespace tarn::simulator
