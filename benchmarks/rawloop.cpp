// The loop that the adapter's is held against; it does not see what it calls, either.

#include "fakes.h"

namespace tarn::benchmarks {

void tellAll(const std::vector<devices::service::ISerialNumberControl::IObserver*>& observers,
             const devices::service::Progress& progress)
{
    for (auto* const observer : observers)
        observer->onWriteProgressChanged(progress);
}

} // namespace tarn::benchmarks
