// The contract of providers has no library of its own: this one hands it on, for scripts/abi.

#include <provider/ideviceprovider.h>

namespace tarn::provider {

void accept(IDeviceProvider& /*provider*/) { }

} // namespace tarn::provider
