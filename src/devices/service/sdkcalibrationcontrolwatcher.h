#pragma once

#include <devices/service/export.h>
#include <devices/service/sdkcalibrationcontrolhandle.h>

#include <QObject>

#include <memory>

namespace tarn::devices::service {

/// Turns the notifications of a calibration controller into signals, through any number of drops
/// and offers.
///
/// Threads: bound to the thread that created it; calls through, and to attach or detach blocks while one of
/// its notifications runs on another thread.
///
/// The signals bring no data with them but the per cent; they are emitted on the device's thread, and
/// after a new offer on the watcher's own. The handle's signals reach the watcher at once if they are
/// emitted on the watcher's thread, otherwise by way of that thread's event loop.
class TARN_DEVICES_SERVICE_EXPORT SdkCalibrationControlWatcher final : public QObject {
    Q_OBJECT

public:
    /// Watches the controller of `handle`, which must outlive this object. Attaches at once if the
    /// instrument offers the controller.
    explicit SdkCalibrationControlWatcher(SdkCalibrationControlHandle& handle, QObject* parent = nullptr);

    /// Detaches.
    ~SdkCalibrationControlWatcher() override;

    /// Attaches to the controller if the instrument offers it. Attaching again is harmless. Done
    /// without being asked whenever the handle says that the controller is available.
    void attach();

    /// Detaches from the controller if the instrument offers it. Done without being asked whenever
    /// the handle says that the controller is about to go.
    void detach();

signals:
    /// The status of a unit may have changed. After every new offer this comes first.
    ///
    /// Threads: slots are called on a thread of the device, after a return of the controller on the
    /// watcher's own, or on the receiver's own, with no lock held; after a return with the lifecycle
    /// mutex held, if the watcher lives on the thread that brings it and the slot runs there.
    void unitStatusChanged();

    /// The saving of a unit has come this far. `percent` is rounded down, 0 while the total is
    /// unknown, and not limited to 100.
    ///
    /// Threads: slots are called on a thread of the device, or on the receiver's own, with no lock held.
    void saveProgressChanged(int percent);

    /// The list of units may have changed. After every new offer this comes second.
    ///
    /// Threads: slots are called on the same threads as those of `unitStatusChanged()`, with the same
    /// mutex held.
    void configurationChanged();

private:
    class SdkObserver;

    SdkCalibrationControlHandle& m_handle;
    std::unique_ptr<SdkObserver> m_observer;
};

} // namespace tarn::devices::service
