#include <fuzz/fuzz.h>

#include <simulator/address.h>
#include <simulator/flashmemory.h>

#include <QStringList>

#include <cmath>

using namespace tarn::simulator;
using tarn::fuzz::require;

namespace {

bool isName(const QString& text)
{
    return !text.isEmpty() && text.size() <= 64 && std::ranges::all_of(text, [](QChar c) {
        return c.unicode() < 0x80 && (c.isLetterOrNumber() || c == u'-' || c == u'_');
    });
}

bool isTime(Duration time)
{
    return time >= Duration{} && time <= std::chrono::days{1};
}

void requireWithinLimits(const Settings& settings)
{
    const auto& faults = settings.faults;
    require(isTime(settings.latency) && isTime(faults.dropFor) && isTime(faults.delay), "a time is a day at most");
    require(faults.dropChance >= 0 && faults.dropChance <= 1, "a probability is one");
    require(settings.speed >= 0.001, "the memory is not too slow");
    require(!settings.memorySize
                || (*settings.memorySize > 0 && *settings.memorySize <= FlashMemory::largestCapacity
                    && *settings.memorySize % FlashMemory::sectorSize == 0),
            "a memory has whole sectors");
    require(faults.failure.value() != 0, "a failure is one");
}

/// The same address with its options in the reverse order.
QString reversed(const QString& address)
{
    auto items = address.split(u',');
    const auto options = std::ranges::find_if(items, [](const auto& item) { return item.contains(u'='); });
    std::reverse(options, items.end());
    return items.join(u',');
}

} // namespace

/// The address of an instrument, as text.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto address = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto parsed = parseAddress(address);
    if (!parsed) {
        require(parsed.error().code == tarn::provider::OpenError::Code::InvalidAddress, "the address is blamed");
        require(parsed.error().message.contains(address) && !parsed.error().hint.isEmpty(), "it is said what is wrong");
        return 0;
    }
    require(isName(parsed->name), "the name may be that of a folder");
    requireWithinLimits(parsed->settings);
    const auto again = parseAddress(reversed(address));
    require(again && *again == *parsed, "the order of the options does not matter");
    return 0;
}
