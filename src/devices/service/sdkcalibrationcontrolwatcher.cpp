#include <devices/service/sdkcalibrationcontrolwatcher.h>

namespace tarn::devices::service {

namespace {

using sdk::service::calibrations::ICalibrationController;
using sdk::service::calibrations::ICalibrationUnit;
using sdk::service::calibrations::Progress;

/// Rounded down; the product is taken modulo 2^64, the quotient to the width of the result.
constexpr int percent(Progress progress)
{
    return progress.total == 0 ? 0 : static_cast<int>(progress.done * 100 / progress.total);
}

} // namespace

class SdkCalibrationControlWatcher::SdkObserver final : public ICalibrationController::Observer {
public:
    explicit SdkObserver(SdkCalibrationControlWatcher& watcher)
        : m_watcher{watcher}
    {
    }

    void onUnitStatusChanged(ICalibrationUnit* /*unit*/) override { emit m_watcher.unitStatusChanged(); }
    void onSaveProgress(ICalibrationUnit* /*unit*/, Progress progress) override
    {
        emit m_watcher.saveProgressChanged(percent(progress));
    }
    void onConfigurationChanged() override { emit m_watcher.configurationChanged(); }

private:
    SdkCalibrationControlWatcher& m_watcher;
};

SdkCalibrationControlWatcher::SdkCalibrationControlWatcher(SdkCalibrationControlHandle& handle, QObject* parent)
    : QObject{parent}
    , m_handle{handle}
    , m_observer{std::make_unique<SdkObserver>(*this)}
{
    connect(&handle, &SdkCalibrationControlHandle::controlsAvailable, this, [this] {
        attach();
        emit unitStatusChanged();
        emit configurationChanged();
    });
    connect(&handle, &SdkCalibrationControlHandle::controlsAboutToBeReleased, this, [this] { detach(); });
    attach();
}

SdkCalibrationControlWatcher::~SdkCalibrationControlWatcher()
{
    try {
        detach();
    } catch (...) { // NOLINT(bugprone-empty-catch): what goes wrong is nobody's to handle any more
    }
}

void SdkCalibrationControlWatcher::attach()
{
    if (const auto controller = m_handle.lock()) {
        controller->removeObserver(m_observer.get()); // so that it is never registered twice
        controller->addObserver(m_observer.get());
    }
}

void SdkCalibrationControlWatcher::detach()
{
    if (const auto controller = m_handle.lock())
        controller->removeObserver(m_observer.get());
}

} // namespace tarn::devices::service
