#include <simulator/thermalmodel.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace tarn::simulator {

namespace {

constexpr double roomTemperature = 23.0; // degrees Celsius
constexpr double ambientSpread = 0.5; // kelvin
constexpr double rippleAmplitude = 0.05; // kelvin
constexpr double ripplePeriod = 60.0; // seconds
constexpr double fullTurn = 2.0 * std::numbers::pi;

double seconds(Duration duration)
{
    return std::chrono::duration<double>{duration}.count();
}

/// From 0 up to 1, the same with every standard library.
double uniform(std::mt19937_64& random)
{
    return static_cast<double>(random() >> 11) * 0x1p-53;
}

} // namespace

ThermalModel::ThermalModel(std::uint64_t seed, Duration switchedOn)
    : m_switchedOn{switchedOn}
    , m_time{switchedOn}
    , m_modules{
          {.name = loModule, .steadyRise = 12.0, .timeConstant = 180.0, .phase = 0.0},
          {.name = "Power supply", .steadyRise = 18.0, .timeConstant = 600.0, .phase = 0.0},
          {.name = rfModule, .steadyRise = 15.0, .timeConstant = 240.0, .phase = 0.0},
          {.name = "Receivers", .steadyRise = 9.0, .timeConstant = 420.0, .phase = 0.0},
          {.name = "Reference", .steadyRise = 6.0, .timeConstant = 300.0, .phase = 0.0},
      }
{
    std::mt19937_64 random{seed};
    m_ambient = roomTemperature + ambientSpread * (2.0 * uniform(random) - 1.0);
    for (auto& module : m_modules)
        module.phase = fullTurn * uniform(random);
}

void ThermalModel::setExtraRise(const std::string& module, const std::string& cause, double rise, Duration time)
{
    const utils::MutexLock lock{m_mutex};
    advance(time);
    m_extraRises[{module, cause}] = rise;
}

ThermalModel::Measurement ThermalModel::measure(Duration time)
{
    const utils::MutexLock lock{m_mutex};
    advance(time);
    Measurement measurement;
    double sum = 0.0;
    for (const auto& module : m_modules) {
        const double turns = seconds(time - m_switchedOn) / ripplePeriod;
        const double ripple = rippleAmplitude * std::sin((fullTurn * turns) + module.phase);
        const double temperature = m_ambient + module.heating + ripple;
        measurement.modules.emplace(module.name, static_cast<float>(temperature));
        sum += temperature;
    }
    measurement.instrument = static_cast<float>(sum / static_cast<double>(m_modules.size()));
    return measurement;
}

void ThermalModel::advance(Duration time)
{
    const double elapsed = std::max(0.0, seconds(time - m_time));
    m_time = std::max(m_time, time);
    for (auto& module : m_modules) {
        double target = module.steadyRise;
        for (const auto& [heated, rise] : m_extraRises)
            target += heated.first == module.name ? rise : 0.0;
        module.heating = target + (module.heating - target) * std::exp(-elapsed / module.timeConstant);
    }
}

} // namespace tarn::simulator
