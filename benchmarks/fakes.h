#pragma once

#include <devices/service/iserialnumbercontrol.h>
#include <sdk/service/iloleakagecontrol.h>

#include <memory>

namespace tarn::benchmarks {

// What is called through an interface, in a file of its own: a compiler that sees it calls it directly, which no
// program does that has more than one.

[[nodiscard]] std::shared_ptr<sdk::service::ILoLeakageControl> makeLoLeakage();

/// An observer that counts what it hears.
[[nodiscard]] std::unique_ptr<devices::service::ISerialNumberControl::IObserver> makeEars();

} // namespace tarn::benchmarks
