#pragma once

#include <simulator/clock.h>
#include <simulator/error.h>
#include <simulator/export.h>
#include <simulator/misbehaviour.h>
#include <utils/mutex.h>

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <random>
#include <stdexcept>
#include <system_error>

namespace tarn::simulator {

/// What goes wrong with an instrument, and how often. "Every Nth" counts from the moment when the plan was set; N of
/// 0 means never.
struct FaultPlan {
    std::uint64_t dropEvery = 0; ///< drop the controls during every Nth operation and offer new ones
    double dropChance = 0.0; ///< the same with this probability, 0 to 1, per operation
    Duration dropFor{}; ///< how long the controls stay away at each of these drops
    std::error_code failNext; ///< the first request ends with it; value 0: does not
    std::uint64_t failEvery = 0; ///< every Nth request ends with `failure`
    std::error_code failure = Error::Io;
    std::uint64_t delayEvery = 0; ///< every Nth operation takes `delay` longer
    Duration delay = std::chrono::milliseconds{100}; ///< of a completion that is called late, too
    std::uint64_t throwEvery = 0; ///< every Nth operation throws a `DeviceFault`
    std::uint64_t hangEvery = 0; ///< every Nth operation does not return for as long as this plan is in force
    Misbehaviour misbehaviour{}; ///< towards the completion of every Nth request, N being `misbehaveEvery`
    std::uint64_t misbehaveEvery = 1;
    std::uint64_t powerLossEvery = 0; ///< the power goes in the middle of every Nth long operation
    std::uint64_t unplugEvery = 0; ///< the instrument is unplugged in the middle of every Nth long operation
    bool writeProtect = false; ///< the memory device refuses to be written and erased
    bool corrupt = false; ///< at switch-on, bits of the image in the memory device have flipped

    friend bool operator==(const FaultPlan&, const FaultPlan&) = default;
};

/// What an operation throws when it is to throw.
class TARN_DEVICE_SIMULATOR_EXPORT DeviceFault final : public std::runtime_error {
public:
    DeviceFault();
};

/// Decides for each operation of an instrument what goes wrong with it. Thread-safe; can be told
/// otherwise at any moment.
///
/// An operation is any call of a control but `addObserver` and `removeObserver`, which never reach
/// the instrument. A request is an operation that ends in a completion, or in a notification as
/// the writes of calibration data do; only requests can fail with an error. A long operation is a request that the
/// memory device takes time for; it is disturbed in the middle. Operations that are called on the instrument's own
/// thread, from a completion or a notification, are neither counted nor disturbed.
class TARN_DEVICE_SIMULATOR_EXPORT Faults {
public:
    /// `seed` decides the drops by chance.
    Faults(const FaultPlan& plan, std::uint64_t seed);

    /// Replaces the plan and starts counting anew. Operations that hang go on.
    void setPlan(const FaultPlan& plan);

    /// Lets the operations that hang go on; none will hang from now on.
    void endHanging();

    /// What goes wrong with one operation. One that throws does nothing else.
    struct Decision {
        bool throws = false;
        bool hangs = false; ///< has hung, when this is given out
        bool drops = false;
        Duration dropFor{};
        Duration delay{};
        std::error_code failure; ///< value 0: none
        std::error_code interruption; ///< `PowerLoss` or `Disconnected` in the middle; value 0: none
        Misbehaviour misbehaviour{};
        Duration lateness{}; ///< of a completion that is called late
    };

    /// Has the last word on what goes wrong with an operation: called on the thread that makes the operation, with no
    /// lock held. To be set before there is one.
    using Arbiter = std::function<void(Decision&)>;
    void setArbiter(Arbiter arbiter);

    // An operation that hangs waits here.

    [[nodiscard]] Decision nextCall();
    [[nodiscard]] Decision nextRequest();
    [[nodiscard]] Decision nextLongOperation();

    /// How many operations hang now.
    [[nodiscard]] int hanging() const;

    /// Whether the memory device refuses to be changed now.
    [[nodiscard]] bool isWriteProtected() const;

private:
    [[nodiscard]] Decision decide(Decision (Faults::*decision)());
    [[nodiscard]] Decision next() TARN_REQUIRES(m_mutex);
    [[nodiscard]] Decision request() TARN_REQUIRES(m_mutex);
    [[nodiscard]] Decision longOperation() TARN_REQUIRES(m_mutex);
    void hang() TARN_REQUIRES(m_mutex);
    void letGo() TARN_REQUIRES(m_mutex);
    [[nodiscard]] bool happens(double chance) TARN_REQUIRES(m_mutex);

    Arbiter m_arbiter;
    mutable utils::Mutex m_mutex;
    FaultPlan m_plan TARN_GUARDED_BY(m_mutex);
    std::mt19937_64 m_random TARN_GUARDED_BY(m_mutex);
    std::uint64_t m_operations TARN_GUARDED_BY(m_mutex) = 0;
    std::uint64_t m_requests TARN_GUARDED_BY(m_mutex) = 0;
    std::uint64_t m_longOperations TARN_GUARDED_BY(m_mutex) = 0;
    std::uint64_t m_released TARN_GUARDED_BY(m_mutex) = 0; ///< how often those that hang were
    int m_hanging TARN_GUARDED_BY(m_mutex) = 0;
    std::condition_variable_any m_release;
};

} // namespace tarn::simulator
