#pragma once

#include <simulator/module.h>

#include <memory>
#include <type_traits>
#include <utility>

namespace tarn::simulator {

/// What the controls over a module have in common.
template <class SdkInterface, class ModuleRecord>
class ModuleControl : public SdkInterface {
public:
    using Interface = SdkInterface;
    using Record = ModuleRecord;

    ModuleControl(std::shared_ptr<Bench> bench, std::shared_ptr<Module<Record>> module)
        : m_bench{std::move(bench)}
        , m_module{std::move(module)}
    {
    }

protected:
    /// An operation on the instrument.
    decltype(auto) call(auto operation) { return m_bench->operations.call(std::move(operation)); }

    /// The operation that answers with `value`, whatever the settings are.
    template <class Value>
    Value constant(Value value)
    {
        return call([&] { return value; });
    }

    /// The operation that answers with one setting, or what a function makes of the record.
    auto get(auto projection)
    {
        return call([&] { return m_module->get(projection); });
    }

    /// The operation that changes one setting.
    template <class Value>
    void set(Value Record::* setting, const std::type_identity_t<Value>& value)
    {
        change([&](Record& record) { record.*setting = value; });
    }

    /// The operation that changes the settings by `change(record)`, and saves them by `save(sections)` if need be.
    void change(auto change, auto... save)
    {
        call([&] { m_module->change(change, save...); });
    }

    /// The operation that makes the settings what they are without power.
    void restoreDefaults(auto... save)
    {
        change([](Record& record) { record = {}; }, save...);
    }

    /// The operation that takes over a table.
    void store(ModuleTables::Table table, const ModuleTables::Contents& contents)
    {
        call([&] { m_bench->tables.store(table, contents); });
    }

    [[nodiscard]] Bench& bench() const { return *m_bench; }

private:
    const std::shared_ptr<Bench> m_bench;
    const std::shared_ptr<Module<Record>> m_module;
};

/// Puts the module behind a control into an instrument.
template <class Control>
MakeControl installModule(const std::shared_ptr<Bench>& bench)
{
    auto module = std::make_shared<Module<typename Control::Record>>(*bench);
    bench->atPowerLoss.emplace_back([module] { module->cyclePower(); });
    return [bench, module]() -> std::shared_ptr<typename Control::Interface> {
        return std::make_shared<Control>(bench, module);
    };
}

} // namespace tarn::simulator
