#pragma once

#include <devices/service/imemoryoperationscontrol.h>
#include <devices/service/iserialnumbercontrol.h>
#include <devices/service/isystemtermscontrol.h>
#include <devices/service/sdkfactorycorrectioncontrol.h>

#include <atomic>
#include <cstdint>

namespace tarn::tests {

/// What one observer has heard. Written by whoever notifies, read by any thread.
class Heard {
public:
    void anything()
    {
        ++all;
        late += isRemoved ? 1 : 0;
    }
    void start()
    {
        anything();
        ++starts;
        disorder += m_isWriting.exchange(true) ? 1 : 0;
    }
    void progress()
    {
        anything();
        disorder += m_isWriting ? 0 : 1;
    }
    void finish()
    {
        anything();
        ++finishes;
        disorder += m_isWriting.exchange(false) ? 0 : 1;
    }
    void error()
    {
        anything();
        ++refusals;
        disorder += m_isWriting ? 1 : 0;
    }

    std::atomic<bool> isRemoved = false; ///< set once its removal has returned
    std::atomic<int> all = 0;
    std::atomic<int> starts = 0;
    std::atomic<int> finishes = 0;
    std::atomic<int> refusals = 0;
    std::atomic<int> disorder = 0; ///< starts and errors inside of a write, and what else was outside of one
    std::atomic<int> late = 0; ///< notifications after the removal

private:
    std::atomic<bool> m_isWriting = false;
};

/// Observes writes of calibration data, of which none fails in the middle.
template <class Control>
struct HearingBase : Control::Observer {
    void onError(typename Control::Error /*error*/) override { heard.error(); }
    Heard heard;
};
template <>
struct HearingBase<devices::service::ISystemTermsControl> : devices::service::ISystemTermsControl::Observer {
    void onErrorOccurred(devices::service::ISystemTermsControl::Error /*error*/) override { heard.error(); }
    Heard heard;
};
template <class Control>
struct Hearing final : HearingBase<Control> {
    void onWriteStarted() override { this->heard.start(); }
    void onWriteProgressChanged(std::uint32_t /*progress*/) override { this->heard.progress(); }
    void onWriteFinished() override { this->heard.finish(); }
};

template <>
struct Hearing<devices::service::IMemoryOperationsControl> final
    : devices::service::IMemoryOperationsControl::IObserver {
    using Progress = devices::service::Progress;
    void onWriteProgressChanged(const Progress& /*progress*/) override { heard.anything(); }
    void onReadProgressChanged(const Progress& /*progress*/) override { heard.anything(); }
    void onEraseProgressChanged(const Progress& /*progress*/) override { heard.anything(); }
    void onIntegrityCheckProgressChanged(const Progress& /*progress*/) override { heard.anything(); }
    Heard heard;
};

template <>
struct Hearing<devices::service::ISerialNumberControl> final : devices::service::ISerialNumberControl::IObserver {
    void onWriteProgressChanged(const devices::service::Progress& /*progress*/) override { heard.anything(); }
    Heard heard;
};

template <>
struct Hearing<devices::service::SdkFactoryCorrectionControl> final
    : devices::service::SdkFactoryCorrectionControl::Observer {
    void onSupportedChanged() override { heard.anything(); }
    void onValidChanged() override { heard.anything(); }
    void onEnabledChanged(devices::FactoryCorrection /*correction*/, bool /*enabled*/) override { heard.anything(); }
    Heard heard;
};

} // namespace tarn::tests
