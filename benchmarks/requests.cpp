// A request that ends in a completion, made as a call that returns its result: through the adapter, and by other ways
// to wait for a callback. The device completes it before the operation returns, or from a thread of its own.

#include "fakes.h"
#include "shortesthandle.h"
#include "ways.h"

#include <devices/service/sdkserialnumbercontrol.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QFuture>
#include <QMetaObject>
#include <QPromise>

#ifdef TARN_WITH_BOOST
#include <boost/asio/use_future.hpp>
#endif

#include <condition_variable>
#include <cstddef>
#include <cstdlib>
#include <expected>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>
#include <utility>

#include <sched.h>

namespace tarn::benchmarks {
namespace {

using Sdk = sdk::service::IMemorySerialNumberControl;
using Adapter = devices::service::SdkSerialNumberControl;
using Error = Adapter::Error;
using Result = std::expected<unsigned int, Error>;

Result outcome(unsigned int value, std::error_code code)
{
    if (code.value() != 0)
        return std::unexpected{Error::Failed};
    return value;
}

[[gnu::noinline]] Result byPromise(Sdk& control)
{
    std::promise<Result> promise;
    auto future = promise.get_future();
    control.serialNumber(
        [&promise](unsigned int value, std::error_code code) { promise.set_value(outcome(value, code)); });
    return future.get();
}

[[gnu::noinline]] Result byQPromise(Sdk& control)
{
    const auto promise = std::make_shared<QPromise<Result>>(); // it still works when its result is there
    auto future = promise->future();
    promise->start();
    control.serialNumber([promise](unsigned int value, std::error_code code) {
        promise->addResult(outcome(value, code));
        promise->finish();
    });
    return future.takeResult();
}

[[gnu::noinline]] Result byEventLoop(Sdk& control)
{
    Result result;
    QEventLoop loop;
    control.serialNumber([&](unsigned int value, std::error_code code) {
        result = outcome(value, code);
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
    return result;
}

#ifdef TARN_WITH_BOOST
[[gnu::noinline]] Result byAsio(Sdk& control)
{
    auto future = boost::asio::async_initiate<decltype(boost::asio::use_future), void(Result)>(
        [&control](auto handler) {
            control.serialNumber([handler = std::move(handler)](unsigned int value, std::error_code code) mutable {
                handler(outcome(value, code));
            });
        },
        boost::asio::use_future);
    return future.get();
}
#endif

[[gnu::noinline]] Result byConditionVariable(Sdk& control)
{
    std::mutex mutex;
    std::condition_variable changed;
    bool isDone = false;
    Result result;
    control.serialNumber([&](unsigned int value, std::error_code code) {
        const std::scoped_lock lock{mutex}; // until it has notified: the variable goes when the caller wakes up
        result = outcome(value, code);
        isDone = true;
        changed.notify_one();
    });
    std::unique_lock lock{mutex};
    changed.wait(lock, [&] { return isDone; });
    return result;
}

std::vector<Way> requests(const std::string& row, const std::shared_ptr<Sdk>& control)
{
    const auto reacquire = [control] { return sdk::ControlHandle<Sdk>{control}; };
    const auto peer = [&](const char* name, Result (*wait)(Sdk&)) {
        return repeated(row, name, [handle = std::make_shared<ShortestHandle<Sdk>>(reacquire), wait]() -> Result {
            const auto locked = handle->lock();
            return locked ? wait(*locked) : std::unexpected{Error::Failed};
        });
    };
    return {
        repeated(row, "library", [adapter = adapterOf<Adapter>(control)] { return adapter->serialNumber(); }),
        peer("promise and future", &byPromise),
        peer("QPromise", &byQPromise),
        peer("QEventLoop", &byEventLoop),
#ifdef TARN_WITH_BOOST
        peer("asio use_future", &byAsio),
#endif
        peer("condition variable", &byConditionVariable),
    };
}

/// Keeps this thread, and those that it makes, on the core where it is. Between cores the system takes ten times as
/// long to wake a thread, which one time is half of what it is another time.
void stayOnThisCore()
{
    cpu_set_t cores;
    CPU_ZERO(&cores);
    CPU_SET(static_cast<std::size_t>(::sched_getcpu()), &cores);
    if (::sched_setaffinity(0, sizeof cores, &cores) != 0)
        std::abort();
}

} // namespace

std::vector<Way> allWays()
{
    stayOnThisCore();
    static char name[] = "requests";
    static char* arguments[] = {name, nullptr};
    static int argumentCount = 1;
    static const QCoreApplication application{argumentCount, arguments}; // without one there are no event loops
    auto ways = requests("request, completed at once", std::make_shared<SerialNumber>());
    for (auto& way : requests("request, completed from another thread", makeRemoteSerialNumber()))
        ways.push_back(std::move(way));
    return ways;
}

} // namespace tarn::benchmarks
