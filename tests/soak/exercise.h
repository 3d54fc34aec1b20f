#pragma once

#include "instrument.h"
#include "ledger.h"
#include "observation.h"
#include "operation.h"
#include "ticket.h"

#include <devices/controlregistry.h>
#include <devices/instrumentcontrols.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <memory>
#include <string>
#include <vector>

namespace tarn::soak {

/// The decisions about one operation, which a thread makes at random.
struct Choice {
    std::size_t thread;
    std::uint64_t operation;
    bool isOwn; ///< with the thread's own adapter instead of the one that all share
    bool isObserver; ///< not an operation: an observer is added or removed
    Mishap mishap;
};

/// One control of the instrument, used by all threads.
class Exercise {
public:
    Exercise() = default;
    Exercise(const Exercise&) = delete;
    Exercise& operator=(const Exercise&) = delete;
    virtual ~Exercise() = default;

    [[nodiscard]] virtual const char* name() const = 0;

    /// Adds the observers that stay until the end.
    virtual void begin() = 0;

    virtual void perform(const Choice& choice) = 0;

    /// Whether everything that was begun has ended.
    [[nodiscard]] virtual bool isAtRest() const = 0;

    /// Removes all observers and checks what was left behind, at rest.
    virtual void end() = 0;
};

/// What is known of an operation before it is made and after it has returned.
struct Record {
    std::string name;
    Way way;
    unsigned locks;
    unsigned callsPerLock;
    unsigned emissions;
    bool hasThrown;
    Answer answer;
};

/// Holds what an operation has done against what its ticket has seen. Whether the instrument has done it.
[[nodiscard]] bool settle(Ledger& ledger, const Ticket& ticket, const Record& record);

/// `Row` says which control: see rows.h.
template <class Row>
class ControlExercise final : public Exercise {
    using Control = typename Row::Control;

public:
    ControlExercise(Instrument& instrument, std::size_t index, std::size_t threads)
        : m_ledger{instrument.ledger}
        , m_instrument{instrument}
        , m_shared{instrument.controls().template control<Control>(Row::registryKey)}
        , m_ownHandles(threads)
        , m_writer{index % threads}
        , m_observation{instrument, *m_shared, Row::name, threads}
    {
        for (std::size_t i = 0; i != (Row::place.isPerThread ? threads : 1); ++i)
            m_cells.emplace_back(Row::place.range);
        for (std::size_t i = 0; i != threads; ++i) {
            m_own.push_back(instrument.template create<Control>(Row::registryKey));
            watchSignals(*m_own.back());
        }
        watchSignals(*m_shared);
    }

    [[nodiscard]] const char* name() const override { return Row::name; }

    void begin() override { m_observation.begin(); }

    void perform(const Choice& choice) override
    {
        if (choice.isObserver)
            m_observation.change(choice.thread, choice.operation);
        else
            perform(choice, pick(choice), m_cells[Row::place.isPerThread ? choice.thread : 0]);
    }

    [[nodiscard]] bool isAtRest() const override { return m_observation.ends() >= m_orders; }

    void end() override
    {
        m_observation.end();
        if (m_observation.ends() != m_orders)
            m_ledger.note(m_observation.ends() < m_orders ? Breach::Lost : Breach::Duplicated,
                          std::string{Row::name} + ": " + std::to_string(m_orders) + " writes have ended "
                              + std::to_string(m_observation.ends()) + " times");
        if constexpr (requires { Row::stored(m_instrument.simulated()); }) {
            if (m_cells[0].last() != 0 && Row::stored(m_instrument.simulated()) != m_cells[0].last() % Row::place.range)
                m_ledger.note(Breach::Lost, std::string{Row::name} + ": what was written last is not stored");
        }
    }

private:
    static constexpr std::uint64_t atMostOrdered = 16;

    /// Only one thread writes to a place, and not while the instrument has much to do; otherwise it is the first
    /// operation.
    [[nodiscard]] const Operation<Control>& pick(const Choice& choice) const
    {
        const auto& operation = m_operations[choice.operation % m_operations.size()];
        const bool isWriter = Row::place.isPerThread || choice.thread == m_writer;
        const bool isWriting = operation.role == Role::Writes || operation.role == Role::Wipes;
        const bool isTooMuch = operation.way == Way::Order && m_orders > m_observation.ends() + atMostOrdered;
        return isWriting && (!isWriter || isTooMuch) ? m_operations.front() : operation;
    }

    void perform(const Choice& choice, const Operation<Control>& operation, Cell& cell)
    {
        const bool isWrite = operation.role == Role::Writes;
        const Use use{isWrite ? cell.begin() : 0, choice.thread, cell.isFilled()};
        if (operation.role == Role::Wipes)
            cell.wipe();
        const auto reading = cell.beginReading();

        Ticket ticket{choice.isOwn ? m_ownHandles[choice.thread] : m_sharedHandles, choice.mishap};
        Record record{std::string{Row::name} + ", " + operation.name,
                      operation.way,
                      operation.locks,
                      operation.callsPerLock,
                      operation.emissions,
                      false,
                      {}};
        try {
            record.answer = operation.run(choice.isOwn ? *m_own[choice.thread] : *m_shared, use);
        } catch (const simulator::DeviceFault&) {
            record.hasThrown = true;
        } catch (const std::exception& reason) {
            m_ledger.note(Breach::Lost, record.name + ": threw \"" + reason.what() + "\" instead of its answer");
        }
        ticket.close();
        const bool isDone = settle(m_ledger, ticket, record);

        if (isWrite) {
            cell.end(isDone);
            if (isDone)
                cell.fill();
        }
        if (operation.way == Way::Order && ticket.operations != 0 && !record.hasThrown)
            ++m_orders;
        if (operation.role == Role::Reads && isDone && record.answer.number
            && !cell.canHold(reading, *record.answer.number))
            m_ledger.note(Breach::Lost,
                          record.name + ": thread " + std::to_string(choice.thread) + " read "
                              + std::to_string(*record.answer.number) + " after "
                              + std::to_string(reading.least % Row::place.range) + " had been written");
    }

    void watchSignals(Control& control)
    {
        if constexpr (requires { Row::watchSignals(control); })
            Row::watchSignals(control);
    }

    Ledger& m_ledger;
    Instrument& m_instrument;
    const Operations<Control> m_operations = Row::operations();
    const std::shared_ptr<Control> m_shared;
    std::vector<std::shared_ptr<Control>> m_own; ///< by thread
    std::deque<Handles> m_ownHandles; ///< of these
    Handles& m_sharedHandles = m_instrument.device->handles(Row::sdkKey);
    std::deque<Cell> m_cells;
    const std::size_t m_writer; ///< the thread that writes
    std::atomic<std::uint64_t> m_orders = 0; ///< that the instrument has taken
    typename Row::Observation m_observation;
};

} // namespace tarn::soak
