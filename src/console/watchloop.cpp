#include <console/watchloop.h>

#include <console/number.h>
#include <console/platform.h>
#include <console/text.h>
#include <utils/duration.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QDateTime>
#include <QSocketNotifier>
#include <QTimer>

#include <chrono>
#include <utility>

namespace tarn::console {

namespace {

constexpr std::chrono::milliseconds readerInterval{250};

/// Takes whatever has its turn in the event loop for a call into the device.
class Turns final : public QObject {
public:
    explicit Turns(std::optional<DeviceCall>& call)
        : m_call{call}
    {
        QCoreApplication::instance()->installEventFilter(this);
    }

    bool eventFilter(QObject* /*receiver*/, QEvent* /*event*/) override
    {
        m_call.emplace();
        return false;
    }

private:
    std::optional<DeviceCall>& m_call;
};

} // namespace

WatchLoop::WatchLoop(const LifecycleWatch& lifecycle, std::optional<std::uint64_t> count, const Output& output)
    : m_lifecycle{lifecycle}
    , m_count{count}
    , m_output{output}
{
    // Queued: the signal comes from a thread of the device.
    connect(&lifecycle, &LifecycleWatch::changed, this, [this] { onLifecycleChanged(); }, Qt::QueuedConnection);
}

void WatchLoop::run()
{
    const QSocketNotifier interrupt{m_interrupt.descriptor(), QSocketNotifier::Read};
    connect(&interrupt, &QSocketNotifier::activated, &m_loop, &QEventLoop::quit);
    // A reader who goes away while nothing happens is not noticed by writing.
    QTimer reader;
    connect(&reader, &QTimer::timeout, this, [this] {
        attempt([] {
            if (platform::isOutputClosed())
                throw OutputClosed{};
        });
    });
    reader.start(readerInterval);
    // An instrument may be called by anything that has its turn in the loop, and by what ends after it.
    const Turns turns{m_call};
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            [this] { m_call.reset(); });
    if (m_shown != m_count && !m_failure)
        m_loop.exec();
    m_call.emplace();
    if (m_failure)
        std::rethrow_exception(m_failure);
    if (m_shown != m_count)
        throw Error{ErrorCode::Interrupted, "interrupted", "nothing was changed; everything until now was shown"};
}

void WatchLoop::show(const std::function<void()>& step)
{
    attempt([&] {
        write(step);
        ++m_shown;
    });
}

void WatchLoop::write(const std::function<void()>& step)
{
    m_call.reset();
    step();
    m_call.emplace();
}

void WatchLoop::attempt(const std::function<void()>& step)
{
    if (m_failure || m_shown == m_count)
        return;
    try {
        step();
    } catch (...) {
        m_failure = std::current_exception();
    }
    if (m_failure || m_shown == m_count)
        m_loop.quit();
}

void WatchLoop::ask(std::function<void()> question)
{
    m_questions.push_back(std::move(question));
    m_postbox.post([this] { attempt([this] { putQuestions(); }); });
}

void WatchLoop::putQuestions()
{
    m_lifecycle.whileHere([this] {
        for (const auto& question : std::exchange(m_questions, {}))
            question();
        return true;
    });
}

void WatchLoop::post(QJsonObject json, std::string text)
{
    const auto now = QDateTime::currentDateTimeUtc();
    json.insert(QStringLiteral("time"), now.toString(Qt::ISODateWithMs));
    m_postbox.post([this, now, json = std::move(json), text = std::move(text)] {
        const auto line = fmt::format("{}  {}", now.toLocalTime().toString(QStringLiteral("HH:mm:ss.zzz")), text);
        show([&] { m_output.part(json, line); });
    });
}

void WatchLoop::onLifecycleChanged()
{
    // What has passed already when its turn comes is not worth a message.
    if (m_lifecycle.isAway() == m_saidAway)
        return;
    m_saidAway = !m_saidAway;
    write([this] {
        m_output.message(m_saidAway ? "the instrument has dropped its controls; waiting for them (Ctrl-C ends)"
                                    : "the controls are back");
    });
}

void addCountOption(Command command, std::optional<std::uint64_t>& count, const std::string& description)
{
    const auto read = [&count](const std::string& text) -> std::optional<std::string> {
        count = parseNumber<std::uint64_t>(text);
        if (count.value_or(0) == 0)
            return fmt::format("'{}' is not a whole number from 1", text);
        return std::nullopt;
    };
    command.addOption("--count", "N", read, description);
}

void addIntervalOption(Command command, std::chrono::microseconds& interval, const std::string& description)
{
    static constexpr std::chrono::days longest{1}; // Qt's timers end after 24 days
    const auto read = [&interval](const std::string& text) -> std::optional<std::string> {
        const auto length = utils::parseDuration(text);
        if (!length || *length > longest)
            return fmt::format("'{}' is not a time such as 500ms, 2s or 1min, of a day at most", text);
        interval = *length;
        return std::nullopt;
    };
    command.addOption("--interval", "TIME", read, description);
}

} // namespace tarn::console
