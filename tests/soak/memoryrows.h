#pragma once

#include "observation.h"
#include "operation.h"

#include <devices/service/ifilememorycontrol.h>
#include <devices/service/imemoryoperationscontrol.h>
#include <devices/service/ipotentiometerscontrol.h>
#include <devices/service/iserialnumbercontrol.h>
#include <devices/service/iusbidcontrol.h>
#include <sdk/service/ifilememorycontrol.h>
#include <sdk/service/imemoryoperationscontrol.h>
#include <sdk/service/imemoryserialnumbercontrol.h>
#include <sdk/service/imemoryusbidcontrol.h>
#include <sdk/service/ipotentiometerscontrol.h>

#include <cstdint>

namespace tarn::soak {

/// What a notification of progress says, as one number.
constexpr std::uint64_t progressValue(std::uint64_t done, std::uint64_t total)
{
    return done << 32U | total;
}

/// How observers of progress, which the adapter keeps in a list, come and go.
struct ListedObservers {
    template <class Control, class Observer>
    static void add(Instrument& /*instrument*/, Control& control, Observer& observer)
    {
        control.addObserver(observer);
    }
    template <class Control, class Observer>
    static void remove(Instrument& /*instrument*/, Control& control, Observer& observer)
    {
        control.removeObserver(observer);
    }
    static void whenOffered(Stream& /*stream*/) { }
    static constexpr bool needsOffer = false;
    static constexpr bool isAddedAnywhere = false;
};

struct MemoryObservation : ListedObservers {
    using Sdk = sdk::service::IMemoryOperationsControl;
    using Control = devices::service::IMemoryOperationsControl;

    struct Witness final : Telling<Sdk::IObserver> {
        using Telling::Telling;
        void onReadProgressChanged(unsigned done, unsigned total) override { tell(0, progressValue(done, total)); }
        void onWriteProgressChanged(unsigned done, unsigned total) override { tell(1, progressValue(done, total)); }
        void onEraseProgressChanged(unsigned done, unsigned total) override { tell(2, progressValue(done, total)); }
        void onIntegrityCheckProgressChanged(unsigned done, unsigned total) override
        {
            tell(3, progressValue(done, total));
        }
    };

    struct Observer final : Hearing<Control::IObserver> {
        using Hearing::Hearing;
        using Progress = devices::service::Progress;
        void onReadProgressChanged(const Progress& to) override { hear(0, progressValue(to.done, to.total)); }
        void onWriteProgressChanged(const Progress& to) override { hear(1, progressValue(to.done, to.total)); }
        void onEraseProgressChanged(const Progress& to) override { hear(2, progressValue(to.done, to.total)); }
        void onIntegrityCheckProgressChanged(const Progress& to) override { hear(3, progressValue(to.done, to.total)); }
    };
};

struct SerialNumberObservation : ListedObservers {
    using Sdk = sdk::service::IMemorySerialNumberControl;
    using Control = devices::service::ISerialNumberControl;

    struct Witness final : Telling<Sdk::Observer> {
        using Telling::Telling;
        void onWriteProgressChanged(unsigned done, unsigned total) override { tell(0, progressValue(done, total)); }
    };

    struct Observer final : Hearing<Control::IObserver> {
        using Hearing::Hearing;
        void onWriteProgressChanged(const devices::service::Progress& to) override
        {
            hear(0, progressValue(to.done, to.total));
        }
    };
};

struct FileMemory {
    using Control = devices::service::IFileMemoryControl;
    using Observation = NoObservation;
    static constexpr auto name = "file memory";
    static constexpr auto registryKey = Control::registryKey;
    static constexpr auto sdkKey = sdk::service::IFileMemoryControl::key;
    static constexpr Place place{.range = std::uint64_t{1} << 62U, .isPerThread = true};
    static Operations<Control> operations();
};

struct Potentiometers {
    using Control = devices::service::IPotentiometersControl;
    using Observation = NoObservation;
    static constexpr auto name = "potentiometers";
    static constexpr auto registryKey = Control::registryKey;
    static constexpr auto sdkKey = sdk::service::IPotentiometersControl::key;
    static constexpr Place place{.range = 256};
    static Operations<Control> operations();
};

struct UsbIdentity {
    using Control = devices::service::IUsbIdControl;
    using Sdk = sdk::service::IMemoryUsbIdControl;
    using Observation = NoObservation;
    static constexpr auto name = "USB identity";
    static constexpr auto registryKey = Control::registryKey;
    static constexpr auto sdkKey = Sdk::key;
    static constexpr Place place{.range = 9};
    static Operations<Control> operations();
    static std::uint64_t stored(simulator::SimulatedVna& vna);
};

struct SerialNumber {
    using Control = devices::service::ISerialNumberControl;
    using Observation = soak::Observation<SerialNumberObservation>;
    static constexpr auto name = "serial number";
    static constexpr auto registryKey = Control::registryKey;
    static constexpr auto sdkKey = sdk::service::IMemorySerialNumberControl::key;
    static constexpr Place place{.range = std::uint64_t{1} << 32U};
    static Operations<Control> operations();
};

struct MemoryOperations {
    using Control = devices::service::IMemoryOperationsControl;
    using Observation = soak::Observation<MemoryObservation>;
    static constexpr auto name = "memory operations";
    static constexpr auto registryKey = Control::registryKey;
    static constexpr auto sdkKey = sdk::service::IMemoryOperationsControl::key;
    static constexpr Place place{.range = std::uint64_t{1} << 62U};
    static Operations<Control> operations();
};

} // namespace tarn::soak
