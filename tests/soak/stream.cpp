#include "stream.h"

#include <algorithm>

namespace tarn::soak {

namespace {

std::string text(const Event& event)
{
    return "notification " + std::to_string(event.kind) + " (" + std::to_string(event.value) + ")";
}

} // namespace

void Stream::issue(std::initializer_list<Event> events)
{
    auto number = m_issued.load();
    m_batch = number + 1;
    for (const auto& event : events)
        m_events.at(++number % kept) = event;
    m_issued = number;
}

void Stream::hear(Listener& listener, Event event)
{
    ++m_ledger.notifications;
    if (listener.m_isRemoved)
        return note(Breach::Late, text(event) + " reached an observer whose removal had returned");
    const auto issued = m_issued.load();
    const auto heard = ++listener.m_heard;
    if (listener.m_promise == Listener::Promise::Everything)
        hearOne(listener, event, issued);
    else if (heard > issued - listener.m_base + mostPerOffer) // the stream may have been told before
        note(Breach::Duplicated,
             text(event) + " is the " + std::to_string(heard) + "th of " + std::to_string(issued - listener.m_base)
                 + " that an observer has heard");
}

/// The number of the event that must come next, given that none of the last ones was missed.
std::uint64_t Stream::due(const Listener& listener) const
{
    return std::max(listener.m_last + 1, m_batch);
}

void Stream::hearOne(Listener& listener, Event event, std::uint64_t issued)
{
    const auto last = listener.m_last.load();
    const auto number = due(listener);
    if (number > issued)
        return note(Breach::Duplicated,
                    text(event) + " came after number " + std::to_string(last) + ", the last of all");
    if (last != 0 && number > last + 1)
        note(Breach::Lost, "numbers " + std::to_string(last + 1) + " to " + std::to_string(number - 1),
             number - last - 1);
    if (numbered(number) != event)
        note(Breach::Lost,
             "number " + std::to_string(number) + ", " + text(numbered(number)) + ": " + text(event) + " came instead");
    if (last == 0)
        listener.m_first = number;
    listener.m_last = number;
}

void Stream::beginAdding(Listener& listener, Listener::Promise promise)
{
    listener.m_promise = promise;
    listener.m_promised = Listener::never;
    listener.m_first = 0;
    listener.m_last = 0;
    listener.m_heard = 0;
    listener.m_base = m_issued.load();
    listener.m_isRemoved = false;
}

/// The notification after the last one may be on its way already, to those who were there before.
void Stream::endAdding(Listener& listener)
{
    listener.m_promised = m_issued + 2;
}

void Stream::beginRemoving(Listener& listener)
{
    listener.m_needed = m_issued - (m_issued == 0 ? 0 : 1); // the last one may still be on its way
}

void Stream::endRemoving(Listener& listener)
{
    listener.m_isRemoved = true;
    check(listener);
}

void Stream::check(const Listener& listener)
{
    if (listener.m_promise != Listener::Promise::Everything || listener.m_needed < listener.m_promised)
        return;
    const auto first = listener.m_first.load();
    const auto last = listener.m_last.load();
    if (first == 0 || first > listener.m_promised)
        note(Breach::Lost, "numbers " + std::to_string(listener.m_promised) + " onwards, after the observer was added");
    else if (last < listener.m_needed)
        note(Breach::Lost,
             "numbers " + std::to_string(last + 1) + " to " + std::to_string(listener.m_needed)
                 + ", before the observer was removed");
}

void Stream::note(Breach breach, const std::string& what, std::uint64_t count)
{
    m_ledger.note(breach, m_name + ": " + what, count);
}

} // namespace tarn::soak
