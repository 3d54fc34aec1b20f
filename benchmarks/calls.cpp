// A getter and a setter of a control that is there, and the call that finds its handle expired: through the adapter,
// and by other ways to reach a control that the device may drop.

#include "fakes.h"
#include "shortesthandle.h"
#include "ways.h"

#include <devices/service/sdkloleakagecontrol.h>
#include <devices/service/sdkvellsynthesiscontrol.h>
#include <sdk/ivna.h>

#include <QMutex>
#include <QMutexLocker>
#include <QSharedPointer>
#include <QWeakPointer>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

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

/// What the adapter does, by hand.
class ByHand {
public:
    explicit ByHand(const std::shared_ptr<Device>& device)
        : m_handle{reacquire(device)}
    {
    }

    [[gnu::noinline]] bool isEnabled()
    {
        if (const auto control = m_handle.lock())
            return control->isEnabled();
        return false;
    }

    [[gnu::noinline]] void setEnabled(bool enabled)
    {
        if (const auto control = m_handle.lock())
            control->setEnabled(enabled);
    }

private:
    ShortestHandle<Sdk> m_handle;
};

template <class Control>
Way getter(const char* name, const std::shared_ptr<Control>& control)
{
    return repeated("getter", name, [control] { return control->isEnabled(); });
}

template <class Control>
Way setter(const char* name, const std::shared_ptr<Control>& control)
{
    return repeated("setter", name, [control] { control->setEnabled(true); });
}

/// The getter of a control that the device has replaced since the last call.
template <class Control>
Way reacquiringGetter(const char* name, const std::shared_ptr<Device>& device, const std::shared_ptr<Control>& control)
{
    return repeated("reacquiring getter", name, [device, control] {
        device->renew();
        consume(control->isEnabled());
    });
}

using Synthesis = sdk::service::IVellSynthesisControl;

[[gnu::noinline]] std::vector<double> listByHand(ShortestHandle<Synthesis>& handle)
{
    if (const auto control = handle.lock()) {
        const auto list = control->supportedIfs();
        return {list.begin(), list.end()};
    }
    return {};
}

/// The getter of a list, which is brought into another type.
std::vector<Way> convertingGetters()
{
    const auto synthesis = makeVellSynthesis();
    const auto reacquire = [synthesis] { return sdk::ControlHandle<Synthesis>{synthesis}; };
    return {
        repeated("getter of a list", "library",
                 [adapter = adapterOf<devices::service::SdkVellSynthesisControl, Synthesis>(synthesis)] {
                     return adapter->supportedIfs();
                 }),
        repeated("getter of a list", "shortest code",
                 [handle = std::make_shared<ShortestHandle<Synthesis>>(reacquire)] { return listByHand(*handle); }),
    };
}

/// Two threads, each with a control of its own, and one alone.
std::vector<Way> onTwoThreads()
{
    const auto adapter = [] { return adapterOn<Adapter, Sdk>(std::make_shared<Device>()); };
    const auto first = adapter();
    const auto second = adapter();
    const auto byHand = [] { return std::make_shared<ByHand>(std::make_shared<Device>()); };
    const auto asking = [](const auto& control) { return [control] { return control->isEnabled(); }; };
    const std::string row = "getter on two threads";
    const std::string other = "getter on the other of them";
    return {
        beside(asking(second), repeated(row, "library", asking(first))),
        repeated(row, "alone", asking(first)),
        beside(asking(first), repeated(other, "library", asking(second))),
        repeated(other, "alone", asking(second)),
        beside(asking(byHand()), repeated(row, "shortest code", asking(byHand()))),
        repeated(row, "shortest code alone", asking(byHand())),
    };
}

struct QtHandle {
    QMutex mutex;
    std::shared_ptr<Sdk> control = makeLoLeakage();
    QSharedPointer<Sdk> owner{control.get(), [](Sdk*) { }};
    QWeakPointer<Sdk> weak{owner};

    [[nodiscard]] bool isEnabled()
    {
        QWeakPointer<Sdk> copy;
        {
            const QMutexLocker lock{&mutex};
            copy = weak;
        }
        const auto locked = copy.toStrongRef();
        return locked && locked->isEnabled();
    }
};

/// Other ways to reach a control that may be gone, and one that cannot be.
std::vector<Way> otherGetters(const std::shared_ptr<Device>& device)
{
    const auto control = device->control<Sdk>(Sdk::key);
    const auto atomic = std::make_shared<std::atomic<std::weak_ptr<Sdk>>>(control);
    return {
        getter("raw call", control),
        repeated("getter", "weak_ptr",
                 [control, weak = std::weak_ptr{control}] {
                     if (const auto locked = weak.lock())
                         consume(locked->isEnabled());
                 }),
        repeated("getter", "asking the device",
                 [device] {
                     if (const auto locked = device->control<Sdk>(Sdk::key))
                         consume(locked->isEnabled());
                 }),
        repeated("getter", "atomic<weak_ptr>",
                 [control, atomic] {
                     if (const auto locked = atomic->load().lock())
                         consume(locked->isEnabled());
                 }),
        getter("QMutex and QWeakPointer", std::make_shared<QtHandle>()),
    };
}

} // namespace

std::vector<Way> allWays()
{
    const auto device = std::make_shared<Device>();
    const auto adapter = adapterOn<Adapter, Sdk>(device);
    const auto byHand = std::make_shared<ByHand>(device);
    const auto restless = std::make_shared<Device>();
    std::vector<Way> ways{
        getter("library", adapter),
        getter("shortest code", byHand),
        setter("library", adapter),
        setter("shortest code", byHand),
        reacquiringGetter("library", restless, adapterOn<Adapter, Sdk>(restless)),
        reacquiringGetter("shortest code", restless, std::make_shared<ByHand>(restless)),
        repeated("reacquiring getter", "the drop alone", [restless] { restless->renew(); }),
    };
    for (auto&& others : {convertingGetters(), otherGetters(device), onTwoThreads()})
        ways.insert(ways.end(), others.begin(), others.end());
    return ways;
}

} // namespace tarn::benchmarks
