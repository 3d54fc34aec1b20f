#include <console/requests.h>

#include <chrono>

namespace tarn::console {

namespace {

/// For so long one drop after another is waited out: an instrument may owe one for each of many operations.
constexpr std::chrono::seconds patience{2};

} // namespace

void whileThere(const Instrument& instrument, std::uint64_t registryKey, std::string_view what,
                const std::function<void()>& operation)
{
    const auto end = std::chrono::steady_clock::now() + patience;
    int missed = 0;
    while (missed < attempts && std::chrono::steady_clock::now() < end) {
        instrument.awaitControl(registryKey);
        bool isAnnounced = true; // an absence that was announced ends with a return
        const bool made = instrument.lifecycle().whileHere([&] {
            isAnnounced = false;
            if (!instrument.isThere(registryKey))
                return false;
            operation();
            return true;
        });
        if (made)
            return;
        missed += isAnnounced ? 0 : 1;
    }
    throw Error{ErrorCode::Failed,
                "the instrument keeps dropping its controls, and " + std::string{what} + " could not be reached",
                "check the instrument and its connection, then try again"};
}

} // namespace tarn::console
