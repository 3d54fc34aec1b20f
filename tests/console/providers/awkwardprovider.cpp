#include "awkwardcontrols.h"
#include "awkwardmemory.h"

#include <provider/ideviceprovider.h>
#include <sdk/ivna.h>

#include <QObject>

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using awkward::FileMemory;
using awkward::LoLeakage;
using awkward::Temperatures;

/// An instrument with one awkward trait, named by its address:
///   (none)       is like a real one: it measures every few milliseconds
///   hostile      has files with names that must not be trusted
///   crowded      has a thousand files
///   unformatted  has a file memory that cannot be used
///   huge         has a file memory that no number of JSON can count
///   forgetful    accepts every change and makes none
///   clinging     accepts that a file be deleted and keeps it
///   throwing     throws
///   vanishing    drops its controls for good, without a word, once they were handed out
///   flickering   has no LO leakage control at every second question once it was handed out
///   restless     has dropped its controls while there is a file "away" in the current folder
///   interrupting presses Ctrl-C while it takes a file, and says on standard error when it deletes one
class Instrument final : public sdk::IVna {
public:
    explicit Instrument(const std::string& behaviour)
        : m_behaviour{behaviour}
        , m_files{std::make_shared<FileMemory>(behaviour)}
        , m_potentiometers{std::make_shared<awkward::Potentiometers>(behaviour)}
        , m_usbId{std::make_shared<awkward::UsbId>(behaviour)}
        , m_serialNumber{std::make_shared<awkward::SerialNumber>(behaviour)}
        , m_memory{std::make_shared<awkward::MemoryOperations>(behaviour)}
        , m_leakage{std::make_shared<LoLeakage>(behaviour)}
        , m_temperatures{std::make_shared<Temperatures>()}
        , m_thread{[this](const std::stop_token& stop) { live(stop); }}
    {
    }

    std::shared_ptr<void> control(sdk::Key key) override
    {
        const std::scoped_lock lock{m_mutex};
        if (key == FileMemory::key)
            return handOut<sdk::service::IFileMemoryControl>(m_files, key);
        if (key == awkward::Potentiometers::key)
            return handOut<sdk::service::IPotentiometersControl>(m_potentiometers, key);
        if (key == awkward::UsbId::key)
            return handOut<sdk::service::IMemoryUsbIdControl>(m_usbId, key);
        if (key == awkward::SerialNumber::key)
            return handOut<sdk::service::IMemorySerialNumberControl>(m_serialNumber, key);
        if (key == awkward::MemoryOperations::key)
            return handOut<sdk::service::IMemoryOperationsControl>(m_memory, key);
        if (key == LoLeakage::key)
            return handOut<sdk::service::ILoLeakageControl>(m_leakage, key);
        if (key == Temperatures::key)
            return handOut<sdk::ITemperatureControl>(m_temperatures, key);
        return {};
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

    sdk::Model model() const override { return sdk::Model{"Awkward 1"}; }

private:
    /// A control is handed out with the second answer; a vanishing instrument gives its own
    /// reference away with it.
    template <class Interface, class Control>
    std::shared_ptr<Interface> handOut(std::shared_ptr<Control>& control, sdk::Key key)
    {
        const int asked = ++m_asked[key];
        if (m_behaviour == "vanishing" && asked == 2)
            return std::exchange(control, nullptr);
        if (m_behaviour == "flickering" && key == LoLeakage::key && asked > 2 && asked % 2 == 0)
            return nullptr;
        return control;
    }

    std::shared_ptr<Temperatures> measured()
    {
        const std::scoped_lock lock{m_mutex};
        return m_temperatures;
    }

    void live(const std::stop_token& stop)
    {
        while (pause(stop)) {
            if (const auto temperatures = measured())
                temperatures->measure();
            if (isToBeAway())
                beAway(stop);
        }
    }

    [[nodiscard]] bool isToBeAway() const { return m_behaviour == "restless" && std::filesystem::exists("away"); }

    void beAway(const std::stop_token& stop)
    {
        notify(&Observer::onControlsAboutToBeReleased);
        offer(nullptr);
        while (isToBeAway() && pause(stop)) { }
        offer(std::make_shared<Temperatures>());
        notify(&Observer::onControlsAvailable);
    }

    static bool pause(const std::stop_token& stop)
    {
        std::mutex mutex;
        std::unique_lock lock{mutex};
        std::condition_variable_any{}.wait_for(lock, stop, std::chrono::milliseconds{2}, [] { return false; });
        return !stop.stop_requested();
    }

    void offer(std::shared_ptr<Temperatures> temperatures)
    {
        const std::scoped_lock lock{m_mutex};
        m_temperatures = std::move(temperatures);
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
    std::shared_ptr<FileMemory> m_files;
    std::shared_ptr<awkward::Potentiometers> m_potentiometers;
    std::shared_ptr<awkward::UsbId> m_usbId;
    std::shared_ptr<awkward::SerialNumber> m_serialNumber;
    std::shared_ptr<awkward::MemoryOperations> m_memory;
    std::shared_ptr<LoLeakage> m_leakage;
    std::shared_ptr<Temperatures> m_temperatures;
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

    QString name() const override { return QStringLiteral("awkward"); }
    QString description() const override { return QStringLiteral("instruments that make trouble"); }
    QString addressSyntax() const override { return QStringLiteral("TROUBLE"); }
    bool isSimulated() const override { return false; }

    /// What a simulated instrument may offer as well; it makes none of this one.
    QList<tarn::provider::AddressOption> addressOptions() const override
    {
        return {{QStringLiteral("drop-every"), QStringLiteral("N"), {}, QStringLiteral("is not understood")}};
    }

    QList<tarn::provider::Address> addresses() const override { return {{QStringLiteral("hostile"), {}}}; }

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
        return std::make_shared<Instrument>(request.address.toStdString());
    }
};

#include "awkwardprovider.moc"
