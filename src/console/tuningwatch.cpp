#include <console/tuningwatch.h>

#include <console/watchloop.h>

#include <QJsonArray>
#include <QTimer>

#include <fmt/format.h>

#include <algorithm>

namespace tarn::console {

namespace {

/// Looks at the settings and shows what has changed.
class TuningWatch final : public QObject {
public:
    /// All references must outlive the watch.
    TuningWatch(const Instrument& instrument, const Tuning& tuning, std::optional<std::uint64_t> count,
                const Output& output)
        : m_instrument{instrument}
        , m_tuning{tuning}
        , m_control{tuning.control(instrument)}
        , m_loop{instrument.lifecycle(), count, output}
    {
        // Queued: the signals come from whoever sets a value, and from a thread of the device.
        tuning.connect(m_control, *this, [this] { look(); });
        // A little later: looking may be what an instrument drops its controls for.
        m_soon.setSingleShot(true);
        m_soon.setInterval(std::chrono::milliseconds{100});
        QObject::connect(
            &instrument.lifecycle(), &LifecycleWatch::changed, this, [this] { lookSoon(); }, Qt::QueuedConnection);
        QObject::connect(&m_soon, &QTimer::timeout, this, [this] { look(); });
        QObject::connect(&m_timer, &QTimer::timeout, this, [this] { look(); });
    }

    void run(std::chrono::microseconds interval)
    {
        m_timer.start(std::max(std::chrono::ceil<std::chrono::milliseconds>(interval), std::chrono::milliseconds{1}));
        look();
        m_loop.run();
    }

private:
    void look()
    {
        if (m_instrument.lifecycle().isAway()) // its return is announced
            return;
        m_loop.ask([this] {
            if (m_instrument.isThere(m_tuning.registryKey))
                compare(m_tuning.read(m_control));
        });
    }

    void lookSoon()
    {
        if (!m_soon.isActive())
            m_soon.start();
    }

    void compare(std::vector<Reading> readings)
    {
        QJsonArray changed;
        std::string text;
        for (std::size_t i = 0; i < readings.size(); ++i) {
            const auto& reading = readings[i];
            if (i < m_last.size() && m_last[i].value == reading.value)
                continue;
            changed.append(json(reading));
            text += fmt::format("{}{} {}", text.empty() ? "" : ", ", reading.setting.name,
                                valueText(reading, reading.value));
        }
        m_last = std::move(readings);
        if (!changed.isEmpty())
            m_loop.post({{QStringLiteral("settings"), changed}}, text);
    }

    const Instrument& m_instrument;
    const Tuning& m_tuning;
    const std::any m_control;
    WatchLoop m_loop;
    QTimer m_timer;
    QTimer m_soon;
    std::vector<Reading> m_last;
};

} // namespace

void watchTuning(Session& session, const Tuning& tuning, std::chrono::microseconds interval,
                 std::optional<std::uint64_t> count)
{
    const auto& instrument = session.instrument();
    instrument.awaitControl(tuning.registryKey);
    TuningWatch{instrument, tuning, count, session.output()}.run(interval);
}

} // namespace tarn::console
