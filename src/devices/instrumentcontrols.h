#pragma once

#include <devices/controlregistry.h>
#include <devices/export.h>
#include <devices/icontrollifecycleobserver.h>
#include <sdk/ivna.h>
#include <utils/mutex.h>

#include <any>
#include <cstdint>
#include <memory>
#include <optional>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tarn::devices {

/// Names the types of control that a host can be handed.
template <class... Types>
struct ControlTypes { };

/// Owns the controls of one instrument on behalf of a host: creates every control of a registry
/// that the device offers, hands them out typed, and forwards the device's lifecycle
/// notifications to those that want them. A control that the device offers only later (the
/// instrument was away, or identifies itself as another model now) is created then.
///
/// The device lives as long as this object and every control that it has handed out, so a control
/// is always gone before its device. A control that outlives this object is notified no more.
///
/// Threads: thread-safe; at once.
///
/// The notifications are forwarded on the thread on which the device delivers them, to one control
/// after the other, with the lifecycle mutex held; what one of them throws keeps no other from being
/// notified or created, and reaches the device at the end. Creation holds that mutex, too, so that no
/// control misses a notification while it is being created.
class TARN_DEVICES_EXPORT InstrumentControls final : private sdk::IVna::Observer {
public:
    /// Creates the controls that `device` (never null) offers among those of `registry`, which must
    /// outlive this object. `Types` are the public types of the registry's controls; one whose type
    /// is missing there throws `std::logic_error`, naming its key. What a creation function throws
    /// passes through, and nothing is kept.
    ///
    /// Threads: reentrant; calls through with the lifecycle mutex held, and blocks while the device
    /// brings a notification on another thread.
    template <class... Types>
    InstrumentControls(std::shared_ptr<sdk::IVna> device, const ControlRegistry& registry, ControlTypes<Types...>)
        : InstrumentControls{std::move(device), registry, std::vector<LifecycleCast>{&lifecycleObserver<Types>...}}
    {
    }

    /// Gives up the controls that nobody else holds. Not from inside a notification of the device,
    /// which may go with them.
    ///
    /// Threads: reentrant; blocks while a notification of the device, or of a control that it gives up,
    /// runs on another thread.
    ~InstrumentControls() override;

    /// The control under `registryKey`, or null when the instrument has not offered it or it is
    /// of another type.
    template <class Type>
    [[nodiscard]] std::shared_ptr<Type> control(std::uint64_t registryKey = Type::registryKey) const
    {
        const auto held = find(registryKey);
        const auto* const control = held ? std::any_cast<std::shared_ptr<Type>>(&held->control) : nullptr;
        return control ? std::shared_ptr<Type>{held, control->get()} : nullptr;
    }

    /// Whether the instrument has offered the control under `registryKey` since this object was
    /// made. It may be between a drop and the next offer.
    [[nodiscard]] bool isOffered(std::uint64_t registryKey) const { return find(registryKey) != nullptr; }

    /// Runs `operation` while no control is being created or notified, for those operations of a
    /// control that must not meet a lifecycle notification. Never call it from inside one: it would
    /// wait for itself. What `operation` throws passes through.
    ///
    /// Threads: thread-safe; blocks while controls are created or notified on another thread; calls
    /// `operation` on the caller's thread with the lifecycle mutex held.
    template <class Operation>
    void undisturbed(Operation operation) const
    {
        const utils::MutexLock lock{m_lifecycleMutex};
        operation();
    }

private:
    /// The lifecycle observer in a `std::any` of one control type (null if that type is none), or
    /// nothing when the `std::any` holds another type.
    using LifecycleCast = std::optional<IControlLifecycleObserver*> (*)(const std::any&);

    template <class Type>
    static std::optional<IControlLifecycleObserver*> lifecycleObserver(const std::any& value)
    {
        const auto* const control = std::any_cast<std::shared_ptr<Type>>(&value);
        if (!control)
            return std::nullopt;
        // A final class that is none is not asked: a host may know its header alone, not its type information.
        if constexpr (std::is_base_of_v<IControlLifecycleObserver, Type>
                      || (std::is_polymorphic_v<Type> && !std::is_final_v<Type>))
            return dynamic_cast<IControlLifecycleObserver*>(control->get());
        else
            return nullptr;
    }

    /// A control, and the device that must outlive it.
    struct Held {
        std::shared_ptr<sdk::IVna> device;
        std::any control;
        IControlLifecycleObserver* observer;
    };

    InstrumentControls(std::shared_ptr<sdk::IVna> device, const ControlRegistry& registry,
                       std::vector<LifecycleCast> casts);

    void onControlsAboutToBeReleased() override;
    void onControlsAvailable() override;
    /// Does something with every entry, whatever it throws for one of them; then throws the first
    /// of that. One such pass at a time.
    template <class Step>
    void forEachEntry(Step step);

    void notify(std::uint64_t registryKey, void (IControlLifecycleObserver::*notification)()) const;
    void createIfMissing(const ControlRegistry::ControlEntryBase& entry);
    [[nodiscard]] std::shared_ptr<const Held> find(std::uint64_t registryKey) const;

    const std::shared_ptr<sdk::IVna> m_device;
    const ControlRegistry& m_registry;
    const std::vector<LifecycleCast> m_casts;
    mutable utils::Mutex m_lifecycleMutex; ///< held while controls are created and notified
    mutable utils::Mutex m_mutex; ///< guards the map alone
    std::unordered_map<std::uint64_t, std::shared_ptr<const Held>> m_controls TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::devices
