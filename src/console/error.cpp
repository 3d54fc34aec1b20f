#include <console/error.h>

#include <fmt/format.h>

#include <new>

namespace tarn::console {

namespace {

struct Row {
    std::string_view word;
    int exitCode;
};

constexpr Row row(ErrorCode code)
{
    switch (code) {
    case ErrorCode::Failed:
        return {"failed", 1};
    case ErrorCode::NotConforming:
        return {"not-conforming", 1};
    case ErrorCode::Usage:
        return {"usage", 2};
    case ErrorCode::NotFound:
        return {"not-found", 3};
    case ErrorCode::NotOffered:
        return {"not-offered", 3};
    case ErrorCode::Busy:
        return {"busy", 3};
    case ErrorCode::Refused:
        return {"refused", 4};
    case ErrorCode::InstrumentLost:
        return {"instrument-lost", 5};
    case ErrorCode::LocalFile:
        return {"local-file", 9};
    case ErrorCode::Interrupted:
        return {"interrupted", 130};
    }
    return {"failed", 1};
}

} // namespace

std::string_view errorWord(ErrorCode code)
{
    return row(code).word;
}

int exitCode(ErrorCode code)
{
    return row(code).exitCode;
}

Error unanswered(std::string_view about, std::string_view hint)
{
    return Error{ErrorCode::InstrumentLost, fmt::format("the instrument did not answer in time{}", about),
                 fmt::format("check the instrument and its connection, or give it more time with --timeout{}{}",
                             hint.empty() ? "" : "; ", hint)};
}

Error caughtError()
{
    try {
        throw;
    } catch (const Error& error) {
        return error;
    } catch (const std::bad_alloc&) {
        return Error{ErrorCode::Failed, "there is not enough memory for this",
                     "close other programs on this computer, then try again"};
    } catch (const std::exception& error) {
        return Error{ErrorCode::Failed, error.what(), "the instrument reported this; check it and try again"};
    } catch (...) { // a device may throw anything
        return Error{ErrorCode::Failed, "something failed without saying what", "check the instrument and try again"};
    }
}

} // namespace tarn::console
