#include <conformance/bench.h>

#include <sdk/service/ifilememorycontrol.h>
#include <sdk/service/imemoryserialnumbercontrol.h>
#include <sdk/service/ipotentiometerscontrol.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace tarn::conformance {

namespace {

/// How often something is tried that the instrument may fail to do now and then.
constexpr int attempts = 3;

std::string textOf(Value value)
{
    if (!value)
        return "not set";
    auto text = std::to_string(*value);
    text.erase(text.find_last_not_of('0') + 1);
    return text.ends_with('.') ? text.substr(0, text.size() - 1) : text;
}

/// The settings of a control as they are before they are changed.
class Settings {
public:
    Settings(const Bench& bench, Description control)
        : m_bench{bench}
        , m_control{std::move(control)}
    {
        for (const auto& setting : m_control.settings) {
            if (const auto value = valueOf(setting).value_or(std::nullopt))
                m_saved.push_back({setting, *value});
        }
    }

    struct Saved {
        const Setting& setting;
        double value;
    };

    [[nodiscard]] const std::vector<Saved>& saved() const { return m_saved; }

    /// Puts them back as they were. More than once, as modes may exclude each other.
    void putBack() const
    {
        for (int attempt = 0; attempt < attempts && !isBack(); ++attempt) {
            for (const auto& [setting, value] : m_saved) {
                if (valueOf(setting) != Value{value})
                    putBack(setting, value);
            }
        }
        for (const auto& [setting, value] : m_saved) {
            const auto now = valueOf(setting);
            if (!now || !isClose(setting, *now, value))
                m_bench.record()->finding(setting.where,
                                          "could not be put back: it was " + textOf(value) + " and "
                                              + (now ? "is " + textOf(*now) : "cannot be read"));
        }
    }

    /// Sets one of them back.
    void putBack(const Setting& setting, double value) const
    {
        for (int attempt = 0; attempt < attempts && !set(setting, value, Record::Kind::PutBack); ++attempt) { }
    }

    /// Sets a value; false if the instrument refuses that.
    bool set(const Setting& setting, double value, Record::Kind kind = Record::Kind::Plain) const
    {
        return m_bench.call(setting.where + " set to " + textOf(value), [&] { setting.set(value); }, kind);
    }

    /// Its value; nothing if it cannot be read.
    [[nodiscard]] std::optional<Value> valueOf(const Setting& setting) const
    {
        Value value;
        for (int attempt = 0; attempt < attempts; ++attempt) {
            if (m_bench.call(setting.where, [&] { value = setting.get(); }, Record::Kind::PutBack))
                return value;
        }
        return std::nullopt;
    }

    /// Whether the value is `wanted`; one that may be rounded to a tenth of a step.
    [[nodiscard]] static bool isClose(const Setting& setting, Value value, double wanted)
    {
        const double distance = setting.domain.isRounded ? setting.domain.step / 10.0 : 0.0;
        return value && std::abs(*value - wanted) <= distance;
    }

private:
    [[nodiscard]] bool isBack() const
    {
        return std::ranges::all_of(m_saved,
                                   [this](const Saved& one) { return valueOf(one.setting) == Value{one.value}; });
    }

    const Bench& m_bench;
    const Description m_control;
    std::vector<Saved> m_saved;
};

/// Gives a setting other values, those that the instrument takes.
void lookAtSetting(const Bench& bench, const Settings& settings, const Settings::Saved& saved)
{
    const auto& setting = saved.setting;
    for (const auto other : setting.domain.others(saved.value)) {
        if (!settings.set(setting, other))
            continue;
        const auto now = settings.valueOf(setting);
        if (!now)
            break;
        bench.record()->checked();
        if (!Settings::isClose(setting, *now, other))
            bench.record()->finding(setting.where, "was set to " + textOf(other) + " and is " + textOf(*now));
        if (setting.domain.choices.empty())
            break; // one is as good as the other
    }
    settings.putBack(setting, saved.value);
}

void lookAtSettings(Bench& bench, Description control)
{
    const auto settings = std::make_shared<const Settings>(bench, std::move(control));
    const Bench::Change change{bench, [settings] { settings->putBack(); }};
    for (const auto& saved : settings->saved())
        lookAtSetting(bench, *settings, saved);
}

/// A value that is read and written by requests.
template <class Type>
struct Stored {
    std::string where;
    std::function<void(sdk::Completion<Type>)> read;
    std::function<void(const Type&, sdk::Completion<>)> write;
};

/// Asks until it succeeds.
bool succeeds(const Bench& bench, const Question& question)
{
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const auto state = bench.ask(question);
        if (state.completions != 0 && !state.error)
            return true;
        if (state.error)
            bench.record()->note(question.where, "ended with the error: " + state.error.message());
        else if (!state.isOver())
            break; // it would not come in time either
    }
    return false;
}

/// The value; nothing if it cannot be read.
template <class Type>
std::optional<Type> readStored(const Bench& bench, const Stored<Type>& stored, bool isPuttingBack = false)
{
    const auto value = std::make_shared<HandOver<Type>>();
    const auto read = [ask = stored.read, value](const Done& done) {
        ask([value, done](Type now, std::error_code error) {
            if (!error)
                value->put(std::move(now));
            done(error, {});
        });
    };
    const bool isRead = succeeds(bench, {.where = stored.where + " read", .ask = read, .isPuttingBack = isPuttingBack});
    return isRead ? std::optional{value->get()} : std::nullopt;
}

template <class Type>
bool writeStored(const Bench& bench, const Stored<Type>& stored, const Type& value, bool isPuttingBack = false)
{
    const auto write = [ask = stored.write, value](const Done& done) {
        ask(value, [done](std::error_code error) { done(error, {}); });
    };
    return succeeds(bench, {.where = stored.where + " write", .ask = write, .isPuttingBack = isPuttingBack});
}

/// Looks at whether a value that was written is read as such.
template <class Type>
void compareStored(const Bench& bench, const Stored<Type>& stored, const Type& written)
{
    const auto now = readStored(bench, stored);
    if (!now)
        return;
    bench.record()->checked();
    if (*now != written)
        bench.record()->finding(stored.where, "is read as something else than what was written");
}

/// Writes `other(value)` and puts the value back.
template <class Type, class Other>
void lookAtStored(Bench& bench, const Stored<Type>& stored, Other other)
{
    const auto before = readStored(bench, stored);
    if (!before)
        return;
    const Bench::Change change{bench, [&bench, stored, value = *before] {
                                   writeStored(bench, stored, value, true);
                                   if (readStored(bench, stored, true) != value) // also where nothing can be written
                                       bench.record()->finding(stored.where, "could not be put back");
                               }};
    const Type changed = other(*before);
    if (writeStored(bench, stored, changed))
        compareStored(bench, stored, changed);
}

void lookAtSerialNumber(Bench& bench)
{
    const auto control = bench.control<sdk::service::IMemorySerialNumberControl>("serial-number");
    if (!control)
        return;
    lookAtStored<unsigned int>(
        bench,
        {"serial-number", [control](auto done) { control->serialNumber(std::move(done)); },
         [control](unsigned int number, auto done) { control->writeSerialNumber(number, std::move(done)); }},
        [](unsigned int number) { return number ^ 1U; });
}

/// The EEPROM of the first one, as its cells wear out. The RAM cannot be read, so that it could not be put back.
void lookAtPotentiometer(Bench& bench)
{
    using Control = sdk::service::IPotentiometersControl;
    const auto control = bench.control<Control>("potentiometers");
    std::vector<Control::Potentiometer> list;
    if (!control || !bench.call("potentiometers", [&] { list = control->potentiometers(); }))
        return;
    const auto wide = std::ranges::find_if(list, [](const auto& one) { return one.minimum < one.maximum; });
    if (wide == list.end())
        return;
    const auto index = static_cast<unsigned long>(wide - list.begin());
    lookAtStored<int>(bench,
                      {"potentiometers EEPROM", [=](auto done) { control->readFromEeprom(index, std::move(done)); },
                       [=](int value, auto done) { control->writeToEeprom(index, value, std::move(done)); }},
                      [highest = wide->maximum](int value) { return value < highest ? value + 1 : value - 1; });
}

/// A file of the check's own.
void lookAtFile(Bench& bench)
{
    using Control = sdk::service::IFileMemoryControl;
    using Contents = std::vector<std::uint8_t>;
    const auto control = bench.control<Control>("file-memory");
    bool isAvailable = false;
    if (!control || !bench.call("file-memory isAvailable", [&] { isAvailable = control->isAvailable(); }))
        return;
    if (!isAvailable)
        return bench.record()->note("file-memory", "says that it cannot be used");
    const auto name = "tarn-check-" + std::to_string(std::random_device{}()) + ".bin";
    const Stored<Contents> stored{
        "file-memory", [=](auto done) { control->readFile({name, 0}, std::move(done)); },
        [=](const Contents& contents, auto done) { control->writeFile(name, contents, std::move(done)); }};
    const auto remove
        = [=](const Done& done) { control->deleteFile({name, 0}, [done](std::error_code error) { done(error, {}); }); };
    const Stored<std::vector<Control::FileInfo>> list{
        "file-memory list", [=](auto done) { control->fileList(std::move(done)); }, {}};
    const Contents contents{1, 0, 255, 10, 13, 26};
    const Bench::Change change{
        bench, [&bench, remove, list, name] {
            const bool isRemoved
                = succeeds(bench, {.where = "file-memory deleteFile", .ask = remove, .isPuttingBack = true});
            const auto left = readStored(bench, list, true); // it may never have been written
            if (left ? std::ranges::find(*left, name, &Control::FileInfo::name) != left->end() : !isRemoved)
                bench.record()->finding("file-memory deleteFile", "has not removed '" + name + "'");
        }};
    if (writeStored(bench, stored, contents))
        compareStored(bench, stored, contents);
}

} // namespace

std::function<void()> puttingBack(const Bench& bench, Description control)
{
    return [settings = std::make_shared<const Settings>(bench, std::move(control))] { settings->putBack(); };
}

void lookAtValues(Bench& bench)
{
    for (const auto& row : controlRows())
        lookAtSettings(bench, bench.describe(row));
    lookAtSerialNumber(bench);
    lookAtPotentiometer(bench);
    lookAtFile(bench);
}

} // namespace tarn::conformance
