#pragma once

#include <simulator/manualinstrument.h>

namespace tarn::simulator::test {

inline Settings withFaults(const FaultPlan& plan, CompletionMode mode = CompletionMode::Thread)
{
    Settings settings;
    settings.faults = plan;
    settings.completion = mode;
    return settings;
}

inline FaultPlan dropEvery(std::uint64_t count)
{
    FaultPlan plan;
    plan.dropEvery = count;
    return plan;
}

/// The instrument with an observer that writes a journal.
struct WatchedInstrument : ManualInstrument {
    explicit WatchedInstrument(const Settings& settings = {})
        : ManualInstrument{settings}
    {
        vna->addObserver(&observer);
    }

    ~WatchedInstrument()
    {
        if (vna)
            vna->removeObserver(&observer);
    }

    Journal journal;
    LifecycleObserver observer{journal};
};

/// Starts one request of each kind and notes every completion by its number.
inline void startRequests(Files& files, Journal& journal)
{
    files.fileList([&](auto, auto) { journal.note("0"); });
    files.spaceInfo([&](auto, auto) { journal.note("1"); });
    files.readFile({"f", 0}, [&](auto, auto) { journal.note("2"); });
    files.writeFile("f", {1}, [&](auto) { journal.note("3"); });
    files.deleteFile({"f", 0}, [&](auto) { journal.note("4"); });
}

} // namespace tarn::simulator::test
