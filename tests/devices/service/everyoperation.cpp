#include "everyoperation.h"
#include "heard.h"
#include "tuningcontrols.h"

#include <devices/service/sdkcalibrationcontrolhandle.h>
#include <devices/service/sdkcalibrationcontrolwatcher.h>
#include <devices/service/sdkfactorycorrectioncontrol.h>
#include <devices/service/sdkfilememorycontrol.h>
#include <devices/service/sdkloleakagecontrol.h>
#include <devices/service/sdkmemoryoperationscontrol.h>
#include <devices/service/sdkpotentiometerscontrol.h>
#include <devices/service/sdkserialnumbercontrol.h>
#include <devices/service/sdksystemtermscontrol.h>
#include <devices/service/sdktemperaturecontrol.h>
#include <devices/service/sdkusbidcontrol.h>
#include <devices/service/sdkvellfactorypowercalibrationcontrol.h>
#include <devices/service/sdkvellifswcalibrationcontrol.h>

#include <support/contractbench.h>
#include <support/onanotherthread.h>
#include <support/plaincontrols.h>
#include <support/signalcounter.h>

#include <functional>
#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace tarn::tests {
namespace {

using namespace devices::service;
namespace sdks = sdk::service;

/// An operation, and how many calls of the device and of the control it makes.
template <class Adapter, class Control>
struct Counted {
    Operation<Adapter, Control> operation;
    int calls;
};

/// A control with an adapter; what is derived from it adds a function `operations`.
template <class SdkControl, class ItsAdapter, class Control>
struct Plain {
    using Sdk = SdkControl;
    using Adapter = ItsAdapter;
    using Mock = Control;
    using Row = Counted<Adapter, Mock>;
    using Operations = std::vector<Row>;

    /// An operation that yields something that is true exactly when it was answered.
    template <class Run>
    static Row asks(const char* name, int calls, Run run)
    {
        return {
            {name,
             [run](Adapter& adapter) { return std::invoke(run, adapter) ? Outcome::Answered : Outcome::Unavailable; },
             stub},
            calls};
    }

    /// An operation that yields nothing.
    template <class Run>
    static Row does(const char* name, int calls, Run run)
    {
        return {{name,
                 [run](Adapter& adapter) {
                     std::invoke(run, adapter);
                     return Outcome::NoResult;
                 },
                 stub},
                calls};
    }

    static void stub(Mock& control, std::function<void()> inside) { control.inside = std::move(inside); }
};

struct LoLeakage : Plain<sdks::ILoLeakageControl, SdkLoLeakageControl, PlainLoLeakageControl> {
    static constexpr auto name = "LoLeakage";
    static Operations operations()
    {
        return {asks("isEnabled", 2, &Adapter::isEnabled),
                does("setEnabled", 2, [](Adapter& adapter) { adapter.setEnabled(true); })};
    }
};

struct FileMemory : Plain<sdks::IFileMemoryControl, SdkFileMemoryControl, PlainFileMemoryControl> {
    static constexpr auto name = "FileMemory";
    static Operations operations()
    {
        return {
            asks("fileList", 3, [](Adapter& adapter) { return adapter.fileList().has_value(); }),
            asks("spaceInfo", 3, [](Adapter& adapter) { return adapter.spaceInfo().has_value(); }),
            asks("readFile", 3, [](Adapter& adapter) { return adapter.readFile({QString{40, u'a'}, 1}).has_value(); }),
            asks("writeFile", 3,
                 [](Adapter& adapter) { return adapter.writeFile(QString{40, u'a'}, "b").has_value(); }),
            asks("deleteFile", 3,
                 [](Adapter& adapter) { return adapter.deleteFile({QString{40, u'a'}, 1}).has_value(); })};
    }
};

struct Potentiometers : Plain<sdks::IPotentiometersControl, SdkPotentiometersControl, PlainPotentiometersControl> {
    static constexpr auto name = "Potentiometers";
    static Operations operations()
    {
        return {asks("potentiometers", 2, [](Adapter& adapter) { return !adapter.potentiometers().empty(); }),
                asks("readFromEeprom", 2, [](Adapter& adapter) { return adapter.readFromEeprom(0).has_value(); }),
                asks("writeToRam", 2, [](Adapter& adapter) { return adapter.writeToRam(0, 1).has_value(); }),
                asks("writeToEeprom", 2, [](Adapter& adapter) { return adapter.writeToEeprom(0, 1).has_value(); })};
    }
};

struct UsbId : Plain<sdks::IMemoryUsbIdControl, SdkMemoryUsbId, PlainMemoryUsbIdControl> {
    static constexpr auto name = "UsbId";
    static Operations operations()
    {
        return {asks("currentDeviceProperties", 2,
                     [](Adapter& adapter) { return !adapter.currentDeviceProperties().modelName.empty(); }),
                asks("supportedDevices", 2, [](Adapter& adapter) { return !adapter.supportedDevices().empty(); }),
                asks("writeUsbId", 2, [](Adapter& adapter) { return adapter.writeUsbId({}); })};
    }
};

/// What the adapters have alike that keep an observer of theirs attached.
template <class Contract>
typename Contract::Operations attachmentsOf(typename Contract::Operations operations)
{
    using Adapter = typename Contract::Adapter;
    operations.push_back(Contract::does("onControlsAvailable", 2, &Adapter::onControlsAvailable));
    operations.push_back(Contract::does("onControlsAboutToBeReleased", 2, &Adapter::onControlsAboutToBeReleased));
    return operations;
}

/// And those that have a list of observers.
template <class Contract, class Control>
typename Contract::Operations observersOf(typename Contract::Operations operations)
{
    operations.push_back(Contract::does("addObserver and removeObserver", 0, [](typename Contract::Adapter& adapter) {
        static Hearing<Control> listener;
        adapter.addObserver(listener);
        adapter.removeObserver(listener);
    }));
    return attachmentsOf<Contract>(std::move(operations));
}

struct SerialNumber : Plain<sdks::IMemorySerialNumberControl, SdkSerialNumberControl, PlainMemorySerialNumberControl> {
    static constexpr auto name = "SerialNumber";
    using Observed = ISerialNumberControl;
    static Operations operations()
    {
        return observersOf<Plain, Observed>(
            {asks("serialNumber", 2, [](Adapter& adapter) { return adapter.serialNumber().has_value(); }),
             asks("writeSerialNumber", 2, [](Adapter& adapter) { return adapter.writeSerialNumber(1).has_value(); })});
    }
};

struct MemoryOperations
    : Plain<sdks::IMemoryOperationsControl, SdkMemoryOperationsControl, PlainMemoryOperationsControl> {
    static constexpr auto name = "MemoryOperations";
    using Observed = IMemoryOperationsControl;
    static Operations operations()
    {
        return observersOf<Plain, Observed>(
            {asks("read", 2, [](Adapter& adapter) { return adapter.read().has_value(); }),
             asks("write", 2, [](Adapter& adapter) { return adapter.write(std::vector<std::byte>(3)).has_value(); }),
             asks("erase", 2, [](Adapter& adapter) { return adapter.erase().has_value(); }),
             asks("integrityCheck", 2, [](Adapter& adapter) { return adapter.integrityCheck().has_value(); })});
    }
};

struct SystemTerms : Plain<sdks::ISystemTermsControl, SdkSystemTermsControl, PlainSystemTermsControl> {
    static constexpr auto name = "SystemTerms";
    using Observed = ISystemTermsControl;
    static vna::ErrorTerms terms() { return {2, {1.0, 2.0}}; }
    static Operations operations()
    {
        return observersOf<Plain, Observed>(
            {asks("frequencyPlan", 2, [](Adapter& adapter) { return !adapter.frequencyPlan().empty(); }),
             asks("isFrequencyOverrideSupported", 2, &Adapter::isFrequencyOverrideSupported),
             does("requestWriteTerms", 2, [](Adapter& adapter) { adapter.requestWriteTerms({}, 1.0, terms()); }),
             does("requestWriteTerms with a plan", 2,
                  [](Adapter& adapter) { adapter.requestWriteTerms({}, 1.0, {{1.0, 2.0, 3}}, terms()); })});
    }
};

/// What the two calibration controls do with an observer, and with that of the bench, through a release and a return.
template <class Contract>
typename Contract::Operations calibrationOf(typename Contract::Operations operations)
{
    using Adapter = typename Contract::Adapter;
    operations.push_back(
        Contract::asks("frequencyPlan", 2, [](Adapter& adapter) { return !adapter.frequencyPlan().empty(); }));
    operations.push_back(Contract::does("addObserver", 2, [](Adapter& adapter) {
        static Hearing<Adapter> listener;
        adapter.removeObserver(&listener); // from the second time on
        adapter.addObserver(&listener);
    }));
    operations.push_back(Contract::does("an observer, through a release and a return", 7, [](Adapter& adapter) {
        static Hearing<Adapter> listener;
        adapter.addObserver(&listener);
        adapter.onControlsAboutToBeReleased();
        adapter.onControlsAvailable();
        adapter.removeObserver(&listener);
    }));
    return operations;
}

struct VellIfsw
    : Plain<sdks::IVellIfswCalibrationControl, SdkVellIfswCalibrationControl, PlainVellIfswCalibrationControl> {
    static constexpr auto name = "VellIfswCalibration";
    using Observed = Adapter;
    static Operations operations()
    {
        return calibrationOf<Plain>({does("saveCalibrationData", 2, [](Adapter& adapter) {
            const Adapter::ReceiverCalibration receiver{{{}}, {{}}};
            adapter.saveCalibrationData({{1.0}, receiver, receiver, receiver});
        })});
    }
};

struct VellPower : Plain<sdks::IVellFactoryPowerCalibrationControl, SdkVellFactoryPowerCalibrationControl,
                         PlainVellFactoryPowerCalibrationControl> {
    static constexpr auto name = "VellFactoryPowerCalibration";
    using Observed = Adapter;
    static Operations operations()
    {
        return calibrationOf<Plain>(
            {does("saveCalibrationData", 2, [](Adapter& adapter) { adapter.saveCalibrationData({}, 0.0, {{}}); })});
    }
};

struct FactoryCorrections
    : Plain<sdk::IFactoryCorrectionControl, SdkFactoryCorrectionControl, PlainFactoryCorrectionControl> {
    static constexpr auto name = "FactoryCorrections";
    using Observed = Adapter;
    static Operations operations()
    {
        constexpr auto system = devices::FactoryCorrection::System;
        return attachmentsOf<Plain>(
            {asks("isValid", 2, [](Adapter& adapter) { return adapter.isValid(system); }),
             asks("isEnabled", 2, [](Adapter& adapter) { return adapter.isEnabled(system); }),
             asks("isModifiable", 2, [](Adapter& adapter) { return adapter.isModifiable(system); }),
             asks("supported", 2, [](Adapter& adapter) { return !adapter.supported().empty(); }),
             does("setEnabled", 4, [](Adapter& adapter) { adapter.setEnabled(system, true); }),
             does("addObserver and removeObserver", 3, [](Adapter& adapter) {
                 static Hearing<Adapter> listener;
                 adapter.addObserver(&listener);
                 adapter.removeObserver(&listener);
             })});
    }
};

struct Temperature : Plain<sdk::ITemperatureControl, SdkTemperatureControl, PlainTemperatureControl> {
    static constexpr auto name = "Temperature";
    static Operations operations()
    {
        return {does("onControlsAvailable", 4, &Adapter::onControlsAvailable),
                does("onControlsAboutToBeReleased", 2, &Adapter::onControlsAboutToBeReleased),
                does("temperature", 0, [](Adapter& adapter) { std::ignore = adapter.temperature(); }),
                does("modulesTemperature", 0, [](Adapter& adapter) { std::ignore = adapter.modulesTemperature(); })};
    }
};

/// The notification of the SDK, to an adapter that is attached.
struct TemperatureChange : Plain<sdk::ITemperatureControl, SdkTemperatureControl, PlainTemperatureControl> {
    static constexpr auto name = "TemperatureChange";
    static void prepare(Adapter& adapter) { adapter.onControlsAvailable(); }
    static Operations operations()
    {
        const auto current = std::make_shared<Mock*>(nullptr);
        auto change = does("onTemperatureChanged", 2,
                           [current](Adapter& /*adapter*/) { (*current)->attached->onTemperatureChanged(); });
        change.operation.stub = [current](Mock& control, std::function<void()> inside) {
            *current = &control;
            stub(control, std::move(inside));
        };
        return {change};
    }
};

using sdks::calibrations::ICalibrationController;

/// The two controllers have one interface.
struct CalibrationHandle : Plain<ICalibrationController, SdkCalibrationControlHandle, PlainCalibrationController> {
    static constexpr auto name = "CalibrationHandle";
    static constexpr auto key = Sdk::firstKey;
    static Operations operations()
    {
        return {asks("lock", 1, [](Adapter& adapter) { return static_cast<bool>(adapter.lock()); }),
                does("onControlsAvailable", 0, &Adapter::onControlsAvailable),
                does("onControlsAboutToBeReleased", 0, &Adapter::onControlsAboutToBeReleased)};
    }
};

struct WatchedController {
    explicit WatchedController(devices::ReacquiringControl<ICalibrationController> control)
        : handle{std::move(control)}
    {
    }
    SdkCalibrationControlHandle handle;
    SdkCalibrationControlWatcher watcher{handle};
};

struct CalibrationWatcher : Plain<ICalibrationController, WatchedController, PlainCalibrationController> {
    static constexpr auto name = "CalibrationWatcher";
    static constexpr auto key = Sdk::secondKey;
    static constexpr bool isBoundToThread = true;
    static QObject& sender(Adapter& adapter) { return adapter.watcher; }
    static Operations operations()
    {
        return {
            does("attach", 3, [](Adapter& adapter) { adapter.watcher.attach(); }),
            does("detach", 2, [](Adapter& adapter) { adapter.watcher.detach(); }),
            does("controlsAvailable of the handle", 3, [](Adapter& adapter) { adapter.handle.onControlsAvailable(); }),
            does("controlsAboutToBeReleased of the handle", 2,
                 [](Adapter& adapter) { adapter.handle.onControlsAboutToBeReleased(); })};
    }
};

/// The calls of an adapter that only gets and sets: the question for the control, and one.
template <class Tuning>
struct Tuned : Tuning {
    static auto operations()
    {
        std::vector<Counted<typename Tuning::Adapter, typename Tuning::Mock>> rows;
        const auto tuning = Tuning::operations();
        for (const auto& entry : tuning.entries)
            rows.push_back({entry.operation, 2});
        return rows;
    }
};

template <class... Tunings>
auto withTheOthers(testing::Types<Tunings...>)
    -> testing::Types<Tuned<Tunings>..., LoLeakage, FileMemory, Potentiometers, UsbId, SerialNumber, MemoryOperations,
                      SystemTerms, VellIfsw, VellPower, FactoryCorrections, Temperature, TemperatureChange,
                      CalibrationHandle, CalibrationWatcher>;

/// All controls.
using Contracts = decltype(withTheOthers(TuningControls{}));

/// Calls `call` with a `std::type_identity` of each.
template <class Call, class... Types>
void forEachType(testing::Types<Types...> /*types*/, Call call)
{
    (call(std::type_identity<Types>{}), ...);
}

std::function<int()> signalsOf(QObject& sender)
{
    const auto count = std::make_shared<int>(0);
    return [count, ears = std::make_shared<SignalCounter>(sender, *count)] { return *count; };
}

/// Listens to an adapter. Tells how often it has emitted a signal or told an observer something.
template <class Contract>
std::function<int()> listen(typename Contract::Adapter& adapter)
{
    if constexpr (requires { typename Contract::Observed; }) {
        const auto ears = std::make_shared<Hearing<typename Contract::Observed>>();
        if constexpr (requires { adapter.addObserver(ears.get()); })
            adapter.addObserver(ears.get());
        else
            adapter.addObserver(*ears);
        return [ears] { return ears->heard.all.load(); };
    } else if constexpr (requires { Contract::sender(adapter); }) {
        return signalsOf(Contract::sender(adapter));
    } else if constexpr (std::is_base_of_v<QObject, typename Contract::Adapter>) {
        return signalsOf(adapter);
    } else {
        return [] { return 0; };
    }
}

template <class Contract>
class Bench final : public AnyBench {
public:
    using Op = Operation<typename Contract::Adapter, typename Contract::Mock>;

    explicit Bench(Op operation)
        : m_operation{std::move(operation)}
    {
    }

    Outcome run() override { return m_bench.run(); }
    void atEveryCall(std::function<void()> call) override
    {
        m_bench.device.whenAsked(call ? [call](sdk::Key) { call(); } : std::function<void(sdk::Key)>{});
        m_bench.inside = std::move(call);
    }
    bool drop() override
    {
        m_bench.drop();
        return m_control.expired();
    }
    void offer() override
    {
        m_control = m_bench.offerStubbed();
        if constexpr (requires { Contract::prepare(m_bench.adapter); })
            Contract::prepare(m_bench.adapter);
    }
    [[nodiscard]] int heard() const override { return m_heard(); }
    [[nodiscard]] int sdkCalls() const override { return m_bench.sdkCalls; }
    [[nodiscard]] bool isBoundToThread() const override
    {
        return requires { Contract::isBoundToThread; };
    }

private:
    const Op m_operation;
    ContractBench<Contract> m_bench{m_operation};
    std::weak_ptr<typename Contract::Mock> m_control = m_bench.first;
    std::function<int()> m_heard = listen<Contract>(m_bench.adapter);
};

} // namespace

std::vector<AnyOperation> everyOperation()
{
    std::vector<AnyOperation> operations;
    forEachType(Contracts{}, [&]<class Contract>(std::type_identity<Contract>) {
        for (const auto& [operation, calls] : Contract::operations())
            operations.push_back({Contract::name + (": " + operation.name), calls,
                                  [operation] { return std::make_unique<Bench<Contract>>(operation); }});
    });
    return operations;
}

void expectDoneByTheNextCall(const AnyOperation& operation, AnyBench& bench)
{
    const int before = bench.sdkCalls();
    onAnotherThread([&] { EXPECT_NE(bench.run(), Outcome::Unavailable) << "the next call"; });
    if (bench.isBoundToThread())
        bench.run();
    if (operation.calls > 1) { // the question for the control, and more
        EXPECT_GT(bench.sdkCalls(), before) << "the next call has done nothing";
    }
}

std::shared_ptr<sdk::IVna> deviceWithEveryControl(const std::function<void()>& inside)
{
    auto device = std::make_shared<FakeVna>();
    const auto call = [&inside] {
        if (inside)
            inside();
    };
    forEachType(Contracts{}, [&]<class Contract>(std::type_identity<Contract>) {
        const auto control = std::make_shared<typename Contract::Mock>();
        control->inside = call;
        device->offer<typename Contract::Sdk>(keyOf<Contract>, control);
    });
    device->whenAsked([call](sdk::Key) { call(); });
    return device;
}

} // namespace tarn::tests
