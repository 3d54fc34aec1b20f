// What is left of an exception that the device, its controls or the function that asks for them throw:
// nothing but the exception itself.

#include "everyoperation.h"

#include <devices/controlregistry.h>
#include <devices/service/servicecontrols.h>
#include <sdk/ivna.h>

#include <support/allocationfaults.h>
#include <support/exceptions.h>
#include <support/onanotherthread.h>

#include <gtest/gtest.h>

#include <any>

namespace tarn::tests::exceptions {
namespace {

/// Throws `exception` in its `nth` call, from 1.
struct Thrower {
    void operator()()
    {
        if (++calls == nth)
            std::rethrow_exception(exception);
    }

    std::exception_ptr exception;
    int nth;
    int calls = 0;
};

/// Runs `operation` with `exception` in the `nth` call that it makes. Whether it made as many.
bool throwsIn(const AnyOperation& operation, const std::exception_ptr& exception, int nth)
{
    const auto bench = operation.bench();
    bench->drop(); // so that the device is asked first
    bench->offer();
    const int before = bench->heard();
    Thrower thrower{exception, nth};
    bench->atEveryCall([&] { thrower(); });
    const auto thrown = thrownBy([&] { bench->run(); });
    bench->atEveryCall(nullptr);
    if (thrower.calls < nth) {
        EXPECT_EQ(thrown, nullptr);
        return false;
    }
    EXPECT_EQ(thrown, exception);
    EXPECT_EQ(thrower.calls, nth) << "it went on";
    EXPECT_EQ(bench->heard(), before) << "somebody was told";
    expectDoneByTheNextCall(operation, *bench);
    EXPECT_TRUE(bench->drop()) << "the control is kept alive";
    return true;
}

TEST(Exceptions, OfEveryCallOfEveryOperationReachTheCallerUnchangedAndLeaveNothing)
{
    for (const auto& operation : everyOperation()) {
        SCOPED_TRACE(operation.name);
        for (const auto& exception : anyExceptions()) {
            throwsIn(operation, exception, 1); // what is made once for all is not what leaks
            const long before = AllocationFaults::live();
            int calls = 0;
            while (throwsIn(operation, exception, calls + 1))
                ++calls;
            EXPECT_EQ(calls, operation.calls);
            EXPECT_EQ(AllocationFaults::live(), before);
        }
    }
}

TEST(Exceptions, OfEveryCallOfACreationReachTheHostUnchangedAndLeaveNothing)
{
    devices::ControlRegistry registry;
    devices::service::servicecontrols::registrate(&registry);
    std::function<void()> inside;
    const auto device = deviceWithEveryControl(inside);
    for (const auto& entry : registry.entries()) {
        SCOPED_TRACE(entry.key);
        EXPECT_TRUE(entry.create(device.get()).has_value());
        for (const auto& exception : anyExceptions()) {
            const long before = AllocationFaults::live();
            for (int nth = 1;; ++nth) {
                Thrower thrower{exception, nth};
                inside = [&] { thrower(); };
                std::any control;
                const auto thrown = thrownBy([&] { control = entry.create(device.get()); });
                inside = nullptr;
                EXPECT_EQ(thrown, thrower.calls < nth ? nullptr : exception);
                EXPECT_EQ(control.has_value(), !thrown);
                onAnotherThread([&] { EXPECT_TRUE(entry.create(device.get()).has_value()); });
                if (!thrown) {
                    EXPECT_GE(thrower.calls, 2) << "the device is asked twice";
                    break;
                }
            }
            EXPECT_EQ(AllocationFaults::live(), before);
        }
    }
}

} // namespace
} // namespace tarn::tests::exceptions
