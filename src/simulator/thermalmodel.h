#pragma once

#include <simulator/clock.h>
#include <simulator/export.h>
#include <utils/mutex.h>

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tarn::simulator {

/// How the instrument's modules warm up.
///
/// Each module is one thermal resistance and capacitance (a first-order low-pass). Its heating h,
/// in kelvin above the ambient, follows
///
///     dh/dt = (P - h) / tau,   h(0) = 0 at switch-on,
///
/// where P is the module's steady rise in operation plus what else heats it. For as long as P does
/// not change this is h(t) = P + (h(t0) - P) * exp(-(t - t0) / tau), which is evaluated exactly, so
/// that the result does not depend on how often it is asked for. The module's temperature is
///
///     T(t) = ambient + h(t) + 0.05 K * sin(2 pi t / 60 s + phase)
///
/// with an ambient of 23 degrees Celsius plus an offset of at most 0.5 K and a phase per module,
/// both from the seed. The instrument's temperature is the mean of the modules'.
///
/// | module       | steady rise | tau   |
/// |--------------|-------------|-------|
/// | LO           | 12 K        | 180 s |
/// | Power supply | 18 K        | 600 s |
/// | RF source    | 15 K        | 240 s |
/// | Receivers    | 9 K         | 420 s |
/// | Reference    | 6 K         | 300 s |
///
/// Thread-safe.
class TARN_DEVICE_SIMULATOR_EXPORT ThermalModel {
public:
    static constexpr const char* loModule = "LO";
    static constexpr const char* rfModule = "RF source";

    /// The temperatures at one moment, in degrees Celsius.
    struct Measurement {
        float instrument = 0.0F;
        std::unordered_map<std::string, float> modules;
    };

    /// Switched on at `switchedOn` by the clock, with everything at the ambient temperature.
    ThermalModel(std::uint64_t seed, Duration switchedOn);

    /// From `time` on, `cause` heats `module` by `rise` kelvin more than its steady rise; several causes add up.
    void setExtraRise(const std::string& module, const std::string& cause, double rise, Duration time);

    /// The temperatures at `time`. Time does not run backwards: before the latest time that the
    /// model has seen, the heating is that of the latest time.
    [[nodiscard]] Measurement measure(Duration time);

    /// The ambient temperature that the seed gave, in degrees Celsius.
    [[nodiscard]] double ambient() const { return m_ambient; }

private:
    struct Module {
        std::string name;
        double steadyRise; ///< kelvin
        double timeConstant; ///< seconds
        double phase; ///< of the ripple, radians
        double heating = 0.0; ///< kelvin
    };

    void advance(Duration time) TARN_REQUIRES(m_mutex);

    const Duration m_switchedOn;
    double m_ambient;
    utils::Mutex m_mutex;
    Duration m_time TARN_GUARDED_BY(m_mutex);
    std::vector<Module> m_modules TARN_GUARDED_BY(m_mutex);
    /// By module and cause, kelvin.
    std::map<std::pair<std::string, std::string>, double> m_extraRises TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::simulator
