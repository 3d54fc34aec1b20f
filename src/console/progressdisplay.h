#pragma once

#include <console/output.h>
#include <devices/service/progress.h>

#include <QElapsedTimer>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarn::console {

/// A long operation as it is called on the screen.
struct OperationName {
    enum class Unit { Bytes, Steps, Percent };

    std::string word; ///< for machines: "write"
    std::string doing; ///< for people: "writing the memory"
    Unit unit; ///< what its progress counts
};

/// Shows how far a long operation has come, as the global options and the terminal have it: a bar
/// with rate and remaining time; or a line at the start, at each tenth and at the end; or an
/// object for each step; or nothing. What cannot be written is left out.
///
/// Threads: used on one thread.
class ProgressDisplay {
public:
    using Progress = devices::service::Progress;

    /// Shows the start. `output` must outlive the display.
    ProgressDisplay(const Output& output, OperationName name);
    ProgressDisplay(const ProgressDisplay&) = delete;
    ProgressDisplay& operator=(const ProgressDisplay&) = delete;

    /// Leaves the line of the bar, if it stands there.
    ~ProgressDisplay();

    /// The operation has come this far.
    void show(const Progress& progress);

    /// The operation has succeeded.
    void finish();

    /// Leaves the line of the bar, so that a message can be written.
    void makeRoom();

private:
    void showJson(const Progress& progress);
    void showBar(const Progress& progress);
    void showTenth(const Progress& progress);
    [[nodiscard]] std::chrono::nanoseconds elapsed() const;

    const Output& m_output;
    const OperationName m_name;
    const ProgressStyle m_style;
    bool m_broken = false; ///< nobody reads the objects any more
    bool m_barStands = false;
    unsigned int m_tenth = 0; ///< the last one said
    std::optional<Progress> m_last;
    QElapsedTimer m_sinceStart;
    QElapsedTimer m_sinceDrawn;
};

/// A number of bytes for people: "4.0 MiB".
[[nodiscard]] std::string sizeText(double bytes);

/// A time for people: "2 min 5 s".
[[nodiscard]] std::string timeText(std::chrono::seconds time);

/// The line of a bar, for a terminal of so many columns: the share that is done, the counts, and once
/// something is done the rate and the remaining time. The bar is what gives way on a narrow one.
[[nodiscard]] std::string barText(const OperationName& name, const devices::service::Progress& progress,
                                  std::chrono::nanoseconds elapsed, int columns);

} // namespace tarn::console
