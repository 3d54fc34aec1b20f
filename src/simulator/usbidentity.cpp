#include <simulator/usbidentity.h>

#include <simulator/error.h>
#include <simulator/profile.h>

#include <QJsonObject>

#include <algorithm>
#include <array>
#include <vector>

namespace tarn::simulator {

namespace {

using Record = UsbIdentity::DeviceRecord;

const QString sectionName = QStringLiteral("usbIdentity");
constexpr std::uint16_t vendor = 0xF3A7;
constexpr std::uint16_t release = 0x0100;

std::array<std::byte, 16> interfaceGuid(std::uint16_t product)
{
    constexpr std::array<unsigned char, 14> base{0x6b, 0x1d, 0x9e, 0x52, 0x07, 0xc4, 0x4f,
                                                 0x3a, 0x9d, 0x28, 0x54, 0x41, 0x52, 0x4e};
    std::array<std::byte, 16> guid{};
    std::ranges::transform(base, guid.begin(), [](auto byte) { return std::byte{byte}; });
    guid[14] = static_cast<std::byte>(product >> 8U);
    guid[15] = static_cast<std::byte>(product & 0xFFU);
    return guid;
}

std::vector<Record> makeRecords()
{
    std::vector<Record> records;
    unsigned int familyNumber = 0;
    for (const auto& family : families()) {
        ++familyNumber;
        unsigned int number = 0;
        for (const auto model : family.models) {
            const auto product = static_cast<std::uint16_t>(familyNumber << 8U | ++number);
            records.push_back({.usbId = {.vendorId = vendor, .productId = product, .deviceRelease = release},
                               .model = model,
                               .hardwareRevision = 1,
                               .deviceInterfaceGuid = interfaceGuid(product)});
        }
    }
    return records;
}

const Record* find(const UsbIdentity::UsbId& usbId)
{
    const auto records = UsbIdentity::supported();
    const auto found = std::ranges::find(records, usbId, &Record::usbId);
    return found != records.end() ? &*found : nullptr;
}

const Record* load(const Storage& storage, sdk::Model model)
{
    const auto section = storage.section(sectionName);
    if (section.isUndefined())
        return &*std::ranges::find(UsbIdentity::supported(), model, &Record::model);
    const auto isKept = [&](const Record& record) {
        return section[QStringLiteral("vendor")] == record.usbId.vendorId
            && section[QStringLiteral("product")] == record.usbId.productId
            && section[QStringLiteral("release")] == record.usbId.deviceRelease;
    };
    const auto records = UsbIdentity::supported();
    const auto record = std::ranges::find_if(records, isKept);
    if (record == records.end())
        storage.refuse(QStringLiteral("\"usbIdentity\" is not that of a supported model"));
    return &*record;
}

} // namespace

UsbIdentity::UsbIdentity(Storage& storage, sdk::Model model)
    : m_storage{storage}
    , m_written{load(storage, model)}
    , m_current{m_written}
{
}

std::span<const Record> UsbIdentity::supported()
{
    static const auto records = makeRecords();
    return records;
}

Record UsbIdentity::current() const
{
    const utils::MutexLock lock{m_mutex};
    return *m_current;
}

std::error_code UsbIdentity::write(const UsbId& usbId)
{
    const auto* const record = find(usbId);
    if (!record)
        return Error::BadIdentity;
    const QJsonObject section{{QStringLiteral("vendor"), usbId.vendorId},
                              {QStringLiteral("product"), usbId.productId},
                              {QStringLiteral("release"), usbId.deviceRelease}};
    const utils::MutexLock lock{m_mutex};
    if (const auto failure = m_storage.save(sectionName, section, {}))
        return failure;
    m_written = record;
    return {};
}

void UsbIdentity::enumerate()
{
    const utils::MutexLock lock{m_mutex};
    m_current = m_written;
}

} // namespace tarn::simulator
