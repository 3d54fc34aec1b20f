#include <conformance/bench.h>

#include <sdk/itemperaturecontrol.h>

#include <future>
#include <string>

namespace tarn::conformance {

namespace {

/// Looks at an answer that `read` gives; empty if nothing is wrong with it.
void lookAtAnswer(const Bench& bench, const std::string& where, const std::function<std::string()>& read)
{
    std::string wrong;
    if (!bench.call(where, [&] { wrong = read(); }))
        return;
    bench.record()->checked();
    if (!wrong.empty())
        bench.record()->finding(where, wrong);
}

std::string wrongValue(const Setting& setting)
{
    const auto value = setting.get();
    return wrongIf(value && !setting.domain.has(*value),
                   "is " + std::to_string(value.value_or(0.0)) + ", which is not among what it takes");
}

/// False if there is no end to wait for, which is a matter of another guarantee.
bool lookAtResult(const Bench& bench, const Question& question)
{
    const auto state = bench.ask(question);
    if (state.completions == 0)
        return !state.hasReturned || state.isOver();
    bench.record()->checked();
    if (!state.wrong.empty())
        bench.record()->finding(question.where, state.wrong);
    if (state.error)
        bench.record()->note(question.where, "ended with the error: " + state.error.message());
    return true;
}

void lookAtSlots(const Bench& bench, const Description& control)
{
    for (const auto& reading : control.readings)
        lookAtAnswer(bench, reading.where, reading.read);
    for (const auto& setting : control.settings)
        lookAtAnswer(bench, setting.where, [&] { return wrongValue(setting); });
    for (const auto& question : control.questions) {
        if (bench.isAllowed(question) && !lookAtResult(bench, question))
            return;
    }
}

void lookAtReference(const Bench& bench, const Reference& reference)
{
    bench.call(reference.where, [&] {
        const auto* const place = reference.place();
        const auto contents = reference.contents();
        const auto isSame = reference.place() == place && reference.contents() == contents;
        bench.record()->checked();
        if (!isSame)
            bench.record()->finding(reference.where, "is another list each time it is asked for");
    });
}

class MeasurementObserver final : public sdk::ITemperatureControl::Observer {
public:
    explicit MeasurementObserver(std::shared_ptr<Ear> ear)
        : m_ear{std::move(ear)}
    {
    }

    void onTemperatureChanged() override { m_ear->hear("temperature"); }

private:
    const std::shared_ptr<Ear> m_ear;
};

/// Holds the map of one thread while the instrument measures anew and another thread asks for it.
void lookAtTemperatures(const Bench& bench)
{
    using Control = sdk::ITemperatureControl;
    const std::string name{"temperature"};
    const auto control = bench.control<Control>(name);
    if (!control)
        return;
    const auto ear = std::make_shared<Ear>(bench.record());
    const auto registration = registrationOf<MeasurementObserver>(control, ear);
    const Control::ModuleTemperatures* map = nullptr;
    Control::ModuleTemperatures before;
    const bool isGiven
        = bench.call(name + " moduleTemperatures", [&] { before = *(map = &control->moduleTemperatures()); });
    if (!isGiven || !bench.add(name, registration))
        return;
    const bool isNew = ear->waitFor(1, bench.options().patience);
    bench.remove(name, registration);
    if (!isNew)
        return bench.record()->note(name, "has not measured anew meanwhile");
    std::async(std::launch::async, [&] {
        bench.call(name + " moduleTemperatures", [&] { static_cast<void>(control->moduleTemperatures()); });
    }).get();
    bench.record()->checked();
    if (*map != before)
        bench.record()->finding(name + " moduleTemperatures",
                                "changes a map that a thread was given, before that thread asks again");
}

} // namespace

void lookAtSlots(Bench& bench)
{
    for (const auto& row : controlRows())
        lookAtSlots(bench, bench.describe(row));
}

void lookAtReferences(Bench& bench)
{
    for (const auto& row : controlRows()) {
        for (const auto& reference : bench.describe(row).references)
            lookAtReference(bench, reference);
    }
    lookAtTemperatures(bench);
}

} // namespace tarn::conformance
