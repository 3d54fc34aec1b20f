// What the guard costs a request that the device completes before the operation returns: a serial number read through
// the adapter, from a guarded device against the bare one.

#include "fakes.h"
#include "ways.h"

#include <devices/service/sdkserialnumbercontrol.h>
#include <guard/guard.h>

#include <memory>

namespace tarn::benchmarks {
namespace {

using Sdk = sdk::service::IMemorySerialNumberControl;
using Adapter = devices::service::SdkSerialNumberControl;

/// Has a serial number and nothing else.
class Device final : public sdk::IVna {
public:
    std::shared_ptr<void> control(sdk::Key key) override { return key == Sdk::key ? m_serial : nullptr; }
    void addObserver(Observer* /*observer*/) override { }
    void removeObserver(Observer* /*observer*/) override { }
    [[nodiscard]] sdk::Model model() const override { return sdk::Model{"Benchmark"}; }

private:
    std::shared_ptr<Sdk> m_serial = std::make_shared<SerialNumber>();
};

Way reading(const char* name, const std::shared_ptr<sdk::IVna>& device)
{
    return repeated("guarded request", name,
                    [adapter = adapterOn<Adapter, Sdk>(device)] { return adapter->serialNumber(); });
}

} // namespace

std::vector<Way> allWays()
{
    const auto device = std::make_shared<Device>();
    return {reading("library", guard::guarded(device, {})), reading("without the guard", device)};
}

} // namespace tarn::benchmarks
