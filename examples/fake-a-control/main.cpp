// A fake of a control of the SDK, and of the device that offers it, for tests of code that uses the library: the code
// under test gets the real adapter, and the test decides what the instrument says. No instrument, no thread, no test
// framework; `expect` is what yours brings.

#include <devices/controlregistry.h>
#include <devices/service/iserialnumbercontrol.h>
#include <devices/service/servicecontrols.h>
#include <sdk/ivna.h>
#include <sdk/service/imemoryserialnumbercontrol.h>

#include <QString>

#include <any>
#include <cstdio>
#include <memory>
#include <system_error>
#include <utility>

using tarn::devices::service::ISerialNumberControl;

namespace {

// What is to be tested.

/// What a label on the back of the instrument says.
QString labelOf(const ISerialNumberControl& control)
{
    const auto number = control.serialNumber();
    return number ? QStringLiteral("SN %1").arg(*number, 8, 10, QLatin1Char{'0'}) : QStringLiteral("SN unknown");
}

// The fakes.

/// Answers inside the call, which the contract allows, with what the test has put into it.
class FakeSerialNumber final : public sdk::service::IMemorySerialNumberControl {
public:
    unsigned int number = 0;
    std::error_code error; ///< of every request; none by default

    bool isAvailable() override { return true; }
    void serialNumber(sdk::Completion<unsigned int> completion) override { completion(number, error); }

    void writeSerialNumber(unsigned int serialNumber, sdk::Completion<> completion) override
    {
        if (!error)
            number = serialNumber;
        completion(error);
    }

    // Tests of progress keep the observer and call it before the completion.
    void addObserver(Observer* /*observer*/) override { }
    void removeObserver(Observer* /*observer*/) override { }
};

/// Offers one control for as long as `offered` points at it. The device owns its controls: everybody else has weak
/// handles alone.
class FakeDevice final : public sdk::IVna {
public:
    std::shared_ptr<sdk::service::IMemorySerialNumberControl> offered;

    using sdk::IVna::control;
    std::shared_ptr<void> control(sdk::Key key) override
    {
        return key == sdk::service::IMemorySerialNumberControl::key ? offered : nullptr;
    }

    void addObserver(Observer* /*observer*/) override { }
    void removeObserver(Observer* /*observer*/) override { }
    [[nodiscard]] sdk::Model model() const override { return sdk::Model{"Fake"}; }
};

// The tests.

int failures = 0;

void expect(const char* what, const QString& actual, const QString& expected)
{
    const bool isAsExpected = actual == expected;
    failures += isAsExpected ? 0 : 1;
    std::printf("%s: %s\n", what, isAsExpected ? "passed" : qUtf8Printable(QStringLiteral("FAILED, ") + actual));
}

} // namespace

int main()
{
    tarn::devices::ControlRegistry registry;
    tarn::devices::service::servicecontrols::registrate(&registry);

    FakeDevice device;
    auto fake = std::make_shared<FakeSerialNumber>();
    device.offered = fake;
    const auto created = registry.find(ISerialNumberControl::registryKey)->create(static_cast<sdk::IVna*>(&device));
    const auto control = std::any_cast<std::shared_ptr<ISerialNumberControl>>(created);

    fake->number = 1234;
    expect("a label has eight digits", labelOf(*control), QStringLiteral("SN 00001234"));

    fake->error = std::make_error_code(std::errc::io_error);
    expect("a failure is not a number", labelOf(*control), QStringLiteral("SN unknown"));

    device.offered = nullptr; // the drop; the last reference is the test's own
    fake = nullptr;
    expect("an instrument that is away has no number", labelOf(*control), QStringLiteral("SN unknown"));

    fake = std::make_shared<FakeSerialNumber>(); // and the return
    fake->number = 5678;
    device.offered = fake;
    expect("it has one when it is back", labelOf(*control), QStringLiteral("SN 00005678"));

    return failures == 0 ? 0 : 1;
}
