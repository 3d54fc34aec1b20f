#include "rawloop.h"

namespace tarn::benchmarks {

void tellAllFromAfar(const std::vector<devices::service::ISerialNumberControl::IObserver*>& observers,
                     const devices::service::Progress& progress)
{
    for (auto* const observer : observers)
        observer->onWriteProgressChanged(progress);
}

} // namespace tarn::benchmarks
