#pragma once

#include <support/adapteroperation.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace sdk {
class IVna;
}

namespace tarn::tests {

/// An adapter before a device that offers its control, for tests that know no type of them.
class AnyBench {
public:
    AnyBench() = default;
    AnyBench(const AnyBench&) = delete;
    AnyBench& operator=(const AnyBench&) = delete;
    virtual ~AnyBench() = default;

    /// The operation.
    virtual Outcome run() = 0;

    /// `call` runs in every call of the device and of the control, until there is another; null for none.
    virtual void atEveryCall(std::function<void()> call) = 0;

    /// Has the device drop the control. Whether that was the end of it.
    virtual bool drop() = 0;

    /// Offers a new control.
    virtual void offer() = 0;

    /// How often the adapter has emitted a signal or told an observer something.
    [[nodiscard]] virtual int heard() const = 0;

    /// How often the operation has called a control.
    [[nodiscard]] virtual int sdkCalls() const = 0;

    /// Whether the thread that made the bench is the one on which the operation calls.
    [[nodiscard]] virtual bool isBoundToThread() const = 0;
};

/// One public operation of one adapter.
struct AnyOperation {
    std::string name;
    int calls; ///< of the device and of a control that was not asked for before
    std::function<std::unique_ptr<AnyBench>()> bench;
};

/// That `operation` is done by a call from another thread, after one that has failed.
void expectDoneByTheNextCall(const AnyOperation& operation, AnyBench& bench);

/// Every public operation of the adapters of all controls, but their creation.
[[nodiscard]] std::vector<AnyOperation> everyOperation();

/// A device that offers the controls of all of them. Each runs `inside`, which must outlive it, in
/// every call.
[[nodiscard]] std::shared_ptr<sdk::IVna> deviceWithEveryControl(const std::function<void()>& inside);

} // namespace tarn::tests
