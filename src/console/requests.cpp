#include <console/requests.h>

namespace tarn::console {

void whileThere(const Instrument& instrument, std::uint64_t registryKey, std::string_view what,
                const std::function<void()>& operation)
{
    for (int attempt = 1; attempt <= attempts; ++attempt) {
        instrument.awaitControl(registryKey);
        const bool made = instrument.lifecycle().whileHere([&] {
            if (!instrument.isThere(registryKey))
                return false;
            operation();
            return true;
        });
        if (made)
            return;
    }
    throw Error{ErrorCode::Failed,
                "the instrument keeps dropping its controls, and " + std::string{what} + " could not be reached",
                "check the instrument and its connection, then try again"};
}

} // namespace tarn::console
