#include <devices/service/servicecontrols.h>

#include <devices/controlregistry.h>
#include <devices/makecreatefunction.h>
#include <devices/service/sdkcalibrationcontrolhandle.h>
#include <devices/service/sdkdornpowercontrol.h>
#include <devices/service/sdkdornsynthesiscontrol.h>
#include <devices/service/sdkfactorycorrectioncontrol.h>
#include <devices/service/sdkfilememorycontrol.h>
#include <devices/service/sdkloleakagecontrol.h>
#include <devices/service/sdkmemoryoperationscontrol.h>
#include <devices/service/sdkpotentiometerscontrol.h>
#include <devices/service/sdkquillpowercontrol.h>
#include <devices/service/sdkquillsynthesiscontrol.h>
#include <devices/service/sdksablepowercontrol.h>
#include <devices/service/sdksablesynthesiscontrol.h>
#include <devices/service/sdkserialnumbercontrol.h>
#include <devices/service/sdksystemtermscontrol.h>
#include <devices/service/sdktemperaturecontrol.h>
#include <devices/service/sdkusbidcontrol.h>
#include <devices/service/sdkvellfactorypowercalibrationcontrol.h>
#include <devices/service/sdkvellifswcalibrationcontrol.h>
#include <devices/service/sdkvellsynthesiscontrol.h>
#include <sdk/ivna.h>

#include <any>
#include <cstdint>
#include <functional>

namespace tarn::devices::service::servicecontrols {

namespace {

namespace sdks = sdk::service;
using sdks::calibrations::ICalibrationController;

/// One control. The two keys lie next to each other, registry key first.
struct Row {
    std::uint64_t registryKey;
    sdk::Key sdkKey;
    std::function<std::any(sdk::IVna*)> (*createFunction)(sdk::Key);
};

/// Whether the interfaces themselves carry these keys: as their only ones, or both as the first or
/// both as the second.
template <class SdkIface, class PublicIface>
consteval bool carryKeys(std::uint64_t registryKey, sdk::Key sdkKey)
{
    if constexpr (requires { SdkIface::key; })
        return registryKey == PublicIface::registryKey && sdkKey == SdkIface::key;
    else
        return (registryKey == PublicIface::firstRegistryKey && sdkKey == SdkIface::firstKey)
            || (registryKey == PublicIface::secondRegistryKey && sdkKey == SdkIface::secondKey);
}

/// A row; keys other than those that the interfaces themselves carry do not compile.
template <std::uint64_t registryKey, std::uint64_t sdkKey, class SdkIface, class PublicIface,
          class Adapter = PublicIface>
consteval Row row()
{
    static_assert(carryKeys<SdkIface, PublicIface>(registryKey, sdk::Key{sdkKey}));
    return {registryKey, sdk::Key{sdkKey}, &makeCreateFunction<sdk::IVna, SdkIface, PublicIface, Adapter, sdk::Key>};
}

// clang-format off
constexpr Row rows[] = {
    //  registry key        SDK key             SDK interface                              public type               adapter, if another
    row<0xe85f16739b17b339, 0xf667df356df31ce4, sdks::IFileMemoryControl,                  IFileMemoryControl,       SdkFileMemoryControl>(),
    row<0xc51b6fb2ae2584d2, 0x88798a0ea0bfe22b, sdks::IPotentiometersControl,              IPotentiometersControl,   SdkPotentiometersControl>(),
    row<0xec20f733872b6ac0, 0x8bba7f494ad7c259, sdks::IMemoryUsbIdControl,                 IUsbIdControl,            SdkMemoryUsbId>(),
    row<0x2e23977c2578988d, 0x5c028b97cc332087, sdks::IMemorySerialNumberControl,          ISerialNumberControl,     SdkSerialNumberControl>(),
    row<0x5664961726404671, 0x5d412bfd18b02258, sdks::IMemoryOperationsControl,            IMemoryOperationsControl, SdkMemoryOperationsControl>(),
    row<0xb6c338d276ce98fb, 0x7922b1012a0983af, sdks::IQuillSynthesisControl,              SdkQuillSynthesisControl>(),
    row<0x897c141e29e7e690, 0x3c96bf415fccae8a, sdks::IQuillPowerControl,                  SdkQuillPowerControl>(),
    row<0x2b979d4013cdeecd, 0x71db0e7ec9bf38c7, sdks::ISableSynthesisControl,              SdkSableSynthesisControl>(),
    row<0xdbaebee9402174ae, 0x2601fd095cf599f2, sdks::ISablePowerModuleControl,            SdkSablePowerControl>(),
    row<0x39ce7f28fb8c58bd, 0x33f09cc532b7707a, sdks::ILoLeakageControl,                   SdkLoLeakageControl>(),
    row<0xeaf356a0b2ef79a5, 0x2f10ddd457c35149, sdks::IDORNPowerControl,                   SdkDornPowerControl>(),
    row<0x374b2cb5ef097bee, 0x53c0e0ba0de251e0, sdks::IDORNSynthesisControl,               SdkDornSynthesisControl>(),
    row<0xa045ab34ea41df44, 0xf636764463dee854, sdks::IVellSynthesisControl,               SdkVellSynthesisControl>(),
    row<0x10b13a8fe293bf50, 0x1e7084d947290478, sdks::ISystemTermsControl,                 ISystemTermsControl,      SdkSystemTermsControl>(),
    row<0x2ab54beb7022049e, 0xa8c748bb3b2c656f, sdks::IVellIfswCalibrationControl,         SdkVellIfswCalibrationControl>(),
    row<0xa95918a8462c534c, 0x4797d9e37c985d85, sdks::IVellFactoryPowerCalibrationControl, SdkVellFactoryPowerCalibrationControl>(),
    row<0x1a94c41b6c234d42, 0xc425cf06760ca2b4, sdk::IFactoryCorrectionControl,            SdkFactoryCorrectionControl>(),
    row<0xeba4ba7306e6b9a2, 0xddcecfebdb4f5570, sdk::ITemperatureControl,                  SdkTemperatureControl>(),
    row<0x6dd4c2f3a3d1aaab, 0x94a0057f903adbec, ICalibrationController,                    SdkCalibrationControlHandle>(),
    row<0x0b8ee0a3ce2543ab, 0x41a4a601b7307494, ICalibrationController,                    SdkCalibrationControlHandle>(),
};
// clang-format on

} // namespace

void registrate(ControlRegistry* registry)
{
    for (const auto& row : rows)
        registry->addEntry(ControlRegistry::ControlEntry<sdk::IVna>{row.registryKey, row.createFunction(row.sdkKey)});
}

} // namespace tarn::devices::service::servicecontrols
