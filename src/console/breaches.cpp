#include <console/breaches.h>

#include <console/controltable.h>
#include <console/devicecall.h>

#include <fmt/format.h>

#include <algorithm>
#include <exception>

namespace tarn::console {

Breaches::Counts Breaches::counts() const
{
    const utils::MutexLock lock{m_mutex};
    return m_counts;
}

void Breaches::onBreach(const guard::BreachReport& report) noexcept
{
    using guard::Breach;
    switch (report.breach) {
    case Breach::CompletedAgain:
        return warn(report, "more than once; the first answer counts");
    case Breach::CompletedLate:
        return warn(report, "too late; the answer does not count");
    case Breach::CompletedAndThrew:
        return warn(report, "and failed as well; the failure counts");
    case Breach::Dropped: {
        const utils::MutexLock lock{m_mutex};
        ++m_counts.dropped;
        return;
    }
    case Breach::TimedOut:
        onProgress(); // its caller is about to return
        [[fallthrough]];
    case Breach::NotReturned: {
        const utils::MutexLock lock{m_mutex};
        ++m_counts.timedOut;
        return;
    }
    }
}

void Breaches::onProgress() noexcept
{
    DeviceCall::onProgress();
}

void Breaches::warn(const guard::BreachReport& report, std::string_view what) noexcept
{
    try {
        {
            const utils::MutexLock lock{m_mutex};
            if (!m_warned.emplace(report.breach, report.control, report.operation).second)
                return;
        }
        const auto row = std::ranges::find(controlRows(), report.control, &ControlRow::sdkKey);
        m_output.message(fmt::format("warning: the instrument answered '{}' of its {} control {}", report.operation,
                                     row->name, what));
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch)
        // A warning that there is no memory for is no reason to end.
    }
}

} // namespace tarn::console
