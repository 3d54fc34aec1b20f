#pragma once

#include <support/contractbench.h>
#include <support/watchdog.h>

#include <gtest/gtest.h>

#include <barrier>
#include <string>
#include <thread>
#include <vector>

/// What every adapter promises, whatever its operations are. An adapter's test names the operations
/// in a trait and instantiates the suite with it:
///
///     struct FooContract {
///         using Sdk = sdk::service::IFooControl;
///         using Adapter = devices::service::SdkFooControl;
///         using Mock = testing::NiceMock<MockFooControl>;
///         static std::vector<Operation<Adapter, Mock>> operations();
///     };
///     INSTANTIATE_TYPED_TEST_SUITE_P(Foo, AdapterContract, FooContract);
namespace tarn::tests {

template <class Contract>
class AdapterContract : public testing::Test {
protected:
    using Bench = ContractBench<Contract>;

    template <class Check>
    static void forEachOperation(Check check)
    {
        const auto operations = Contract::operations();
        ASSERT_FALSE(operations.empty());
        for (const auto& operation : operations) {
            SCOPED_TRACE(operation.name);
            check(operation);
        }
    }

private:
    const Watchdog m_watchdog; ///< on calls that wait for themselves, or for each other
};

TYPED_TEST_SUITE_P(AdapterContract);

TYPED_TEST_P(AdapterContract, AControlThatWasNeverOfferedIsAskedForOnceAndGivesTheNeutralResult)
{
    this->forEachOperation([](const auto& operation) {
        ContractBench<TypeParam> bench{operation, false};
        for (int round = 0; round != 2; ++round) { // a failure is not remembered
            const int before = bench.asked();
            EXPECT_NE(bench.run(), Outcome::Answered);
            EXPECT_EQ(bench.asked(), before + 1);
        }
    });
}

TYPED_TEST_P(AdapterContract, ADroppedControlIsNotCalledAndGivesTheNeutralResult)
{
    this->forEachOperation([](const auto& operation) {
        ContractBench<TypeParam> bench{operation};
        bench.drop();
        ASSERT_TRUE(bench.first.expired()) << "the adapter kept the control alive between calls";
        const int before = bench.asked();
        EXPECT_NE(bench.run(), Outcome::Answered);
        EXPECT_EQ(bench.asked(), before + 1);
        EXPECT_EQ(bench.sdkCalls, 0);
    });
}

TYPED_TEST_P(AdapterContract, ALiveControlIsUsedWithoutAskingTheDevice)
{
    this->forEachOperation([](const auto& operation) {
        ContractBench<TypeParam> bench{operation};
        for (int round = 1; round != 3; ++round) {
            EXPECT_NE(bench.run(), Outcome::Unavailable);
            EXPECT_EQ(bench.sdkCalls, round);
        }
        EXPECT_EQ(bench.asked(), 1) << "only the handle itself, when it was built, may have asked";
    });
}

TYPED_TEST_P(AdapterContract, ANewControlIsReachedByTheNextCallWithOneQuestionToTheDevice)
{
    this->forEachOperation([](const auto& operation) {
        ContractBench<TypeParam> bench{operation};
        bench.drop();
        bench.offerStubbed();
        const int before = bench.asked();
        for (int round = 1; round != 3; ++round) {
            EXPECT_NE(bench.run(), Outcome::Unavailable);
            EXPECT_EQ(bench.sdkCalls, round);
            EXPECT_EQ(bench.asked(), before + 1);
        }
    });
}

TYPED_TEST_P(AdapterContract, AControlOfferedLateIsReachedByTheNextCall)
{
    this->forEachOperation([](const auto& operation) {
        ContractBench<TypeParam> bench{operation, false};
        EXPECT_NE(bench.run(), Outcome::Answered);
        bench.offerStubbed();
        EXPECT_NE(bench.run(), Outcome::Unavailable);
        EXPECT_EQ(bench.sdkCalls, 1);
    });
}

TYPED_TEST_P(AdapterContract, AControlDroppedDuringACallLivesUntilTheCallEnds)
{
    this->forEachOperation([](const auto& operation) {
        ContractBench<TypeParam> bench{operation};
        bench.inside = [&] {
            bench.drop();
            EXPECT_FALSE(bench.first.expired());
        };
        EXPECT_NE(bench.run(), Outcome::Unavailable);
        EXPECT_EQ(bench.sdkCalls, 1);
        EXPECT_TRUE(bench.first.expired()) << "the adapter kept the control alive";
    });
}

TYPED_TEST_P(AdapterContract, TheAdapterCanBeCalledFromInsideItsOwnSdkCall)
{
    this->forEachOperation([](const auto& operation) {
        ContractBench<TypeParam> bench{operation};
        bench.inside = [&] {
            bench.inside = nullptr;
            EXPECT_NE(bench.run(), Outcome::Unavailable);
        };
        EXPECT_NE(bench.run(), Outcome::Unavailable);
        EXPECT_EQ(bench.sdkCalls, 2);
    });
}

TYPED_TEST_P(AdapterContract, TheAdapterCanBeCalledWhileItAsksTheDevice)
{
    this->forEachOperation([](const auto& operation) {
        ContractBench<TypeParam> bench{operation};
        bench.drop();
        bench.offerStubbed();
        bench.device.whenAsked([&](sdk::Key) {
            bench.device.whenAsked(nullptr);
            EXPECT_NE(bench.run(), Outcome::Unavailable);
        });
        const int before = bench.asked();
        EXPECT_NE(bench.run(), Outcome::Unavailable);
        EXPECT_EQ(bench.sdkCalls, 2);
        EXPECT_EQ(bench.asked(), before + 2);
    });
}

TYPED_TEST_P(AdapterContract, TwoThreadsCanBeInTheSameSdkCallAtOnce)
{
    this->forEachOperation([](const auto& operation) {
        ContractBench<TypeParam> bench{operation};
        std::barrier meeting{2}; // nobody gets past it alone
        bench.inside = [&] { meeting.arrive_and_wait(); };
        std::jthread other{[&] { EXPECT_NE(bench.run(), Outcome::Unavailable); }};
        EXPECT_NE(bench.run(), Outcome::Unavailable);
        other.join();
        EXPECT_EQ(bench.sdkCalls, 2);
    });
}

REGISTER_TYPED_TEST_SUITE_P(AdapterContract, AControlThatWasNeverOfferedIsAskedForOnceAndGivesTheNeutralResult,
                            ADroppedControlIsNotCalledAndGivesTheNeutralResult,
                            ALiveControlIsUsedWithoutAskingTheDevice,
                            ANewControlIsReachedByTheNextCallWithOneQuestionToTheDevice,
                            AControlOfferedLateIsReachedByTheNextCall, AControlDroppedDuringACallLivesUntilTheCallEnds,
                            TheAdapterCanBeCalledFromInsideItsOwnSdkCall, TheAdapterCanBeCalledWhileItAsksTheDevice,
                            TwoThreadsCanBeInTheSameSdkCallAtOnce);

} // namespace tarn::tests
