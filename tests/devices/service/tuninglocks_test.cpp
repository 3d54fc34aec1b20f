// How the adapters that only get and set lock.

#include "tuningcontrols.h"

#include <support/devicehandle.h>
#include <support/mutexprobe.h>

#include <system_error>
#include <tuple>

namespace tarn::tests::tuninglocks {
namespace {

template <class Tuning>
class TuningLocks : public testing::Test { };

TYPED_TEST_SUITE(TuningLocks, TuningControls, TuningName);

TYPED_TEST(TuningLocks, EveryOperationLocksTheHandleAloneAndHoldsNothingWhileItCallsTheSdk)
{
    const auto operations = TypeParam::operations();
    for (const auto& [operation, check] : operations.entries) {
        SCOPED_TRACE(operation.name);
        const auto sdk = std::make_shared<typename TypeParam::Mock>();
        typename TypeParam::Adapter adapter{handleTo<typename TypeParam::Sdk>(sdk)};
        int calls = 0;
        operation.stub(*sdk, [&] {
            ++calls;
            EXPECT_EQ(MutexProbe::held(), 0);
        });
        EXPECT_EQ(locksOf([&] { std::ignore = operation.run(adapter); }), 1);
        EXPECT_EQ(calls, 1);
    }
}

TYPED_TEST(TuningLocks, AMutexThatFailsIsReportedAndTheSdkIsNotCalled)
{
    const auto operations = TypeParam::operations();
    for (const auto& [operation, check] : operations.entries) {
        SCOPED_TRACE(operation.name);
        const auto sdk = std::make_shared<typename TypeParam::Mock>();
        typename TypeParam::Adapter adapter{handleTo<typename TypeParam::Sdk>(sdk)};
        int calls = 0;
        operation.stub(*sdk, [&] { ++calls; });
        MutexProbe::failAfter(0);
        EXPECT_THROW(std::ignore = operation.run(adapter), std::system_error);
        EXPECT_EQ(calls, 0);
    }
}

TEST(QuillPowerLocks, HoldsNothingWhileItEmits)
{
    using Adapter = QuillPower::Adapter;
    Adapter adapter{handleTo<QuillPower::Sdk>(std::make_shared<QuillPower::Mock>())};
    int emitted = 0;
    const auto slot = [&] {
        ++emitted;
        EXPECT_EQ(MutexProbe::held(), 0);
    };
    QObject::connect(&adapter, &Adapter::rfPowerChanged, &adapter, slot, Qt::DirectConnection);
    adapter.setRfPower(1);
    adapter.reset();
    EXPECT_EQ(emitted, 2);
}

} // namespace
} // namespace tarn::tests::tuninglocks
