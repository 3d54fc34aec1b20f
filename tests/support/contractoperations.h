#pragma once

#include <support/adaptercontract.h>

#include <sdk/frequencyplan.h>

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <utility>

/// The operations that several adapters have, for their contracts.
namespace tarn::tests {

/// An operation without a result.
template <class Adapter, class Run>
[[nodiscard]] auto noResult(Run run)
{
    return [run](Adapter& adapter) {
        std::invoke(run, adapter);
        return Outcome::NoResult;
    };
}

template <class Adapter, class Mock>
[[nodiscard]] Operation<Adapter, Mock> frequencyPlanOperation()
{
    return {"frequencyPlan",
            [](Adapter& adapter) { return adapter.frequencyPlan().empty() ? Outcome::Unavailable : Outcome::Answered; },
            [](Mock& mock, std::function<void()> inside) {
                ON_CALL(mock, frequencyPlan).WillByDefault([inside = std::move(inside)] {
                    inside();
                    return sdk::FrequencyPlan{{{1.0, 2.0, 3}}};
                });
            }};
}

/// The return of the controls, where it attaches an observer.
template <class Adapter, class Mock>
[[nodiscard]] Operation<Adapter, Mock> attachOperation()
{
    return {"onControlsAvailable", noResult<Adapter>(&Adapter::onControlsAvailable),
            [](Mock& mock, std::function<void()> inside) {
                ON_CALL(mock, addObserver).WillByDefault(testing::InvokeWithoutArgs(std::move(inside)));
            }};
}

/// The release of the controls, where it detaches one.
template <class Adapter, class Mock>
[[nodiscard]] Operation<Adapter, Mock> detachOperation()
{
    return {"onControlsAboutToBeReleased", noResult<Adapter>(&Adapter::onControlsAboutToBeReleased),
            [](Mock& mock, std::function<void()> inside) {
                ON_CALL(mock, removeObserver).WillByDefault(testing::InvokeWithoutArgs(std::move(inside)));
            }};
}

} // namespace tarn::tests
