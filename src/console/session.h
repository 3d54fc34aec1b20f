#pragma once

#include <console/instrument.h>
#include <console/output.h>
#include <console/providercatalogue.h>

#include <QString>

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace tarn::console {

/// The options that stand before or after any command.
struct GlobalOptions {
    std::string provider = "simulator";
    std::optional<std::string> address; ///< nothing: the provider's default instrument
    std::optional<std::string> state; ///< nothing: the environment or the user's state folder
    std::chrono::milliseconds timeout = std::chrono::seconds{30}; ///< how long the instrument may take without progress
    OutputOptions output;
};

/// One run of the program: what the global options select, obtained when a command first needs it. An instrument that
/// keeps the program waiting for longer than it may ends it.
class Session {
public:
    /// `output` must outlive it.
    Session(GlobalOptions options, const Output& output);

    [[nodiscard]] const Output& output() const { return m_output; }

    /// The provider plug-ins.
    [[nodiscard]] const ProviderCatalogue& providers();

    /// The selected provider; throws `Error` (`NotFound`), naming those that there are.
    [[nodiscard]] const ProviderCatalogue::Loaded& provider();

    /// The selected instrument; throws `Error` when it cannot be opened.
    [[nodiscard]] Instrument& instrument();

    /// Opens the device of the selected instrument, for a command that does without the guard and the controls; throws
    /// `Error` when it cannot be opened.
    [[nodiscard]] std::shared_ptr<sdk::IVna> openDevice();

    /// How long the instrument may take without progress.
    [[nodiscard]] std::chrono::milliseconds timeout() const { return m_options.timeout; }

    /// Closes the instrument, once the command has ended with the exit code `code`.
    void close(int code);

    /// The address of the instrument, empty for the provider's default; throws `Error` (`Usage`) for one that is not
    /// UTF-8.
    [[nodiscard]] QString address() const;

    /// Selects another instrument than the command line does. Before the first use.
    void setAddress(const QString& address) { m_options.address = address.toStdString(); }

private:
    GlobalOptions m_options;
    const Output& m_output;
    std::optional<ProviderCatalogue> m_providers;
    std::unique_ptr<Instrument> m_instrument;
};

} // namespace tarn::console
