#pragma once

#include <console/interruptguard.h>
#include <console/session.h>

#include <QJsonArray>
#include <QJsonValue>

#include <functional>
#include <string>
#include <string_view>

namespace tarn::console {

class CommandLine;
struct ControlRow;

/// `tour`: a walk through every control of the connected instrument.
struct TourCommand {
    static void addTo(CommandLine& line);
};

/// What a control's part of the tour has at hand. It shows what came back, changes nothing without
/// asking `mayChange` and leaves the instrument as it was.
///
/// Ctrl-C ends the tour at the next `show`, outside of what restores the instrument. A second one ends
/// it at once, and says what it leaves behind.
class Tour {
public:
    explicit Tour(Session& session);

    /// Walks through all controls; throws what a control's part throws.
    void run();

    [[nodiscard]] const Instrument& instrument() const { return m_instrument; }

    /// One thing that came back: a label, which is escaped here, the value for people and for
    /// machines. Says as well when the instrument has dropped its controls since the last one.
    void show(std::string_view label, std::string_view text, const QJsonValue& value);

    /// A remark, in a sentence.
    void say(std::string_view text);

    /// Whether a change may be made: on a simulated instrument always, on a real one only if the
    /// user agrees to "Shall the tour `what`?".
    [[nodiscard]] bool mayChange(std::string_view what);

    /// What stays behind in an instrument that cannot be put back as it was, and how to remove it.
    struct Leftover {
        std::string what;
        std::string remedy;
    };

    /// Runs `steps`, and `restore` whether they succeed or throw; again if it fails. Throws `Error`
    /// with `leftover` when it fails for good, whatever the steps threw.
    void restoring(const std::function<void()>& steps, const std::function<void()>& restore, const Leftover& leftover);

private:
    void visit(const ControlRow& row);
    void finish();
    void line(std::string_view text) const;

    const Output& m_output;
    const bool m_simulated;
    Instrument& m_instrument;
    platform::InterruptGuard m_interrupt;
    QJsonArray m_shown; ///< by the control whose turn it is
    std::uint64_t m_dropsSaid = 0;
    int m_visited = 0;
};

} // namespace tarn::console
