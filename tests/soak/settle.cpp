#include "exercise.h"

namespace tarn::soak {

namespace {

std::string times(unsigned count)
{
    return count == 1 ? "once" : std::to_string(count) + " times";
}

/// What is wrong with the way that an operation took to the instrument, if anything is.
void checkWay(Ledger& ledger, const Ticket& ticket, const Record& record)
{
    const auto most = record.way == Way::None ? 0 : record.locks;
    const auto least = record.way == Way::None ? 0U : 1U;
    const auto used = (ticket.operations + record.callsPerLock - 1) / record.callsPerLock;
    const auto locks = used + ticket.refusals;
    if (!record.hasThrown && ticket.operations != used * record.callsPerLock)
        ledger.note(Breach::Lost, record.name + ": reached the instrument only " + times(ticket.operations));
    if (locks < least)
        ledger.note(Breach::Lost, record.name + ": neither reached the instrument nor asked for the control");
    if (locks > most)
        ledger.note(Breach::Duplicated,
                    record.name + ": reached the instrument " + times(ticket.operations)
                        + " and was refused the control " + times(ticket.refusals),
                    locks - most);
    if (ticket.asks > locks)
        ledger.note(Breach::Duplicated,
                    record.name + ": asked the device " + times(ticket.asks) + " for " + times(locks),
                    ticket.asks - locks);
    if (least != 0 && ticket.isAskMissing())
        ledger.note(Breach::Lost, record.name + ": did not ask the device although the handle had expired");
    if (ticket.needlessAsks != 0)
        ledger.note(Breach::Duplicated, record.name + ": asked the device although the handle was alive",
                    ticket.needlessAsks);
}

} // namespace

bool settle(Ledger& ledger, const Ticket& ticket, const Record& record)
{
    ledger.calls += ticket.operations;
    checkWay(ledger, ticket, record);

    const bool isReached = ticket.operations == (record.way == Way::None ? 0 : record.locks * record.callsPerLock);
    const bool isThrown = ticket.operations != 0 && ticket.trouble() == Trouble::Throws;
    if (record.hasThrown != isThrown)
        ledger.note(record.hasThrown ? Breach::Duplicated : Breach::Lost,
                    record.name + ": the exception of the instrument "
                        + (isThrown ? "did not arrive" : "came unasked"));

    const bool isRequest = record.way == Way::Request || record.way == Way::LongRequest;
    const bool isFailure = ticket.trouble() == Trouble::Fails && (isRequest || record.way == Way::Order);
    bool isDone = isReached && !isThrown && !isFailure;
    if (const auto said = record.answer.isSuccess; said && *said != isDone) {
        if (!*said && record.way == Way::LongRequest)
            ++ledger.refusals;
        else
            ledger.note(Breach::Lost,
                        record.name + (*said ? ": said that it had succeeded" : ": said that it had failed"));
        isDone = isDone && *said;
    }

    const auto emissions = isReached && !isThrown ? record.emissions : 0;
    if (ticket.emissions != emissions)
        ledger.note(ticket.emissions < emissions ? Breach::Lost : Breach::Duplicated,
                    record.name + ": emitted " + times(ticket.emissions) + " instead of " + times(emissions));
    return isDone;
}

} // namespace tarn::soak
