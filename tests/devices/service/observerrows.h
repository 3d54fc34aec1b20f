#pragma once

#include <devices/service/sdkfactorycorrectioncontrol.h>
#include <devices/service/sdkmemoryoperationscontrol.h>
#include <devices/service/sdkserialnumbercontrol.h>
#include <devices/service/sdksystemtermscontrol.h>

#include <support/calibrationbench.h>
#include <support/mockfactorycorrectioncontrol.h>
#include <support/mockmemoryoperationscontrol.h>
#include <support/mockmemoryserialnumbercontrol.h>
#include <support/mocksystemtermscontrol.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>

/// The adapters with observers of their own, each with a notification of the SDK and a call.
namespace tarn::tests::observers {

using devices::service::IMemoryOperationsControl;
using devices::service::ISerialNumberControl;
using devices::service::ISystemTermsControl;
using devices::service::Progress;

/// A list, which is attached to the SDK as a whole.
struct Terms {
    using Sdk = sdk::service::ISystemTermsControl;
    using SdkObserver = Sdk::Observer;
    using Adapter = devices::service::SdkSystemTermsControl;
    using Mock = MockSystemTermsControl;
    static constexpr bool isList = true;

    struct Listener final : ISystemTermsControl::Observer {
        void onWriteStarted() override { ADD_FAILURE(); }
        void onWriteProgressChanged(std::uint32_t /*progress*/) override { heard(); }
        void onWriteFinished() override { ADD_FAILURE(); }
        void onErrorOccurred(ISystemTermsControl::Error /*error*/) override { ADD_FAILURE(); }
        std::function<void()> heard;
    };
    static void tell(SdkObserver& observer) { observer.onWriteProgressChanged(1); }
    static void call(Adapter& adapter) { EXPECT_FALSE(adapter.isFrequencyOverrideSupported()); }
};

struct Serial {
    using Sdk = sdk::service::IMemorySerialNumberControl;
    using SdkObserver = Sdk::Observer;
    using Adapter = devices::service::SdkSerialNumberControl;
    using Mock = MockMemorySerialNumberControl;
    static constexpr bool isList = true;

    struct Listener final : ISerialNumberControl::IObserver {
        void onWriteProgressChanged(const Progress& /*progress*/) override { heard(); }
        std::function<void()> heard;
    };
    static void tell(SdkObserver& observer) { observer.onWriteProgressChanged(1, 2); }
    static void call(Adapter& /*adapter*/) { }
};

struct Memory {
    using Sdk = sdk::service::IMemoryOperationsControl;
    using SdkObserver = Sdk::IObserver;
    using Adapter = devices::service::SdkMemoryOperationsControl;
    using Mock = MockMemoryOperationsControl;
    static constexpr bool isList = true;

    struct Listener final : IMemoryOperationsControl::IObserver {
        void onWriteProgressChanged(const Progress& /*progress*/) override { ADD_FAILURE(); }
        void onReadProgressChanged(const Progress& /*progress*/) override { ADD_FAILURE(); }
        void onEraseProgressChanged(const Progress& /*progress*/) override { heard(); }
        void onIntegrityCheckProgressChanged(const Progress& /*progress*/) override { ADD_FAILURE(); }
        std::function<void()> heard;
    };
    static void tell(SdkObserver& observer) { observer.onEraseProgressChanged(1, 2); }
    static void call(Adapter& /*adapter*/) { }
};

/// A map, with an SDK observer for each of the application's.
template <class Calibration>
struct Flagged : Calibration {
    using Listener = ProgressListener<typename Calibration::Adapter>;
    static constexpr bool isList = false;
    static void tell(typename Calibration::SdkObserver& observer) { observer.onWriteProgressChanged(1); }
    static void call(typename Calibration::Adapter& adapter) { EXPECT_TRUE(adapter.frequencyPlan().empty()); }
};

/// A map without a lock of its own.
struct Corrections {
    using Sdk = sdk::IFactoryCorrectionControl;
    using SdkObserver = Sdk::Observer;
    using Adapter = devices::service::SdkFactoryCorrectionControl;
    using Mock = MockFactoryCorrectionControl;
    static constexpr bool isList = false;

    struct Listener final : Adapter::Observer {
        void onSupportedChanged() override { }
        void onValidChanged() override { }
        void onEnabledChanged(devices::FactoryCorrection /*correction*/, bool /*enabled*/) override { heard(); }
        std::function<void()> heard;
    };
    static void tell(SdkObserver& observer) { observer.onEnabledChanged(sdk::CorrectionFlag::System, true); }
    static void call(Adapter& adapter) { EXPECT_TRUE(adapter.supported().empty()); }
};

using Lists = testing::Types<Terms, Serial, Memory>;
using Maps = testing::Types<Flagged<Ifsw>, Flagged<Power>, Corrections>;
using All = testing::Types<Terms, Serial, Memory, Flagged<Ifsw>, Flagged<Power>, Corrections>;

template <class Row>
void add(typename Row::Adapter& adapter, typename Row::Listener& listener)
{
    if constexpr (Row::isList)
        adapter.addObserver(listener);
    else
        adapter.addObserver(&listener);
}

template <class Row>
void remove(typename Row::Adapter& adapter, typename Row::Listener& listener)
{
    if constexpr (Row::isList)
        adapter.removeObserver(listener);
    else
        adapter.removeObserver(&listener);
}

} // namespace tarn::tests::observers
