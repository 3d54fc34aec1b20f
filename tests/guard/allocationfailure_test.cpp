// What must not need memory, as nobody could handle its lack: what happens in destructors.

#include <guard/guardfixture.h>

#include <support/allocationfaults.h>

namespace tarn::guard {

using tests::AllocationFaults;

class GuardWithoutMemory : public GuardTest { };

TEST_F(GuardWithoutMemory, TakesRequestsBackThatHaveEnded)
{
    std::vector<FilesDone> kept;
    offer([&](FilesDone done) { kept.push_back(std::move(done)); });
    for (int i = 0; i < 9; ++i)
        control()->fileList([](const Files& /*files*/, std::error_code /*code*/) { });
    for (const auto& done : kept)
        done({}, {});
    AllocationFaults::arm(1, true);
    kept.clear();
    EXPECT_FALSE(AllocationFaults::disarm());
}

TEST_F(GuardWithoutMemory, LetsTheDeviceGo)
{
    const auto first = offer({});
    static_cast<void>(control());
    device->drop(FileMemory::key);
    std::weak_ptr<void> gone;
    {
        const auto second = offer({});
        gone = second;
        static_cast<void>(control());
        device->drop(FileMemory::key);
    }
    EXPECT_TRUE(gone.expired());
    AllocationFaults::arm(1, true);
    guarded.reset();
    EXPECT_FALSE(AllocationFaults::disarm());
}

} // namespace tarn::guard
