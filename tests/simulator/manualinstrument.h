#pragma once

#include <sdk/itemperaturecontrol.h>
#include <sdk/service/ifilememorycontrol.h>
#include <sdk/service/iloleakagecontrol.h>
#include <sdk/service/imemoryoperationscontrol.h>
#include <sdk/service/imemoryserialnumbercontrol.h>
#include <sdk/service/imemoryusbidcontrol.h>
#include <sdk/service/ipotentiometerscontrol.h>
#include <simulator/clock.h>
#include <simulator/simulatedvna.h>
#include <simulator/storage.h>

#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace tarn::simulator::test {

using Files = sdk::service::IFileMemoryControl;
using Leakage = sdk::service::ILoLeakageControl;
using Temperature = sdk::ITemperatureControl;
using Memory = sdk::service::IMemoryOperationsControl;
using Potentiometers = sdk::service::IPotentiometersControl;
using SerialNumber = sdk::service::IMemorySerialNumberControl;
using UsbId = sdk::service::IMemoryUsbIdControl;
using Image = std::vector<std::byte>;
using Bytes = std::vector<std::uint8_t>;

/// A simulated instrument on a clock that stands still.
struct ManualInstrument {
    explicit ManualInstrument(const Settings& settings = {},
                              std::unique_ptr<Storage> storage = std::make_unique<NoStorage>())
        : vna{std::make_unique<SimulatedVna>(settings, clock, std::move(storage))}
    {
        vna->waitUntilIdle();
    }

    template <class Interface>
    [[nodiscard]] std::shared_ptr<Interface> control() const
    {
        return vna->control<Interface>(Interface::key);
    }

    /// Lets time pass, for what has begun; what falls due has happened when this returns.
    void advance(Duration duration)
    {
        vna->waitUntilIdle();
        clock->advance(duration);
        vna->waitUntilIdle();
    }

    std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();
    std::unique_ptr<SimulatedVna> vna;
};

/// Waits for the completion of `request` and returns its error code.
inline std::error_code codeOf(const std::function<void(sdk::Completion<>)>& request)
{
    std::promise<std::error_code> done;
    request([&](std::error_code code) { done.set_value(code); });
    return done.get_future().get();
}

template <class Value>
std::pair<Value, std::error_code> resultOf(const std::function<void(sdk::Completion<Value>)>& request)
{
    std::promise<std::pair<Value, std::error_code>> done;
    request([&](Value value, std::error_code code) { done.set_value({std::move(value), code}); });
    return done.get_future().get();
}

inline std::error_code write(Files& files, const std::string& name, const Bytes& contents)
{
    return codeOf([&](auto done) { files.writeFile(name, contents, done); });
}

inline std::error_code remove(Files& files, const std::string& name)
{
    return codeOf([&](auto done) { files.deleteFile({name, 0}, done); });
}

inline std::pair<Bytes, std::error_code> read(Files& files, const std::string& name)
{
    return resultOf<Bytes>([&](auto done) { files.readFile({name, 0}, done); });
}

inline std::vector<Files::FileInfo> list(Files& files)
{
    return resultOf<std::vector<Files::FileInfo>>([&](auto done) { files.fileList(done); }).first;
}

inline Files::SpaceInfo space(Files& files)
{
    return resultOf<Files::SpaceInfo>([&](auto done) { files.spaceInfo(done); }).first;
}

/// An image of `length` bytes without a pattern in pages, sectors or blocks.
inline Image makeImage(std::size_t length, unsigned seed = 1)
{
    Image image(length);
    std::uint32_t state = seed * 2654435761U + 1U;
    for (auto& byte : image) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<std::byte>(state >> 24U);
    }
    return image;
}

inline std::error_code write(Memory& memory, const Image& image)
{
    return codeOf([&](auto done) { memory.write(image, done); });
}

inline std::error_code erase(Memory& memory)
{
    return codeOf([&](auto done) { memory.erase(done); });
}

inline std::error_code check(Memory& memory)
{
    return codeOf([&](auto done) { memory.integrityCheck(done); });
}

inline std::pair<Image, std::error_code> read(Memory& memory)
{
    return resultOf<Image>([&](auto done) { memory.read(done); });
}

inline std::error_code writeRam(Potentiometers& all, unsigned long index, int value)
{
    return codeOf([&](auto done) { all.writeToRam(index, value, done); });
}

inline std::error_code writeEeprom(Potentiometers& all, unsigned long index, int value)
{
    return codeOf([&](auto done) { all.writeToEeprom(index, value, done); });
}

inline std::pair<int, std::error_code> readEeprom(Potentiometers& all, unsigned long index)
{
    return resultOf<int>([&](auto done) { all.readFromEeprom(index, done); });
}

inline std::error_code write(SerialNumber& serialNumber, unsigned int number)
{
    return codeOf([&](auto done) { serialNumber.writeSerialNumber(number, done); });
}

inline unsigned int read(SerialNumber& serialNumber)
{
    return resultOf<unsigned int>([&](auto done) { serialNumber.serialNumber(done); }).first;
}

inline std::error_code write(UsbId& usb, const UsbId::UsbId& usbId)
{
    return codeOf([&](auto done) { usb.writeUsbId(usbId, done); });
}

/// A list of events that several threads write.
class Journal {
public:
    void note(std::string event)
    {
        const std::lock_guard lock{m_mutex};
        m_events.push_back(std::move(event));
    }

    /// What was noted since the last time.
    [[nodiscard]] std::vector<std::string> take()
    {
        const std::lock_guard lock{m_mutex};
        return std::exchange(m_events, {});
    }

private:
    std::mutex m_mutex;
    std::vector<std::string> m_events;
};

/// Notes the coming and going of controls, and does what the test asks for.
struct LifecycleObserver final : sdk::IVna::Observer {
    explicit LifecycleObserver(Journal& theJournal)
        : journal{theJournal}
    {
    }

    void onControlsAboutToBeReleased() override
    {
        journal.note("about to be released");
        if (atRelease)
            atRelease();
    }

    void onControlsAvailable() override
    {
        journal.note("available");
        if (atOffer)
            atOffer();
    }

    Journal& journal;
    std::function<void()> atRelease;
    std::function<void()> atOffer;
};

/// Notes the progress of memory operations, as "write 256/4096", and calls a function then.
struct MemoryObserver final : Memory::IObserver {
    explicit MemoryObserver(Journal& theJournal)
        : journal{theJournal}
    {
    }

    void onReadProgressChanged(unsigned done, unsigned total) override { note("read", done, total); }
    void onWriteProgressChanged(unsigned done, unsigned total) override { note("write", done, total); }
    void onEraseProgressChanged(unsigned done, unsigned total) override { note("erase", done, total); }
    void onIntegrityCheckProgressChanged(unsigned done, unsigned total) override { note("check", done, total); }

    void note(const char* operation, unsigned done, unsigned total)
    {
        journal.note(std::string{operation} + ' ' + std::to_string(done) + '/' + std::to_string(total));
        if (reaction)
            reaction();
    }

    Journal& journal;
    std::function<void()> reaction;
};

/// Calls a function whenever the instrument has measured.
struct TemperatureObserver final : sdk::ITemperatureControl::Observer {
    explicit TemperatureObserver(std::function<void()> theReaction)
        : reaction{std::move(theReaction)}
    {
    }

    void onTemperatureChanged() override { reaction(); }

    std::function<void()> reaction;
};

} // namespace tarn::simulator::test
