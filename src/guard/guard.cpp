#include <guard/guard.h>

#include <guard/decoratedcontrols.h>
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
        m_device->addObserver(&m_returns);
    }

    GuardedVna(const GuardedVna&) = delete;
    GuardedVna& operator=(const GuardedVna&) = delete;

    ~GuardedVna() override
    {
        m_device->removeObserver(&m_returns);
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
    /// A request that outlasts a drop has its progress told by the control that is offered next, and not by one that
    /// the device has dropped.
    class Returns final : public Observer {
    public:
        explicit Returns(GuardedVna& vna)
            : m_vna{vna}
        {
        }

        void onControlsAboutToBeReleased() override
        {
            m_vna.tell(&MemoryOperations::onDrop);
            m_vna.tell(&SerialNumber::onDrop);
        }
        void onControlsAvailable() override
        {
            m_vna.tell(&MemoryOperations::onOffer);
            m_vna.tell(&SerialNumber::onOffer);
        }

    private:
        GuardedVna& m_vna;
    };

    /// Calls `notification` of the decoration of what the device offers. What the device throws then costs progress at
    /// the most.
    template <class Type>
    void tell(void (Type::*notification)()) noexcept
    {
        using Interface = typename Type::Interface;
        try {
            if (const auto offered = control<Interface>(Interface::key))
                (static_cast<Type&>(*offered).*notification)();
        } catch (...) { // NOLINT(bugprone-empty-catch)
        }
    }

    std::shared_ptr<sdk::IVna> m_device;
    const std::shared_ptr<Host> m_host;
    Returns m_returns{*this};
};

} // namespace

std::shared_ptr<sdk::IVna> guarded(std::shared_ptr<sdk::IVna> device, Options options)
{
    return std::make_shared<GuardedVna>(std::move(device), std::move(options));
}

} // namespace tarn::guard
