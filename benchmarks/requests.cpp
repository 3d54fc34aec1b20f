// A request that ends in a completion, made as a call that returns its result: through the adapter, and by other ways
// to wait for a callback. The device completes it before the operation returns, or from a thread of its own.

#include "ways.h"

#include <devices/service/sdkserialnumbercontrol.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QFuture>
#include <QMetaObject>
#include <QPromise>

#include <boost/asio/use_future.hpp>

#include <condition_variable>
#include <expected>
#include <future>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

namespace tarn::benchmarks {
namespace {

using Sdk = sdk::service::IMemorySerialNumberControl;
using Adapter = devices::service::SdkSerialNumberControl;
using Done = sdk::Completion<unsigned int>;
using Error = Adapter::Error;
using Result = std::expected<unsigned int, Error>;

constexpr unsigned int number = 1'000'001;

class SerialNumber : public Sdk {
public:
    bool isAvailable() override { return true; }
    void writeSerialNumber(unsigned int /*number*/, sdk::Completion<> done) override { done({}); }
    void addObserver(Observer* /*observer*/) override { }
    void removeObserver(Observer* /*observer*/) override { }
};

/// Completes every request at once.
class Inline final : public SerialNumber {
public:
    void serialNumber(Done done) override { done(number, {}); }
};

/// Completes every request from a thread of its own, one at a time.
class Remote final : public SerialNumber {
public:
    void serialNumber(Done done) override
    {
        {
            const std::scoped_lock lock{m_mutex};
            m_done = std::move(done);
        }
        m_changed.notify_one();
    }

private:
    void run(const std::stop_token& stop)
    {
        std::unique_lock lock{m_mutex};
        while (m_changed.wait(lock, stop, [this] { return static_cast<bool>(m_done); })) {
            const auto done = std::exchange(m_done, nullptr);
            lock.unlock();
            done(number, {});
            lock.lock();
        }
    }

    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    Done m_done;
    std::jthread m_thread{[this](const std::stop_token& stop) { run(stop); }};
};

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
    QPromise<Result> promise;
    auto future = promise.future();
    promise.start();
    control.serialNumber([&promise](unsigned int value, std::error_code code) {
        promise.addResult(outcome(value, code));
        promise.finish();
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

[[gnu::noinline]] Result byAsio(Sdk& control)
{
    auto future = boost::asio::async_initiate<decltype(boost::asio::use_future), void(Result)>(
        [&control](auto handler) {
            const auto shared = std::make_shared<decltype(handler)>(std::move(handler));
            control.serialNumber(
                [shared](unsigned int value, std::error_code code) { (*shared)(outcome(value, code)); });
        },
        boost::asio::use_future);
    return future.get();
}

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

void addWays(const std::string& row, const std::shared_ptr<Sdk>& control)
{
    const auto adapter = std::make_shared<Adapter>(
        devices::ReacquiringControl<Sdk>{[control] { return sdk::ControlHandle<Sdk>{control}; }});
    add(row, "library", [adapter] { benchmark::DoNotOptimize(adapter->serialNumber()); });

    const auto addPeer = [&](const char* way, Result (*wait)(Sdk&)) {
        add(row, way, [weak = std::weak_ptr{control}, wait] {
            const auto locked = weak.lock();
            benchmark::DoNotOptimize(wait(*locked));
        });
    };
    addPeer("promise and future", &byPromise);
    addPeer("QPromise", &byQPromise);
    addPeer("QEventLoop", &byEventLoop);
    addPeer("asio use_future", &byAsio);
    addPeer("condition variable", &byConditionVariable);
}

void addAll()
{
    addWays("request, completed at once", std::make_shared<Inline>());
    addWays("request, completed from another thread", std::make_shared<Remote>());
}

} // namespace
} // namespace tarn::benchmarks

int main(int argc, char** argv)
{
    const QCoreApplication application{argc, argv}; // without one there are no event loops
    return tarn::benchmarks::runAll(argc, argv, &tarn::benchmarks::addAll);
}
