#include <conformance/conformance.h>

#include <conformance/bench.h>

#include <array>
#include <exception>
#include <functional>
#include <thread>
#include <utility>

namespace tarn::conformance {

namespace {

constexpr std::array table{
    Guarantee{"keys", "A key gives the interface that it stands for, the same each time, and an unknown one nothing.",
              "Convert each control to the interface of its key before its type is given up, keep it for as long as it "
              "is offered, and answer any other key with an empty reference.",
              false, &lookAtKeys},
    Guarantee{"slots", "Every operation of a control answers within what its interface and the control itself say.",
              "Look at the order of the virtual functions and at the conversion of each value and list.", false,
              &lookAtSlots},
    Guarantee{"references-stay", "What a control gives by reference stays as it is for as long as the contract says.",
              "Keep lists in the control; give each thread a map of its own.", false, &lookAtReferences},
    Guarantee{"one-completion", "A request that returns is completed exactly once, and one that throws never.",
              "Take the completion out of where it is kept before it is called, on every way to an end, that of the "
              "connection and an error of the instrument among them.",
              false, &lookAtCompletions},
    Guarantee{"progress-rises",
              "The progress of an operation never falls, stays within its total and comes before the "
              "completion.",
              "Complete a request on the thread that tells of its progress, after it.", false, &lookAtProgress},
    Guarantee{"registered-once", "Registering an observer twice is the same as once.",
              "Look for the observer before it is put into the list.", false, &lookAtRegistrations},
    Guarantee{"silent-after-removal",
              "Once removeObserver has returned, no notification of that observer is running or will start.",
              "Wait in removeObserver for a notification that is running, unless it is on the calling thread, and "
              "look into the list again before each observer.",
              false, &lookAtRemovals},
    Guarantee{"own-thread", "No operation without a completion delivers a notification on the thread of its caller.",
              "Hand notifications to a thread of the device.", false, &lookAtNotifyingOperations},
    Guarantee{"refused-alone", "A write of calibration data that is refused consists of one notification of its error.",
              "Check the data before the start of a write is told.", true, &lookAtRefusals},
    Guarantee{"values-survive", "What was set or written is what is read afterwards.",
              "Look at the conversions of the setter and the getter, and at whether the instrument has taken the value "
              "when the setter returns.",
              true, &lookAtValues},
    Guarantee{"handles-expire",
              "The device keeps each control for as long as it is offered, and nobody keeps it any longer.",
              "Let one place own the controls. Give them up between the two notifications, and capture weak references "
              "in what goes on meanwhile.",
              false, &lookAtHandles},
};

/// Runs `steps` on a thread that is not waited for when a call does not come back. Whether it has ended.
bool runWatched(const std::shared_ptr<Record>& record, std::function<void()> steps)
{
    std::thread thread{[record, steps = std::move(steps)]() mutable {
        try {
            steps();
        } catch (const Interruption&) { // the outcome says so
        } catch (const std::exception& error) {
            record->note("the check", std::string{"ended early: "} + error.what());
        }
        steps = nullptr;
        record->end();
    }};
    const bool hasEnded = record->waitForEnd();
    if (hasEnded)
        thread.join();
    else
        thread.detach();
    return hasEnded;
}

} // namespace

std::span<const Guarantee> guarantees()
{
    return table;
}

Outcome check(const Guarantee& guarantee, std::shared_ptr<sdk::IVna> device, const Options& options)
{
    const auto record = std::make_shared<Record>(options);
    auto bench = std::make_shared<Bench>(std::move(device), record);
    const std::weak_ptr<Bench> left = bench;
    const bool isSkipped = guarantee.isOfWrites && !options.writes;
    const bool hasEnded = runWatched(record, [bench = std::move(bench), look = isSkipped ? nullptr : guarantee.look] {
        try {
            if (look)
                look(*bench);
        } catch (const Interruption&) { // the outcome says so
        }
        bench->close();
    });
    if (const auto rest = left.lock(); rest && !hasEnded)
        runWatched(record, [rest] { rest->putBack(); });
    auto outcome = record->outcome();
    if (isSkipped && outcome.verdict == Verdict::NotChecked)
        outcome.reason = "it can only be checked by changing the instrument";
    return outcome;
}

} // namespace tarn::conformance
