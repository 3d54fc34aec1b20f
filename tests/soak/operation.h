#pragma once

#include "cell.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

namespace tarn::soak {

/// What an operation does with the place that its control's numbers are written to.
enum class Role {
    Neither,
    Reads,
    Writes,
    Wipes, ///< what is there then is not known
};

/// How an operation reaches the instrument.
enum class Way {
    None, ///< it does not
    Call, ///< it returns with the answer
    Request, ///< it waits for a completion
    LongRequest, ///< the same, and the instrument may be busy with another one
    Order, ///< it returns at once; notifications tell how it ended
};

/// What an operation has returned.
struct Answer {
    std::optional<bool> isSuccess; ///< if it says so
    std::optional<std::uint64_t> number; ///< what was read
};

/// What an operation is given.
struct Use {
    std::uint64_t number; ///< to be written
    std::size_t thread; ///< that makes it
    bool isFilled; ///< whether a number is known to be in the place before
};

/// The result of an operation that can say that it has failed.
template <class Result>
Answer resultOf(const Result& result)
{
    return {.isSuccess = static_cast<bool>(result), .number = {}};
}

/// The same for one that reads a number, which `decode` gets out of the value.
template <class Result, class Decode>
Answer readingOf(const Result& result, Decode decode)
{
    if (!result)
        return {.isSuccess = false, .number = {}};
    return {.isSuccess = true, .number = decode(*result)};
}

/// One operation of an adapter. The first one of a control reads its place, or has nothing to do with it.
template <class Control>
struct Operation {
    const char* name;
    Way way;
    Role role;
    std::function<Answer(Control&, const Use& use)> run;
    unsigned locks = 1; ///< how often it takes a handle
    unsigned callsPerLock = 1; ///< of the instrument
    unsigned emissions = 0; ///< that it emits if it has reached the instrument
};

template <class Control>
using Operations = std::vector<Operation<Control>>;

/// The place of a control's numbers.
struct Place {
    std::uint64_t range = 1; ///< how many of them can be told apart
    bool isPerThread = false; ///< whether each thread has one of its own
};

/// Reads and writes a setting that takes the numbers from `lowest` on.
template <class Control, class Get, class Set>
Operations<Control> setting(const char* getName, Get get, const char* setName, Set set, const Place& place,
                            std::uint64_t lowest, unsigned emissions = 0)
{
    using Value = std::remove_cvref_t<std::invoke_result_t<Get, Control&>>;
    return {
        {getName, Way::Call, Role::Reads,
         [=](Control& control, const Use&) {
             return Answer{.isSuccess = {}, .number = static_cast<std::uint64_t>(std::invoke(get, control)) - lowest};
         }},
        {setName, Way::Call, Role::Writes,
         [=](Control& control, const Use& use) {
             std::invoke(set, control, static_cast<Value>(lowest + use.number % place.range));
             return Answer{};
         },
         1, 1, emissions},
    };
}

} // namespace tarn::soak
