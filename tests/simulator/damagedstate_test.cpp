#include <simulator/statetest.h>

#include <simulator/calibrationfixture.h>
#include <simulator/error.h>

#include <QJsonArray>
#include <QJsonDocument>

namespace tarn::simulator {
namespace {

using provider::OpenError;
using test::StateTest;
using testing::HasSubstr;

/// What must not be touched: a way to damage the state, and the file that is blamed.
struct Damage {
    const char* name;
    const char* blamed;
    void (*apply)(QJsonObject& index);
};

class DamagedState : public StateTest, public testing::WithParamInterface<Damage> {
protected:
    void SetUp() override { writeOnce("f", {1, 2, 3}); }

    void expectRefusal(const QString& blamed) const
    {
        const auto before = everything();
        const auto error = refused();
        EXPECT_EQ(error.code, OpenError::Code::State);
        EXPECT_THAT(error.message.toStdString(), HasSubstr(blamed.toStdString()));
        for (const auto* const wayOut : {"Move the folder", "--state DIR", "--state none"})
            EXPECT_THAT(error.hint.toStdString(), HasSubstr(wayOut));
        EXPECT_THAT(error.hint.toStdString(), HasSubstr(folder().toStdString()));
        EXPECT_EQ(everything(), before);
    }
};

QJsonValue entryWith(const char* member, const QJsonValue& value)
{
    QJsonObject entry{
        {QStringLiteral("name"), QStringLiteral("f")},
        {QStringLiteral("size"), 3},
        {QStringLiteral("sha256"), QStringLiteral("039058c6f2c0cb492c533b0a4d14ef77cc0f78abccced5287d84a1a2011cfb81")}};
    entry[QString::fromUtf8(member)] = value;
    return entry;
}

void setSection(QJsonObject& index, const char* name, const QJsonValue& value)
{
    auto sections = index[QStringLiteral("sections")].toObject();
    sections[QString::fromUtf8(name)] = value;
    index[QStringLiteral("sections")] = sections;
}

/// The state of a memory with an image of three bytes, but for one member.
void setMemory(QJsonObject& index, const char* member, const QJsonValue& value)
{
    QJsonObject memory{
        {QStringLiteral("length"), 3},
        {QStringLiteral("size"), 3},
        {QStringLiteral("checksums"), QStringLiteral("00000000")},
        {QStringLiteral("sha256"), QStringLiteral("039058c6f2c0cb492c533b0a4d14ef77cc0f78abccced5287d84a1a2011cfb81")}};
    if (member)
        memory[QString::fromUtf8(member)] = value;
    setSection(index, "memory", memory);
}

/// The state of the potentiometers, but for one member of one of them.
void setPotentiometer(QJsonObject& index, const char* member, const QJsonValue& value)
{
    QJsonArray all;
    for (int i = 0; i < 8; ++i)
        all.append(
            QJsonObject{{QStringLiteral("ram"), 1}, {QStringLiteral("eeprom"), 1}, {QStringLiteral("writes"), 0}});
    if (member) {
        auto entry = all[6].toObject();
        entry[QString::fromUtf8(member)] = value;
        all[6] = entry;
    }
    setSection(index, "potentiometers", all);
}

void setIdentity(QJsonObject& index, int vendor, int product, int release)
{
    setSection(index, "usbIdentity",
               QJsonObject{{QStringLiteral("vendor"), vendor},
                           {QStringLiteral("product"), product},
                           {QStringLiteral("release"), release}});
}

/// A section of calibration data that refers to a block.
void setCalibration(QJsonObject& index, const char* section, const QJsonValue& digest)
{
    setSection(index, section, QJsonObject{{QStringLiteral("sha256"), digest}});
}

void setEntry(QJsonObject& index, const char* member, const QJsonValue& value)
{
    setSection(index, "files", QJsonArray{entryWith(member, value)});
}

TEST_P(DamagedState, IsRefusedAndNotTouched)
{
    auto index = QJsonDocument::fromJson(contentsOf(file("index.json"))).object();
    GetParam().apply(index);
    replace(file("index.json"), QJsonDocument{index}.toJson());
    expectRefusal(file(GetParam().blamed));
}

const QString missingDigest{64, u'a'};

INSTANTIATE_TEST_SUITE_P(
    State, DamagedState,
    testing::Values(
        Damage{"newer", "index.json", [](auto& index) { index[QStringLiteral("version")] = 2; }},
        Damage{"version_zero", "index.json", [](auto& index) { index[QStringLiteral("version")] = 0; }},
        Damage{"version_text", "index.json",
               [](auto& index) { index[QStringLiteral("version")] = QStringLiteral("1"); }},
        Damage{"no_version", "index.json", [](auto& index) { index.remove(QStringLiteral("version")); }},
        Damage{"other_format", "index.json",
               [](auto& index) { index[QStringLiteral("format")] = QStringLiteral("x"); }},
        Damage{"no_sections", "index.json", [](auto& index) { index.remove(QStringLiteral("sections")); }},
        Damage{"sections_list", "index.json", [](auto& index) { index[QStringLiteral("sections")] = QJsonArray{}; }},
        Damage{"leakage_number", "index.json", [](auto& index) { setSection(index, "loLeakage", 1); }},
        Damage{"leakage_null", "index.json", [](auto& index) { setSection(index, "loLeakage", QJsonValue::Null); }},
        Damage{"files_object", "index.json", [](auto& index) { setSection(index, "files", QJsonObject{}); }},
        Damage{"entry_number", "index.json", [](auto& index) { setSection(index, "files", QJsonArray{5}); }},
        Damage{"name_empty", "index.json", [](auto& index) { setEntry(index, "name", QString{}); }},
        Damage{"name_number", "index.json", [](auto& index) { setEntry(index, "name", 5); }},
        Damage{"size_text", "index.json", [](auto& index) { setEntry(index, "size", QStringLiteral("3")); }},
        Damage{"size_wrong", "index.json", [](auto& index) { setEntry(index, "size", 4); }},
        Damage{"digest_number", "index.json", [](auto& index) { setEntry(index, "sha256", 5); }},
        Damage{"digest_path", "index.json",
               [](auto& index) { setEntry(index, "sha256", QStringLiteral("../index.json")); }},
        Damage{"block_missing", "blocks", [](auto& index) { setEntry(index, "sha256", missingDigest); }},
        Damage{"memory_list", "index.json", [](auto& index) { setSection(index, "memory", QJsonArray{}); }},
        Damage{"memory_other", "index.json",
               [](auto& index) { setSection(index, "memory", QJsonObject{{QStringLiteral("x"), 1}}); }},
        Damage{"memory_capacity_text", "index.json",
               [](auto& index) { setMemory(index, "capacity", QStringLiteral("4096")); }},
        Damage{"memory_capacity_zero", "index.json", [](auto& index) { setMemory(index, "capacity", 0); }},
        Damage{"memory_capacity_part", "index.json", [](auto& index) { setMemory(index, "capacity", 4097); }},
        Damage{"memory_capacity_more", "index.json", [](auto& index) { setMemory(index, "capacity", 1e12); }},
        Damage{"memory_length_zero", "index.json", [](auto& index) { setMemory(index, "length", 0); }},
        Damage{"memory_length_half", "index.json", [](auto& index) { setMemory(index, "length", 2.5); }},
        Damage{"memory_length_less", "index.json", [](auto& index) { setMemory(index, "length", 2); }},
        Damage{"memory_length_more", "index.json", [](auto& index) { setMemory(index, "length", 1e12); }},
        Damage{"memory_size_wrong", "index.json", [](auto& index) { setMemory(index, "size", 2); }},
        Damage{"memory_size_text", "index.json", [](auto& index) { setMemory(index, "size", QStringLiteral("3")); }},
        Damage{"memory_checksums_number", "index.json", [](auto& index) { setMemory(index, "checksums", 0); }},
        Damage{"memory_checksums_short", "index.json",
               [](auto& index) { setMemory(index, "checksums", QStringLiteral("0000000")); }},
        Damage{"memory_checksums_text", "index.json",
               [](auto& index) { setMemory(index, "checksums", QStringLiteral("0000000g")); }},
        Damage{"memory_checksums_many", "index.json",
               [](auto& index) { setMemory(index, "checksums", QStringLiteral("0000000000000000")); }},
        Damage{"memory_digest_number", "index.json", [](auto& index) { setMemory(index, "sha256", 1); }},
        Damage{"memory_block_missing", "blocks", [](auto& index) { setMemory(index, "sha256", missingDigest); }},
        Damage{"potentiometers_object", "index.json",
               [](auto& index) { setSection(index, "potentiometers", QJsonObject{}); }},
        Damage{"potentiometers_few", "index.json",
               [](auto& index) { setSection(index, "potentiometers", QJsonArray{QJsonObject{}}); }},
        Damage{"potentiometer_high", "index.json", [](auto& index) { setPotentiometer(index, "eeprom", 64); }},
        Damage{"potentiometer_low", "index.json", [](auto& index) { setPotentiometer(index, "eeprom", -1); }},
        Damage{"potentiometer_half", "index.json", [](auto& index) { setPotentiometer(index, "eeprom", 0.5); }},
        Damage{"potentiometer_text", "index.json",
               [](auto& index) { setPotentiometer(index, "eeprom", QStringLiteral("1")); }},
        Damage{"potentiometer_ram", "index.json", [](auto& index) { setPotentiometer(index, "ram", 64); }},
        Damage{"potentiometer_writes", "index.json", [](auto& index) { setPotentiometer(index, "writes", -1); }},
        Damage{"serial_text", "index.json",
               [](auto& index) { setSection(index, "serialNumber", QStringLiteral("5")); }},
        Damage{"serial_negative", "index.json", [](auto& index) { setSection(index, "serialNumber", -1); }},
        Damage{"serial_half", "index.json", [](auto& index) { setSection(index, "serialNumber", 0.5); }},
        Damage{"serial_large", "index.json", [](auto& index) { setSection(index, "serialNumber", 4294967296.0); }},
        Damage{"identity_number", "index.json", [](auto& index) { setSection(index, "usbIdentity", 1); }},
        Damage{"identity_vendor", "index.json", [](auto& index) { setIdentity(index, 1, 0x0101, 0x0100); }},
        Damage{"identity_product", "index.json", [](auto& index) { setIdentity(index, 0xF3A7, 0, 0x0100); }},
        Damage{"identity_beyond_16_bits", "index.json",
               [](auto& index) { setIdentity(index, 0xF3A7, 0x10101, 0x0100); }},
        Damage{"terms_list", "index.json", [](auto& index) { setSection(index, "systemTerms", QJsonArray{}); }},
        Damage{"terms_empty", "index.json", [](auto& index) { setSection(index, "systemTerms", QJsonObject{}); }},
        Damage{"terms_digest_number", "index.json", [](auto& index) { setCalibration(index, "systemTerms", 5); }},
        Damage{"terms_block_missing", "blocks",
               [](auto& index) { setCalibration(index, "systemTerms", missingDigest); }},
        Damage{"terms_other_block", "index.json",
               [](auto& index) { setCalibration(index, "systemTerms", entryWith("size", 3)[u"sha256"]); }},
        Damage{"ifsw_other_block", "index.json",
               [](auto& index) { setCalibration(index, "ifswCalibration", entryWith("size", 3)[u"sha256"]); }},
        Damage{"power_other_block", "index.json",
               [](auto& index) { setCalibration(index, "powerCalibration", entryWith("size", 3)[u"sha256"]); }},
        Damage{"corrections_text", "index.json",
               [](auto& index) { setSection(index, "corrections", QStringLiteral("64")); }},
        Damage{"corrections_negative", "index.json", [](auto& index) { setSection(index, "corrections", -1); }},
        Damage{"corrections_half", "index.json", [](auto& index) { setSection(index, "corrections", 64.5); }},
        Damage{"corrections_reserved", "index.json", [](auto& index) { setSection(index, "corrections", 1 << 12); }},
        Damage{"corrections_large", "index.json", [](auto& index) { setSection(index, "corrections", 0x10040); }},
        Damage{"listed_twice", "index.json",
               [](auto& index) {
                   const auto entry = entryWith("size", 3);
                   setSection(index, "files", QJsonArray{entry, entry});
               }}),
    [](const auto& damage) { return damage.param.name; });

class DamagedSections : public DamagedState { };

/// What the damages of the sections differ from is not damaged.
TEST_F(DamagedSections, WouldBeTakenWithoutTheDamage)
{
    auto index = QJsonDocument::fromJson(contentsOf(file("index.json"))).object();
    setMemory(index, nullptr, {});
    setPotentiometer(index, nullptr, {});
    setSection(index, "serialNumber", 4294967295.0);
    setIdentity(index, 0xF3A7, 0x0101, 0x0100);
    setSection(index, "corrections", 0x40);
    replace(file("index.json"), QJsonDocument{index}.toJson());
    const auto device = open();
    EXPECT_EQ(control<test::Corrections>(*device)->enabledCorrections(), sdk::CorrectionFlag::Crosstalk);
    EXPECT_EQ(device->model().name(), "Pell 101");
    EXPECT_EQ(test::read(*control<test::SerialNumber>(*device)), 4294967295U);
    EXPECT_EQ(test::readEeprom(*control<test::Potentiometers>(*device), 6).first, 1);
    EXPECT_EQ(test::read(*control<test::Memory>(*device)).first,
              (test::Image{std::byte{1}, std::byte{2}, std::byte{3}}));
    EXPECT_EQ(test::check(*control<test::Memory>(*device)), Error::Corrupt);
}

class AlteredState : public DamagedState { };

TEST_F(AlteredState, IsRefusedWhenTheIndexIsCutShort)
{
    const auto whole = contentsOf(file("index.json"));
    for (const auto length : {qsizetype{0}, qsizetype{1}, whole.size() / 2, whole.size() - 3}) {
        replace(file("index.json"), whole.left(length));
        expectRefusal(file("index.json"));
    }
}

TEST_F(AlteredState, IsRefusedWhenABlockIsAltered)
{
    ASSERT_EQ(blocks().size(), 1);
    const auto block = file("blocks") + u'/' + blocks().first();
    replace(block, "\1\2\4");
    expectRefusal(block);
    replace(block, "\1\2");
    expectRefusal(block);
}

TEST_F(AlteredState, IsRefusedWhenABlockIsMissing)
{
    ASSERT_EQ(blocks().size(), 1);
    const auto block = file("blocks") + u'/' + blocks().first();
    ASSERT_TRUE(QFile::remove(block));
    expectRefusal(block);
}

TEST_F(AlteredState, IsRefusedWhenTheBlockOfACalibrationIsEmpty)
{
    writeOnce("f", {});
    auto index = QJsonDocument::fromJson(contentsOf(file("index.json"))).object();
    const auto digest = index[QStringLiteral("sections")][QStringLiteral("files")][0][QStringLiteral("sha256")];
    setCalibration(index, "powerCalibration", digest);
    replace(file("index.json"), QJsonDocument{index}.toJson());
    expectRefusal(file("index.json"));
}

TEST_F(AlteredState, IsRefusedWhenTheIndexIsMissing)
{
    ASSERT_TRUE(QFile::remove(file("index.json")));
    expectRefusal(file("index.json"));
}

} // namespace
} // namespace tarn::simulator
