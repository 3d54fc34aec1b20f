#include <console/change.h>

#include <fmt/format.h>

namespace tarn::console {

namespace {

using Progress = LongRequest::Progress;

std::string counts(const Change& change, const Progress& progress)
{
    const auto unit = change.progress ? change.progress->unit : OperationName::Unit::Steps;
    if (unit == OperationName::Unit::Percent)
        return fmt::format("{} %", progress.done);
    return fmt::format("{} of {} {}", progress.done, progress.total,
                       unit == OperationName::Unit::Bytes ? "bytes" : "steps");
}

/// What is known of a change that has no end; continues a message.
std::string howFar(const Change& change, const std::optional<Progress>& last)
{
    if (!last)
        return fmt::format(" while {}: it reported no progress; whether {} was changed is not known", change.doing,
                           change.target);
    return fmt::format(" while {}: it reported {} as done; whether more of {} was changed is not known", change.doing,
                       counts(change, *last), change.target);
}

} // namespace

Error changeFailed(const Change& change, const std::optional<Progress>& last)
{
    if (!change.progress)
        return Error{ErrorCode::Failed,
                     fmt::format("{} failed: the instrument refused it or could not do it; whether {} was changed is "
                                 "not known",
                                 change.doing, change.target),
                     change.advice};
    if (!last)
        return Error{ErrorCode::Failed,
                     fmt::format("{} failed: the instrument refused it and reported no progress, so {} should be as "
                                 "it was",
                                 change.doing, change.target),
                     "check that the instrument takes such a change, its size or value included, and is not protected "
                     "against it, then try again"};
    return Error{ErrorCode::Failed,
                 fmt::format("{} failed after {}, so {}", change.doing, counts(change, *last), change.leftBehind),
                 change.advice};
}

Error changeLost(const Change& change, const std::optional<Progress>& last)
{
    return Error{ErrorCode::InstrumentLost, "the instrument was lost" + howFar(change, last), change.advice};
}

Error changeUnanswered(const Change& change, const std::optional<Progress>& last)
{
    return unanswered(howFar(change, last), change.advice);
}

Error changeBroken(const Change& change, std::string_view what)
{
    return Error{ErrorCode::Failed,
                 fmt::format("{} failed: {}; whether {} was changed is not known", change.doing, what, change.target),
                 change.advice};
}

} // namespace tarn::console
