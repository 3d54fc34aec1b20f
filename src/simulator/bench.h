#pragma once

#include <simulator/calibrations.h>
#include <simulator/clock.h>
#include <simulator/executor.h>
#include <simulator/faults.h>
#include <simulator/loleakagemodel.h>
#include <simulator/moduletables.h>
#include <simulator/operations.h>
#include <simulator/potentiometermodel.h>
#include <simulator/settings.h>
#include <simulator/storage.h>
#include <simulator/thermalmodel.h>
#include <simulator/usbidentity.h>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tarn::simulator {

/// What the parts of one instrument share. It lives as long as one of them does, which may be
/// longer than the instrument when somebody still holds a control.
struct Bench {
    Bench(const Settings& theSettings, std::shared_ptr<Clock> theClock, std::unique_ptr<Storage> theStorage,
          Operations::Drop drop)
        : settings{theSettings}
        , clock{std::move(theClock)}
        , storage{std::move(theStorage)}
        , thermal{settings.seed, clock->now()}
        , loLeakage{*storage, thermal, *clock}
        , potentiometers{*storage}
        , tables{*storage}
        , calibrations{*storage}
        , usbIdentity{*storage, profileInfo(settings.profile).model()}
        , faults{settings.faults, settings.seed}
        , operations{clock, executor, faults, settings, std::move(drop), [this] { losePower(); }}
        , executor{clock}
    {
    }

    /// The power goes and comes back.
    void losePower()
    {
        loLeakage.cyclePower();
        potentiometers.cyclePower();
        for (const auto& cycle : atPowerLoss)
            cycle();
    }

    const Settings settings;
    const std::shared_ptr<Clock> clock;
    const std::unique_ptr<Storage> storage;
    ThermalModel thermal;
    LoLeakageModel loLeakage;
    PotentiometerModel potentiometers;
    ModuleTables tables;
    Calibrations calibrations;
    UsbIdentity usbIdentity;
    Faults faults;
    Operations operations;
    std::vector<std::function<void()>> atPowerLoss; ///< of the modules
    std::vector<std::function<void()>> endRegistrations; ///< on the instrument's thread, at drops
    std::vector<std::function<void()>> atOffer; ///< as filled by the controls that are made: once they are announced
    Executor executor; ///< the last one, so that it has stopped before the others go
};

/// Makes a new control over a part of the instrument: a reference to exactly the interface that
/// its key stands for.
using MakeControl = std::function<std::shared_ptr<void>()>;

} // namespace tarn::simulator
