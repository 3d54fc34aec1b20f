#include <simulator/usbid.h>

#include <utility>

namespace tarn::simulator {

namespace {

class UsbIdControl final : public sdk::service::IMemoryUsbIdControl {
public:
    explicit UsbIdControl(std::shared_ptr<Bench> bench)
        : m_bench{std::move(bench)}
    {
    }

    bool isAvailable() override
    {
        return m_bench->operations.call([] { return true; });
    }

    DeviceRecord currentDevice() override
    {
        return m_bench->operations.call([this] { return m_bench->usbIdentity.current(); });
    }

    std::vector<DeviceRecord> supportedDevices() override
    {
        return m_bench->operations.call([] {
            const auto records = UsbIdentity::supported();
            return std::vector<DeviceRecord>{records.begin(), records.end()};
        });
    }

    void writeUsbId(const UsbId& usbId, sdk::Completion<> completion) override
    {
        m_bench->operations.request(std::move(completion), [&bench = *m_bench, usbId]() -> std::error_code {
            if (bench.faults.isWriteProtected())
                return Error::WriteProtected;
            if (const auto failure = bench.usbIdentity.write(usbId))
                return failure;
            bench.operations.reoffer();
            return {};
        });
    }

private:
    const std::shared_ptr<Bench> m_bench;
};

} // namespace

MakeControl installUsbId(const std::shared_ptr<Bench>& bench)
{
    return [bench]() -> std::shared_ptr<sdk::service::IMemoryUsbIdControl> {
        return std::make_shared<UsbIdControl>(bench);
    };
}

} // namespace tarn::simulator
