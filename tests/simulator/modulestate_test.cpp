#include <simulator/modulefixture.h>
#include <simulator/statetest.h>

#include <simulator/error.h>
#include <simulator/moduletables.h>
#include <simulator/statefolder.h>

#include <QJsonArray>
#include <QJsonDocument>

namespace tarn::simulator {
namespace {

using provider::OpenError;
using test::settingsOf;
using test::StateTest;
using test::vary;
using testing::HasSubstr;
using Bytes = test::Bytes;
using Table = ModuleTables::Table;

template <class Interface>
class ModuleStateTest : public StateTest {
protected:
    using Module = Interface;

    [[nodiscard]] static auto settings(sdk::IVna& device) { return settingsOf(*control<Interface>(device)); }
};

using Modules = testing::Types<test::QuillPower, test::QuillSynthesis, test::DornPower, test::DornSynthesis,
                               test::SablePower, test::SableSynthesis, test::VellSynthesis>;
TYPED_TEST_SUITE(ModuleStateTest, Modules, );

TYPED_TEST(ModuleStateTest, LastsWhenTheInstrumentIsClosed)
{
    auto device = this->open();
    const auto delivered = this->settings(*device);
    vary(*this->template control<TypeParam>(*device));
    const auto varied = this->settings(*device);
    EXPECT_NE(varied, delivered);
    device.reset();
    EXPECT_EQ(this->settings(*this->open()), varied);
}

TYPED_TEST(ModuleStateTest, EndsWithThePower)
{
    const auto delivered = this->settings(*this->open());
    {
        const auto device = this->open("power-loss-every=1");
        const auto held = this->template control<TypeParam>(*device);
        vary(*held);
        ASSERT_EQ(test::write(*this->template control<test::Memory>(*device), test::makeImage(5000)), Error::PowerLoss);
        EXPECT_EQ(settingsOf(*held), delivered);
        EXPECT_EQ(this->settings(*device), delivered);
    }
    EXPECT_EQ(this->settings(*this->open()), delivered);
}

TYPED_TEST(ModuleStateTest, DoesNotEndWithTheConnection)
{
    const auto device = this->open("unplug-every=1");
    const auto held = this->template control<TypeParam>(*device);
    vary(*held);
    const auto varied = settingsOf(*held);
    ASSERT_EQ(test::write(*this->template control<test::Memory>(*device), test::makeImage(5000)), Error::Disconnected);
    EXPECT_EQ(settingsOf(*held), varied);
}

TYPED_TEST(ModuleStateTest, IsNotTakenOverWhenItCannotBeSaved)
{
    const auto device = this->open();
    const auto delivered = this->settings(*device);
    ASSERT_TRUE(QDir{this->folder()}.mkdir(QStringLiteral("unfinished"))); // in the way
    EXPECT_THAT(test::refusal<std::runtime_error>([&] { vary(*this->template control<TypeParam>(*device)); }),
                HasSubstr("could not be saved and stays"));
    EXPECT_EQ(this->settings(*device), delivered);
    ASSERT_TRUE(QDir{this->folder()}.rmdir(QStringLiteral("unfinished")));
    vary(*this->template control<TypeParam>(*device));
    EXPECT_NE(this->settings(*device), delivered);
}

TEST_F(StateTest, KeepsNothingOfAResetThatCannotBeSaved)
{
    const auto device = open();
    const auto power = control<test::QuillPower>(*device);
    const auto synthesis = control<test::QuillSynthesis>(*device);
    vary(*power);
    vary(*synthesis);
    const auto before = std::pair{settingsOf(*power), settingsOf(*synthesis)};
    ASSERT_TRUE(QDir{folder()}.mkdir(QStringLiteral("unfinished"))); // in the way
    EXPECT_THROW(power->reset(), std::runtime_error);
    EXPECT_THROW(synthesis->reset(), std::runtime_error);
    EXPECT_EQ(std::pair(settingsOf(*power), settingsOf(*synthesis)), before);
}

TEST_F(StateTest, KeepsAResetWhenTheInstrumentIsClosed)
{
    auto device = open();
    auto synthesis = control<test::QuillSynthesis>(*device);
    const auto delivered = settingsOf(*synthesis);
    vary(*synthesis);
    synthesis->reset();
    synthesis.reset();
    device.reset();
    EXPECT_EQ(settingsOf(*control<test::QuillSynthesis>(*open())), delivered);
}

/// Keeps sections for the time of a test, until a save fails.
struct FailingStorage final : NoStorage {
    std::error_code save(const QJsonObject& changed, const Blocks& /*blocks*/) override
    {
        if (--savesToFailure == 0)
            return Error::Io;
        for (auto section = changed.begin(); section != changed.end(); ++section)
            sections[section.key()] = section.value();
        return {};
    }

    QJsonObject sections;
    int savesToFailure = 0;
};

TEST(QuillSynthesisStorageTest, IsResetWithTheLoLeakageOrNotAtAllWhicheverSaveFails)
{
    for (const int failing : {1, 2}) {
        SCOPED_TRACE(failing);
        auto owned = std::make_unique<FailingStorage>();
        auto& storage = *owned;
        const test::ManualInstrument instrument{{}, std::move(owned)};
        const auto module = instrument.control<test::QuillSynthesis>();
        const auto delivered = settingsOf(*module);
        vary(*module);
        const auto varied = settingsOf(*module);
        const auto saved = storage.sections;

        storage.savesToFailure = failing;
        bool isReset = true;
        try {
            module->reset();
        } catch (const std::runtime_error&) {
            isReset = false;
        }
        EXPECT_EQ(isReset, failing != 1) << "it is one save";
        EXPECT_EQ(settingsOf(*module), isReset ? delivered : varied);
        EXPECT_EQ(storage.sections != saved, isReset);
    }
}

TEST_F(StateTest, HeatsAsTheSavedSettingsSay)
{
    control<test::QuillPower>(*open())->setRfPower(120);
    auto storage = [&] { return std::make_unique<StateFolder>(folder(), [] { return false; }); };
    test::ManualInstrument changed{{}, storage()};
    test::ManualInstrument usual;
    for (auto* const instrument : {&changed, &usual})
        instrument->advance(std::chrono::seconds{240});
    const auto temperature = [](const auto& instrument) {
        return instrument.template control<test::Temperature>()->moduleTemperatures().at("RF source");
    };
    EXPECT_NEAR(temperature(changed) - temperature(usual), 1.769937, 1e-4); // 2.8 K (1 - 1/e)
}

/// A table with its control.
struct Upload {
    const char* name;
    Table table;
    std::size_t length;
    void (*give)(sdk::IVna& device, const Bytes& bytes);
};

class ModuleTablesTest : public StateTest, public testing::WithParamInterface<Upload> {
protected:
    static Bytes contents(std::size_t length, std::uint8_t first = 1)
    {
        Bytes bytes(length);
        for (auto& byte : bytes)
            byte = first++;
        return bytes;
    }

    [[nodiscard]] static Bytes stored(sdk::IVna& device)
    {
        return static_cast<SimulatedVna&>(device).tables().contents(GetParam().table);
    }
};

INSTANTIATE_TEST_SUITE_P(
    Tables, ModuleTablesTest,
    testing::Values(
        Upload{"Quill_RF_power_codes", Table::QuillRfPowerCodes, 201,
               [](auto& device, const auto& bytes) {
                   device.template control<test::QuillPower>(test::QuillPower::key)->setRfPowerCodes(bytes);
               }},
        Upload{"Quill_LO_power_codes", Table::QuillLoPowerCodes, 201,
               [](auto& device, const auto& bytes) {
                   device.template control<test::QuillPower>(test::QuillPower::key)->setLoPowerCodes(bytes);
               }},
        Upload{"Dorn_receiver_correction", Table::DornReceiverCorrection, 1024,
               [](auto& device, const auto& bytes) {
                   device.template control<test::DornPower>(test::DornPower::key)->assignReceiverCorrectionTable(bytes);
               }},
        Upload{"Dorn_power_calibration", Table::DornPowerCalibration, 2048,
               [](auto& device, const auto& bytes) {
                   device.template control<test::DornPower>(test::DornPower::key)->assignPowerCalibrationTable(bytes);
               }},
        Upload{"Sable_power_calibration", Table::SablePowerCalibration, 4096,
               [](auto& device, const auto& bytes) {
                   device.template control<test::SablePower>(test::SablePower::key)->assignPowerCalibrationTable(bytes);
               }}),
    [](const auto& upload) { return upload.param.name; });

TEST_P(ModuleTablesTest, TakeATableOfTheirLengthAlone)
{
    const auto& [name, table, length, give] = GetParam();
    const auto device = open();
    EXPECT_TRUE(stored(*device).empty());
    give(*device, contents(length));
    EXPECT_EQ(stored(*device), contents(length));
    auto plainName = std::string{name};
    std::ranges::replace(plainName, '_', ' ');
    for (const auto wrong : {std::size_t{0}, length - 1, length + 1})
        EXPECT_EQ(test::refusal<std::length_error>([&] { give(*device, contents(wrong)); }),
                  "the table \"" + plainName + "\" is " + std::to_string(wrong) + " bytes long and not "
                      + std::to_string(length));
    EXPECT_EQ(stored(*device), contents(length));
    for (const auto& other : {Table::QuillRfPowerCodes, Table::QuillLoPowerCodes, Table::DornReceiverCorrection,
                              Table::DornPowerCalibration, Table::SablePowerCalibration})
        EXPECT_EQ(static_cast<SimulatedVna&>(*device).tables().contents(other).empty(), other != table);
}

TEST_P(ModuleTablesTest, LastWhateverHappens)
{
    const auto& [name, table, length, give] = GetParam();
    {
        const auto device = open("power-loss-every=1");
        give(*device, contents(length));
        ASSERT_EQ(test::write(*control<test::Memory>(*device), test::makeImage(5000)), Error::PowerLoss);
        control<test::QuillPower>(*device)->reset();
        EXPECT_EQ(stored(*device), contents(length));
    }
    {
        const auto device = open();
        EXPECT_EQ(stored(*device), contents(length));
        give(*device, contents(length, 9));
    }
    EXPECT_EQ(stored(*open()), contents(length, 9));
}

TEST_P(ModuleTablesTest, StayAsTheyWereWhenTheyCannotBeSaved)
{
    const auto& [name, table, length, give] = GetParam();
    const auto device = open();
    give(*device, contents(length));
    ASSERT_TRUE(QDir{folder()}.mkdir(QStringLiteral("unfinished"))); // in the way
    EXPECT_THAT(test::refusal<std::runtime_error>([&] { give(*device, contents(length, 9)); }),
                HasSubstr("could not be saved and stays as it was"));
    EXPECT_EQ(stored(*device), contents(length));
}

/// The state of an instrument whose modules are not as delivered.
class DamagedModules : public StateTest {
protected:
    void SetUp() override
    {
        const auto device = open();
        vary(*control<test::QuillPower>(*device));
        vary(*control<test::QuillSynthesis>(*device));
        vary(*control<test::DornPower>(*device));
        vary(*control<test::DornSynthesis>(*device));
        vary(*control<test::SablePower>(*device));
        vary(*control<test::SableSynthesis>(*device));
        vary(*control<test::VellSynthesis>(*device));
        control<test::QuillPower>(*device)->setLoPowerCodes(Bytes(201));
        index = QJsonDocument::fromJson(contentsOf(file("index.json"))).object();
    }

    [[nodiscard]] QJsonObject sections() const { return index[QStringLiteral("sections")].toObject(); }
    [[nodiscard]] QJsonObject section(const QString& name) const { return sections()[name].toObject(); }

    /// What opening the instrument says if one section is another.
    [[nodiscard]] std::string openedWith(const QString& name, const QJsonValue& contents) const
    {
        auto changed = sections();
        changed[name] = contents;
        auto whole = index;
        whole[QStringLiteral("sections")] = changed;
        replace(file("index.json"), QJsonDocument{whole}.toJson());
        const auto error = refused();
        return error.code == OpenError::Code::State ? error.message.toStdString() : "taken";
    }

    [[nodiscard]] std::string openedWith(const char* name, const char* member, const QJsonValue& value) const
    {
        auto contents = section(QString::fromUtf8(name));
        EXPECT_TRUE(contents.contains(QString::fromUtf8(member))) << member;
        contents[QString::fromUtf8(member)] = value;
        return openedWith(QString::fromUtf8(name), contents);
    }

    QJsonObject index;
};

const QStringList moduleSections{QStringLiteral("quillPower"),   QStringLiteral("quillSynthesis"),
                                 QStringLiteral("dornPower"),    QStringLiteral("dornSynthesis"),
                                 QStringLiteral("sablePower"),   QStringLiteral("sableSynthesis"),
                                 QStringLiteral("vellSynthesis")};

TEST_F(DamagedModules, AreRefusedWhereverASettingIsMissingOrOfAnotherKind)
{
    const QJsonArray wrong{QStringLiteral("1"), QJsonObject{}, 1e300, QJsonArray{QJsonArray{}}};
    int settings = 0;
    for (const auto& name : moduleSections) {
        EXPECT_EQ(openedWith(name, section(name)), "taken") << "without a damage";
        const auto whole = section(name);
        for (const auto& member : whole.keys()) {
            ++settings;
            auto damaged = whole;
            damaged.remove(member);
            EXPECT_THAT(openedWith(name, damaged),
                        HasSubstr("\"" + name.toStdString() + "\": the " + member.toStdString() + " is missing"));
            for (const auto& value : wrong) {
                damaged[member] = value;
                EXPECT_THAT(openedWith(name, damaged),
                            HasSubstr("\"" + name.toStdString() + "\": the " + member.toStdString() + ' '));
            }
        }
    }
    EXPECT_EQ(settings, 13 + 5 + 10 + 1 + 14 + 16 + 2);
}

TEST_F(DamagedModules, AreRefusedIfASectionIsNoObject)
{
    for (const auto& name : moduleSections + QStringList{QStringLiteral("moduleTables")}) {
        EXPECT_THAT(openedWith(name, QJsonArray{}), HasSubstr(name.toStdString()));
        EXPECT_THAT(openedWith(name, QJsonValue::Null), HasSubstr(name.toStdString()));
    }
}

TEST_F(DamagedModules, AreRefusedIfANumberIsNotOneOfTheSetting)
{
    const auto code = [this](const QJsonValue& value) { return openedWith("dornPower", "LO power code", value); };
    EXPECT_EQ(code(63), "taken");
    EXPECT_THAT(code(64), HasSubstr("the LO power code 64 is not from 0 to 63"));
    for (const auto& value : {QJsonValue{63.5}, QJsonValue{256}, QJsonValue{-1}, QJsonValue{true}, QJsonValue{}})
        EXPECT_THAT(code(value), HasSubstr("the LO power code is missing or not of its kind"));
    EXPECT_THAT(openedWith("dornPower", "reference gain", 7), HasSubstr("the reference gain 7 is not one of"));
    EXPECT_THAT(openedWith("dornPower", "DAC mode", 2), HasSubstr("the DAC mode 2 is not from 0 to 1"));
    EXPECT_THAT(openedWith("dornPower", "DAC mode", 4294967296.0), HasSubstr("the DAC mode is missing"));
    EXPECT_THAT(openedWith("quillPower", "discrete attenuator", 1), HasSubstr("the discrete attenuator is missing"));
    EXPECT_THAT(openedWith("vellSynthesis", "selected IF", 5), HasSubstr("the selected IF 5 is not from 0 to 4"));
}

TEST_F(DamagedModules, AreRefusedIfAListIsNotOfItsLength)
{
    for (const auto& list : {QJsonArray{4}, QJsonArray{1, 1, 1}, QJsonArray{1, QJsonValue{}}})
        EXPECT_THAT(openedWith("sableSynthesis", "capacitor mode", list), HasSubstr("the capacitor mode is missing"));
    EXPECT_EQ(openedWith("sableSynthesis", "capacitor mode", QJsonArray{0, 3}), "taken");
    EXPECT_THAT(openedWith("sableSynthesis", "capacitor mode", QJsonArray{0, 4}),
                HasSubstr("the capacitor mode 4 is not from 0 to 3"));
    EXPECT_EQ(openedWith("sableSynthesis", "selected RF filter", QJsonValue{}), "taken");
    EXPECT_THAT(openedWith("sableSynthesis", "selected RF filter", 4), HasSubstr("the selected RF filter 4 is not"));
}

TEST_F(DamagedModules, AreRefusedIfSettingsDoNotFitTogether)
{
    EXPECT_THAT(openedWith("quillPower", "common attenuation mode", 1), HasSubstr("both manual"));
    EXPECT_THAT(openedWith("dornPower", "DAC control mode", 1), HasSubstr("both controlled by hand"));
    EXPECT_THAT(openedWith("sablePower", "power constant", 1), HasSubstr("the level is to stay constant"));
    EXPECT_THAT(openedWith("sableSynthesis", "frequency of the range table", QJsonArray{1e6, 2e6, 2e6, 3e6, 4e6, 5e6}),
                HasSubstr("do not ascend"));
    EXPECT_THAT(
        openedWith("sableSynthesis", "bound of the capacitance", QJsonArray{QJsonValue{}, QJsonArray{2e-12, 1e-12}}),
        HasSubstr("above the upper one"));
}

TEST_F(DamagedModules, AreRefusedIfATableIsNotThereOrNotOfItsLength)
{
    const auto section = QStringLiteral("moduleTables");
    const auto lo = this->section(section).value(QStringLiteral("Quill LO power codes"));
    EXPECT_EQ(openedWith(section, QJsonObject{{QStringLiteral("Quill RF power codes"), lo}}), "taken");
    EXPECT_THAT(openedWith(section, QJsonObject{{QStringLiteral("Dorn power calibration"), lo}}),
                HasSubstr("does not refer to a table of its length"));
    for (const auto& entry : {QJsonValue{}, QJsonValue{5}, QJsonValue{QJsonObject{}},
                              QJsonValue{QJsonObject{{QStringLiteral("sha256"), QString{64, u'a'}}}}})
        EXPECT_NE(openedWith(section, QJsonObject{{QStringLiteral("Quill LO power codes"), entry}}), "taken");
}

} // namespace
} // namespace tarn::simulator
