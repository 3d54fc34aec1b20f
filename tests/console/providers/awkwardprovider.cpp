#include "awkwardcalibrations.h"
#include "awkwardcontrols.h"
#include "awkwardmemory.h"
#include "awkwardstuck.h"
#include "awkwardtuning.h"

#include <provider/ideviceprovider.h>
#include <sdk/ivna.h>

#include <QObject>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

/// An instrument with one awkward trait, named by its address:
///   (none)       is like a real one: it measures every few milliseconds
///   hostile      has files with names that must not be trusted, and is of such models
///   crowded      has a thousand files
///   unformatted  has a file memory that cannot be used
///   huge         has a file memory that no number of JSON can count
///   forgetful    accepts every change and makes none
///   clinging     accepts that a file be deleted and keeps it
///   throwing     throws
///   exhausted    is out of memory
///   late         drops a calibration controller before it was ever had, and offers it a little later
///   shared       has somebody else write its calibration data, switch its corrections and set its power all the time
///   vanishing    drops its controls for good, without a word, once they were handed out
///   flickering   has no LO leakage control at every second question once it was handed out
///   restless     has dropped its controls while there is a file "away" in the current folder
///   stuck=CALL   never comes back from that call; has what a shared one has, whose switches nobody else touches
///   interrupting presses Ctrl-C while it takes a file, and says on standard error when it deletes one
class Instrument final : public sdk::IVna {
public:
    explicit Instrument(const std::string& behaviour)
        : m_behaviour{behaviour}
    {
        offer<sdk::service::IFileMemoryControl, awkward::FileMemory>(behaviour);
        offer<sdk::service::IPotentiometersControl, awkward::Potentiometers>(behaviour);
        offer<sdk::service::IMemoryUsbIdControl, awkward::UsbId>(behaviour);
        offer<sdk::service::IMemorySerialNumberControl, awkward::SerialNumber>(behaviour);
        offer<sdk::service::IMemoryOperationsControl, awkward::MemoryOperations>(behaviour);
        offer<sdk::service::ILoLeakageControl, awkward::LoLeakage>(behaviour);
        offer<sdk::service::IQuillPowerControl, awkward::QuillPower>(behaviour);
        offer<sdk::ITemperatureControl, awkward::Temperatures>();
        if (behaviour == "shared" || behaviour.starts_with("stuck=")) {
            offer<sdk::service::IVellIfswCalibrationControl, awkward::IfswCalibration>();
            offer<ICalibrationController, awkward::Calibrations, ICalibrationController::firstKey>();
            offer<sdk::IFactoryCorrectionControl, awkward::Corrections>();
        }
        m_thread = std::jthread{[this](const std::stop_token& stop) { live(stop); }};
    }

    Instrument(const Instrument&) = delete;
    Instrument& operator=(const Instrument&) = delete;
    ~Instrument() override { awkward::enter("closing"); }

    /// A control is handed out with the second answer; a vanishing instrument gives its own
    /// reference away with it.
    std::shared_ptr<void> control(sdk::Key key) override
    {
        if (key == awkward::LoLeakage::key && ++m_askedForLeakage > 1)
            awkward::enter("control");
        std::unique_lock lock{m_mutex};
        const int asked = ++m_asked[key];
        if (m_behaviour == "vanishing" && asked == 2)
            return std::exchange(m_controls[key], nullptr);
        if (m_behaviour == "flickering" && key == awkward::LoLeakage::key && asked > 2 && asked % 2 == 0)
            return nullptr;
        if (m_behaviour == "late" && key == ICalibrationController::firstKey && asked == 1) {
            lock.unlock();
            for (auto observer = m_observers.begin(); observer + 1 != m_observers.end(); ++observer)
                (*observer)->onControlsAboutToBeReleased(); // not the last one, which is asking
            m_isLate = true;
            return nullptr;
        }
        return m_controls[key];
    }

    using IVna::control;

    void addObserver(Observer* observer) override
    {
        const std::scoped_lock lock{m_observersMutex};
        m_observers.push_back(observer);
    }

    void removeObserver(Observer* observer) override
    {
        const std::scoped_lock lock{m_observersMutex};
        std::erase(m_observers, observer);
    }

    sdk::Model model() const override { return sdk::Model{m_behaviour == "hostile" ? "Awkward \x1b[2J" : "Awkward 1"}; }

private:
    using ICalibrationController = sdk::service::calibrations::ICalibrationController;

    template <class Interface, class Control, sdk::Key key = Interface::key, class... Arguments>
    void offer(const Arguments&... arguments)
    {
        const std::scoped_lock lock{m_mutex};
        m_controls[key] = std::static_pointer_cast<Interface>(std::make_shared<Control>(arguments...));
    }

    template <class Interface, class Control, sdk::Key key = Interface::key>
    void letLive()
    {
        std::unique_lock lock{m_mutex};
        const auto control = std::static_pointer_cast<Interface>(m_controls[key]);
        lock.unlock();
        if (control)
            static_cast<Control&>(*control).live();
    }

    void live(const std::stop_token& stop)
    {
        while (pause(stop)) {
            letLive<sdk::ITemperatureControl, awkward::Temperatures>();
            letLive<ICalibrationController, awkward::Calibrations, ICalibrationController::firstKey>();
            letLive<sdk::IFactoryCorrectionControl, awkward::Corrections>();
            letLive<sdk::service::IQuillPowerControl, awkward::QuillPower>();
            if (isToBeAway())
                beAway(stop);
            beAwayForAMoment();
            if (m_isLate.exchange(false))
                beLate(stop);
        }
    }

    void beLate(const std::stop_token& stop)
    {
        for (int i = 0; i < 25; ++i)
            pause(stop);
        offer<ICalibrationController, awkward::Calibrations, ICalibrationController::firstKey>();
        notify(&Observer::onControlsAvailable);
    }

    /// Once the calibrations are watched and something has been told of them, so that the watch has to begin again.
    void beAwayForAMoment()
    {
        if (awkward::stuckIn != "calibrations-again" || m_wasAway)
            return;
        std::unique_lock lock{m_mutex};
        const auto control
            = std::static_pointer_cast<ICalibrationController>(m_controls[ICalibrationController::firstKey]);
        lock.unlock();
        m_wasAway = std::exchange(m_wasObserved, static_cast<awkward::Calibrations&>(*control).isObserved());
        if (!m_wasAway)
            return;
        notify(&Observer::onControlsAboutToBeReleased);
        notify(&Observer::onControlsAvailable);
    }

    [[nodiscard]] bool isToBeAway() const { return m_behaviour == "restless" && std::filesystem::exists("away"); }

    void beAway(const std::stop_token& stop)
    {
        notify(&Observer::onControlsAboutToBeReleased);
        withdraw(awkward::Temperatures::key);
        withdraw(awkward::QuillPower::key);
        while (isToBeAway() && pause(stop)) { }
        offer<sdk::ITemperatureControl, awkward::Temperatures>();
        offer<sdk::service::IQuillPowerControl, awkward::QuillPower>(std::string{"returned"});
        notify(&Observer::onControlsAvailable);
    }

    static bool pause(const std::stop_token& stop)
    {
        std::mutex mutex;
        std::unique_lock lock{mutex};
        std::condition_variable_any{}.wait_for(lock, stop, std::chrono::milliseconds{2}, [] { return false; });
        return !stop.stop_requested();
    }

    void withdraw(sdk::Key key)
    {
        const std::scoped_lock lock{m_mutex};
        m_controls[key] = nullptr;
    }

    void notify(void (Observer::*notification)())
    {
        const std::scoped_lock lock{m_observersMutex};
        for (auto* const observer : m_observers)
            (observer->*notification)();
    }

    const std::string m_behaviour;
    std::mutex m_mutex;
    std::map<sdk::Key, int> m_asked;
    std::map<sdk::Key, std::shared_ptr<void>> m_controls;
    std::atomic<int> m_askedForLeakage{0};
    std::atomic<bool> m_isLate{false};
    // Of its own thread.
    bool m_wasAway = false;
    bool m_wasObserved = false;
    std::recursive_mutex m_observersMutex;
    std::vector<Observer*> m_observers;
    std::jthread m_thread;
};

} // namespace

class AwkwardProvider final : public QObject, public tarn::provider::IDeviceProvider {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID TARN_DEVICE_PROVIDER_IID)
    Q_INTERFACES(tarn::provider::IDeviceProvider)

public:
    using OpenError = tarn::provider::OpenError;

    AwkwardProvider()
    {
        awkward::stuckIn = qgetenv("AWKWARD_STUCK").toStdString();
        if (qEnvironmentVariableIsSet("AWKWARD_EXITS"))
            std::_Exit(EXIT_SUCCESS);
    }
    AwkwardProvider(const AwkwardProvider&) = delete;
    AwkwardProvider& operator=(const AwkwardProvider&) = delete;
    ~AwkwardProvider() override { awkward::enter("unloading"); }

    QString name() const override
    {
        awkward::enter("name");
        if (qEnvironmentVariableIsSet("AWKWARD_THROWS"))
            throw std::runtime_error{"nameless"};
        return QStringLiteral("awkward");
    }
    QString description() const override
    {
        awkward::enter("description");
        return QStringLiteral("instruments that make trouble");
    }
    QString addressSyntax() const override { return QStringLiteral("TROUBLE"); }
    bool isSimulated() const override { return false; }

    /// What a simulated instrument may offer as well; it makes none of this one.
    QList<tarn::provider::AddressOption> addressOptions() const override
    {
        return {{QStringLiteral("drop-every"), QStringLiteral("N"), {}, QStringLiteral("is not understood")}};
    }

    QList<tarn::provider::Address> addresses() const override
    {
        awkward::enter("addresses");
        return {{QStringLiteral("hostile"), {}}};
    }

    std::expected<std::shared_ptr<sdk::IVna>, OpenError> open(const tarn::provider::OpenRequest& request) override
    {
        static const std::map<QString, OpenError::Code> failures{
            {QStringLiteral("absent"), OpenError::Code::NotFound},
            {QStringLiteral("invalid"), OpenError::Code::InvalidAddress},
            {QStringLiteral("busy"), OpenError::Code::Busy},
            {QStringLiteral("state"), OpenError::Code::State},
            {QStringLiteral("broken"), OpenError::Code::Failed}};
        if (const auto failure = failures.find(request.address); failure != failures.end())
            return std::unexpected{
                OpenError{failure->second, QStringLiteral("it is ") + request.address, QStringLiteral("mend it")}};
        if (request.address == QStringLiteral("nothing"))
            return nullptr;
        if (const auto call = request.address.mid(6).toStdString();
            request.address.startsWith(QStringLiteral("stuck=")) && awkward::stuckIn != call)
            awkward::stuckIn = call; // at the first opening: threads of an instrument that was given up still read it
        awkward::enter("opening");
        return std::make_shared<Instrument>(request.address.toStdString());
    }
};

#include "awkwardprovider.moc"
