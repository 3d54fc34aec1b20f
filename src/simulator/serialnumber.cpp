#include <simulator/serialnumber.h>

#include <sdk/service/imemoryserialnumbercontrol.h>
#include <simulator/flashmemory.h>
#include <simulator/observers.h>

#include <array>
#include <expected>
#include <limits>
#include <utility>

namespace tarn::simulator {

namespace {

using Control = sdk::service::IMemorySerialNumberControl;

const QString sectionName = QStringLiteral("serialNumber");
constexpr unsigned int firstNumber = 1'000'001;

unsigned int load(const Storage& storage, std::uint64_t seed)
{
    const auto section = storage.section(sectionName);
    if (section.isUndefined())
        return firstNumber + static_cast<unsigned int>(seed);
    const auto number = section.toDouble(-1.0);
    if (number < 0.0 || number > std::numeric_limits<unsigned int>::max()
        || number != static_cast<double>(static_cast<unsigned int>(number)))
        storage.refuse(QStringLiteral("\"serialNumber\" is not a whole number of 32 bits"));
    return static_cast<unsigned int>(number);
}

/// The number as it is in the instrument. Thread-safe.
class SerialNumber {
public:
    explicit SerialNumber(Bench& theBench)
        : bench{theBench}
        , m_number{load(*bench.storage, bench.settings.seed)}
    {
    }

    [[nodiscard]] unsigned int get() const
    {
        const utils::MutexLock lock{m_mutex};
        return m_number;
    }

    [[nodiscard]] std::error_code set(unsigned int number)
    {
        const utils::MutexLock lock{m_mutex};
        if (const auto failure = bench.storage->save(sectionName, static_cast<double>(number), {}))
            return failure;
        m_number = number;
        return {};
    }

    Bench& bench;
    Observers<Control::Observer> observers;

private:
    mutable utils::Mutex m_mutex;
    unsigned int m_number TARN_GUARDED_BY(m_mutex);
};

class WriteSerialNumber final : public LongOperation {
public:
    WriteSerialNumber(std::shared_ptr<SerialNumber> serialNumber, unsigned int number, sdk::Completion<> completion)
        : m_serialNumber{std::move(serialNumber)}
        , m_number{number}
        , m_completion{std::move(completion)}
    {
    }

    std::error_code begin() override
    {
        return m_serialNumber->bench.faults.isWriteProtected() ? Error::WriteProtected : std::error_code{};
    }

    [[nodiscard]] std::uint32_t total() const override { return 4; }
    [[nodiscard]] std::uint32_t piece() const override { return 1; }

    [[nodiscard]] Duration time(std::uint32_t from, std::uint32_t /*to*/) const override
    {
        constexpr std::array times{FlashMemory::sectorEraseTime, FlashMemory::pageProgramTime,
                                   FlashMemory::pageProgramTime, FlashMemory::pageReadTime};
        return scaled(m_serialNumber->bench.settings, times.at(from));
    }

    std::error_code work(std::uint32_t /*from*/, std::uint32_t /*to*/) override { return {}; }

    void notify(std::uint32_t done) override
    {
        m_serialNumber->observers.notify(&Control::Observer::onWriteProgressChanged, done, total());
    }

    std::error_code close(std::error_code result) override
    {
        return result.value() != 0 ? result : m_serialNumber->set(m_number);
    }

    void complete(std::error_code result) override { m_completion(result); }

private:
    const std::shared_ptr<SerialNumber> m_serialNumber;
    const unsigned int m_number;
    const sdk::Completion<> m_completion;
};

class SerialNumberControl final : public Control {
public:
    SerialNumberControl(std::shared_ptr<Bench> bench, std::shared_ptr<SerialNumber> serialNumber)
        : m_bench{std::move(bench)}
        , m_serialNumber{std::move(serialNumber)}
    {
    }

    bool isAvailable() override
    {
        return m_bench->operations.call([] { return true; });
    }

    void serialNumber(sdk::Completion<unsigned int> completion) override
    {
        m_bench->operations.request(
            std::move(completion),
            [number = m_serialNumber]() -> std::expected<unsigned int, std::error_code> { return number->get(); });
    }

    void writeSerialNumber(unsigned int serialNumber, sdk::Completion<> completion) override
    {
        m_bench->operations.request(
            std::make_shared<WriteSerialNumber>(m_serialNumber, serialNumber, std::move(completion)));
    }

    void addObserver(Observer* observer) override { m_serialNumber->observers.add(observer); }
    void removeObserver(Observer* observer) override { m_serialNumber->observers.remove(observer); }

private:
    const std::shared_ptr<Bench> m_bench;
    const std::shared_ptr<SerialNumber> m_serialNumber;
};

} // namespace

MakeControl installSerialNumber(const std::shared_ptr<Bench>& bench)
{
    auto serialNumber = std::make_shared<SerialNumber>(*bench);
    bench->endRegistrations.emplace_back([serialNumber] { serialNumber->observers.close(); });
    return [bench, serialNumber]() -> std::shared_ptr<Control> {
        serialNumber->observers.open();
        return std::make_shared<SerialNumberControl>(bench, serialNumber);
    };
}

} // namespace tarn::simulator
