#include <simulator/address.h>

#include <simulator/flashmemory.h>
#include <utils/duration.h>

#include <QStringList>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>

namespace tarn::simulator {

namespace {

// Each reader takes a value over and says whether it is valid.

template <class Number>
bool readNumber(std::string_view text, Number least, Number& number)
{
    Number value{};
    const auto [rest, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (failure != std::errc{} || rest != text.data() + text.size() || value < least)
        return false;
    number = value;
    return true;
}

bool readCount(std::string_view text, std::uint64_t& count)
{
    return readNumber<std::uint64_t>(text, 1, count);
}

bool readProbability(std::string_view text, double& probability)
{
    double value = 0.0;
    if (!readNumber(text, 0.0, value) || !std::isfinite(value) || value > 1.0)
        return false;
    probability = value;
    return true;
}

bool readTime(std::string_view text, Duration& time)
{
    const auto value = utils::parseDuration(text);
    if (!value || *value > std::chrono::days{1})
        return false;
    time = *value;
    return true;
}

bool readError(std::string_view text, std::error_code& code)
{
    const auto error = errorFromText(text);
    code = error.value_or(code);
    return error.has_value();
}

bool readMisbehaviour(std::string_view text, Misbehaviour& misbehaviour)
{
    const auto known = misbehaviourFromText(text);
    misbehaviour = known.value_or(misbehaviour);
    return known.has_value();
}

bool readProfile(std::string_view text, Profile& profile)
{
    const auto known = profileFromText(text);
    profile = known.value_or(profile);
    return known.has_value();
}

bool readSwitch(std::string_view text, bool& isOn)
{
    isOn = text == "on";
    return isOn || text == "off";
}

/// Whole sectors of the memory device.
bool readSize(std::string_view text, std::optional<std::uint32_t>& size)
{
    const auto unitAt = std::min(text.find_first_not_of("0123456789"), text.size());
    const auto unit = text.substr(unitAt);
    std::uint32_t factor = 0;
    if (unit == "KiB")
        factor = 1U << 10U;
    else if (unit == "MiB")
        factor = 1U << 20U;
    std::uint32_t value = 0;
    if (factor == 0 || !readNumber<std::uint32_t>(text.substr(0, unitAt), 1, value)
        || value > FlashMemory::largestCapacity / factor || value * factor % FlashMemory::sectorSize != 0)
        return false;
    size = value * factor;
    return true;
}

bool readSpeed(std::string_view text, double& speed)
{
    constexpr double slowest = 0.001;
    double value = std::numeric_limits<double>::infinity();
    if (text != "unlimited" && (!readNumber(text, slowest, value) || !std::isfinite(value)))
        return false;
    speed = value;
    return true;
}

bool readCompletion(std::string_view text, CompletionMode& mode)
{
    mode = text == "inline" ? CompletionMode::Inline : CompletionMode::Thread;
    return text == "inline" || text == "thread";
}

struct Option {
    const char* name;
    const char* value;
    const char* defaultValue;
    const char* description;
    bool (*read)(std::string_view value, Settings& settings);
};

constexpr auto profileForm = "full|bare|pell|zinnia|marl|tove|wisp|glint|brae|vell|multiport-lum|multiport-common";
constexpr auto errorForm = "not-found|full|bad-name|io|corrupt|busy|timeout|write-protected|bad-size|power-loss|"
                           "disconnected|bad-index|out-of-range|bad-identity|NUMBER";
constexpr auto misbehaviourForm = "twice|drop|drop-controls|keep|at-end|late|throw-late";

// TIME is a number and SIZE a whole number with a unit, N a whole number from 1, FACTOR a number from 0.001.
constexpr std::array options{
    Option{"profile", profileForm, "full", "which instrument, and so which controls it has",
           [](auto value, auto& to) { return readProfile(value, to.profile); }},
    Option{"seed", "NUMBER", "0", "decides whatever looks random; the same seed gives the same instrument",
           [](auto value, auto& to) { return readNumber<std::uint64_t>(value, 0, to.seed); }},
    Option{"latency", "TIME", "0ms", "how long every request takes",
           [](auto value, auto& to) { return readTime(value, to.latency); }},
    Option{"completion", "thread|inline", "thread", "complete requests on the instrument's thread, or inside the call",
           [](auto value, auto& to) { return readCompletion(value, to.completion); }},
    Option{"drop-every", "N", "never", "drop the controls during every Nth operation and offer new ones",
           [](auto value, auto& to) { return readCount(value, to.faults.dropEvery); }},
    Option{"drop-chance", "0...1", "0", "drop the controls during an operation with this probability",
           [](auto value, auto& to) { return readProbability(value, to.faults.dropChance); }},
    Option{"drop-for", "TIME", "0ms", "how long the controls stay away at each of these drops",
           [](auto value, auto& to) { return readTime(value, to.faults.dropFor); }},
    Option{"fail-next", errorForm, "none", "end the first request with this error",
           [](auto value, auto& to) { return readError(value, to.faults.failNext); }},
    Option{"fail-every", "N", "never", "end every Nth request with the error of `fail`",
           [](auto value, auto& to) { return readCount(value, to.faults.failEvery); }},
    Option{"fail", errorForm, "io", "the error of `fail-every`",
           [](auto value, auto& to) { return readError(value, to.faults.failure); }},
    Option{"delay-every", "N", "never", "make every Nth operation take longer, by the time of `delay`",
           [](auto value, auto& to) { return readCount(value, to.faults.delayEvery); }},
    Option{"delay", "TIME", "100ms", "the time of `delay-every`, and of `misbehave` where it is late",
           [](auto value, auto& to) { return readTime(value, to.faults.delay); }},
    Option{"throw-every", "N", "never", "make every Nth operation throw an exception",
           [](auto value, auto& to) { return readCount(value, to.faults.throwEvery); }},
    Option{"hang-every", "N", "never", "do not return from every Nth operation until the instrument is closed",
           [](auto value, auto& to) { return readCount(value, to.faults.hangEvery); }},
    Option{"misbehave", misbehaviourForm, "none",
           "complete requests twice, drop their completions or drop them with the controls, keep them until the "
           "instrument is closed or complete them then, complete them late by the time of `delay`, or throw as well",
           [](auto value, auto& to) { return readMisbehaviour(value, to.faults.misbehaviour); }},
    Option{"misbehave-every", "N", "1", "treat only every Nth request in the way of `misbehave`",
           [](auto value, auto& to) { return readCount(value, to.faults.misbehaveEvery); }},
    Option{"memory-size", "SIZE", "4MiB", "how large the memory device is, at most 256MiB; an instrument keeps it",
           [](auto value, auto& to) { return readSize(value, to.memorySize); }},
    Option{"speed", "FACTOR|unlimited", "1000",
           "how much faster than a real one the memory device is (per page of 256 bytes 0.7 ms to write and 0.02 ms "
           "to read, per sector of 4096 bytes 45 ms to erase, per piece of calibration data 10 to 50 ms to write)",
           [](auto value, auto& to) { return readSpeed(value, to.speed); }},
    Option{"write-protect", "on|off", "off",
           "refuse to write the memory device, its serial number, USB identity and calibration data",
           [](auto value, auto& to) { return readSwitch(value, to.faults.writeProtect); }},
    Option{"corrupt", "on|off", "off",
           "flip bits of the image that was written into the memory device, so that its check fails",
           [](auto value, auto& to) { return readSwitch(value, to.faults.corrupt); }},
    Option{"power-loss-every", "N", "never",
           "take the power away in the middle of every Nth long operation of the memory device",
           [](auto value, auto& to) { return readCount(value, to.faults.powerLossEvery); }},
    Option{"unplug-every", "N", "never",
           "unplug the instrument in the middle of every Nth long operation of the memory device, for the time of "
           "`drop-for`",
           [](auto value, auto& to) { return readCount(value, to.faults.unplugEvery); }},
};

/// An option that does nothing unless one of the others is given with it.
struct Need {
    const char* option;
    std::array<const char*, 5> others; ///< up to the first null
};

constexpr std::array needs{
    Need{"drop-for", {"drop-every", "drop-chance", "power-loss-every", "unplug-every", "misbehave"}},
    Need{"fail", {"fail-every"}},
    Need{"delay", {"delay-every", "misbehave"}},
    Need{"misbehave-every", {"misbehave"}},
};

bool isName(const QString& text)
{
    const auto isAllowed = [](QChar c) {
        return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || c == u'-'
            || c == u'_';
    };
    return !text.isEmpty() && text.size() <= 64 && std::ranges::all_of(text, isAllowed);
}

QString optionList()
{
    QStringList list;
    for (const auto& option : options)
        list.append(QStringLiteral("%1=%2").arg(QLatin1String{option.name}, QLatin1String{option.value}));
    return list.join(QStringLiteral(", "));
}

/// What the word in capitals stands for in the form of the option's value.
QString explain(const Option& option)
{
    const std::string_view form = option.value;
    if (form == "TIME")
        return QStringLiteral(", where TIME is a number with the unit us, ms, s, min or h, at most a day");
    if (form == "N")
        return QStringLiteral(", where N is a whole number from 1");
    if (form == "NUMBER")
        return QStringLiteral(", where NUMBER is a whole number from 0");
    if (form == "SIZE")
        return QStringLiteral(", where SIZE is whole sectors of 4 KiB with the unit KiB or MiB, at most 256MiB");
    if (form == "FACTOR|unlimited")
        return QStringLiteral(", where FACTOR is a number from 0.001");
    if (form == errorForm)
        return QStringLiteral(", where NUMBER is an error code other than 0");
    return {};
}

std::unexpected<provider::OpenError> invalid(const QString& address, const QString& reason, const QString& hint)
{
    return std::unexpected{provider::OpenError{provider::OpenError::Code::InvalidAddress,
                                               QStringLiteral("address \"%1\": %2").arg(address, reason), hint}};
}

/// Nothing, or what to say about one of the `given` options that would do nothing.
std::optional<provider::OpenError> findIdle(const QString& address, const QStringList& given)
{
    for (const auto& need : needs) {
        QStringList others;
        for (const auto* other : need.others) {
            if (other)
                others.append(QLatin1String{other});
        }
        const auto isGiven = [&](const QString& other) { return given.contains(other); };
        if (given.contains(QLatin1String{need.option}) && std::ranges::none_of(others, isGiven))
            return invalid(address,
                           QStringLiteral("the option \"%1\" does nothing by itself").arg(QLatin1String{need.option}),
                           QStringLiteral("Give %1 with it.").arg(others.join(QStringLiteral(" or "))))
                .error();
    }
    return std::nullopt;
}

} // namespace

std::expected<SimulatorAddress, provider::OpenError> parseAddress(const QString& address)
{
    SimulatorAddress result{QString::fromLatin1(defaultInstrument), {}};
    auto items = address.isEmpty() ? QStringList{} : address.split(u',');
    if (!items.isEmpty() && !items.first().contains(u'=')) {
        result.name = items.takeFirst();
        if (!isName(result.name))
            return invalid(address, QStringLiteral("\"%1\" is not an instrument's name").arg(result.name),
                           QStringLiteral("Use 1 to 64 letters, digits, hyphens and underscores for the name."));
    }

    QStringList seen;
    for (const auto& item : items) {
        const auto name = item.section(u'=', 0, 0);
        const auto* const option = std::ranges::find(options, name.toStdString(), &Option::name);
        if (option == options.end())
            return invalid(address, QStringLiteral("there is no option \"%1\"").arg(name),
                           QStringLiteral("Valid options: %1.").arg(optionList()));
        if (seen.contains(name))
            return invalid(address, QStringLiteral("the option \"%1\" is given twice").arg(name),
                           QStringLiteral("Give each option once."));
        seen.append(name);
        const auto value = item.section(u'=', 1);
        if (!option->read(value.toStdString(), result.settings))
            return invalid(address, QStringLiteral("\"%1\" is not a value of the option \"%2\"").arg(value, name),
                           QStringLiteral("Write %1=%2%3.").arg(name, QLatin1String{option->value}, explain(*option)));
    }
    if (auto error = findIdle(address, seen))
        return std::unexpected{*std::move(error)};
    return result;
}

QString addressSyntax()
{
    return QStringLiteral("[NAME][,OPTION=VALUE]...  such as bench2,profile=vell,latency=5ms");
}

QList<provider::AddressOption> addressOptions()
{
    QList<provider::AddressOption> list;
    for (const auto& option : options)
        list.append({QString::fromLatin1(option.name), QString::fromLatin1(option.value),
                     QString::fromLatin1(option.defaultValue), QString::fromLatin1(option.description)});
    return list;
}

} // namespace tarn::simulator
