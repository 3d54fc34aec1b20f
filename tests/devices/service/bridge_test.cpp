#include <devices/service/bridge.h>

#include <sdk/completion.h>
#include <support/errorcategory.h>
#include <support/exceptions.h>
#include <support/watchdog.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <expected>
#include <functional>
#include <future>
#include <latch>
#include <memory>
#include <string>
#include <thread>
#include <tuple>
#include <type_traits>

namespace tarn::tests::bridge {
namespace {

using devices::service::awaitOrError;
using devices::service::awaitOrMessage;
using devices::service::awaitSuccess;

enum class Error { Failed, Other };
enum class ShiftedError { Other, Failed };
static_assert(static_cast<int>(Error::Failed) == 0);

template <class T>
using FinishMessage
    = devices::service::FinishExpected<std::expected<T, QString>, devices::service::FailureMessage, std::identity{}>;
static_assert(std::is_invocable_v<FinishMessage<int>, int, std::error_code>);
static_assert(!std::is_invocable_v<FinishMessage<int>, std::error_code>, "no success without its value");
static_assert(std::is_invocable_v<FinishMessage<void>, std::error_code>);

using Void = sdk::Completion<>;
using Value = sdk::Completion<int>;

std::string twice(int value)
{
    return std::to_string(value) + std::to_string(value);
}

std::exception_ptr failure;

int failing(int /*value*/)
{
    std::rethrow_exception(failure);
}

const ErrorCategory strange{"strange"};
const ErrorCategory silent{""};

/// A bridge waits without a limit for what it has lost.
class Bridge : public testing::Test {
    const Watchdog m_watchdog;
};
using BridgeMessageStyle = Bridge;
using BridgeEnumerationStyle = Bridge;
using BridgeFlagStyle = Bridge;

/// A request that completes inside the call.
auto completing(std::error_code code)
{
    return [code](const Void& done) { done(code); };
}

auto completing(int value, std::error_code code)
{
    return [value, code](const Value& done) { done(value, code); };
}

TEST_F(BridgeMessageStyle, GivesTheConvertedValueOnSuccess)
{
    const auto result = awaitOrMessage<std::string, twice>(completing(4, {}));
    ASSERT_TRUE(result.has_value());
    EXPECT_EQ(*result, "44");
}

TEST_F(BridgeMessageStyle, GivesTheValueItselfWithoutAConversion)
{
    EXPECT_EQ(awaitOrMessage<int>(completing(4, {})).value(), 4);
}

TEST_F(BridgeMessageStyle, GivesTheTextOfTheErrorUnchanged)
{
    const ErrorCategory category{"Dateispeicher \xc3\xbc"
                                 "berf\xc3\xbcllt (\xe2\x82\xac)"};
    const auto result = awaitOrMessage<int>(completing(4, category.code(17)));
    ASSERT_FALSE(result.has_value());
    EXPECT_EQ(result.error(), QStringLiteral(u"Dateispeicher \u00fcberf\u00fcllt (\u20ac)"));
    const auto none = awaitOrMessage<void>(completing(category.code(-1)));
    ASSERT_FALSE(none.has_value());
    EXPECT_EQ(none.error(), result.error());
}

TEST_F(BridgeMessageStyle, GivesAnEmptyTextForAnErrorWithoutOneAndItIsStillAnError)
{
    const auto result = awaitOrMessage<int>(completing(4, silent.code(1)));
    ASSERT_FALSE(result.has_value());
    EXPECT_TRUE(result.error().isEmpty());
    const auto none = awaitOrMessage<void>(completing(silent.code(1)));
    ASSERT_FALSE(none.has_value());
    EXPECT_TRUE(none.error().isEmpty());
}

TEST_F(BridgeMessageStyle, DoesNotConvertTheValueThatComesWithAnError)
{
    static int conversions;
    conversions = 0;
    constexpr auto counted = [](int value) {
        ++conversions;
        return value;
    };
    EXPECT_FALSE((awaitOrMessage<int, counted>(completing(4, strange.code(1))).has_value()));
    EXPECT_EQ(conversions, 0);
    EXPECT_TRUE((awaitOrMessage<int, counted>(completing(4, {})).has_value()));
    EXPECT_EQ(conversions, 1);
}

TEST_F(BridgeEnumerationStyle, GivesFailedWhateverTheCodeSays)
{
    for (const int value : {1, -1, 5, 1000}) {
        EXPECT_EQ((awaitOrError<int, Error>(completing(4, strange.code(value))).error()), Error::Failed);
        EXPECT_EQ((awaitOrError<void, Error>(completing(strange.code(value))).error()), Error::Failed);
        EXPECT_EQ((awaitOrError<void, ShiftedError>(completing(strange.code(value))).error()), ShiftedError::Failed);
    }
}

TEST_F(BridgeEnumerationStyle, GivesTheConvertedValueOnSuccess)
{
    EXPECT_EQ((awaitOrError<std::string, Error, twice>(completing(4, {})).value()), "44");
    EXPECT_TRUE((awaitOrError<void, Error>(completing(std::error_code{})).has_value()));
}

TEST_F(BridgeFlagStyle, IsTrueExactlyWhenTheValueOfTheCodeIsZero)
{
    EXPECT_TRUE(awaitSuccess(completing(std::error_code{})));
    EXPECT_TRUE(awaitSuccess(completing(strange.code(0))));
    EXPECT_FALSE(awaitSuccess(completing(strange.code(1))));
    EXPECT_FALSE(awaitSuccess(completing(strange.code(-1))));
}

TEST_F(Bridge, DecidesByTheValueOfTheCodeInWhateverCategory)
{
    EXPECT_TRUE(awaitOrMessage<int>(completing(4, strange.code(0))).has_value());
    EXPECT_TRUE(awaitOrMessage<void>(completing(strange.code(0))).has_value());
    EXPECT_TRUE((awaitOrError<int, Error>(completing(4, strange.code(0))).has_value()));
    EXPECT_TRUE((awaitOrError<void, Error>(completing(strange.code(0))).has_value()));
    for (const auto* const category :
         {&std::generic_category(), &std::system_category(), static_cast<const std::error_category*>(&strange)}) {
        EXPECT_FALSE(awaitOrMessage<int>(completing(4, {-1, *category})).has_value());
        EXPECT_FALSE(awaitOrMessage<void>(completing({1, *category})).has_value());
        EXPECT_FALSE((awaitOrError<int, Error>(completing(4, {1, *category})).has_value()));
        EXPECT_FALSE((awaitOrError<void, Error>(completing({1, *category})).has_value()));
    }
}

TEST_F(Bridge, WaitsForACompletionThatComesFromAnotherThread)
{
    std::jthread device;
    const auto result = awaitOrMessage<int>([&](const Value& done) { device = std::jthread{[done] { done(4, {}); }}; });
    EXPECT_EQ(result.value(), 4);
}

TEST_F(Bridge, DoesNotReturnBeforeTheCompletion)
{
    std::promise<Value> request;
    std::atomic<bool> completed{false};
    std::jthread caller{[&] {
        EXPECT_EQ(awaitOrMessage<int>([&](Value done) { request.set_value(std::move(done)); }).value(), 4);
        EXPECT_TRUE(completed);
    }};
    const auto done = request.get_future().get(); // the request has returned or is about to
    std::this_thread::yield();
    completed = true;
    done(4, {});
}

TEST_F(Bridge, KeepsRequestsApartThatCompleteInTheOtherOrder)
{
    constexpr std::size_t count = 3;
    std::array<std::promise<Value>, count> requests;
    std::array<int, count> results{};
    {
        std::array<std::jthread, count> callers;
        for (std::size_t i = 0; i != count; ++i)
            callers.at(i) = std::jthread{[&, i] {
                results.at(i)
                    = awaitOrMessage<int>([&](Value done) { requests.at(i).set_value(std::move(done)); }).value();
            }};
        std::array<Value, count> completions;
        for (std::size_t i = 0; i != count; ++i)
            completions.at(i) = requests.at(i).get_future().get();
        for (std::size_t i = count; i != 0; --i)
            completions.at(i - 1)(static_cast<int>(i), {});
    }
    EXPECT_EQ(results, (std::array{1, 2, 3}));
}

TEST_F(Bridge, RefusesASecondCompletionAtTheOneWhoMakesIt)
{
    std::future_errc refusal{};
    const auto result = awaitOrMessage<int>([&](const Value& done) {
        done(4, {});
        try {
            done(5, {});
        } catch (const std::future_error& error) {
            refusal = static_cast<std::future_errc>(error.code().value());
        }
    });
    EXPECT_EQ(refusal, std::future_errc::promise_already_satisfied);
    EXPECT_EQ(result.value(), 4) << "the first completion counts";
}

TEST_F(Bridge, RefusesASecondCompletionOnTheThreadOfTheSdk)
{
    std::future_errc refusal{};
    const auto result = awaitOrMessage<int>([&](const Value& done) {
        std::thread{[&] {
            done(4, {});
            try {
                done(5, strange.code(1));
            } catch (const std::future_error& error) {
                refusal = static_cast<std::future_errc>(error.code().value());
            }
        }}.join(); // the request has not returned: the caller is still there
    });
    EXPECT_EQ(refusal, std::future_errc::promise_already_satisfied);
    EXPECT_EQ(result.value(), 4);
}

TEST_F(Bridge, PassesAnExceptionOfTheRequestOnUnchanged)
{
    for (const auto& exception : anyExceptions()) {
        const auto throwing = [&](const auto& /*done*/) { std::rethrow_exception(exception); };
        EXPECT_EQ(thrownBy([&] { std::ignore = awaitOrMessage<int>(throwing); }), exception);
        EXPECT_EQ(thrownBy([&] { std::ignore = awaitOrError<void, Error>(throwing); }), exception);
        EXPECT_EQ(thrownBy([&] { std::ignore = awaitSuccess(throwing); }), exception);
    }
}

TEST_F(Bridge, PassesAnExceptionOfTheConversionToTheCallerOnWhateverThreadItIsMade)
{
    for (const auto& exception : anyExceptions()) {
        failure = exception;
        EXPECT_EQ(thrownBy([] { std::ignore = awaitOrMessage<int, failing>(completing(4, {})); }), exception);
        std::jthread device;
        const auto request = [&](const Value& done) { device = std::jthread{[done] { done(4, {}); }}; };
        EXPECT_EQ(thrownBy([&] { std::ignore = awaitOrError<int, Error, failing>(request); }), exception);
    }
}

TEST_F(Bridge, MovesTheDeliveredValue)
{
    const auto result
        = awaitOrMessage<std::unique_ptr<int>>([](auto done) { done(std::make_unique<int>(4), std::error_code{}); });
    ASSERT_TRUE(result.has_value());
    EXPECT_EQ(**result, 4);
}

TEST_F(Bridge, MakesACallbackOfOnePointerThatAStdFunctionKeepsInItself)
{
    std::ignore = awaitSuccess([](auto callback) {
        static_assert(sizeof(callback) == sizeof(void*));
        static_assert(std::is_trivially_copyable_v<decltype(callback)>);
        const Void done{callback};
        const auto* const kept = reinterpret_cast<const std::byte*>(done.target<decltype(callback)>());
        const auto* const begin = reinterpret_cast<const std::byte*>(&done);
        EXPECT_GE(kept, begin);
        EXPECT_LE(kept + sizeof(callback), begin + sizeof(done));
        done({});
    });
}

TEST_F(Bridge, CallsTheRequestExactlyOnce)
{
    int calls = 0;
    EXPECT_FALSE(awaitSuccess([&](const Void& done) {
        ++calls;
        done(strange.code(1));
    }));
    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace tarn::tests::bridge
