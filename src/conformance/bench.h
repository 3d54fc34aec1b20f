#pragma once

#include <conformance/controls.h>
#include <conformance/request.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tarn::conformance {

/// What a check works with: the device, and what has to be put back. Of the thread of the check, unless said otherwise.
class Bench {
public:
    Bench(std::shared_ptr<sdk::IVna> device, std::shared_ptr<Record> record)
        : m_device{std::move(device)}
        , m_record{std::move(record)}
    {
    }

    [[nodiscard]] const std::shared_ptr<sdk::IVna>& device() const { return m_device; }
    [[nodiscard]] const std::shared_ptr<Record>& record() const { return m_record; }
    [[nodiscard]] const Options& options() const { return m_record->options(); }

    /// Runs `step`, which is in the device. False if it throws: a note.
    bool call(const std::string& where, const std::function<void()>& step,
              Record::Kind kind = Record::Kind::Plain) const;

    /// The control, or null. Any thread.
    [[nodiscard]] std::shared_ptr<void> control(const std::string& name, sdk::Key key) const;

    template <class Interface>
    [[nodiscard]] std::shared_ptr<Interface> control(const std::string& name) const
    {
        return std::static_pointer_cast<Interface>(control(name, Interface::key));
    }

    /// What there is of a control; empty if the device does not offer it.
    [[nodiscard]] Description describe(const ControlRow& row) const;

    /// Of all controls.
    [[nodiscard]] std::vector<Description> describeAll() const;

    /// Whether the question may be asked.
    [[nodiscard]] bool isAllowed(const Question& question) const { return options().writes || !question.isOfWrites; }

    /// Asks and waits; empty if the question could not be asked, or did not get an answer. Throws an `Interruption`.
    Request::State ask(const Question& question) const;

    /// Waits for a request. Throws an `Interruption`.
    Request::State wait(const Request& request) const;

    /// Adds an observer of `where`, and removes it; false if that throws.
    bool add(const std::string& where, const Registration& registration) const;
    bool remove(const std::string& where, const Registration& registration) const;

    /// Gives what comes too late the time to come.
    static void settle();

    /// A change of the instrument, to be put back at its end, however that comes about.
    class Change {
    public:
        /// `putBack` makes calls of the kind `PutBack`.
        Change(Bench& bench, std::function<void()> putBack);
        Change(const Change&) = delete;
        Change& operator=(const Change&) = delete;
        ~Change();

    private:
        Bench& m_bench;
    };

    /// Puts everything back, the last change first. Any thread.
    void putBack();

    /// Closes the device.
    void close();

private:
    void putBackLast();

    std::shared_ptr<sdk::IVna> m_device;
    const std::shared_ptr<Record> m_record;
    utils::Mutex m_mutex;
    std::vector<std::function<void()>> m_changes TARN_GUARDED_BY(m_mutex);
};

/// What puts the settings of a control back as they are now.
[[nodiscard]] std::function<void()> puttingBack(const Bench& bench, Description control);

// What the guarantees are checked by.
void lookAtKeys(Bench& bench);
void lookAtSlots(Bench& bench);
void lookAtReferences(Bench& bench);
void lookAtCompletions(Bench& bench);
void lookAtProgress(Bench& bench);
void lookAtRegistrations(Bench& bench);
void lookAtRemovals(Bench& bench);
void lookAtNotifyingOperations(Bench& bench);
void lookAtRefusals(Bench& bench);
void lookAtValues(Bench& bench);
void lookAtHandles(Bench& bench);

} // namespace tarn::conformance
