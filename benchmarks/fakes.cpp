#include "fakes.h"

#include <array>
#include <condition_variable>
#include <mutex>
#include <span>
#include <stop_token>
#include <thread>
#include <utility>

namespace tarn::benchmarks {
namespace {

class LoLeakage final : public sdk::service::ILoLeakageControl {
public:
    [[nodiscard]] bool isEnabled() override { return m_enabled; }
    void setEnabled(bool enabled) override { m_enabled = enabled; }

private:
    bool m_enabled = false;
};

class VellSynthesis final : public sdk::service::IVellSynthesisControl {
public:
    void setManualIfEnabled(bool /*enabled*/) override { }
    [[nodiscard]] bool manualIfEnabled() override { return false; }
    void setSelectedIf(int /*index*/) override { }
    [[nodiscard]] int selectedIf() override { return 0; }
    [[nodiscard]] std::span<const double> supportedIfs() override { return m_frequencies; }

private:
    const std::array<double, 3> m_frequencies{1e6, 2e6, 3e6};
};

class RemoteSerialNumber final : public SerialNumber {
public:
    void serialNumber(sdk::Completion<unsigned int> done) override
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
            done(benchmarks::serialNumber, {});
            lock.lock();
        }
    }

    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    sdk::Completion<unsigned int> m_done;
    std::jthread m_thread{[this](const std::stop_token& stop) { run(stop); }};
};

class Ears final : public devices::service::ISerialNumberControl::IObserver {
public:
    void onWriteProgressChanged(const devices::service::Progress& progress) override { m_heard += progress.done; }

private:
    unsigned int m_heard = 0;
};

} // namespace

std::shared_ptr<sdk::service::ILoLeakageControl> makeLoLeakage()
{
    return std::make_shared<LoLeakage>();
}

std::shared_ptr<sdk::service::IVellSynthesisControl> makeVellSynthesis()
{
    return std::make_shared<VellSynthesis>();
}

bool SerialNumber::isAvailable()
{
    return true;
}

void SerialNumber::serialNumber(sdk::Completion<unsigned int> done)
{
    done(benchmarks::serialNumber, {});
}

void SerialNumber::writeSerialNumber(unsigned int /*number*/, sdk::Completion<> done)
{
    done({});
}

void SerialNumber::addObserver(Observer* observer)
{
    attached = observer;
}

void SerialNumber::removeObserver(Observer* /*observer*/)
{
    attached = nullptr;
}

std::shared_ptr<SerialNumber> makeRemoteSerialNumber()
{
    return std::make_shared<RemoteSerialNumber>();
}

std::unique_ptr<devices::service::ISerialNumberControl::IObserver> makeEars()
{
    return std::make_unique<Ears>();
}

} // namespace tarn::benchmarks
