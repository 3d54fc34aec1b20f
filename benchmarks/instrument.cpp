// The simulated instrument through the library: a plain operation, and its largest image.

#include "fakes.h"
#include "ways.h"

#include <devices/service/sdkloleakagecontrol.h>
#include <devices/service/sdkmemoryoperationscontrol.h>
#include <sdk/ivna.h>
#include <simulator/open.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <vector>

namespace tarn::benchmarks {
namespace {

using devices::service::SdkLoLeakageControl;
using devices::service::SdkMemoryOperationsControl;
using SdkMemory = sdk::service::IMemoryOperationsControl;
using SdkLoLeakage = sdk::service::ILoLeakageControl;

} // namespace

std::vector<Way> allWays()
{
    const auto address = QStringLiteral("profile=full,memory-size=256MiB,speed=unlimited");
    const auto device = simulator::open({address, QStringLiteral("none")}).value();
    const auto leakage = adapterOn<SdkLoLeakageControl, SdkLoLeakage>(device);
    const auto memory = adapterOn<SdkMemoryOperationsControl, SdkMemory>(device);
    const auto image = std::make_shared<const std::vector<std::byte>>(std::size_t{256} << 20U, std::byte{0xa5});
    if (!memory->write(*image))
        std::abort();
    const auto copy = [image] { return std::vector<std::byte>{image->begin(), image->end()}; };
    return {
        repeated("operation of the simulated instrument", "library", [leakage] { return leakage->isEnabled(); }),
        repeated("read the simulated memory of 256 MiB", "library", [memory] { return memory->read(); }),
        repeated("read the simulated memory of 256 MiB", "memcpy", copy),
        repeated("write the simulated memory of 256 MiB", "library", [memory, image] { return memory->write(*image); }),
        repeated("write the simulated memory of 256 MiB", "memcpy", copy),
    };
}

} // namespace tarn::benchmarks
