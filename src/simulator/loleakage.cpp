#include <simulator/loleakage.h>

#include <sdk/service/iloleakagecontrol.h>

#include <utility>

namespace tarn::simulator {

namespace {

class LoLeakageControl final : public sdk::service::ILoLeakageControl {
public:
    explicit LoLeakageControl(std::shared_ptr<Bench> bench)
        : m_bench{std::move(bench)}
    {
    }

    bool isEnabled() override
    {
        return m_bench->operations.call([this] { return m_bench->loLeakage.isEnabled(); });
    }

    void setEnabled(bool enabled) override
    {
        m_bench->operations.call([this, enabled] { m_bench->loLeakage.setEnabled(enabled); });
    }

private:
    const std::shared_ptr<Bench> m_bench;
};

} // namespace

MakeControl installLoLeakage(const std::shared_ptr<Bench>& bench)
{
    return [bench]() -> std::shared_ptr<sdk::service::ILoLeakageControl> {
        return std::make_shared<LoLeakageControl>(bench);
    };
}

} // namespace tarn::simulator
