#include <console/correctionswatch.h>

#include <console/commandtable.h>
#include <console/correctionnames.h>
#include <console/watchloop.h>

#include <QJsonObject>

#include <fmt/format.h>

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace tarn::console {

namespace {

using Control = CorrectionsCommand::Control;
using devices::FactoryCorrection;

/// Posts what the instrument notifies. Instrument and control may hold on to it longer than the watch
/// lasts.
class Reporter final : public Control::Observer {
public:
    Reporter(const Control& control, WatchLoop& loop)
        : m_control{control}
        , m_loop{&loop}
    {
    }

    void onSupportedChanged() override { post("supported", supported()); }

    void onValidChanged() override
    {
        auto valid = supported();
        std::erase_if(valid, [&](FactoryCorrection correction) {
            const DeviceCall call;
            return !m_control.isValid(correction);
        });
        post("valid", valid);
    }

    void onEnabledChanged(FactoryCorrection correction, bool enabled) override
    {
        const auto name = correctionName(correction);
        post({{QStringLiteral("event"), QStringLiteral("enabled")},
              {QStringLiteral("correction"), toJson(name)},
              {QStringLiteral("enabled"), enabled}},
             fmt::format("enabled: {} {}", name, enabled ? "on" : "off"));
    }

    /// Once this has returned, nothing is posted any more.
    void silence()
    {
        const std::scoped_lock lock{m_mutex};
        m_loop = nullptr;
    }

private:
    [[nodiscard]] std::vector<FactoryCorrection> supported() const
    {
        const DeviceCall call;
        return m_control.supported();
    }

    void post(std::string_view event, const std::vector<FactoryCorrection>& corrections)
    {
        const auto [json, text] = namesOf(corrections);
        post({{QStringLiteral("event"), toJson(event)}, {QStringLiteral("corrections"), json}},
             fmt::format("{}: {}", event, text));
    }

    void post(QJsonObject json, std::string text)
    {
        const std::scoped_lock lock{m_mutex};
        if (m_loop)
            m_loop->post(std::move(json), std::move(text));
    }

    const Control& m_control;
    std::mutex m_mutex;
    WatchLoop* m_loop;
};

/// Keeps a reporter with the control for as long as it lives.
class Reporting {
public:
    Reporting(Instrument& instrument, Control& control, WatchLoop& loop)
        : Reporting{instrument, control, std::make_shared<Reporter>(control, loop)} // ends what fails below
    {
        m_instrument.keep(m_reporter); // a control that is away does not let it go
        m_instrument.undisturbed([this] {
            m_control.addObserver(m_reporter.get());
            if (m_instrument.lifecycle().isAway()) // its return tells both
                return;
            m_reporter->onSupportedChanged();
            m_reporter->onValidChanged();
        });
    }
    Reporting(const Reporting&) = delete;
    Reporting& operator=(const Reporting&) = delete;
    ~Reporting()
    {
        m_reporter->silence();
        m_instrument.undisturbed([this] { m_control.removeObserver(m_reporter.get()); });
    }

private:
    Reporting(Instrument& instrument, Control& control, std::shared_ptr<Reporter> reporter)
        : m_instrument{instrument}
        , m_control{control}
        , m_reporter{std::move(reporter)}
    {
    }

    Instrument& m_instrument;
    Control& m_control;
    const std::shared_ptr<Reporter> m_reporter;
};

} // namespace

void watchCorrections(Session& session, std::optional<std::uint64_t> count)
{
    auto& instrument = session.instrument();
    const auto control = instrument.control<Control>();
    instrument.awaitControl(Control::registryKey);
    WatchLoop loop{instrument.lifecycle(), count, session.output()};
    const Reporting reporting{instrument, *control, loop};
    loop.run();
}

} // namespace tarn::console
