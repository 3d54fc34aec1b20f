#pragma once

#include <console/watchloop.h>
#include <devices/service/sdktemperaturecontrol.h>

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

namespace tarn::console {

/// Shows a reading at once and after every change that the instrument reports, until a number of
/// them was shown or Ctrl-C.
class TemperatureWatch final : public QObject {
public:
    using Control = devices::service::SdkTemperatureControl;

    /// `interval` is the shortest time between two readings; what changes meanwhile is shown when
    /// it is over. `show` shows one. All references must outlive the watch.
    TemperatureWatch(const LifecycleWatch& lifecycle, const Control& control, std::chrono::microseconds interval,
                     std::optional<std::uint64_t> count, std::function<void()> show, const Output& output);

    /// Returns when `count` readings were shown. Throws what `show` throws, and `Error`
    /// (`Interrupted`) after Ctrl-C.
    void run();

private:
    void onTemperaturesChanged();
    void showReading();

    const LifecycleWatch& m_lifecycle;
    const std::chrono::milliseconds m_interval;
    const std::function<void()> m_show;
    WatchLoop m_loop;
    QElapsedTimer m_sinceLast;
    QTimer m_due; ///< runs while a change waits for the interval to end
};

} // namespace tarn::console
