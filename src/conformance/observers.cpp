#include <conformance/bench.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace tarn::conformance {

namespace {

/// How long a notification is held up, so that a removal meets it.
constexpr std::chrono::milliseconds holdUp{80};

/// The provocation of a source, if it may be used.
const Question* provocationOf(const Bench& bench, const Source& source)
{
    return source.provocation && bench.isAllowed(*source.provocation) ? &*source.provocation : nullptr;
}

/// Has a source notify, if that may be, and waits until it is over.
void provoke(const Bench& bench, const Source& source, const Ear& ear)
{
    const auto* const provocation = provocationOf(bench, source);
    if (!provocation)
        return;
    bench.ask(*provocation);
    static_cast<void>(ear.waitFor(1, bench.options().patience));
    Bench::settle();
}

/// Runs `look(control, source)` for every source of notifications of the device's controls. What a provocation leaves
/// changed, as one does that is refused halfway, is put back.
template <class Look>
void forEachSource(Bench& bench, Look look)
{
    for (const auto& row : controlRows()) {
        const auto control = bench.describe(row);
        for (const auto& source : control.sources) {
            const auto* const provocation = provocationOf(bench, source);
            const bool isChanged = provocation && provocation->isOfWrites;
            const Bench::Change change{bench, isChanged ? puttingBack(bench, control) : [] { }};
            look(control, source);
        }
    }
}

void lookAtRegistration(const Bench& bench, const Source& source)
{
    if (!provocationOf(bench, source))
        return bench.record()->note(source.where, "was not provoked to notify");
    const auto once = std::make_shared<Ear>(bench.record());
    const auto twice = std::make_shared<Ear>(bench.record());
    const auto first = source.observe(once);
    const auto second = source.observe(twice);
    if (bench.add(source.where, first) && bench.add(source.where, second) && bench.add(source.where, second))
        provoke(bench, source, *once);
    bench.remove(source.where, second);
    bench.remove(source.where, first);
    const auto heardOnce = once->heard().size();
    const auto heardTwice = twice->heard().size();
    if (heardOnce == 0)
        return bench.record()->note(source.where, "was not notified of " + source.provocation->where);
    bench.record()->checked();
    if (heardOnce != heardTwice)
        bench.record()->finding(source.where,
                                "was notified " + std::to_string(heardTwice)
                                    + " times when it was registered twice, and " + std::to_string(heardOnce)
                                    + " times when it was once");
}

/// Removes an observer while it is being notified: `remove` is called once it hears something, on the thread of the
/// check. False if it hears nothing.
template <class Remove>
bool whileNotified(const Bench& bench, const Source& source, const Registration& registration, const Ear& ear,
                   Remove remove)
{
    if (!bench.add(source.where, registration))
        return false;
    const auto* const provocation = provocationOf(bench, source);
    auto request = std::async(std::launch::async, [&bench, provocation] {
        return provocation ? Request::make(bench.record(), *provocation) : nullptr;
    });
    const bool isHeard = ear.waitFor(1, bench.options().patience);
    remove();
    if (const auto made = request.get())
        bench.wait(*made);
    if (!isHeard)
        bench.record()->note(source.where, "was not notified");
    else if (!provocation) // what comes by itself comes again
        static_cast<void>(ear.waitFor(ear.heard().size() + 1, bench.options().patience));
    Bench::settle();
    return isHeard;
}

/// False if nothing was heard.
bool lookAtRemoval(const Bench& bench, const Source& source)
{
    const auto ear = std::make_shared<Ear>(bench.record());
    ear->setReaction([isHeldUp = std::make_shared<std::atomic_flag>()] {
        if (!isHeldUp->test_and_set())
            std::this_thread::sleep_for(holdUp);
    });
    const auto registration = source.observe(ear);
    bool isRunning = false;
    const auto remove = [&] {
        if (!bench.remove(source.where, registration))
            bench.record()->finding(source.where, "has thrown from removeObserver");
    };
    const bool isHeard = whileNotified(bench, source, registration, *ear, [&] {
        remove();
        isRunning = ear->isHearing();
        ear->onRemoved();
    });
    remove(); // one that is not registered
    if (!isHeard)
        return false;
    bench.record()->checked();
    if (isRunning)
        bench.record()->finding(source.where, "removeObserver returned while a notification was running");
    if (ear->lateCount() != 0)
        bench.record()->finding(source.where, "was notified after removeObserver had returned");
    return true;
}

/// The same from inside a notification.
void lookAtRemovalFromInside(const Bench& bench, const Source& source)
{
    const auto ear = std::make_shared<Ear>(bench.record());
    const auto registration = std::make_shared<Registration>(source.observe(ear));
    ear->setReaction(
        [&bench = bench, ear = std::weak_ptr{ear}, where = source.where, registration = std::weak_ptr{registration}] {
            const auto observed = registration.lock();
            if (!observed)
                return;
            bench.call(where + " removeObserver", observed->remove, Record::Kind::PutBack); // never interrupted here
            ear.lock()->onRemoved();
        });
    const bool isHeard = whileNotified(bench, source, *registration, *ear, [] { });
    bench.remove(source.where, *registration);
    if (isHeard && ear->lateCount() != 0)
        bench.record()->finding(source.where, "was notified after it had removed itself from inside a notification");
}

class DeviceObserver final : public sdk::IVna::Observer {
public:
    explicit DeviceObserver(std::shared_ptr<Ear> ear)
        : m_ear{std::move(ear)}
    {
    }

    void onControlsAboutToBeReleased() override { m_ear->hear("release"); }
    void onControlsAvailable() override { m_ear->hear("offer"); }

private:
    const std::shared_ptr<Ear> m_ear;
};

/// What an observer of the device hears that is removed at once; null if the device does not take it.
std::shared_ptr<Ear> removedFromDevice(const Bench& bench)
{
    auto ear = std::make_shared<Ear>(bench.record());
    const auto registration = registrationOf<DeviceObserver>(bench.device(), ear);
    if (!bench.add("the device", registration))
        return nullptr;
    if (!bench.remove("the device", registration))
        bench.record()->finding("the device", "has thrown from removeObserver");
    ear->onRemoved();
    return ear;
}

/// Calls what there is of a control with an observer registered.
void lookAtNotifyingOperations(const Bench& bench, const Description& control, const Source& source)
{
    const auto ear = std::make_shared<Ear>(bench.record());
    const auto registration = source.observe(ear);
    if (!bench.add(source.where, registration))
        return;
    for (const auto& reading : control.readings)
        bench.call(reading.where, [&] { static_cast<void>(reading.read()); });
    provoke(bench, source, *ear);
    bench.remove(source.where, registration);
    const auto* const provocation = provocationOf(bench, source);
    const auto heard = ear->heard();
    if (heard.empty() || !provocation || provocation->hasCompletion) // which may be notified of inside
        bench.record()->note(source.where, "was not notified of an operation without a completion");
    else
        bench.record()->checked();
    for (const auto& notification : heard) {
        if (!notification.inside.empty())
            bench.record()->finding(source.where, "was notified inside of '" + notification.inside + "'");
    }
}

/// What became of a write without data, as it was told; nothing if it was not made.
std::optional<std::string> toldOfRefusal(const Bench& bench, const Source& source)
{
    const auto ear = std::make_shared<Ear>(bench.record());
    const auto registration = source.observe(ear);
    if (!bench.add(source.where, registration))
        return std::nullopt;
    const auto state = bench.ask(*source.provocation);
    if (!state.hasThrown)
        static_cast<void>(ear->waitFor(1, bench.options().limit));
    Bench::settle();
    bench.remove(source.where, registration);
    std::string told;
    for (const auto& notification : ear->heard())
        told += (told.empty() ? "" : ", ") + notification.what;
    return state.hasThrown ? std::nullopt : std::optional{told};
}

void lookAtRefusal(const Bench& bench, const ControlRow& row, const Source& source)
{
    const std::string name{row.name};
    const auto before = bench.control(name, row.key);
    const auto told = toldOfRefusal(bench, source);
    if (!told)
        return;
    if (bench.control(name, row.key) != before) // and its observers heard no more
        return bench.record()->note(name, "was dropped meanwhile");
    bench.record()->checked();
    if (told->empty())
        bench.record()->finding(source.provocation->where, "was not answered by a notification within the limit");
    else if (!told->starts_with("error") || told->find(',') != std::string::npos)
        bench.record()->finding(source.provocation->where,
                                "was answered by '" + *told + "', where an error alone is due");
}

} // namespace

void lookAtRegistrations(Bench& bench)
{
    forEachSource(bench,
                  [&](const Description& /*control*/, const Source& source) { lookAtRegistration(bench, source); });
}

void lookAtRemovals(Bench& bench)
{
    const auto removed = removedFromDevice(bench);
    forEachSource(bench, [&](const Description& /*control*/, const Source& source) {
        if (lookAtRemoval(bench, source))
            lookAtRemovalFromInside(bench, source);
    });
    bench.close();
    Bench::settle();
    if (removed && removed->lateCount() != 0)
        bench.record()->finding("the device", "has notified an observer after removeObserver had returned");
}

void lookAtNotifyingOperations(Bench& bench)
{
    forEachSource(bench, [&](const Description& control, const Source& source) {
        lookAtNotifyingOperations(bench, control, source);
    });
}

void lookAtRefusals(Bench& bench)
{
    for (const auto& row : controlRows()) {
        for (const auto& source : bench.describe(row).refusals)
            lookAtRefusal(bench, row, source);
    }
}

} // namespace tarn::conformance
