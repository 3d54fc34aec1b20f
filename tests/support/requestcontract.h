#pragma once

#include <support/adaptercontract.h>
#include <support/adaptertest.h>
#include <support/errorcategory.h>
#include <support/observedthread.h>

#include <sdk/completion.h>

#include <expected>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <system_error>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

/// What every adapter promises whose requests end in a completion. Its test names the requests in the trait that
/// `AdapterContract` knows, where they are operations as well:
///
///     static std::vector<Request<Adapter, Mock>> requests();
///     static std::vector<Operation<Adapter, Mock>> operations() { return asOperations(requests()); }
///     ...
///     INSTANTIATE_TYPED_TEST_SUITE_P(Foo, RequestContract, FooContract);
namespace tarn::tests {

/// Ends a request with a code.
using End = sdk::Completion<>;

/// What the SDK does with a request: it is given the end of it.
using Take = std::function<void(End)>;

/// The end of a request that delivers `value`.
template <class Value>
[[nodiscard]] End endOf(std::function<void(Value, std::error_code)> completion, std::type_identity_t<Value> value = {})
{
    return [completion = std::move(completion), value = std::move(value)](std::error_code code) {
        completion(value, code);
    };
}

/// One request of an adapter.
template <class Adapter, class Mock>
struct Request {
    std::string name;
    /// Makes the request; whether it succeeded.
    std::function<bool(Adapter&)> run;
    /// Makes the SDK call of `mock` hand its end to `take`.
    std::function<void(Mock& mock, Take take)> stub;
};

/// A result whose failure is the one of its enumeration.
template <class Value, class Error>
[[nodiscard]] bool hasSucceeded(const std::expected<Value, Error>& result)
{
    if (!result) {
        EXPECT_EQ(result.error(), Error::Failed);
    }
    return result.has_value();
}

/// The requests as operations, whose SDK calls are ended at once.
template <class Adapter, class Mock>
[[nodiscard]] std::vector<Operation<Adapter, Mock>> asOperations(const std::vector<Request<Adapter, Mock>>& requests)
{
    std::vector<Operation<Adapter, Mock>> operations;
    for (const auto& request : requests)
        operations.push_back(
            {request.name,
             [run = request.run](Adapter& adapter) { return run(adapter) ? Outcome::Answered : Outcome::Unavailable; },
             [stub = request.stub](Mock& mock, const std::function<void()>& inside) {
                 stub(mock, [inside](const End& end) {
                     inside();
                     end({});
                 });
             }});
    return operations;
}

template <class Contract>
class RequestContract
    : public AdapterTest<typename Contract::Sdk, typename Contract::Adapter, typename Contract::Mock> {
    const Watchdog m_watchdog;
};

TYPED_TEST_SUITE_P(RequestContract);

TYPED_TEST_P(RequestContract, FailsOnEveryCodeWhoseValueIsNotZeroAndOnNoOther)
{
    const ErrorCategory strange{"strange"};
    for (const auto& request : TypeParam::requests()) {
        for (const auto code : {strange.code(0), strange.code(1), strange.code(-1), std::error_code{},
                                std::make_error_code(std::errc::io_error)}) {
            request.stub(*this->mock, [code](const End& end) { end(code); });
            EXPECT_EQ(request.run(this->control), code.value() == 0) << request.name << ", " << code;
        }
    }
}

TYPED_TEST_P(RequestContract, KeepsTwoOutstandingRequestsApartThatEndInTheOtherOrder)
{
    const auto requests = TypeParam::requests();
    for (const auto& first : requests) {
        for (const auto& second : requests) {
            SCOPED_TRACE(first.name + ", then " + second.name);
            std::promise<End> firstTaken;
            std::promise<End> secondTaken;
            first.stub(*this->mock, [&](End end) { firstTaken.set_value(std::move(end)); });
            std::jthread one{[&] { EXPECT_TRUE(first.run(this->control)); }};
            const auto endFirst = firstTaken.get_future().get();
            second.stub(*this->mock, [&](End end) { secondTaken.set_value(std::move(end)); });
            std::jthread two{[&] { EXPECT_FALSE(second.run(this->control)); }};
            secondTaken.get_future().get()(std::make_error_code(std::errc::io_error));
            two.join(); // returns although the first is still outstanding
            endFirst({});
        }
    }
}

TYPED_TEST_P(RequestContract, KeepsTheControlAliveWhileItWaitsForTheCompletion)
{
    for (const auto& request : TypeParam::requests()) {
        SCOPED_TRACE(request.name);
        std::promise<ObservedThread> observed;
        std::promise<End> taken;
        request.stub(*this->mock, [&](End end) { taken.set_value(std::move(end)); });
        std::jthread caller{[&] {
            observed.set_value({});
            EXPECT_TRUE(request.run(this->control));
        }};
        const auto end = taken.get_future().get();
        const auto thread = observed.get_future().get();
        while (!thread.isWaiting()) // for the completion
            std::this_thread::yield();
        this->device.drop(TypeParam::Sdk::key);
        const std::weak_ptr<typename TypeParam::Mock> life{std::exchange(this->mock, nullptr)};
        EXPECT_FALSE(life.expired());
        end({});
        caller.join();
        EXPECT_TRUE(life.expired());

        this->mock = std::make_shared<typename TypeParam::Mock>();
        this->device.template offer<typename TypeParam::Sdk>(TypeParam::Sdk::key, this->mock);
    }
}

REGISTER_TYPED_TEST_SUITE_P(RequestContract, FailsOnEveryCodeWhoseValueIsNotZeroAndOnNoOther,
                            KeepsTwoOutstandingRequestsApartThatEndInTheOtherOrder,
                            KeepsTheControlAliveWhileItWaitsForTheCompletion);

} // namespace tarn::tests
