#pragma once

#include <sdk/ivna.h>

#include <chrono>
#include <memory>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

/// Tells whoever binds a device to the contract which of its guarantees the binding keeps.
namespace tarn::conformance {

/// Something that was seen of a device.
struct Finding {
    std::string where; ///< the control and its operation: "file-memory fileList"
    std::string what; ///< the end of a sentence: "was completed 2 times"
};

/// What was seen of a guarantee.
enum class Verdict {
    Kept, ///< something that would have broken it otherwise
    Broken, ///< see the findings
    NotChecked, ///< nothing was seen that could have broken it; see the reason
};

/// What was counted and measured during a check. Only what the check itself asked for and heard.
struct Figures {
    unsigned calls = 0; ///< operations of the device and its controls
    std::chrono::nanoseconds longestCall{}; ///< how long one of them took to return
    unsigned requests = 0; ///< those among them that end with a completion
    std::chrono::nanoseconds longestRequest{}; ///< from the call to the first completion
    unsigned completionsInside = 0; ///< on the caller's thread, before the operation returned
    unsigned completionsElsewhere = 0; ///< on another thread, or later
    unsigned notifications = 0; ///< of the observers of the check
    unsigned notificationThreads = 0; ///< on how many threads they came
    unsigned drops = 0; ///< how often the device announced that it drops its controls, as far as it was observed
};

/// How a device keeps one guarantee.
struct Outcome {
    Verdict verdict = Verdict::NotChecked; ///< what it comes to
    std::string reason = {}; ///< why it was not checked
    std::vector<Finding> findings = {}; ///< how it was broken
    std::vector<Finding> notes = {}; ///< what is allowed, and kept the check from seeing more
    Figures seen = {}; ///< what that rests on
    bool isStuck = false; ///< a call has not come back: its thread and the device were given up
};

/// What a check may do, and how long it waits.
struct Options {
    bool writes = false; ///< whether the instrument may be changed; it is put back as it was
    std::chrono::milliseconds limit = std::chrono::seconds{10}; ///< that a call or a request may take without progress
    std::chrono::milliseconds patience = std::chrono::milliseconds{1500}; ///< for notifications that come by themselves
    std::chrono::milliseconds drop{}; ///< how long to wait for somebody to make the instrument drop its controls
    std::stop_token stop = {}; ///< ends a check early, with the instrument as it was
};

class Bench;

/// One guarantee of the contract.
struct Guarantee {
    std::string_view name; ///< lower-case words with hyphens; stable
    std::string_view sentence; ///< what is guaranteed
    std::string_view remedy; ///< where to look in a binding that breaks it
    bool isOfWrites; ///< whether it can only be checked by changing the instrument
    void (*look)(Bench& bench); ///< by `check` alone
};

/// All of them, in the order in which they are best checked.
///
/// Threads: thread-safe; at once.
[[nodiscard]] std::span<const Guarantee> guarantees();

/// Checks one guarantee on `device` (never null, without a guard around it, held by nobody else), and closes the
/// device. The instrument must not be used by anybody else meanwhile.
///
/// The device is called on a thread of the check's own. When a call does not come back within the limit, that thread
/// and the device are given up, and so is what stands between them; they stay until the program ends, and a provider
/// must not be unloaded any more. What the device calls too late finds objects that live that long as well. A device
/// that crashes takes the program with it.
///
/// Throws `std::system_error` if that thread cannot be started.
///
/// Threads: thread-safe; blocks while the check runs: each call and each request for the limit at most.
[[nodiscard]] Outcome check(const Guarantee& guarantee, std::shared_ptr<sdk::IVna> device, const Options& options);

} // namespace tarn::conformance
