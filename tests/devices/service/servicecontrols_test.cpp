// The library as a host meets it: loaded at run time by a program that was linked without it.

#include <devices/controlregistry.h>
#include <devices/icontrollifecycleobserver.h>
#include <devices/instrumentcontrols.h>
#include <devices/service/ifilememorycontrol.h>
#include <devices/service/imemoryoperationscontrol.h>
#include <devices/service/ipotentiometerscontrol.h>
#include <devices/service/iserialnumbercontrol.h>
#include <devices/service/isystemtermscontrol.h>
#include <devices/service/iusbidcontrol.h>
#include <devices/service/sdkcalibrationcontrolhandle.h>
#include <devices/service/sdkdornpowercontrol.h>
#include <devices/service/sdkdornsynthesiscontrol.h>
#include <devices/service/sdkfactorycorrectioncontrol.h>
#include <devices/service/sdkloleakagecontrol.h>
#include <devices/service/sdkquillpowercontrol.h>
#include <devices/service/sdkquillsynthesiscontrol.h>
#include <devices/service/sdksablepowercontrol.h>
#include <devices/service/sdksablesynthesiscontrol.h>
#include <devices/service/sdktemperaturecontrol.h>
#include <devices/service/sdkvellfactorypowercalibrationcontrol.h>
#include <devices/service/sdkvellifswcalibrationcontrol.h>
#include <devices/service/sdkvellsynthesiscontrol.h>

#include <support/fakevna.h>
#include <support/mockcalibrationcontroller.h>
#include <support/mockfactorycorrectioncontrol.h>
#include <support/mockfilememorycontrol.h>
#include <support/mockloleakagecontrol.h>
#include <support/mockmemoryoperationscontrol.h>
#include <support/mockmemoryserialnumbercontrol.h>
#include <support/mockmemoryusbidcontrol.h>
#include <support/mockpotentiometerscontrol.h>
#include <support/mocksystemtermscontrol.h>
#include <support/mocktemperaturecontrol.h>
#include <support/mockvellfactorypowercalibrationcontrol.h>
#include <support/mockvellifswcalibrationcontrol.h>
#include <support/recordeddorncontrols.h>
#include <support/recordedquillcontrols.h>
#include <support/recordedsablecontrols.h>
#include <support/recordedvellcontrols.h>

#include <QFile>
#include <QLibrary>
#include <QObject>
#include <gmock/gmock.h>

#include <any>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <vector>

using sdk::service::calibrations::ICalibrationController;
using tarn::devices::ControlRegistry;
using tarn::devices::ControlTypes;
using tarn::devices::IControlLifecycleObserver;
using tarn::devices::InstrumentControls;
using tarn::devices::service::IFileMemoryControl;
using tarn::devices::service::IMemoryOperationsControl;
using tarn::devices::service::IPotentiometersControl;
using tarn::devices::service::ISerialNumberControl;
using tarn::devices::service::ISystemTermsControl;
using tarn::devices::service::IUsbIdControl;
using tarn::devices::service::SdkCalibrationControlHandle;
using tarn::devices::service::SdkDornPowerControl;
using tarn::devices::service::SdkDornSynthesisControl;
using tarn::devices::service::SdkFactoryCorrectionControl;
using tarn::devices::service::SdkLoLeakageControl;
using tarn::devices::service::SdkQuillPowerControl;
using tarn::devices::service::SdkQuillSynthesisControl;
using tarn::devices::service::SdkSablePowerControl;
using tarn::devices::service::SdkSableSynthesisControl;
using tarn::devices::service::SdkTemperatureControl;
using tarn::devices::service::SdkVellFactoryPowerCalibrationControl;
using tarn::devices::service::SdkVellIfswCalibrationControl;
using tarn::devices::service::SdkVellSynthesisControl;
using testing::NiceMock;

namespace tarn::tests::servicecontrols {
namespace {

/// The table, written down once more.
struct Row {
    std::uint64_t registryKey;
    std::uint64_t sdkKey;
};
constexpr Row table[] = {
    {0xe85f16739b17b339, 0xf667df356df31ce4}, {0xc51b6fb2ae2584d2, 0x88798a0ea0bfe22b},
    {0xec20f733872b6ac0, 0x8bba7f494ad7c259}, {0x2e23977c2578988d, 0x5c028b97cc332087},
    {0x5664961726404671, 0x5d412bfd18b02258}, {0xb6c338d276ce98fb, 0x7922b1012a0983af},
    {0x897c141e29e7e690, 0x3c96bf415fccae8a}, {0x2b979d4013cdeecd, 0x71db0e7ec9bf38c7},
    {0xdbaebee9402174ae, 0x2601fd095cf599f2}, {0x39ce7f28fb8c58bd, 0x33f09cc532b7707a},
    {0xeaf356a0b2ef79a5, 0x2f10ddd457c35149}, {0x374b2cb5ef097bee, 0x53c0e0ba0de251e0},
    {0xa045ab34ea41df44, 0xf636764463dee854}, {0x10b13a8fe293bf50, 0x1e7084d947290478},
    {0x2ab54beb7022049e, 0xa8c748bb3b2c656f}, {0xa95918a8462c534c, 0x4797d9e37c985d85},
    {0x1a94c41b6c234d42, 0xc425cf06760ca2b4}, {0xeba4ba7306e6b9a2, 0xddcecfebdb4f5570},
    {0x6dd4c2f3a3d1aaab, 0x94a0057f903adbec}, {0x0b8ee0a3ce2543ab, 0x41a4a601b7307494},
};
constexpr const Row& fileMemory = table[0];
constexpr const Row& potentiometers = table[1];
constexpr const Row& usbId = table[2];
constexpr const Row& serialNumber = table[3];
constexpr const Row& memoryOperations = table[4];
constexpr const Row& quillSynthesis = table[5];
constexpr const Row& quillPower = table[6];
constexpr const Row& sableSynthesis = table[7];
constexpr const Row& sablePower = table[8];
constexpr const Row& loLeakage = table[9];
constexpr const Row& dornPower = table[10];
constexpr const Row& dornSynthesis = table[11];
constexpr const Row& vellSynthesis = table[12];
constexpr const Row& systemTerms = table[13];
constexpr const Row& ifswCalibration = table[14];
constexpr const Row& powerCalibration = table[15];
constexpr const Row& factoryCorrection = table[16];
constexpr const Row& temperature = table[17];
constexpr const Row& firstController = table[18];
constexpr const Row& secondController = table[19];

const QString libraryFile = QStringLiteral(TARN_DEVICES_SERVICE_FILE);

using Registrate = void (*)(ControlRegistry*);

Registrate registrate()
{
    static QLibrary library{libraryFile};
    const auto function
        = library.resolve("_ZN4tarn7devices7service15servicecontrols10registrateEPNS0_15ControlRegistryE");
    if (!function)
        throw std::runtime_error{library.errorString().toStdString()};
    return reinterpret_cast<Registrate>(function);
}

class LoadedLibrary : public testing::Test {
protected:
    LoadedLibrary() { registrate()(&registry); }

    /// What the entry of `row` makes of the device.
    std::any create(const Row& row)
    {
        return registry.find(row.registryKey)->create(static_cast<sdk::IVna*>(device.get()));
    }

    /// Whether the entry of `row` makes a control of exactly this public type.
    template <class PublicType>
    bool gives(const Row& row)
    {
        const auto control = create(row);
        return std::any_cast<std::shared_ptr<PublicType>>(&control) != nullptr;
    }

    void offerEverything()
    {
        device->offer<sdk::service::IFileMemoryControl>(sdk::Key{fileMemory.sdkKey}, files);
        device->offer<sdk::service::IPotentiometersControl>(sdk::Key{potentiometers.sdkKey}, pots);
        device->offer<sdk::service::IMemoryUsbIdControl>(sdk::Key{usbId.sdkKey}, identity);
        device->offer<sdk::service::IMemorySerialNumberControl>(sdk::Key{serialNumber.sdkKey}, number);
        device->offer<sdk::service::IMemoryOperationsControl>(sdk::Key{memoryOperations.sdkKey}, memory);
        device->offer<sdk::service::ILoLeakageControl>(sdk::Key{loLeakage.sdkKey}, leakage);
        device->offer<sdk::service::IQuillSynthesisControl>(sdk::Key{quillSynthesis.sdkKey}, quillSynthesisSdk);
        device->offer<sdk::service::IQuillPowerControl>(sdk::Key{quillPower.sdkKey}, quillPowerSdk);
        device->offer<sdk::service::ISableSynthesisControl>(sdk::Key{sableSynthesis.sdkKey}, sableSynthesisSdk);
        device->offer<sdk::service::ISablePowerModuleControl>(sdk::Key{sablePower.sdkKey}, sablePowerSdk);
        device->offer<sdk::service::IDORNPowerControl>(sdk::Key{dornPower.sdkKey}, dornPowerSdk);
        device->offer<sdk::service::IDORNSynthesisControl>(sdk::Key{dornSynthesis.sdkKey}, dornSynthesisSdk);
        device->offer<sdk::service::IVellSynthesisControl>(sdk::Key{vellSynthesis.sdkKey}, vellSynthesisSdk);
        device->offer<sdk::service::ISystemTermsControl>(sdk::Key{systemTerms.sdkKey}, terms);
        device->offer<sdk::service::IVellIfswCalibrationControl>(sdk::Key{ifswCalibration.sdkKey}, ifsw);
        device->offer<sdk::service::IVellFactoryPowerCalibrationControl>(sdk::Key{powerCalibration.sdkKey}, power);
        device->offer<sdk::IFactoryCorrectionControl>(sdk::Key{factoryCorrection.sdkKey}, corrections);
        device->offer<sdk::ITemperatureControl>(sdk::Key{temperature.sdkKey}, thermometer);
        device->offer<ICalibrationController>(sdk::Key{firstController.sdkKey}, firstUnits);
        device->offer<ICalibrationController>(sdk::Key{secondController.sdkKey}, secondUnits);
    }

    ControlRegistry registry;
    std::shared_ptr<NiceMock<MockFileMemoryControl>> files = std::make_shared<NiceMock<MockFileMemoryControl>>();
    std::shared_ptr<NiceMock<MockPotentiometersControl>> pots = std::make_shared<NiceMock<MockPotentiometersControl>>();
    std::shared_ptr<NiceMock<MockMemoryUsbIdControl>> identity = std::make_shared<NiceMock<MockMemoryUsbIdControl>>();
    std::shared_ptr<NiceMock<MockMemorySerialNumberControl>> number
        = std::make_shared<NiceMock<MockMemorySerialNumberControl>>();
    std::shared_ptr<NiceMock<MockMemoryOperationsControl>> memory
        = std::make_shared<NiceMock<MockMemoryOperationsControl>>();
    std::shared_ptr<NiceMock<MockLoLeakageControl>> leakage = std::make_shared<NiceMock<MockLoLeakageControl>>();
    std::shared_ptr<RecordedQuillSynthesisControl> quillSynthesisSdk
        = std::make_shared<RecordedQuillSynthesisControl>();
    std::shared_ptr<RecordedQuillPowerControl> quillPowerSdk = std::make_shared<RecordedQuillPowerControl>();
    std::shared_ptr<RecordedSableSynthesisControl> sableSynthesisSdk
        = std::make_shared<RecordedSableSynthesisControl>();
    std::shared_ptr<RecordedSablePowerModuleControl> sablePowerSdk
        = std::make_shared<RecordedSablePowerModuleControl>();
    std::shared_ptr<RecordedDORNPowerControl> dornPowerSdk = std::make_shared<RecordedDORNPowerControl>();
    std::shared_ptr<RecordedDORNSynthesisControl> dornSynthesisSdk = std::make_shared<RecordedDORNSynthesisControl>();
    std::shared_ptr<RecordedVellSynthesisControl> vellSynthesisSdk = std::make_shared<RecordedVellSynthesisControl>();
    std::shared_ptr<NiceMock<MockSystemTermsControl>> terms = std::make_shared<NiceMock<MockSystemTermsControl>>();
    std::shared_ptr<NiceMock<MockVellIfswCalibrationControl>> ifsw
        = std::make_shared<NiceMock<MockVellIfswCalibrationControl>>();
    std::shared_ptr<NiceMock<MockVellFactoryPowerCalibrationControl>> power
        = std::make_shared<NiceMock<MockVellFactoryPowerCalibrationControl>>();
    std::shared_ptr<NiceMock<MockFactoryCorrectionControl>> corrections
        = std::make_shared<NiceMock<MockFactoryCorrectionControl>>();
    std::shared_ptr<NiceMock<MockTemperatureControl>> thermometer
        = std::make_shared<NiceMock<MockTemperatureControl>>();
    std::shared_ptr<NiceMock<MockCalibrationController>> firstUnits
        = std::make_shared<NiceMock<MockCalibrationController>>();
    std::shared_ptr<NiceMock<MockCalibrationController>> secondUnits
        = std::make_shared<NiceMock<MockCalibrationController>>();
    std::shared_ptr<FakeVna> device = std::make_shared<FakeVna>();
};

TEST_F(LoadedLibrary, RegistersExactlyTheRowsOfTheTableInOrder)
{
    ASSERT_EQ(registry.entries().size(), std::size(table));
    for (std::size_t i = 0; i != std::size(table); ++i) {
        EXPECT_EQ(registry.entries()[i].key, table[i].registryKey);
        EXPECT_TRUE(registry.entries()[i].create);
    }
}

TEST_F(LoadedLibrary, AsksTheDeviceOfEachRowForItsSdkKeyAloneAndTwice)
{
    offerEverything();
    for (const auto& row : table) {
        EXPECT_TRUE(create(row).has_value());
        EXPECT_EQ(device->asked(sdk::Key{row.sdkKey}), 2);
    }
}

TEST_F(LoadedLibrary, GivesNothingForADeviceThatOffersNothing)
{
    for (const auto& row : table) {
        EXPECT_FALSE(create(row).has_value());
        EXPECT_EQ(device->asked(sdk::Key{row.sdkKey}), 1);
    }
}

TEST_F(LoadedLibrary, GivesNothingForAnyArgumentThatIsNoDevicePointer)
{
    offerEverything();
    const sdk::IVna* const constant = device.get();
    for (const auto& entry : registry.entries()) {
        EXPECT_FALSE(entry.create(std::any{}).has_value());
        EXPECT_FALSE(entry.create(5).has_value());
        EXPECT_FALSE(entry.create(constant).has_value());
        EXPECT_FALSE(entry.create(device.get()).has_value()) << "a pointer to a derived class is another type";
        EXPECT_FALSE(entry.create(static_cast<sdk::IVna*>(nullptr)).has_value());
    }
}

TEST_F(LoadedLibrary, GivesAFileMemoryThatTheHostCanUse)
{
    offerEverything();
    const auto result = create(fileMemory);
    const auto* const control = std::any_cast<std::shared_ptr<IFileMemoryControl>>(&result);
    ASSERT_NE(control, nullptr);
    ON_CALL(*files, fileList).WillByDefault([](const auto& done) { done({{"a", 1}}, {}); });
    const auto list = (*control)->fileList();
    ASSERT_TRUE(list.has_value());
    EXPECT_THAT(*list, testing::ElementsAre(IFileMemoryControl::FileInfo{QStringLiteral("a"), 1}));
    EXPECT_EQ(dynamic_cast<IControlLifecycleObserver*>(control->get()), nullptr);
}

TEST_F(LoadedLibrary, GivesPotentiometersThatTheHostCanUse)
{
    offerEverything();
    const auto result = create(potentiometers);
    const auto* const control = std::any_cast<std::shared_ptr<IPotentiometersControl>>(&result);
    ASSERT_NE(control, nullptr);
    EXPECT_CALL(*pots, readFromEeprom(3, testing::_)).WillOnce([](auto, const auto& done) { done(-5, {}); });
    EXPECT_EQ((*control)->readFromEeprom(3).value(), -5);
    EXPECT_EQ(dynamic_cast<IControlLifecycleObserver*>(control->get()), nullptr);
}

TEST_F(LoadedLibrary, GivesAUsbIdentityThatTheHostCanUse)
{
    offerEverything();
    const auto result = create(usbId);
    const auto* const control = std::any_cast<std::shared_ptr<IUsbIdControl>>(&result);
    ASSERT_NE(control, nullptr);
    EXPECT_EQ((*control)->currentDeviceProperties().modelName, "Mock");
    EXPECT_EQ(dynamic_cast<IControlLifecycleObserver*>(control->get()), nullptr);
}

TEST_F(LoadedLibrary, GivesASerialNumberThatTheHostCanNotify)
{
    offerEverything();
    EXPECT_CALL(*number, addObserver).Times(2);
    const auto result = create(serialNumber);
    const auto* const control = std::any_cast<std::shared_ptr<ISerialNumberControl>>(&result);
    ASSERT_NE(control, nullptr);
    auto* const observer = dynamic_cast<IControlLifecycleObserver*>(control->get());
    ASSERT_NE(observer, nullptr);
    observer->onControlsAvailable();
}

TEST_F(LoadedLibrary, GivesMemoryOperationsThatTheHostCanNotify)
{
    offerEverything();
    EXPECT_CALL(*memory, addObserver).Times(2);
    const auto result = create(memoryOperations);
    const auto* const control = std::any_cast<std::shared_ptr<IMemoryOperationsControl>>(&result);
    ASSERT_NE(control, nullptr);
    auto* const observer = dynamic_cast<IControlLifecycleObserver*>(control->get());
    ASSERT_NE(observer, nullptr);
    observer->onControlsAvailable();
}

TEST_F(LoadedLibrary, GivesAnLoLeakageControl)
{
    offerEverything();
    EXPECT_TRUE(gives<SdkLoLeakageControl>(loLeakage));
}

TEST_F(LoadedLibrary, GivesTuningControls)
{
    offerEverything();
    EXPECT_TRUE(gives<SdkQuillSynthesisControl>(quillSynthesis));
    EXPECT_TRUE(gives<SdkQuillPowerControl>(quillPower));
    EXPECT_TRUE(gives<SdkSableSynthesisControl>(sableSynthesis));
    EXPECT_TRUE(gives<SdkSablePowerControl>(sablePower));
    EXPECT_TRUE(gives<SdkDornPowerControl>(dornPower));
    EXPECT_TRUE(gives<SdkDornSynthesisControl>(dornSynthesis));
    EXPECT_TRUE(gives<SdkVellSynthesisControl>(vellSynthesis));
}

TEST_F(LoadedLibrary, GivesAQuillPowerControlThatTheHostCanListenTo)
{
    offerEverything();
    const auto control = std::any_cast<std::shared_ptr<SdkQuillPowerControl>>(create(quillPower));
    const QObject* const object = control.get();
    EXPECT_STREQ(object->metaObject()->className(), "tarn::devices::service::SdkQuillPowerControl");
    EXPECT_NE(object->metaObject()->indexOfSignal("rfPowerChanged()"), -1);
    EXPECT_EQ(object->parent(), nullptr);
    EXPECT_EQ(dynamic_cast<const IControlLifecycleObserver*>(object), nullptr);
}

TEST_F(LoadedLibrary, GivesATemperatureControlThatTheHostCanNotify)
{
    offerEverything();
    EXPECT_CALL(*thermometer, addObserver).Times(2);
    const auto result = create(temperature);
    const auto* const control = std::any_cast<std::shared_ptr<SdkTemperatureControl>>(&result);
    ASSERT_NE(control, nullptr);
    QObject* const object = control->get();
    EXPECT_STREQ(object->metaObject()->className(), "tarn::devices::service::SdkTemperatureControl");
    auto* const observer = dynamic_cast<IControlLifecycleObserver*>(object);
    ASSERT_NE(observer, nullptr);
    observer->onControlsAvailable();
}

TEST_F(LoadedLibrary, GivesSystemTermsThatTheHostCanNotify)
{
    offerEverything();
    EXPECT_CALL(*terms, addObserver).Times(2);
    const auto result = create(systemTerms);
    const auto* const control = std::any_cast<std::shared_ptr<ISystemTermsControl>>(&result);
    ASSERT_NE(control, nullptr);
    auto* const observer = dynamic_cast<IControlLifecycleObserver*>(control->get());
    ASSERT_NE(observer, nullptr);
    observer->onControlsAvailable();
}

TEST_F(LoadedLibrary, GivesCalibrationControlsThatTheHostCanNotify)
{
    offerEverything();
    const auto ifswResult = create(ifswCalibration);
    const auto* const ifswControl = std::any_cast<std::shared_ptr<SdkVellIfswCalibrationControl>>(&ifswResult);
    ASSERT_NE(ifswControl, nullptr);
    const auto powerResult = create(powerCalibration);
    const auto* const powerControl
        = std::any_cast<std::shared_ptr<SdkVellFactoryPowerCalibrationControl>>(&powerResult);
    ASSERT_NE(powerControl, nullptr);
    EXPECT_CALL(*ifsw, addObserver).Times(0); // nobody has been added
    EXPECT_CALL(*power, addObserver).Times(0);
    for (IControlLifecycleObserver* const observer :
         std::initializer_list<IControlLifecycleObserver*>{ifswControl->get(), powerControl->get()})
        observer->onControlsAvailable();
}

TEST_F(LoadedLibrary, GivesFactoryCorrectionsThatTheHostCanNotify)
{
    offerEverything();
    const auto result = create(factoryCorrection);
    const auto* const control = std::any_cast<std::shared_ptr<SdkFactoryCorrectionControl>>(&result);
    ASSERT_NE(control, nullptr);
    EXPECT_CALL(*corrections, addObserver).Times(0);
    IControlLifecycleObserver* const observer = control->get();
    observer->onControlsAvailable();
}

TEST_F(LoadedLibrary, GivesAHandleOfItsOwnForEachCalibrationController)
{
    offerEverything();
    const auto firstResult = create(firstController);
    const auto secondResult = create(secondController);
    const auto* const one = std::any_cast<std::shared_ptr<SdkCalibrationControlHandle>>(&firstResult);
    const auto* const two = std::any_cast<std::shared_ptr<SdkCalibrationControlHandle>>(&secondResult);
    ASSERT_NE(one, nullptr);
    ASSERT_NE(two, nullptr);
    EXPECT_NE(*one, *two);
    QObject* const object = one->get();
    EXPECT_STREQ(object->metaObject()->className(), "tarn::devices::service::SdkCalibrationControlHandle");
    EXPECT_NE(dynamic_cast<IControlLifecycleObserver*>(object), nullptr);
}

TEST_F(LoadedLibrary, MakesANewControlAtEveryCall)
{
    offerEverything();
    const auto first = std::any_cast<std::shared_ptr<IFileMemoryControl>>(create(fileMemory));
    const auto second = std::any_cast<std::shared_ptr<IFileMemoryControl>>(create(fileMemory));
    EXPECT_NE(first, second);
    EXPECT_EQ(first.use_count(), 1);
}

TEST_F(LoadedLibrary, ServesTheHostsOwnerOfAnInstrumentsControls)
{
    offerEverything();
    const InstrumentControls controls{
        device, registry,
        ControlTypes<IFileMemoryControl, IPotentiometersControl, IUsbIdControl, ISerialNumberControl,
                     IMemoryOperationsControl, SdkQuillSynthesisControl, SdkQuillPowerControl, SdkSableSynthesisControl,
                     SdkSablePowerControl, SdkLoLeakageControl, SdkDornPowerControl, SdkDornSynthesisControl,
                     SdkVellSynthesisControl, ISystemTermsControl, SdkVellIfswCalibrationControl,
                     SdkVellFactoryPowerCalibrationControl, SdkFactoryCorrectionControl, SdkTemperatureControl,
                     SdkCalibrationControlHandle>{}};
    EXPECT_NE(controls.control<IFileMemoryControl>(), nullptr);
    EXPECT_NE(controls.control<IPotentiometersControl>(), nullptr);
    EXPECT_NE(controls.control<IUsbIdControl>(), nullptr);
    EXPECT_NE(controls.control<ISerialNumberControl>(), nullptr);
    EXPECT_NE(controls.control<IMemoryOperationsControl>(), nullptr);
    EXPECT_NE(controls.control<SdkQuillSynthesisControl>(), nullptr);
    EXPECT_NE(controls.control<SdkQuillPowerControl>(), nullptr);
    EXPECT_NE(controls.control<SdkSableSynthesisControl>(), nullptr);
    EXPECT_NE(controls.control<SdkSablePowerControl>(), nullptr);
    EXPECT_NE(controls.control<SdkLoLeakageControl>(), nullptr);
    EXPECT_NE(controls.control<SdkDornPowerControl>(), nullptr);
    EXPECT_NE(controls.control<SdkDornSynthesisControl>(), nullptr);
    EXPECT_NE(controls.control<SdkVellSynthesisControl>(), nullptr);
    EXPECT_NE(controls.control<ISystemTermsControl>(), nullptr);
    EXPECT_NE(controls.control<SdkVellIfswCalibrationControl>(), nullptr);
    EXPECT_NE(controls.control<SdkVellFactoryPowerCalibrationControl>(), nullptr);
    EXPECT_NE(controls.control<SdkFactoryCorrectionControl>(), nullptr);
    EXPECT_NE(controls.control<SdkTemperatureControl>(), nullptr);
    using Handle = SdkCalibrationControlHandle;
    EXPECT_NE(controls.control<Handle>(Handle::firstRegistryKey), nullptr);
    EXPECT_NE(controls.control<Handle>(Handle::secondRegistryKey), nullptr);
    EXPECT_CALL(*terms, removeObserver).Times(testing::AtLeast(1));
    EXPECT_CALL(*thermometer, removeObserver(thermometer->observer())).Times(testing::AtLeast(1));
    EXPECT_CALL(*memory, removeObserver).Times(testing::AtLeast(1));
    EXPECT_CALL(*number, removeObserver).Times(testing::AtLeast(1));
    device->announceRelease();
    testing::Mock::VerifyAndClearExpectations(memory.get());
    testing::Mock::VerifyAndClearExpectations(number.get());
    testing::Mock::VerifyAndClearExpectations(terms.get());
    testing::Mock::VerifyAndClearExpectations(thermometer.get());
}

TEST_F(LoadedLibrary, LeavesTheRowsBeforeARefusedOneRegistered)
{
    ControlRegistry taken;
    taken.addEntry({loLeakage.registryKey, nullptr});
    EXPECT_THROW(registrate()(&taken), std::invalid_argument);
    ASSERT_EQ(taken.entries().size(), 10U);
    EXPECT_EQ(taken.entries()[1].key, fileMemory.registryKey);
    EXPECT_EQ(taken.entries()[9].key, sablePower.registryKey);
}

TEST(LibraryFile, HoldsTheTwoKeysOfEachRowAsOneRecord)
{
    QFile file{libraryFile};
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const auto contents = file.readAll();
    for (const auto& row : table) {
        QByteArray record;
        for (const auto key : {row.registryKey, row.sdkKey}) {
            for (int shift = 0; shift != 64; shift += 8)
                record.append(static_cast<char>(key >> shift & 0xff));
        }
        ASSERT_EQ(record.size(), 16);
        EXPECT_TRUE(contents.contains(record)) << ControlRegistry::keyText(row.registryKey);
    }
}

} // namespace
} // namespace tarn::tests::servicecontrols
