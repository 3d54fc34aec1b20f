#include <conformance/controls.h>

#include <sdk/service/ifilememorycontrol.h>
#include <sdk/service/imemoryoperationscontrol.h>
#include <sdk/service/imemoryserialnumbercontrol.h>
#include <sdk/service/imemoryusbidcontrol.h>
#include <sdk/service/ipotentiometerscontrol.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace tarn::conformance {

namespace {

using Files = sdk::service::IFileMemoryControl;
using Memory = sdk::service::IMemoryOperationsControl;
using Potentiometers = sdk::service::IPotentiometersControl;
using SerialNumber = sdk::service::IMemorySerialNumberControl;
using UsbId = sdk::service::IMemoryUsbIdControl;

const Files::FileInfo noFile{"there is no file of this name", 0};

/// A completion whose result can be anything.
auto anything(Done done)
{
    return [done = std::move(done)](const auto& /*result*/, std::error_code error) { done(error, {}); };
}

std::string wrongFiles(const std::vector<Files::FileInfo>& files)
{
    std::set<std::string> names;
    for (const auto& file : files) {
        if (file.name.empty())
            return "lists a file without a name";
        if (!names.insert(file.name).second)
            return "lists '" + file.name + "' twice";
    }
    return {};
}

std::string wrongSpace(const Files::SpaceInfo& space)
{
    return wrongIf(space.used > space.total || space.free > space.total - space.used,
                   "has more used and free than there is in all");
}

std::string wrongPotentiometers(const std::vector<Potentiometers::Potentiometer>& list)
{
    const auto isEmpty = [](const auto& one) { return one.minimum > one.maximum; };
    return wrongIf(std::ranges::any_of(list, isEmpty), "lists one whose minimum is above its maximum");
}

std::string wrongRecord(const UsbId::DeviceRecord& record)
{
    return wrongIf(record.model.name().empty(), "names no model")
        + wrongIf(record.hardwareRevision == 0, "has the hardware revision 0, where 1 is the first");
}

class MemoryObserver final : public Memory::IObserver {
public:
    explicit MemoryObserver(std::shared_ptr<Ear> ear)
        : m_ear{std::move(ear)}
    {
    }

    void onReadProgressChanged(unsigned int done, unsigned int total) override { hear("read", done, total); }
    void onWriteProgressChanged(unsigned int done, unsigned int total) override { hear("write", done, total); }
    void onEraseProgressChanged(unsigned int done, unsigned int total) override { hear("erase", done, total); }
    void onIntegrityCheckProgressChanged(unsigned int done, unsigned int total) override
    {
        hear("integrity check", done, total);
    }

private:
    void hear(const char* operation, unsigned int done, unsigned int total) const
    {
        m_ear->hear(operation, Ear::Progress{done, total});
    }

    const std::shared_ptr<Ear> m_ear;
};

class SerialNumberObserver final : public SerialNumber::Observer {
public:
    explicit SerialNumberObserver(std::shared_ptr<Ear> ear)
        : m_ear{std::move(ear)}
    {
    }

    void onWriteProgressChanged(unsigned int done, unsigned int total) override
    {
        m_ear->hear("write", Ear::Progress{done, total});
    }

private:
    const std::shared_ptr<Ear> m_ear;
};

} // namespace

void describeFileMemory(Description& description, std::shared_ptr<void> control)
{
    const Describe<Files> describe{description, std::static_pointer_cast<Files>(std::move(control))};
    const auto files = std::make_shared<HandOver<std::vector<Files::FileInfo>>>();
    const auto list = describe.asked("fileList", [files](Files& memory, Done done) {
        memory.fileList([files, done = std::move(done)](const auto& all, std::error_code error) {
            if (!error)
                files->put(all);
            done(error, error ? std::string{} : wrongFiles(all));
        });
    });
    auto read = describe.asked("readFile", [files](Files& memory, Done done) {
        const auto all = files->get();
        const auto file = all.empty() ? noFile : all.front();
        memory.readFile(file, [size = file.size, done = std::move(done)](const auto& contents, std::error_code error) {
            done(error, wrongIf(!error && contents.size() != size, "gives another size than fileList"));
        });
    });
    read.first = std::make_shared<Question>(list);
    description.questions = {list, std::move(read)};
    describe.reading("isAvailable", &Files::isAvailable)
        .question("spaceInfo",
                  [](Files& memory, Done done) {
                      memory.spaceInfo([done = std::move(done)](const auto& space, std::error_code error) {
                          done(error, error ? std::string{} : wrongSpace(space));
                      });
                  })
        .question("readFile of a file that is not there",
                  [](Files& memory, Done done) { memory.readFile(noFile, anything(std::move(done))); });
}

namespace {

/// Writes the EEPROM of the first one as it is.
Question eepromRewrite(const Describe<Potentiometers>& describe)
{
    const auto present = std::make_shared<HandOver<int>>();
    auto rewrite = describe.asked("writeToEeprom of what is there", [present](Potentiometers& one, const Done& done) {
        one.writeToEeprom(0, present->get(), [done](std::error_code error) { done(error, {}); });
    });
    rewrite.isOfWrites = true;
    rewrite.first = std::make_shared<Question>(
        describe.asked("readFromEeprom before it is written", [present](Potentiometers& one, const Done& done) {
            one.readFromEeprom(0, [=](int value, std::error_code error) {
                if (!error)
                    present->put(value);
                done(error, {});
            });
        }));
    return rewrite;
}

} // namespace

void describePotentiometers(Description& description, std::shared_ptr<void> control)
{
    const Describe<Potentiometers> describe{description, std::static_pointer_cast<Potentiometers>(std::move(control))};
    describe.reading("isAvailable", &Potentiometers::isAvailable)
        .reading("potentiometers", [](Potentiometers& one) { return wrongPotentiometers(one.potentiometers()); })
        .reading("potentiometers asked for twice", [](Potentiometers& one) {
            return wrongIf(one.potentiometers() != one.potentiometers(), "gives another list");
        });
    const auto list = describe.control()->potentiometers();
    for (unsigned long index = 0; index < list.size(); ++index)
        describe.question("readFromEeprom " + std::to_string(index),
                          [index, range = list[index]](Potentiometers& one, Done done) {
                              one.readFromEeprom(index, [=](int value, std::error_code error) {
                                  const bool isOutside = value < range.minimum || value > range.maximum;
                                  done(error, wrongIf(!error && isOutside, "gives a value outside of its range"));
                              });
                          });
    if (!list.empty())
        description.questions.push_back(eepromRewrite(describe));
    describe.question("readFromEeprom behind the last", [index = list.size()](Potentiometers& one, Done done) {
        one.readFromEeprom(index, [done = std::move(done)](int /*value*/, std::error_code error) {
            done(error, wrongIf(!error, "succeeds, where an error code is due"));
        });
    });
}

void describeUsbId(Description& description, std::shared_ptr<void> control)
{
    const Describe<UsbId> describe{description, std::static_pointer_cast<UsbId>(std::move(control))};
    describe.reading("isAvailable", &UsbId::isAvailable)
        .reading("currentDevice", [](UsbId& usb) { return wrongRecord(usb.currentDevice()); })
        .reading("supportedDevices", [](UsbId& usb) {
            for (const auto& record : usb.supportedDevices()) {
                if (auto wrong = wrongRecord(record); !wrong.empty())
                    return wrong;
            }
            return std::string{};
        });
}

void describeSerialNumber(Description& description, std::shared_ptr<void> control)
{
    const Describe<SerialNumber> describe{description, std::static_pointer_cast<SerialNumber>(std::move(control))};
    const auto present = std::make_shared<HandOver<unsigned int>>();
    const auto read = describe.asked("serialNumber", [present](SerialNumber& memory, Done done) {
        memory.serialNumber([present, done = std::move(done)](unsigned int number, std::error_code error) {
            if (!error)
                present->put(number);
            done(error, {});
        });
    });
    auto rewrite = describe.asked("writeSerialNumber of the present one", [present](SerialNumber& memory, Done done) {
        memory.writeSerialNumber(present->get(), [done = std::move(done)](std::error_code error) { done(error, {}); });
    });
    rewrite.isOfWrites = true;
    rewrite.first = std::make_shared<Question>(read);
    description.questions = {read, rewrite};
    describe.reading("isAvailable", &SerialNumber::isAvailable)
        .template source<SerialNumberObserver>("Observer", std::move(rewrite));
}

void describeMemoryOperations(Description& description, std::shared_ptr<void> control)
{
    const Describe<Memory> describe{description, std::static_pointer_cast<Memory>(std::move(control))};
    auto read = describe.asked("read", [](Memory& memory, Done done) { memory.read(anything(std::move(done))); });
    auto check = describe.asked("integrityCheck", [](Memory& memory, Done done) {
        memory.integrityCheck([done = std::move(done)](std::error_code error) { done(error, {}); });
    });
    description.questions = {read, check};
    describe.reading("isAvailable", &Memory::isAvailable)
        .template source<MemoryObserver>("Observer during read", std::move(read))
        .template source<MemoryObserver>("Observer during integrityCheck", std::move(check));
}

} // namespace tarn::conformance
