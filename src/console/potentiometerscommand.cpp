#include <console/change.h>
#include <console/commandline.h>
#include <console/commandtable.h>
#include <console/number.h>
#include <console/text.h>
#include <console/tourcommand.h>

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <memory>

namespace tarn::console {

namespace {

using Control = PotentiometersCommand::Control;
using Potentiometer = Control::Potentiometer;

/// The potentiometers; an instrument whose control is away shows none, so that is asked again.
std::vector<Potentiometer> list(const Instrument& instrument)
{
    const auto control = instrument.control<Control>();
    for (int attempt = 1;; ++attempt) {
        const LossWatch watch{instrument, Control::registryKey};
        auto potentiometers = [&] {
            const DeviceCall call;
            return control->potentiometers();
        }();
        if (!potentiometers.empty() || !watch.isLost())
            return potentiometers;
        if (attempt == attempts)
            throw lostEachTime("list its potentiometers");
    }
}

struct Found {
    unsigned long index{};
    Potentiometer potentiometer;
};

Found at(const std::vector<Potentiometer>& all, std::size_t index)
{
    return {index, all.at(index)};
}

/// The potentiometer of that name, or else of that index.
Found find(const Instrument& instrument, const std::string& which)
{
    const auto all = list(instrument);
    const auto named = std::ranges::find(all, which, &Potentiometer::name);
    if (named != all.end()) {
        if (std::ranges::count(all, which, &Potentiometer::name) > 1)
            throw Error{ErrorCode::Usage, fmt::format("several potentiometers are called '{}'", which),
                        "name one by its index; 'tarn-service potentiometers list' shows them"};
        return at(all, static_cast<std::size_t>(named - all.begin()));
    }
    const auto index = parseNumber<std::size_t>(which);
    if (index && *index < all.size())
        return at(all, *index);
    throw Error{ErrorCode::NotFound, fmt::format("the instrument has no potentiometer '{}'", which),
                "'tarn-service potentiometers list' shows those that it has"};
}

int read(const Instrument& instrument, unsigned long index)
{
    const Question question{"read a potentiometer",
                            Error{ErrorCode::Failed,
                                  fmt::format("the instrument could not read potentiometer {}", index),
                                  "check the instrument, then try again"}};
    return ask<Control>(instrument, question, [index](Control& control) { return control.readFromEeprom(index); });
}

QJsonObject json(const Found& found)
{
    return {{QStringLiteral("index"), toJson(std::uint64_t{found.index})},
            {QStringLiteral("name"), toJson(found.potentiometer.name)},
            {QStringLiteral("minimum"), found.potentiometer.minimum},
            {QStringLiteral("maximum"), found.potentiometer.maximum}};
}

// ---- the verbs

void listPotentiometers(Session& session)
{
    const auto all = list(session.instrument());
    QJsonArray array;
    std::string lines;
    for (std::size_t i = 0; i < all.size(); ++i) {
        array.append(json(at(all, i)));
        lines
            += fmt::format("{:>3}  {} {} to {}\n", i, padded(escaped(all[i].name), 24), all[i].minimum, all[i].maximum);
    }
    session.output().result(array, lines);
}

void readPotentiometer(Session& session, const std::string& which)
{
    const auto found = find(session.instrument(), which);
    const auto value = read(session.instrument(), found.index);
    auto result = json(found);
    result.insert(QStringLiteral("eeprom"), value);
    session.output().result(result, fmt::format("{}", value));
}

struct WriteOptions {
    std::string which;
    std::string value;
    bool eeprom = false;
};

void writeToEeprom(Session& session, const Found& found, int value)
{
    const auto advice = fmt::format("'tarn-service potentiometers read {}' tells what it holds now; write it again "
                                    "if it is not what it should be",
                                    found.index);
    InterruptWarning warning{session.output()};
    const Change change{.doing = "writing the potentiometer's EEPROM",
                        .target = "its value",
                        .leftBehind = "the potentiometer's EEPROM may be left with neither the old nor the new value",
                        .advice = advice};
    make<Control>(change, session.instrument(), session.output(), warning,
                  [&](Control& control, const LongRequest&) { return control.writeToEeprom(found.index, value); });
    confirm(change, session.output(), warning,
            fmt::format("{} was written to the EEPROM of '{}'", value, found.potentiometer.name),
            [&] { return read(session.instrument(), found.index) == value; });
}

/// No control reads a RAM value back.
void writeToRam(Session& session, const Found& found, int value)
{
    InterruptWarning warning{session.output()};
    const Change change{.doing = "setting the potentiometer",
                        .target = "its RAM value",
                        .leftBehind = "the potentiometer may be left with its old or the new RAM value",
                        .advice = "set it again; the EEPROM keeps its own value"};
    make<Control>(change, session.instrument(), session.output(), warning,
                  [&](Control& control, const LongRequest&) { return control.writeToRam(found.index, value); });
}

int numberFrom(const std::string& text)
{
    if (const auto number = parseNumber<int>(text))
        return *number;
    throw Error{ErrorCode::Usage, fmt::format("VALUE: '{}' is not a whole number", text), "write it in decimal digits"};
}

void writePotentiometer(Session& session, const WriteOptions& options)
{
    const auto& instrument = session.instrument();
    const int value = numberFrom(options.value);
    const auto found = find(instrument, options.which);
    const auto& [name, minimum, maximum] = found.potentiometer;
    if (value < minimum || value > maximum)
        throw Error{
            ErrorCode::Usage,
            fmt::format("{} is out of the range of '{}', which goes from {} to {}", value, name, minimum, maximum),
            "give a value in this range; nothing was changed"};
    auto result = json(found);
    result.insert(QStringLiteral("value"), value);
    result.insert(QStringLiteral("memory"), options.eeprom ? QStringLiteral("eeprom") : QStringLiteral("ram"));
    result.insert(QStringLiteral("compared"), options.eeprom);
    if (!options.eeprom) {
        writeToRam(session, found, value);
        return session.output().done(
            result,
            fmt::format("set '{}' to {} in RAM, until the power goes; a RAM value cannot be read back", name, value));
    }
    const bool identical = read(instrument, found.index) == value;
    if (!identical)
        writeToEeprom(session, found, value);
    result.insert(QStringLiteral("status"), identical ? QStringLiteral("identical") : QStringLiteral("written"));
    session.output().done(result,
                          identical
                              ? fmt::format("the EEPROM of '{}' holds {} already", name, value)
                              : fmt::format("wrote {} to the EEPROM of '{}', read back and compared", value, name));
}

void addVerbs(CommandLine& line, Command noun)
{
    noun.addExamples({"potentiometers list", "potentiometers read 0", "potentiometers write 0 128"});
    line.addVerb(noun, "list", "List them: index, name and range", &listPotentiometers);

    const auto which = std::make_shared<std::string>();
    const auto readVerb = line.addVerb(noun, "read", "Show the EEPROM value of a potentiometer",
                                       [which](Session& session) { readPotentiometer(session, *which); });
    readVerb.addWord("INDEX-or-NAME", *which, "Which; 'potentiometers list' shows them");

    const auto write = std::make_shared<WriteOptions>();
    const auto writeVerb = line.addVerb(noun, "write", "Set a potentiometer, in RAM until the power goes",
                                        [write](Session& session) { writePotentiometer(session, *write); });
    writeVerb.addWord("INDEX-or-NAME", write->which, "Which; 'potentiometers list' shows them");
    writeVerb.addWord("VALUE", write->value, "The value, in steps: a whole decimal number");
    writeVerb.addFlag("--eeprom", write->eeprom, "Write the EEPROM instead, read it back and compare");
    writeVerb.addExamples({"potentiometers write 0 128", "potentiometers write 0 128 --eeprom"});
}

} // namespace

void PotentiometersCommand::addTo(CommandLine& line)
{
    line.addNoun("potentiometers", "The instrument's digital potentiometers", &addVerbs);
}

void PotentiometersCommand::tour(Tour& tour)
{
    constexpr std::size_t shown = 3;
    const auto& instrument = tour.instrument();
    const auto all = list(instrument);
    tour.show("potentiometers", fmt::format("{}", all.size()), toJson(std::uint64_t{all.size()}));
    for (std::size_t i = 0; i < std::min(shown, all.size()); ++i) {
        const auto value = read(instrument, i);
        tour.show(escaped(all[i].name), fmt::format("{} of {} to {}", value, all[i].minimum, all[i].maximum), value);
    }
}

} // namespace tarn::console
