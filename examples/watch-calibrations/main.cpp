// Watches the calibration units of an instrument in an event loop while error terms are being written.

#include <devices/controlregistry.h>
#include <devices/instrumentcontrols.h>
#include <devices/service/isystemtermscontrol.h>
#include <devices/service/sdkcalibrationcontrolhandle.h>
#include <devices/service/sdkcalibrationcontrolwatcher.h>
#include <devices/service/servicecontrols.h>
#include <simulator/open.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QTimer>

#include <chrono>
#include <cstdio>
#include <utility>
#include <vector>

using sdk::service::calibrations::ICalibrationUnit;
using tarn::devices::ControlRegistry;
using tarn::devices::ControlTypes;
using tarn::devices::InstrumentControls;
using namespace tarn::devices::service;

namespace {

/// The system terms, and the controller that looks after them.
ControlRegistry registryOfTerms()
{
    ControlRegistry all;
    servicecontrols::registrate(&all);
    ControlRegistry registry;
    registry.addEntry(*all.find(ISystemTermsControl::registryKey));
    registry.addEntry(*all.find(SdkCalibrationControlHandle::firstRegistryKey));
    return registry;
}

const char* textOf(ICalibrationUnit::Status status)
{
    switch (status) {
    case ICalibrationUnit::Status::Empty:
        return "empty";
    case ICalibrationUnit::Status::Saving:
        return "being saved";
    case ICalibrationUnit::Status::Valid:
        return "valid";
    case ICalibrationUnit::Status::Invalid:
        return "invalid";
    }
    return "unknown";
}

/// Prints the units. Returns whether all of them are valid.
bool show(const SdkCalibrationControlHandle& handle)
{
    const auto controller = handle.lock(); // for this function, and no longer
    if (!controller)
        return false; // away; the watcher tells when it is back
    bool areValid = true;
    for (auto* const unit : controller->units()) {
        std::printf("%s: %s\n", unit->name().c_str(), textOf(unit->status()));
        areValid = areValid && unit->status() == ICalibrationUnit::Status::Valid;
    }
    return areValid;
}

std::vector<double> pointsOf(const std::vector<tarn::vna::FrequencySegment>& plan)
{
    std::vector<double> points;
    for (const auto& [start, stop, pointCount] : plan) {
        const double step = pointCount > 1 ? (stop - start) / (pointCount - 1) : 0.0;
        for (std::uint32_t point = 0; point < pointCount; ++point)
            points.push_back(start + (step * point));
    }
    return points;
}

/// The terms of two ports without any error.
tarn::vna::ErrorTerms termsFor(const std::vector<tarn::vna::FrequencySegment>& plan)
{
    tarn::vna::ErrorTerms terms{2, pointsOf(plan)};
    for (std::size_t point = 0; point < terms.frequencies().size(); ++point) {
        terms.reflection(point, 1).reflectionTracking = terms.reflection(point, 2).reflectionTracking = 1.0;
        terms.transmission(point, 1, 2).transmissionTracking = terms.transmission(point, 2, 1).transmissionTracking
            = 1.0;
    }
    return terms;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication app{argc, argv};

    // As slow as a real one: the write takes about a second.
    const auto device
        = tarn::simulator::open({.address = QStringLiteral("speed=1"), .stateFolder = QStringLiteral("none")});
    if (!device) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(device.error().message));
        return 1;
    }
    const auto registry = registryOfTerms();
    const InstrumentControls controls{*device, registry,
                                      ControlTypes<ISystemTermsControl, SdkCalibrationControlHandle>{}};
    const auto terms = controls.control<ISystemTermsControl>();
    const auto handle = controls.control<SdkCalibrationControlHandle>(SdkCalibrationControlHandle::firstRegistryKey);
    if (!terms || !handle) {
        std::fprintf(stderr, "this instrument keeps no system terms\n");
        return 1;
    }

    // The signals come on a thread of the device. With a receiver that lives here the slots run here, and only then
    // look.
    SdkCalibrationControlWatcher watcher{*handle};
    QObject::connect(&watcher, &SdkCalibrationControlWatcher::unitStatusChanged, &app, [&handle] {
        if (show(*handle))
            QCoreApplication::quit();
    });
    int shown = -1;
    QObject::connect(&watcher, &SdkCalibrationControlWatcher::saveProgressChanged, &app, [&shown](int percent) {
        if (const int quarter = percent / 25; std::exchange(shown, quarter) != quarter)
            std::printf("  saved: %d %%\n", quarter * 25);
    });

    show(*handle);
    terms->requestWriteTerms(QDateTime::currentDateTimeUtc(), 23.0,
                             termsFor(terms->frequencyPlan())); // returns at once
    QTimer::singleShot(std::chrono::seconds{30}, &app,
                       [] { QCoreApplication::exit(1); }); // an instrument that is stuck
    return QCoreApplication::exec();
}
