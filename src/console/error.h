#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace tarn::console {

/// Why a command did not do what it was asked for. Each has a stable word for machines and an exit
/// code; `docs/exit-codes.md` explains them.
enum class ErrorCode {
    Failed, ///< the operation failed; unless the message says otherwise, the instrument is unchanged
    NotConforming, ///< the provider does not keep the contract
    Usage, ///< the command line cannot be understood
    NotFound, ///< no such provider, instrument or file
    NotOffered, ///< the instrument does not have the control
    Busy, ///< somebody else holds the instrument
    Refused, ///< a safety rule, or the user, said no
    InstrumentLost, ///< the control was there and is not any more
    LocalFile, ///< a file of this computer cannot be read or written
    Interrupted, ///< Ctrl-C, or a signal that is handled as Ctrl-C is
};

[[nodiscard]] std::string_view errorWord(ErrorCode code);
[[nodiscard]] int exitCode(ErrorCode code);

/// Ends a command; caught in one place, which reports it. Texts are UTF-8 and hold the names of
/// files as they are; whoever shows them to a person escapes them.
class Error final : public std::exception {
public:
    /// `message` says what is wrong, `hint` what to do next (may be empty).
    explicit Error(ErrorCode code, std::string message, std::string hint = {})
        : m_code{code}
        , m_message{std::move(message)}
        , m_hint{std::move(hint)}
    {
    }

    [[nodiscard]] ErrorCode code() const noexcept { return m_code; }
    [[nodiscard]] const std::string& message() const noexcept { return m_message; }
    [[nodiscard]] const std::string& hint() const noexcept { return m_hint; }
    [[nodiscard]] const char* what() const noexcept override { return m_message.c_str(); }

private:
    ErrorCode m_code;
    std::string m_message;
    std::string m_hint;
};

/// The error of an instrument that did not answer in time. `about` goes on from there (" while ..."), `hint` says what
/// to do besides looking after the instrument (may be empty).
[[nodiscard]] Error unanswered(std::string_view about, std::string_view hint = {});

/// The exception that is being handled as an error: it says what is known of anything but an `Error`.
/// Only in a `catch`.
[[nodiscard]] Error caughtError();

} // namespace tarn::console
