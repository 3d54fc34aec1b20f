// A getter and a setter of a control that is there, and the call that finds its handle expired: through the adapter,
// and by other ways to reach a control that the device may drop.

#include "fakes.h"
#include "ways.h"

#include <devices/service/sdkloleakagecontrol.h>
#include <sdk/ivna.h>

#include <QMutex>
#include <QMutexLocker>
#include <QSharedPointer>
#include <QWeakPointer>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace tarn::benchmarks {
namespace {

using Sdk = sdk::service::ILoLeakageControl;
using Adapter = devices::service::SdkLoLeakageControl;
using Handle = sdk::ControlHandle<Sdk>;

/// Has the LO leakage function and nothing else.
class Device final : public sdk::IVna {
public:
    using IVna::control;

    std::shared_ptr<void> control(sdk::Key key) override { return key == Sdk::key ? m_control : nullptr; }
    void addObserver(Observer* /*observer*/) override { }
    void removeObserver(Observer* /*observer*/) override { }
    [[nodiscard]] sdk::Model model() const override { return sdk::Model{"Benchmark"}; }

    /// Replaces the control, which expires every handle to the one before.
    void renew() { m_control = makeLoLeakage(); }

private:
    std::shared_ptr<Sdk> m_control = makeLoLeakage();
};

std::function<Handle()> reacquire(const std::shared_ptr<Device>& device)
{
    return [device] { return Handle{device->control<Sdk>(Sdk::key)}; };
}

/// The least that does what `devices::ReacquiringControl` promises, for these two calls.
class Shortest {
public:
    explicit Shortest(std::function<Handle()> reacquire)
        : m_reacquire{std::move(reacquire)}
        , m_cached{m_reacquire()}
    {
    }

    [[gnu::noinline]] bool isEnabled()
    {
        if (const auto control = lock())
            return control->isEnabled();
        return false;
    }

    [[gnu::noinline]] void setEnabled(bool enabled)
    {
        if (const auto control = lock())
            control->setEnabled(enabled);
    }

private:
    std::shared_ptr<Sdk> lock()
    {
        Handle cached;
        {
            const std::scoped_lock lock{m_mutex};
            cached = m_cached;
        }
        if (auto control = cached.lock())
            return control;
        auto fresh = m_reacquire();
        auto control = fresh.lock();
        const std::scoped_lock lock{m_mutex};
        m_cached = std::move(fresh);
        return control;
    }

    std::function<Handle()> m_reacquire;
    std::mutex m_mutex;
    Handle m_cached;
};

void addPeers(const std::shared_ptr<Device>& device)
{
    const auto control = device->control<Sdk>(Sdk::key);
    add("getter", "raw call", [control] { benchmark::DoNotOptimize(control->isEnabled()); });

    add("getter", "weak_ptr", [control, weak = std::weak_ptr{control}] {
        if (const auto locked = weak.lock())
            benchmark::DoNotOptimize(locked->isEnabled());
    });

    add("getter", "asking the device", [device] {
        if (const auto locked = device->control<Sdk>(Sdk::key))
            benchmark::DoNotOptimize(locked->isEnabled());
    });

    const auto atomic = std::make_shared<std::atomic<std::weak_ptr<Sdk>>>(control);
    add("getter", "atomic<weak_ptr>", [control, atomic] {
        if (const auto locked = atomic->load().lock())
            benchmark::DoNotOptimize(locked->isEnabled());
    });

    struct QtHandle {
        QMutex mutex;
        std::shared_ptr<Sdk> control = makeLoLeakage();
        QSharedPointer<Sdk> owner{control.get(), [](Sdk*) { }};
        QWeakPointer<Sdk> weak{owner};
    };
    add("getter", "QMutex and QWeakPointer", [qt = std::make_shared<QtHandle>()] {
        QWeakPointer<Sdk> weak;
        {
            const QMutexLocker lock{&qt->mutex};
            weak = qt->weak;
        }
        if (const auto locked = weak.toStrongRef())
            benchmark::DoNotOptimize(locked->isEnabled());
    });
}

void addAll()
{
    const auto device = std::make_shared<Device>();
    const auto adapter = std::make_shared<Adapter>(devices::ReacquiringControl<Sdk>{reacquire(device)});
    const auto shortest = std::make_shared<Shortest>(reacquire(device));
    add("getter", "library", [adapter] { benchmark::DoNotOptimize(adapter->isEnabled()); });
    add("getter", "shortest code", [shortest] { benchmark::DoNotOptimize(shortest->isEnabled()); });
    add("setter", "library", [adapter] { adapter->setEnabled(true); });
    add("setter", "shortest code", [shortest] { shortest->setEnabled(true); });
    addPeers(device);

    const auto restless = std::make_shared<Device>();
    const auto reacquiring = std::make_shared<Adapter>(devices::ReacquiringControl<Sdk>{reacquire(restless)});
    const auto shortestReacquiring = std::make_shared<Shortest>(reacquire(restless));
    add("reacquiring getter", "library", [restless, reacquiring] {
        restless->renew();
        benchmark::DoNotOptimize(reacquiring->isEnabled());
    });
    add("reacquiring getter", "shortest code", [restless, shortestReacquiring] {
        restless->renew();
        benchmark::DoNotOptimize(shortestReacquiring->isEnabled());
    });
}

} // namespace
} // namespace tarn::benchmarks

int main(int argc, char** argv)
{
    return tarn::benchmarks::runAll(argc, argv, &tarn::benchmarks::addAll);
}
