#include <guard/guard.h>

#include <guard/host.h>
#include <guard/keeper.h>

#include <utility>

namespace tarn::guard {

namespace {

class GuardedVna final : public sdk::IVna {
public:
    GuardedVna(std::shared_ptr<sdk::IVna> device, Options options)
        : m_device{std::move(device)}
        , m_host{std::make_shared<Host>(std::move(options))}
    {
    }

    GuardedVna(const GuardedVna&) = delete;
    GuardedVna& operator=(const GuardedVna&) = delete;

    ~GuardedVna() override
    {
        m_device.reset();
        Keeper::instance().sweep();
    }

    using IVna::control;

    std::shared_ptr<void> control(sdk::Key key) override
    {
        return Keeper::instance().decorated(m_device->control(key), key, m_host);
    }

    void addObserver(Observer* observer) override { m_device->addObserver(observer); }
    void removeObserver(Observer* observer) override { m_device->removeObserver(observer); }
    [[nodiscard]] sdk::Model model() const override { return m_device->model(); }

private:
    std::shared_ptr<sdk::IVna> m_device;
    const std::shared_ptr<Host> m_host;
};

} // namespace

std::shared_ptr<sdk::IVna> guarded(std::shared_ptr<sdk::IVna> device, Options options)
{
    return std::make_shared<GuardedVna>(std::move(device), std::move(options));
}

} // namespace tarn::guard
