#include <fuzz/fuzz.h>

#include <simulator/archive.h>
#include <simulator/calibrationcheck.h>
#include <simulator/calibrationdata.h>

using namespace tarn::simulator;
using tarn::fuzz::require;

namespace {

template <class Data>
void load(const QByteArray& bytes)
{
    Data data{};
    Reader reader{bytes};
    reader(data);
    if (!reader.isComplete())
        return;
    const auto written = Writer{data}.bytes();
    require(written.size() == bytes.size(), "data takes as many bytes as it came from");
    Data again{};
    Reader second{written};
    second(again);
    require(second.isComplete() && Writer{again}.bytes() == written, "data is read back as it was written");
    for (const auto portCount : {2U, 4U}) {
        const CalibrationLimits limits{portCount, portCount == 2, true};
        require(check(again, limits) == check(data, limits), "data is as good when it is read back");
    }
}

} // namespace

/// Which data, then the bytes that it is kept as.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const auto bytes
        = QByteArray::fromRawData(reinterpret_cast<const char*>(data) + 1, static_cast<qsizetype>(size) - 1);
    switch (data[0] % 3) {
    case 0:
        load<SystemTerms>(bytes);
        break;
    case 1:
        load<IfswCalibration>(bytes);
        break;
    default:
        load<PowerCalibration>(bytes);
    }
    return 0;
}
