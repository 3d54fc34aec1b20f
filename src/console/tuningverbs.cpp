#include <console/tuningverbs.h>

#include <console/localfile.h>
#include <console/requests.h>
#include <console/text.h>
#include <console/verify.h>

#include <QJsonArray>

#include <algorithm>

namespace tarn::console::tuningverbs {

namespace {

template <class Operation>
void whileHere(const Instrument& instrument, const Tuning& tuning, Operation operation)
{
    const auto control = tuning.control(instrument);
    whileThere(instrument, tuning.registryKey, tuning.name, [&] { operation(control); });
}

/// The names of `items`, separated by commas.
template <class Items, class Name>
std::string names(const Items& items, Name name)
{
    std::string all;
    for (const auto& item : items)
        all += fmt::format("{}{}", all.empty() ? "" : ", ", std::invoke(name, item));
    return all;
}

const std::string& nameOf(const Reading& reading)
{
    return reading.setting.name;
}

const Reading& find(const std::vector<Reading>& readings, const Tuning& tuning, const std::string& name)
{
    const auto found = std::ranges::find(readings, name, &nameOf);
    if (found == readings.end())
        throw Error{ErrorCode::Usage, fmt::format("{} has no setting '{}'", tuning.name, name),
                    "its settings: " + names(readings, &nameOf)};
    return *found;
}

/// Lines of columns: name, value and what is accepted. `value` gives the text of a value.
template <class Value>
std::string table(const Output& output, const std::vector<Reading>& readings, Value value)
{
    std::size_t nameWidth = 0;
    std::size_t valueWidth = 0;
    for (const auto& reading : readings) {
        nameWidth = std::max(nameWidth, characters(nameOf(reading)));
        valueWidth = std::max(valueWidth, characters(value(reading)));
    }
    const auto line = [&](std::string name, std::string shown, const std::string& limits) {
        return fmt::format("{}  {}  {}", padded(std::move(name), nameWidth), padded(std::move(shown), valueWidth),
                           limits);
    };
    auto text = output.paint(Output::Style::Heading, line("NAME", "VALUE", "LIMITS")) + '\n';
    for (const auto& reading : readings)
        text
            += line(nameOf(reading), value(reading), reading.setting.isReadOnly() ? "read-only" : acceptedText(reading))
            + '\n';
    return text;
}

std::string shownText(const Reading& reading)
{
    return valueText(reading, reading.value);
}

std::string hintToShow(const Tuning& tuning)
{
    return fmt::format("see what the instrument has with 'tarn-service {} show'", tuning.name);
}

std::string done(const Assignment& assignment)
{
    const auto& [reading, value] = assignment;
    return fmt::format("{} was set to {}", nameOf(reading), valueText(reading, value));
}

/// Sends one value; `before` are those that were sent already.
void send(const Instrument& instrument, const Tuning& tuning, const Assignment& assignment,
          std::span<const Assignment> before)
{
    const auto& [reading, value] = assignment;
    try {
        whileHere(instrument, tuning, [&](const std::any& control) { reading.setting.write(control, value); });
    } catch (...) {
        const auto error = caughtError();
        const auto message
            = fmt::format("{} could not be set to {}: {}", nameOf(reading), valueText(reading, value), error.message());
        if (before.empty())
            throw Error{error.code(), message, error.hint()};
        throw Error{error.code(), fmt::format("{}; before that, {}", message, names(before, &done)),
                    hintToShow(tuning)};
    }
}

/// The words of a command line, where a unit after a blank belongs to what stands before it.
std::vector<std::string> joined(const std::vector<std::string>& words)
{
    std::vector<std::string> all;
    for (const auto& word : words) {
        if (all.size() > 1 && isSymbol(word))
            all.back() += word;
        else
            all.push_back(word);
    }
    return all;
}

/// What the words after `set` ask for, all of it checked.
std::vector<Assignment> parse(const std::vector<Reading>& readings, const Tuning& tuning,
                              const std::vector<std::string>& given)
{
    std::vector<Assignment> assignments;
    const auto words = joined(given);
    for (std::size_t i = 0; i < words.size(); i += 2) {
        const auto& reading = find(readings, tuning, words[i]);
        const auto isThis = [&](const Assignment& other) { return nameOf(other.setting) == words[i]; };
        if (reading.setting.isReadOnly())
            throw Error{ErrorCode::Usage, fmt::format("{} can only be shown", words[i]), "nothing was changed"};
        if (std::ranges::any_of(assignments, isThis))
            throw Error{ErrorCode::Usage, fmt::format("{} is given twice", words[i]), "nothing was changed"};
        if (i + 1 == words.size())
            throw Error{
                ErrorCode::Usage, fmt::format("{} is given without a value", words[i]),
                fmt::format("nothing was changed; 'tarn-service {} set --help' tells what it takes", tuning.name)};
        auto value = parseSetting(reading, words[i + 1]);
        if (!value)
            throw Error{ErrorCode::Usage, value.error(), "nothing was changed"};
        assignments.push_back({reading, *std::move(value)});
    }
    return assignments;
}

} // namespace

std::vector<Reading> readings(const Instrument& instrument, const Tuning& tuning)
{
    std::vector<Reading> all;
    whileHere(instrument, tuning, [&](const std::any& control) { all = tuning.read(control); });
    return all;
}

std::vector<Reading> assign(const Instrument& instrument, const Tuning& tuning,
                            const std::vector<Assignment>& assignments)
{
    const std::span all{assignments};
    for (std::size_t i = 0; i < all.size(); ++i)
        send(instrument, tuning, all[i], all.first(i));
    std::vector<Reading> after;
    verify(names(assignments, &done), hintToShow(tuning) + ", then do it again", [&] {
        const auto now = readings(instrument, tuning);
        after.clear();
        for (const auto& assignment : assignments)
            after.push_back(find(now, tuning, nameOf(assignment.setting)));
        return true;
    });
    std::string differences;
    for (std::size_t i = 0; i < after.size(); ++i) {
        if (after[i].value != assignments[i].value)
            differences += fmt::format("{}{}, but the instrument shows {}", differences.empty() ? "" : "; ",
                                       done(assignments[i]), shownText(after[i]));
    }
    if (!differences.empty())
        throw Error{ErrorCode::Failed, differences, hintToShow(tuning) + "; another setting may exclude this one"};
    return after;
}

void show(Session& session, const Tuning& tuning)
{
    const auto all = readings(session.instrument(), tuning);
    QJsonArray array;
    for (const auto& reading : all)
        array.append(json(reading));
    session.output().result(array, table(session.output(), all, &shownText));
}

void get(Session& session, const Tuning& tuning, const std::string& name)
{
    const auto all = readings(session.instrument(), tuning);
    const auto& reading = find(all, tuning, name);
    auto object = json(reading);
    for (const auto* const member : {"readOnly", "limits", "choices"})
        object.remove(QLatin1StringView{member});
    session.output().result(object, shownText(reading));
}

void set(Session& session, const Tuning& tuning, const std::vector<std::string>& words)
{
    const auto& instrument = session.instrument();
    const auto assignments = parse(readings(instrument, tuning), tuning, words);
    session.output().expectChange();
    const auto after = assign(instrument, tuning, assignments);
    QJsonArray array;
    std::string text;
    for (std::size_t i = 0; i < after.size(); ++i) {
        auto object = json(after[i]);
        object.insert(QStringLiteral("sent"), valueJson(after[i], assignments[i].value));
        array.append(object);
        text += fmt::format("{} {}\n", nameOf(after[i]), shownText(after[i]));
    }
    session.output().result(array, text);
}

void load(Session& session, const Tuning& tuning, const LoadOptions& options)
{
    const auto found = std::ranges::find(tuning.tables, options.table, &TuningTable::name);
    if (found == tuning.tables.end())
        throw Error{ErrorCode::Usage, fmt::format("{} has no table '{}'", tuning.name, options.table),
                    "its tables: " + names(tuning.tables, &TuningTable::name)};
    const auto contents = readLocalFile(options.path);
    if (contents.isEmpty())
        throw Error{ErrorCode::LocalFile, fmt::format("'{}' is empty; nothing was sent", options.path),
                    "give the file that holds the table"};
    const auto& instrument = session.instrument();
    instrument.awaitControl(tuning.registryKey);
    const auto& output = session.output();
    options.confirmation.obtain(output, fmt::format("replacing the table {}", options.table),
                                fmt::format("Replace the instrument's table {} with {} bytes? It cannot be read back.",
                                            options.table, contents.size()));
    output.expectChange();
    const std::vector<std::uint8_t> bytes(contents.begin(), contents.end());
    whileHere(instrument, tuning, [&](const std::any& control) { found->load(control, bytes); });
    output.done(QJsonObject{{QStringLiteral("table"), toJson(options.table)},
                            {QStringLiteral("size"), contents.size()},
                            {QStringLiteral("compared"), false}},
                fmt::format("sent {} bytes as {}; the instrument does not let them be read back", contents.size(),
                            options.table));
}

void reset(Session& session, const Tuning& tuning)
{
    const auto& instrument = session.instrument();
    const auto& output = session.output();
    const auto before = readings(instrument, tuning);
    output.expectChange();
    whileHere(instrument, tuning, [&](const std::any& control) { tuning.reset(control); });
    std::vector<Reading> after;
    verify(fmt::format("{} was reset", tuning.name), hintToShow(tuning), [&] {
        after = readings(instrument, tuning);
        return true;
    });
    const auto was = [&](const Reading& reading) -> const Reading& { return find(before, tuning, nameOf(reading)); };
    QJsonArray array;
    for (const auto& reading : after) {
        auto object = json(reading);
        object.insert(QStringLiteral("changed"), was(reading).value != reading.value);
        array.append(object);
    }
    output.result(array, table(output, after, [&](const Reading& reading) {
                      const auto& old = was(reading);
                      return old.value == reading.value
                          ? shownText(reading)
                          : fmt::format("{} (was {})", shownText(reading), shownText(old));
                  }));
}

} // namespace tarn::console::tuningverbs
