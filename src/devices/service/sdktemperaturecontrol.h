#pragma once

#include <devices/icontrollifecycleobserver.h>
#include <devices/reacquiringcontrol.h>
#include <devices/service/export.h>
#include <sdk/itemperaturecontrol.h>
#include <utils/mutex.h>

#include <QObject>
#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

namespace tarn::devices::service {

/// The temperatures of the instrument and of its modules, in the SDK's unit (degrees Celsius).
///
/// They are a snapshot, read from the instrument whenever it reports a change and whenever the
/// control becomes available; reading the snapshot never touches the instrument. While the
/// instrument does not offer the control the last snapshot stays readable.
///
/// Exceptions of the device pass through to whoever delivers the notification.
///
/// Threads: thread-safe; at once.
class TARN_DEVICES_SERVICE_EXPORT SdkTemperatureControl final : public QObject, public IControlLifecycleObserver {
    Q_OBJECT

public:
    static constexpr std::uint64_t registryKey = 0xeba4ba7306e6b9a2; ///< of its entry in the host's registry

    /// The temperature of one module.
    struct ModuleTemperature {
        QString name; ///< of the module, unique within the instrument
        double temperature; ///< degrees Celsius

        friend bool operator==(const ModuleTemperature&, const ModuleTemperature&) = default;
    };

    /// Attaches and reads the first snapshot, if the instrument offers the control. Emits nothing.
    ///
    /// Threads: reentrant; calls through.
    explicit SdkTemperatureControl(ReacquiringControl<sdk::ITemperatureControl> control);

    /// Detaches. Not from inside a slot of this control.
    ///
    /// Threads: reentrant; blocks while a notification of this control runs on another thread.
    ~SdkTemperatureControl() override;

    /// The instrument's temperature at the last refresh; 0.0 before the first.
    [[nodiscard]] double temperature() const;

    /// The modules' temperatures at the last refresh, ascending by name in UTF-16 code unit order;
    /// empty before the first.
    [[nodiscard]] std::vector<ModuleTemperature> modulesTemperature() const;

    /// Detaches from the instrument; the snapshot stays.
    void onControlsAboutToBeReleased() override;

    /// Attaches, refreshes the snapshot and emits `temperaturesChanged()`.
    void onControlsAvailable() override;

signals:
    /// A refresh was due: after every change that the instrument reports and after every return of
    /// the control, whether or not a value differs or could be read.
    ///
    /// Threads: slots are called on the thread that brought the notification or on the receiver's own, in
    /// the former case with no lock held or, after a return of the control, with the lifecycle mutex of
    /// `InstrumentControls` held.
    void temperaturesChanged();

private:
    class SdkObserverAdapter;

    void onSdkTemperatureChanged();
    void attachAdapter();
    void detachAdapter();
    void detachQuietly() noexcept;
    void refreshSnapshot();

    ReacquiringControl<sdk::ITemperatureControl> m_control;
    std::unique_ptr<SdkObserverAdapter> m_observerAdapter;
    mutable utils::Mutex m_mutex;
    std::vector<ModuleTemperature> m_modules TARN_GUARDED_BY(m_mutex);
    double m_temperature TARN_GUARDED_BY(m_mutex) = 0.0;
};

} // namespace tarn::devices::service
