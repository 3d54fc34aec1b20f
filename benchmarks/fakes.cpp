#include "fakes.h"

namespace tarn::benchmarks {
namespace {

class LoLeakage final : public sdk::service::ILoLeakageControl {
public:
    [[nodiscard]] bool isEnabled() override { return m_enabled; }
    void setEnabled(bool enabled) override { m_enabled = enabled; }

private:
    bool m_enabled = false;
};

class Ears final : public devices::service::ISerialNumberControl::IObserver {
public:
    void onWriteProgressChanged(const devices::service::Progress& progress) override { m_heard += progress.done; }

private:
    unsigned int m_heard = 0;
};

} // namespace

std::shared_ptr<sdk::service::ILoLeakageControl> makeLoLeakage()
{
    return std::make_shared<LoLeakage>();
}

std::unique_ptr<devices::service::ISerialNumberControl::IObserver> makeEars()
{
    return std::make_unique<Ears>();
}

} // namespace tarn::benchmarks
