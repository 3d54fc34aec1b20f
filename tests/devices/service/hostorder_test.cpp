// A host that lets go of the device, of the owner of its controls, of watchers and of controls in any order.

#include "allcontrols.h"

#include <devices/service/sdkcalibrationcontrolwatcher.h>
#include <devices/service/servicecontrols.h>
#include <simulator/simulatedvna.h>

#include <support/watchdog.h>

#include <QCoreApplication>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace tarn::tests::hostorder {
namespace {

using devices::ControlRegistry;
using devices::ControlTypes;
using devices::InstrumentControls;
using devices::service::SdkCalibrationControlHandle;
using devices::service::SdkCalibrationControlWatcher;

/// Everything that a host may hold of one instrument.
class Host {
public:
    Host()
    {
        devices::service::servicecontrols::registrate(&m_registry);
        m_owner = std::make_unique<InstrumentControls>(m_device, m_registry, AllControls{});
        takeAll(AllControls{});
        m_leakage = m_owner->control<devices::service::SdkLoLeakageControl>();
        m_serial = m_owner->control<devices::service::ISerialNumberControl>();
        using Handle = SdkCalibrationControlHandle;
        for (const auto key : {Handle::firstRegistryKey, Handle::secondRegistryKey}) {
            const auto handle = m_owner->control<Handle>(key);
            m_watchers.push_back(std::make_unique<SdkCalibrationControlWatcher>(*handle));
            m_controls.push_back(handle);
        }
    }

    /// How many controls are there that a host can be handed.
    [[nodiscard]] std::ptrdiff_t controlCount() const
    {
        return std::ranges::count_if(m_controls, [](const auto& control) { return control != nullptr; });
    }

    void letGoOf(char part)
    {
        switch (part) {
        case 'd':
            return m_device.reset();
        case 'o':
            return m_owner.reset();
        case 'w':
            return m_watchers.clear();
        default:
            m_serial.reset();
            m_leakage.reset();
            return m_controls.clear();
        }
    }

    /// Has the instrument come and go, if there is one, and uses the controls that are left.
    void goOn()
    {
        if (const auto device = m_life.lock()) {
            device->drop();
            device->offer();
            QCoreApplication::sendPostedEvents();
        }
        if (m_leakage) {
            m_leakage->setEnabled(true);
            EXPECT_TRUE(m_leakage->isEnabled());
            EXPECT_TRUE(m_serial->serialNumber().has_value());
        }
    }

    [[nodiscard]] bool isDeviceGone() const { return m_life.expired(); }

private:
    template <class... Types>
    void takeAll(ControlTypes<Types...> /*types*/)
    {
        (take<Types>(), ...);
    }

    template <class Type>
    void take()
    {
        if constexpr (requires { Type::registryKey; })
            m_controls.push_back(m_owner->control<Type>());
    }

    ControlRegistry m_registry;
    std::shared_ptr<simulator::SimulatedVna> m_device
        = std::make_shared<simulator::SimulatedVna>(simulator::Settings{});
    const std::weak_ptr<simulator::SimulatedVna> m_life = m_device;
    std::unique_ptr<InstrumentControls> m_owner;
    std::vector<std::shared_ptr<void>> m_controls;
    std::shared_ptr<devices::service::SdkLoLeakageControl> m_leakage;
    std::shared_ptr<devices::service::ISerialNumberControl> m_serial;
    std::vector<std::unique_ptr<SdkCalibrationControlWatcher>> m_watchers;
};

TEST(HostOrder, AnyOrderIsSafeThatLeavesAWatcherItsHandle)
{
    const Watchdog watchdog;
    int argumentCount = 0;
    const QCoreApplication application{argumentCount, nullptr};
    std::string order = "cdow"; // controls, device, owner, watchers
    do {
        if (order.find('w') > std::max(order.find('c'), order.find('o'))) // without its handle, which the text forbids
            continue;
        nowTrying(order);
        SCOPED_TRACE(order);
        Host host;
        EXPECT_EQ(host.controlCount(), 20);
        for (const char part : order) {
            EXPECT_FALSE(host.isDeviceGone());
            host.letGoOf(part);
            host.goOn();
        }
        EXPECT_TRUE(host.isDeviceGone());
    } while (std::ranges::next_permutation(order).found);
}

} // namespace
} // namespace tarn::tests::hostorder
