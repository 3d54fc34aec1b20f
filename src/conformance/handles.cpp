#include <conformance/bench.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace tarn::conformance {

namespace {

/// How long the device may take to let a control go, once it has said so.
constexpr std::chrono::milliseconds grace{500};

/// A control that is not kept alive.
struct Handle {
    const ControlRow* row;
    std::weak_ptr<void> control;
};

std::vector<Handle> handlesOf(sdk::IVna& device)
{
    std::vector<Handle> handles;
    for (const auto& row : controlRows()) {
        if (const auto control = device.control(row.key))
            handles.push_back({&row, control});
    }
    return handles;
}

/// Looks at what becomes of the controls that the device drops. Never destroyed.
class DropObserver final : public sdk::IVna::Observer {
public:
    DropObserver(sdk::IVna& device, std::shared_ptr<Record> record)
        : m_record{std::move(record)}
        , m_device{&device}
    {
    }

    /// The row of the control that the check itself is using, which may live on.
    void setInUse(const ControlRow* row) { m_inUse = row; }

    /// The device is about to go.
    void end() { m_device = nullptr; }

    [[nodiscard]] unsigned drops() const { return m_drops; }
    [[nodiscard]] bool isAway() const { return m_isAway; }

private:
    void onControlsAboutToBeReleased() override
    {
        auto* const device = m_device.load();
        if (!device)
            return;
        m_record->onNotification();
        m_record->onDrop();
        {
            const utils::MutexLock lock{m_mutex};
            m_dropped = handlesOf(*device);
            if (m_dropped.empty())
                m_record->finding("the device", "announced a drop when its controls had gone already");
        }
        ++m_drops;
        m_isAway = true;
    }

    void onControlsAvailable() override
    {
        m_record->onNotification();
        m_isAway = false;
        const utils::MutexLock lock{m_mutex};
        for (const auto& [row, control] : std::exchange(m_dropped, {})) {
            if (row != m_inUse && !control.expired())
                m_record->finding(std::string{row->name}, "was dropped and lives on, though nobody uses it");
        }
    }

    const std::shared_ptr<Record> m_record;
    std::atomic<sdk::IVna*> m_device;
    std::atomic<const ControlRow*> m_inUse{nullptr};
    std::atomic<unsigned> m_drops{0};
    std::atomic<bool> m_isAway{false};
    utils::Mutex m_mutex;
    std::vector<Handle> m_dropped TARN_GUARDED_BY(m_mutex);
};

/// Whether `isDone` within `patience`.
template <class IsDone>
bool waitUntil(const Bench& bench, std::chrono::milliseconds patience, IsDone isDone)
{
    const auto end = Clock::now() + patience;
    while (!isDone() && Clock::now() < end && !bench.options().stop.stop_requested())
        std::this_thread::sleep_for(std::chrono::milliseconds{2});
    return isDone();
}

/// Gives the device occasions to drop its controls.
void use(const Bench& bench, DropObserver& observer)
{
    for (const auto& row : controlRows()) {
        observer.setInUse(&row);
        {
            const auto control = bench.describe(row);
            for (const auto& reading : control.readings)
                bench.call(reading.where, [&] { static_cast<void>(reading.read()); });
            for (const auto& question : control.questions) {
                if (!question.isOfWrites && question.hasCompletion)
                    bench.ask(question);
            }
        }
        observer.setInUse(nullptr);
    }
}

/// Whether the device keeps the controls that it offers, without a drop in between.
void lookAtOffer(const Bench& bench, const std::vector<Handle>& handles, const DropObserver& observer)
{
    for (const auto& [row, control] : handles) {
        const bool isGone = control.expired();
        if (isGone && observer.drops() == 0)
            bench.record()->finding(std::string{row->name}, "is not kept by the device that offers it");
    }
}

void lookAtDrops(const Bench& bench, DropObserver& observer)
{
    use(bench, observer);
    const auto hasDropped = [&] { return observer.drops() != 0; };
    if (!waitUntil(bench, bench.options().drop, hasDropped))
        return bench.record()->note("the device", "has not dropped its controls meanwhile");
    if (!waitUntil(bench, std::max(bench.options().drop, bench.options().patience), [&] { return !observer.isAway(); }))
        bench.record()->note("the device", "has dropped its controls and not offered them again");
}

/// Closes the device, whose controls must go with it.
void lookAtEnd(Bench& bench)
{
    std::vector<Handle> handles;
    bench.call("control", [&] { handles = handlesOf(*bench.device()); });
    const std::weak_ptr<sdk::IVna> device = bench.device();
    bench.close();
    if (!device.expired())
        return bench.record()->note("the device", "is kept by somebody else than the check");
    const auto isAlive = [](const Handle& handle) { return !handle.control.expired(); };
    if (waitUntil(bench, grace, [&] { return std::ranges::none_of(handles, isAlive); }))
        return;
    for (const auto& handle : handles) {
        if (isAlive(handle))
            bench.record()->finding(std::string{handle.row->name}, "lives on when the device has gone");
    }
}

} // namespace

void lookAtHandles(Bench& bench)
{
    auto& device = *bench.device();
    const auto observer = std::make_shared<DropObserver>(device, bench.record());
    keepForEver(observer);
    if (!bench.call("device addObserver", [&] { device.addObserver(observer.get()); }))
        return;
    std::vector<Handle> handles;
    bench.call("control", [&] { handles = handlesOf(device); });
    if (handles.empty())
        bench.record()->note("the device", "offers no control");
    else
        bench.record()->checked();
    lookAtOffer(bench, handles, *observer);
    lookAtDrops(bench, *observer);
    lookAtOffer(bench, handles, *observer); // a drop is announced
    if (!bench.call("device removeObserver", [&] { device.removeObserver(observer.get()); }))
        bench.record()->finding("device", "has thrown from removeObserver");
    observer->end();
    lookAtEnd(bench);
}

} // namespace tarn::conformance
