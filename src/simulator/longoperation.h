#pragma once

#include <simulator/clock.h>

#include <cstdint>
#include <system_error>

namespace tarn::simulator {

/// A request that takes its time: carried out piece by piece, so that something can happen in
/// between, and only one at a time. Each operation is used once. `Operations` calls everything but
/// `complete` on the instrument's thread, and `complete` as every other completion.
class LongOperation {
public:
    LongOperation() = default;
    LongOperation(const LongOperation&) = delete;
    LongOperation& operator=(const LongOperation&) = delete;
    virtual ~LongOperation() = default;

    /// Begins. An error ends the operation: neither `work` nor `close` will be called.
    [[nodiscard]] virtual std::error_code begin() = 0;

    /// How much there is to do, at least 1, and how much of it is done at once. From `begin` on.
    [[nodiscard]] virtual std::uint32_t total() const = 0;
    [[nodiscard]] virtual std::uint32_t piece() const = 0;

    /// How long it takes to get from `from` to `to`.
    [[nodiscard]] virtual Duration time(std::uint32_t from, std::uint32_t to) const = 0;

    /// Does what there is to do from `from` to `to`. An error ends the operation.
    [[nodiscard]] virtual std::error_code work(std::uint32_t from, std::uint32_t to) = 0;

    /// Tells who wants to know that `done` is done.
    virtual void notify(std::uint32_t done) = 0;

    /// Makes durable what was done and lets go of what is not needed any more. `result` is how the
    /// work ended, the return value how the operation ends.
    [[nodiscard]] virtual std::error_code close(std::error_code result) = 0;

    /// Called at last, whatever happens, and once unless the instrument is told to misbehave: reports the end.
    virtual void complete(std::error_code result) = 0;
};

} // namespace tarn::simulator
