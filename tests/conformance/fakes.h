#pragma once

#include <conformance/checked.h>
#include <support/fakevna.h>

#include <sdk/ifactorycorrectioncontrol.h>
#include <sdk/itemperaturecontrol.h>
#include <sdk/service/ifilememorycontrol.h>
#include <sdk/service/iloleakagecontrol.h>
#include <sdk/service/imemoryoperationscontrol.h>
#include <sdk/service/ipotentiometerscontrol.h>
#include <sdk/service/ivellifswcalibrationcontrol.h>
#include <sdk/service/ivellsynthesiscontrol.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

/// Controls that keep the contract, for tests to break in one place each.
namespace tarn::tests {

/// Observers that are notified with the list locked, so that a removal waits, unless it comes from inside.
template <class Interface, class Observer>
class WithObservers : public Interface {
public:
    void addObserver(Observer* observer) override
    {
        const std::scoped_lock lock{mutex};
        if (std::ranges::find(observers, observer) == observers.end())
            observers.push_back(observer);
    }

    void removeObserver(Observer* observer) override
    {
        const std::scoped_lock lock{mutex};
        std::erase(observers, observer);
    }

protected:
    template <class... Values>
    void notify(void (Observer::*notification)(Values...), std::type_identity_t<Values>... values)
    {
        const std::scoped_lock lock{mutex};
        for (auto* const observer : std::vector{observers}) {
            if (std::ranges::find(observers, observer) != observers.end())
                (observer->*notification)(values...);
        }
    }

    std::recursive_mutex mutex;
    std::vector<Observer*> observers;
};

/// Completes inside of the call, after three steps.
class FakeMemory
    : public WithObservers<sdk::service::IMemoryOperationsControl, sdk::service::IMemoryOperationsControl::IObserver> {
public:
    bool isAvailable() override { return true; }
    void read(sdk::Completion<std::vector<std::byte>> completion) override
    {
        for (const auto done : steps)
            notify(&IObserver::onReadProgressChanged, done, 2U);
        completion(std::vector<std::byte>(4), {});
    }
    void write(std::vector<std::byte> /*image*/, sdk::Completion<> completion) override { completion({}); }
    void erase(sdk::Completion<> completion) override { completion({}); }
    void integrityCheck(sdk::Completion<> completion) override { completion({}); }

    std::vector<unsigned int> steps{0, 1, 2};
};

class FakeLoLeakage : public sdk::service::ILoLeakageControl {
public:
    bool isEnabled() override { return enabled; }
    void setEnabled(bool value) override { enabled = value; }

    bool enabled = false;
};

/// Notifies on threads of its own.
class FakeCorrections : public WithObservers<sdk::IFactoryCorrectionControl, sdk::IFactoryCorrectionControl::Observer> {
public:
    sdk::CorrectionFlag supportedCorrections() override { return correction; }
    sdk::CorrectionFlag validCorrections() override { return correction; }
    sdk::CorrectionFlag modifiableCorrections() override { return correction; }
    sdk::CorrectionFlag enabledCorrections() override { return enabled ? correction : sdk::CorrectionFlag::None; }
    void setEnabled(sdk::CorrectionFlag /*correction*/, bool value) override
    {
        enabled = value;
        threads.emplace_back([this, value] { notify(&Observer::onEnabledChanged, correction, value); });
    }

    static constexpr auto correction = sdk::CorrectionFlag::Crosstalk;
    std::atomic<bool> enabled{false};
    std::list<std::jthread> threads;
};

class FakePotentiometers : public sdk::service::IPotentiometersControl {
public:
    bool isAvailable() override { return true; }
    std::vector<Potentiometer> potentiometers() override { return {{"one", lowest, 9}}; }
    void readFromEeprom(unsigned long index, sdk::Completion<int> completion) override
    {
        completion(value, index == 0 ? std::error_code{} : behindTheLast);
    }
    void writeToRam(unsigned long /*index*/, int /*value*/, sdk::Completion<> completion) override { completion({}); }
    void writeToEeprom(unsigned long /*index*/, int newValue, sdk::Completion<> completion) override
    {
        value = newValue;
        completion({});
    }

    std::int32_t lowest = 0;
    int value = 4;
    std::error_code behindTheLast = std::make_error_code(std::errc::invalid_argument);
};

/// Ends everything inside of the call.
class FakeFiles : public sdk::service::IFileMemoryControl {
public:
    bool isAvailable() override { return true; }
    void fileList(sdk::Completion<std::vector<FileInfo>> completion) override
    {
        std::vector<FileInfo> list;
        for (const auto& [name, contents] : files)
            list.push_back({name, contents.size()});
        completion(std::move(list), {});
    }
    void spaceInfo(sdk::Completion<SpaceInfo> completion) override { completion({9, 1, 8}, {}); }
    void readFile(const FileInfo& file, sdk::Completion<std::vector<std::uint8_t>> completion) override
    {
        const auto found = files.find(file.name);
        if (found == files.end())
            completion({}, missing);
        else
            completion(found->second, {});
    }
    void writeFile(std::string name, std::vector<std::uint8_t> contents, sdk::Completion<> completion) override
    {
        files[std::move(name)] = std::move(contents);
        completion({});
    }
    void deleteFile(const FileInfo& file, sdk::Completion<> completion) override
    {
        completion(files.erase(file.name) != 0 ? std::error_code{} : missing);
    }

    std::map<std::string, std::vector<std::uint8_t>> files;
    std::error_code missing = std::make_error_code(std::errc::no_such_file_or_directory);
};

/// Refuses everything, on a thread of its own.
class FakeIfswCalibration : public WithObservers<sdk::service::IVellIfswCalibrationControl,
                                                 sdk::service::IVellIfswCalibrationControl::Observer> {
public:
    sdk::FrequencyPlan frequencyPlan() override { return {{{1e6, 2e6, 3}}}; }
    void saveCalibrationData(IfswCalibrationData /*data*/) override
    {
        threads.emplace_back([this] { notify(&Observer::onError, Error::NoData); });
    }

    std::list<std::jthread> threads;
};

class FakeVellSynthesis : public sdk::service::IVellSynthesisControl {
public:
    void setManualIfEnabled(bool enabled) override { manual = enabled; }
    bool manualIfEnabled() override { return manual; }
    void setSelectedIf(int index) override { selected = index; }
    int selectedIf() override { return selected; }
    std::span<const double> supportedIfs() override { return ifs; }

    bool manual = false;
    int selected = 0;
    std::vector<double> ifs{1e6, 2e6, 3e6};
};

/// Measures now and then, on a thread of its own; each measurement differs.
class FakeTemperatures : public WithObservers<sdk::ITemperatureControl, sdk::ITemperatureControl::Observer> {
public:
    float temperature() override { return 20.0F; }
    const ModuleTemperatures& moduleTemperatures() override
    {
        static thread_local ModuleTemperatures ofThread;
        return ofThread = {{"LO", value.load()}};
    }

protected:
    std::atomic<float> value{20.0F};

private:
    std::jthread m_thread{[this](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            value = value + 1.0F;
            notify(&Observer::onTemperatureChanged);
            std::this_thread::sleep_for(std::chrono::milliseconds{5});
        }
    }};
};

/// A device with the one control.
template <class Control, class Interface>
MakeDevice offering(std::function<void(Control&)> prepare = [](Control&) { })
{
    return [prepare = std::move(prepare)] {
        auto control = std::make_shared<Control>();
        prepare(*control);
        auto device = std::make_shared<FakeVna>();
        device->offer<Interface>(Interface::key, std::move(control));
        return device;
    };
}

/// A device that gives what `replace` makes of another one's controls.
class OddVna final : public sdk::IVna {
public:
    using Replace = std::function<std::shared_ptr<void>(sdk::Key key, std::shared_ptr<void> control)>;

    OddVna(std::shared_ptr<sdk::IVna> device, Replace replace)
        : m_device{std::move(device)}
        , m_replace{std::move(replace)}
    {
    }

    using sdk::IVna::control;
    std::shared_ptr<void> control(sdk::Key key) override { return m_replace(key, m_device->control(key)); }
    void addObserver(Observer* observer) override { m_device->addObserver(observer); }
    void removeObserver(Observer* observer) override { m_device->removeObserver(observer); }
    [[nodiscard]] sdk::Model model() const override { return m_device->model(); }

private:
    const std::shared_ptr<sdk::IVna> m_device;
    const Replace m_replace;
};

} // namespace tarn::tests
