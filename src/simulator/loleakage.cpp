#include <simulator/loleakage.h>

#include <sdk/service/iloleakagecontrol.h>
#include <utils/mutex.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace tarn::simulator {

namespace {

const QString sectionName = QStringLiteral("loLeakage");
constexpr double leakageRise = 4.0; // kelvin

bool load(const Storage& storage)
{
    const auto section = storage.section(sectionName);
    if (!section.isUndefined() && !section.isBool())
        storage.refuse(QStringLiteral("\"loLeakage\" is neither true nor false"));
    return section.toBool();
}

/// The function as it is in the instrument. Thread-safe.
class LoLeakage {
public:
    explicit LoLeakage(Bench& bench)
        : m_bench{bench}
        , m_enabled{load(*bench.storage)}
    {
        const utils::MutexLock lock{m_mutex};
        heat();
    }

    [[nodiscard]] bool isEnabled() const
    {
        const utils::MutexLock lock{m_mutex};
        return m_enabled;
    }

    /// Throws, and leaves the function as it was, if the setting cannot be saved.
    void setEnabled(bool enabled)
    {
        const utils::MutexLock lock{m_mutex};
        if (m_bench.storage->save(sectionName, enabled, {}))
            throw std::runtime_error{std::string{"the LO leakage setting could not be saved and stays "}
                                     + (m_enabled ? "on" : "off")
                                     + "; check that the state folder is there and its disk is not full"};
        m_enabled = enabled;
        heat();
    }

private:
    void heat() TARN_REQUIRES(m_mutex)
    {
        m_bench.thermal.setExtraRise(ThermalModel::loModule, m_enabled ? leakageRise : 0.0, m_bench.clock->now());
    }

    Bench& m_bench;
    mutable utils::Mutex m_mutex;
    bool m_enabled TARN_GUARDED_BY(m_mutex);
};

class LoLeakageControl final : public sdk::service::ILoLeakageControl {
public:
    LoLeakageControl(std::shared_ptr<Bench> bench, std::shared_ptr<LoLeakage> leakage)
        : m_bench{std::move(bench)}
        , m_leakage{std::move(leakage)}
    {
    }

    bool isEnabled() override
    {
        return m_bench->operations.call([this] { return m_leakage->isEnabled(); });
    }

    void setEnabled(bool enabled) override
    {
        m_bench->operations.call([this, enabled] { m_leakage->setEnabled(enabled); });
    }

private:
    const std::shared_ptr<Bench> m_bench;
    const std::shared_ptr<LoLeakage> m_leakage;
};

} // namespace

MakeControl installLoLeakage(const std::shared_ptr<Bench>& bench)
{
    auto leakage = std::make_shared<LoLeakage>(*bench);
    return [bench, leakage]() -> std::shared_ptr<sdk::service::ILoLeakageControl> {
        return std::make_shared<LoLeakageControl>(bench, leakage);
    };
}

} // namespace tarn::simulator
