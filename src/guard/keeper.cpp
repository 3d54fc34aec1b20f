#include <guard/keeper.h>

#include <guard/decoratedcontrols.h>

#include <algorithm>
#include <array>
#include <utility>

namespace tarn::guard {

namespace {

/// A decoration, and it as a pointer to its interface.
using Made = std::pair<std::shared_ptr<void>, void*>;

template <class Type>
Made make(void* control, const std::shared_ptr<Host>& host)
{
    auto made = std::make_shared<Type>(*static_cast<typename Type::Interface*>(control), host);
    return {made, static_cast<typename Type::Interface*>(made.get())};
}

struct Row {
    sdk::Key key;
    Made (*make)(void* control, const std::shared_ptr<Host>& host);
};

template <class Type>
constexpr Row row{Type::Interface::key, &make<Type>};

/// The controls whose requests end in completions.
constexpr std::array rows{row<FileMemory>, row<MemoryOperations>, row<Potentiometers>, row<SerialNumber>,
                          row<UsbIdentity>};

bool isSame(const std::weak_ptr<void>& one, const std::shared_ptr<void>& other)
{
    return !one.owner_before(other) && !other.owner_before(one);
}

} // namespace

Keeper& Keeper::instance()
{
    return immortal<Keeper>();
}

std::shared_ptr<void> Keeper::decorated(const std::shared_ptr<void>& control, sdk::Key key,
                                        const std::shared_ptr<Host>& host)
{
    const auto* const row = std::ranges::find(rows, key, &Row::key);
    if (!control || row == rows.end())
        return control;
    std::list<Decoration> expired; // goes after the lock
    const utils::MutexLock lock{m_mutex};
    expired = takeExpired();
    const auto found = std::ranges::find_if(m_decorations, [&](const Decoration& decoration) {
        return decoration.key == key && decoration.address == control.get() && decoration.host == host.get()
            && isSame(decoration.control, control);
    });
    if (found != m_decorations.end())
        return {control, found->interface};
    auto [owner, interface] = row->make(control.get(), host);
    m_decorations.push_back({control, control.get(), key, host.get(), std::move(owner), interface});
    return {control, interface};
}

void Keeper::sweep()
{
    std::list<Decoration> expired; // goes after the lock
    const utils::MutexLock lock{m_mutex};
    expired = takeExpired();
}

std::list<Keeper::Decoration> Keeper::takeExpired()
{
    std::list<Decoration> expired;
    for (auto next = m_decorations.begin(); next != m_decorations.end();) {
        const auto decoration = next++;
        if (decoration->control.expired())
            expired.splice(expired.end(), m_decorations, decoration);
    }
    return expired;
}

} // namespace tarn::guard
