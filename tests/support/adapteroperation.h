#pragma once

#include <functional>
#include <string>

namespace tarn::tests {

/// What the result of an operation tells its caller.
enum class Outcome {
    Unavailable, ///< the result that stands for an unavailable control
    Answered, ///< another one
    NoResult, ///< nothing: the operation has none
};

/// One operation of an adapter, together with one SDK call that it makes.
template <class Adapter, class Mock>
struct Operation {
    std::string name;
    /// Runs the operation.
    std::function<Outcome(Adapter&)> run;
    /// Makes that SDK call of `mock` first run `inside`, then answer so that the outcome of an
    /// operation with a result is `Answered`.
    std::function<void(Mock& mock, std::function<void()> inside)> stub;
};

} // namespace tarn::tests
