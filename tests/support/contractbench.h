#pragma once

#include <support/adapteroperation.h>
#include <support/fakevna.h>

#include <devices/reacquiringcontrol.h>
#include <sdk/controlhandle.h>

#include <atomic>
#include <functional>
#include <memory>

namespace tarn::tests {

/// The key under which the device offers a contract's control: the contract's own for an interface with several.
template <class Contract>
constexpr sdk::Key keyOf = [] {
    if constexpr (requires { Contract::key; })
        return Contract::key;
    else
        return Contract::Sdk::key;
}();

/// An adapter before a device that a test offers controls on and takes them from.
template <class Contract>
struct ContractBench {
    using Sdk = typename Contract::Sdk;
    using Adapter = typename Contract::Adapter;
    using Mock = typename Contract::Mock;
    using Op = Operation<Adapter, Mock>;

    /// Begins with a control if `offered`. The adapter is made from a moved handle.
    explicit ContractBench(const Op& op, bool offered = true)
        : operation{op}
        , first{offered ? offer() : std::weak_ptr<Mock>{}}
    {
        stub(first);
    }

    ~ContractBench()
    {
        inside = nullptr; // an adapter's destructor may call the SDK and the device
        device.whenAsked(nullptr);
    }

    ContractBench(const ContractBench&) = delete;
    ContractBench& operator=(const ContractBench&) = delete;

    /// Offers a new control, which the device alone owns.
    std::weak_ptr<Mock> offer()
    {
        const auto mock = std::make_shared<Mock>();
        device.template offer<Sdk>(keyOf<Contract>, mock);
        return mock;
    }

    void stub(const std::weak_ptr<Mock>& control)
    {
        if (const auto mock = control.lock())
            operation.stub(*mock, [this] {
                ++sdkCalls;
                if (inside)
                    inside();
            });
    }

    std::weak_ptr<Mock> offerStubbed()
    {
        auto control = offer();
        stub(control);
        return control;
    }

    void drop() { device.drop(keyOf<Contract>); }
    [[nodiscard]] int asked() const { return device.asked(keyOf<Contract>); }
    Outcome run() { return operation.run(adapter); }

    const Op& operation;
    FakeVna device;
    std::weak_ptr<Mock> first;
    std::atomic<int> sdkCalls{0}; ///< the operation's SDK call, on all controls
    std::function<void()> inside; ///< runs in every one of them
    Adapter adapter{devices::ReacquiringControl<Sdk>{
        [this] { return sdk::ControlHandle<Sdk>{device.template control<Sdk>(keyOf<Contract>)}; }}};
};

} // namespace tarn::tests
