#include <simulator/memoryoperations.h>

#include <sdk/service/imemoryoperationscontrol.h>
#include <simulator/flashmemory.h>
#include <simulator/observers.h>

#include <utility>

namespace tarn::simulator {

namespace {

using Control = sdk::service::IMemoryOperationsControl;
using Image = std::vector<std::byte>;
using Progress = void (Control::IObserver::*)(unsigned int, unsigned int);

/// The memory device as a part of the instrument.
struct Device {
    explicit Device(Bench& theBench)
        : bench{theBench}
        , memory{bench.settings.memorySize, *bench.storage}
    {
        if (bench.settings.faults.corrupt)
            memory.corrupt(bench.settings.seed);
    }

    Bench& bench;
    FlashMemory memory; ///< the long operation's that is running
    Observers<Control::IObserver> observers;
};

constexpr std::uint32_t unitsUpTo(std::uint32_t position, std::uint32_t unit)
{
    return (position / unit) + (position % unit != 0 ? 1 : 0);
}

/// How long something takes that takes `time` for each unit begun between `from` and `to`.
Duration timeOf(std::uint32_t from, std::uint32_t to, std::uint32_t unit, Duration time)
{
    return time * (unitsUpTo(to, unit) - unitsUpTo(from, unit));
}

/// What the operations have in common.
class MemoryOperation : public LongOperation {
public:
    MemoryOperation(std::shared_ptr<Device> device, Progress progress, std::uint32_t granularity)
        : m_device{std::move(device)}
        , m_progress{progress}
        , m_granularity{granularity}
    {
    }

    std::error_code begin() override
    {
        m_total = memory().imageLength();
        return {};
    }

    [[nodiscard]] std::uint32_t total() const final { return m_total; }

    [[nodiscard]] std::uint32_t piece() const final
    {
        constexpr std::uint32_t pieces = 128;
        return unitsUpTo(unitsUpTo(m_total, pieces), m_granularity) * m_granularity;
    }

    void notify(std::uint32_t done) final { m_device->observers.notify(m_progress, done, m_total); }

    [[nodiscard]] Duration time(std::uint32_t from, std::uint32_t to) const final
    {
        return scaled(m_device->bench.settings, realTime(from, to));
    }

    std::error_code close(std::error_code result) override { return result; }

protected:
    [[nodiscard]] virtual Duration realTime(std::uint32_t from, std::uint32_t to) const
    {
        return timeOf(from, to, FlashMemory::pageSize, FlashMemory::pageReadTime);
    }

    [[nodiscard]] FlashMemory& memory() const { return m_device->memory; }
    [[nodiscard]] bool isWriteProtected() const { return m_device->bench.faults.isWriteProtected(); }

    /// Makes durable what was written; if that fails, so does an operation that has succeeded.
    [[nodiscard]] std::error_code save(std::error_code result) const
    {
        const auto failure = memory().save(*m_device->bench.storage);
        return result.value() != 0 ? result : failure;
    }

private:
    const std::shared_ptr<Device> m_device;
    const Progress m_progress;
    const std::uint32_t m_granularity; ///< of the pieces, in bytes
    std::uint32_t m_total = 0;
};

class Read final : public MemoryOperation {
public:
    Read(std::shared_ptr<Device> device, sdk::Completion<Image> completion)
        : MemoryOperation{std::move(device), &Control::IObserver::onReadProgressChanged, FlashMemory::pageSize}
        , m_completion{std::move(completion)}
    {
    }

    std::error_code begin() override
    {
        m_image.reserve(memory().imageLength());
        return MemoryOperation::begin();
    }

    std::error_code work(std::uint32_t from, std::uint32_t to) override
    {
        memory().read(from, to, m_image);
        return {};
    }

    std::error_code close(std::error_code result) override
    {
        if (result.value() != 0)
            m_image = {};
        return result;
    }

    void complete(std::error_code result) override { m_completion(std::move(m_image), result); }

private:
    const sdk::Completion<Image> m_completion;
    Image m_image;
};

/// An operation without a result.
class PlainOperation : public MemoryOperation {
public:
    PlainOperation(std::shared_ptr<Device> device, Progress progress, std::uint32_t granularity,
                   sdk::Completion<> completion)
        : MemoryOperation{std::move(device), progress, granularity}
        , m_completion{std::move(completion)}
    {
    }

    void complete(std::error_code result) final { m_completion(result); }

private:
    const sdk::Completion<> m_completion;
};

class Write final : public PlainOperation {
public:
    Write(std::shared_ptr<Device> device, Image image, sdk::Completion<> completion)
        : PlainOperation{std::move(device), &Control::IObserver::onWriteProgressChanged, FlashMemory::pageSize,
                         std::move(completion)}
        , m_image{std::move(image)}
    {
    }

    std::error_code begin() override
    {
        if (isWriteProtected())
            return Error::WriteProtected;
        if (m_image.empty() || m_image.size() > memory().capacity())
            return Error::BadSize;
        memory().startWriting(static_cast<std::uint32_t>(m_image.size()));
        return PlainOperation::begin();
    }

    std::error_code work(std::uint32_t from, std::uint32_t to) override
    {
        memory().write(m_image, from, to);
        return {};
    }

    std::error_code close(std::error_code result) override
    {
        m_image = {};
        return save(result);
    }

protected:
    [[nodiscard]] Duration realTime(std::uint32_t from, std::uint32_t to) const override
    {
        return timeOf(from, to, FlashMemory::sectorSize, FlashMemory::sectorEraseTime)
            + timeOf(from, to, FlashMemory::pageSize, FlashMemory::pageProgramTime);
    }

private:
    Image m_image;
};

class Erase final : public PlainOperation {
public:
    Erase(std::shared_ptr<Device> device, sdk::Completion<> completion)
        : PlainOperation{std::move(device), &Control::IObserver::onEraseProgressChanged, FlashMemory::sectorSize,
                         std::move(completion)}
    {
    }

    std::error_code begin() override
    {
        if (isWriteProtected())
            return Error::WriteProtected;
        memory().startErasing();
        return PlainOperation::begin();
    }

    std::error_code work(std::uint32_t from, std::uint32_t to) override
    {
        memory().erase(from, to);
        return {};
    }

    std::error_code close(std::error_code result) override { return save(result); }

protected:
    [[nodiscard]] Duration realTime(std::uint32_t from, std::uint32_t to) const override
    {
        return timeOf(from, to, FlashMemory::sectorSize, FlashMemory::sectorEraseTime);
    }
};

class IntegrityCheck final : public PlainOperation {
public:
    IntegrityCheck(std::shared_ptr<Device> device, sdk::Completion<> completion)
        : PlainOperation{std::move(device), &Control::IObserver::onIntegrityCheckProgressChanged,
                         FlashMemory::blockSize, std::move(completion)}
    {
    }

    std::error_code work(std::uint32_t from, std::uint32_t to) override
    {
        return memory().verify(from, to) ? std::error_code{} : Error::Corrupt;
    }
};

class MemoryOperationsControl final : public Control {
public:
    MemoryOperationsControl(std::shared_ptr<Bench> bench, std::shared_ptr<Device> device)
        : m_bench{std::move(bench)}
        , m_device{std::move(device)}
    {
    }

    bool isAvailable() override
    {
        return m_bench->operations.call([] { return true; });
    }

    void read(sdk::Completion<Image> completion) override
    {
        m_bench->operations.request(std::make_shared<Read>(m_device, std::move(completion)));
    }

    void write(Image image, sdk::Completion<> completion) override
    {
        m_bench->operations.request(std::make_shared<Write>(m_device, std::move(image), std::move(completion)));
    }

    void erase(sdk::Completion<> completion) override
    {
        m_bench->operations.request(std::make_shared<Erase>(m_device, std::move(completion)));
    }

    void integrityCheck(sdk::Completion<> completion) override
    {
        m_bench->operations.request(std::make_shared<IntegrityCheck>(m_device, std::move(completion)));
    }

    void addObserver(IObserver* observer) override { m_device->observers.add(observer); }
    void removeObserver(IObserver* observer) override { m_device->observers.remove(observer); }

private:
    const std::shared_ptr<Bench> m_bench;
    const std::shared_ptr<Device> m_device;
};

} // namespace

MakeControl installMemoryOperations(const std::shared_ptr<Bench>& bench)
{
    auto device = std::make_shared<Device>(*bench);
    bench->endRegistrations.emplace_back([device] { device->observers.close(); });
    return [bench, device]() -> std::shared_ptr<Control> {
        device->observers.open();
        return std::make_shared<MemoryOperationsControl>(bench, device);
    };
}

} // namespace tarn::simulator
