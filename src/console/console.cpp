#include <console/console.h>

#include <console/checkprovidercommand.h>
#include <console/commandline.h>
#include <console/completioncommand.h>
#include <console/controlscommand.h>
#include <console/controltable.h>
#include <console/interruptguard.h>
#include <console/platform.h>
#include <console/providerscommand.h>
#include <console/tourcommand.h>

#include <optional>

namespace tarn::console {

void addCommands(CommandLine& line)
{
    ProvidersCommand::addTo(line);
    CheckProviderCommand::addTo(line);
    ControlsCommand::addTo(line);
    for (const auto& row : controlRows())
        row.addTo(line);
    TourCommand::addTo(line);
    CompletionCommand::addTo(line);
}

namespace {

/// Runs `step` and reports what it throws; the exit code.
template <class Step>
int reporting(const Output& output, Step step)
{
    try {
        step();
        return 0;
    } catch (const OutputClosed&) {
        return 0; // the reader had enough; it was not for lack of trying
    } catch (...) {
        const auto error = caughtError();
        output.error(error);
        return exitCode(error.code());
    }
}

/// Qt's own warnings concern developers; they go the way of the other details.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a plain function has nothing else
const Output* warningsTo = nullptr;

void onQtMessage(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& message)
{
    if (warningsTo)
        warningsTo->detail(message.toStdString());
}

} // namespace

void prepare()
{
    platform::prepare();
    platform::holdInterrupts();
    qInstallMessageHandler(&onQtMessage);
}

int run(int argc, const char* const* argv)
{
    CommandLine line;
    addCommands(line);
    std::optional<Error> usage;
    try {
        line.parse(argc, argv);
    } catch (const Error& error) {
        usage = error;
    }
    const Output output{line.options().output, line.command()};
    warningsTo = &output;
    output.exitOnInterrupt();
    Session session{line.options(), output};
    const auto code = reporting(output, [&] {
        if (usage)
            throw *usage; // NOLINT(cert-err09-cpp,cert-err61-cpp,misc-throw-by-value-catch-by-reference)
        line.run(session);
    });
    session.close(code); // only now: it may not come back from that
    warningsTo = nullptr;
    return code;
}

} // namespace tarn::console
