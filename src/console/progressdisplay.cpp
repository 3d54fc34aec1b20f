#include <console/progressdisplay.h>

#include <QJsonObject>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace tarn::console {

namespace {

using Progress = devices::service::Progress;
using Unit = OperationName::Unit;

constexpr int widestBar = 20;
constexpr int narrowestBar = 5;
constexpr int redrawInterval = 100; // ms

/// Of the work, how many `parts`-ths are done.
unsigned int share(const Progress& progress, unsigned int parts)
{
    if (progress.total == 0)
        return 0;
    return static_cast<unsigned int>(std::uint64_t{std::min(progress.done, progress.total)} * parts / progress.total);
}

std::string amount(Unit unit, double count)
{
    switch (unit) {
    case Unit::Bytes:
        return sizeText(count);
    case Unit::Steps:
        return fmt::format("{:.0f} steps", count);
    case Unit::Percent:
        break;
    }
    return fmt::format("{:.0f} %", count);
}

/// How much of the work is done: the share, and what it is the share of where that says more.
std::string sharePart(Unit unit, const Progress& progress, int width)
{
    const auto percent = fmt::format("{:{}} %", share(progress, 100), width);
    return unit == Unit::Percent ? percent : fmt::format("{} of {}", percent, amount(unit, progress.total));
}

} // namespace

ProgressDisplay::ProgressDisplay(const Output& output, OperationName name)
    : m_output{output}
    , m_name{std::move(name)}
    , m_style{output.progressStyle()}
{
    m_sinceStart.start();
    if (m_style == ProgressStyle::Lines)
        m_output.message(fmt::format("{}: started", m_name.doing));
}

ProgressDisplay::~ProgressDisplay()
{
    makeRoom();
}

void ProgressDisplay::show(const Progress& progress)
{
    m_last = progress;
    switch (m_style) {
    case ProgressStyle::None:
        break;
    case ProgressStyle::Json:
        showJson(progress);
        break;
    case ProgressStyle::Bar:
        if (!m_sinceDrawn.isValid() || m_sinceDrawn.hasExpired(redrawInterval) || progress.done >= progress.total)
            showBar(progress);
        break;
    case ProgressStyle::Lines:
        showTenth(progress);
        break;
    }
}

void ProgressDisplay::finish()
{
    if (m_style != ProgressStyle::Lines)
        return;
    const bool hasSize = m_last && m_name.unit != Unit::Percent;
    const auto size = hasSize ? fmt::format(", {}", amount(m_name.unit, m_last->total)) : std::string{};
    m_output.message(
        fmt::format("{}: done{} in {:.1f} s", m_name.doing, size, std::chrono::duration<double>{elapsed()}.count()));
}

void ProgressDisplay::makeRoom()
{
    if (m_barStands)
        m_output.redraw({});
    m_barStands = false;
}

void ProgressDisplay::showJson(const Progress& progress)
{
    if (m_broken)
        return;
    try {
        m_output.progress(QJsonObject{{QStringLiteral("operation"), toJson(m_name.word)},
                                      {QStringLiteral("done"), toJson(std::uint64_t{progress.done})},
                                      {QStringLiteral("total"), toJson(std::uint64_t{progress.total})}});
    } catch (...) { // the operation goes on; its result will meet the same fate, and end the command
        m_broken = true;
    }
}

void ProgressDisplay::showBar(const Progress& progress)
{
    m_sinceDrawn.start();
    m_barStands = true;
    m_output.redraw(barText(m_name, progress, elapsed(), m_output.columns()));
}

void ProgressDisplay::showTenth(const Progress& progress)
{
    const auto tenth = share(progress, 10);
    if (tenth <= m_tenth || tenth == 10)
        return;
    m_tenth = tenth;
    m_output.message(fmt::format("{}: {}", m_name.doing, sharePart(m_name.unit, progress, 0)));
}

std::chrono::nanoseconds ProgressDisplay::elapsed() const
{
    return std::chrono::nanoseconds{m_sinceStart.nsecsElapsed()};
}

std::string sizeText(double bytes)
{
    static constexpr std::array units{"B", "KiB", "MiB", "GiB"};
    std::size_t unit = 0;
    for (; bytes >= 1024 && unit + 1 < units.size(); ++unit)
        bytes /= 1024;
    return fmt::format("{:.{}f} {}", bytes, unit == 0 ? 0 : 1, units.at(unit));
}

std::string timeText(std::chrono::seconds time)
{
    const auto seconds = time.count();
    if (seconds < 60)
        return fmt::format("{} s", seconds);
    if (seconds < 3600)
        return fmt::format("{} min {} s", seconds / 60, seconds % 60);
    return fmt::format("{} h {} min", seconds / 3600, seconds % 3600 / 60);
}

std::string barText(const OperationName& name, const Progress& progress, std::chrono::nanoseconds elapsed, int columns)
{
    auto counts = sharePart(name.unit, progress, 3);
    const auto seconds = std::chrono::duration<double>{elapsed}.count();
    if (progress.done != 0 && seconds > 0) {
        const auto rate = progress.done / seconds;
        const auto left = (progress.total - std::min(progress.done, progress.total)) / rate;
        counts += fmt::format(", {}/s, {} left", amount(name.unit, rate),
                              timeText(std::chrono::ceil<std::chrono::seconds>(std::chrono::duration<double>{left})));
    }
    const auto room = columns - static_cast<int>(name.doing.size() + counts.size()) - 5; // "[", "]", blanks, cursor
    const auto width = std::min(room, widestBar);
    const auto filled = width < narrowestBar ? 0 : static_cast<int>(share(progress, static_cast<unsigned int>(width)));
    const auto bar = width < narrowestBar ? "" : fmt::format("[{:#>{}}{:.>{}}] ", "", filled, "", width - filled);
    const auto text = fmt::format("{} {}{}", name.doing, bar, counts);
    return text.substr(0, static_cast<std::size_t>(std::max(columns - 1, 0)));
}

} // namespace tarn::console
