// Requests that fail after the instrument has kept the program waiting for too long.

#include <console/change.h>

#include <devices/service/iserialnumbercontrol.h>
#include <support/fakevna.h>
#include <support/mockmemoryserialnumbercontrol.h>

#include <QCoreApplication>

#include <gmock/gmock.h>

#include <chrono>
#include <functional>
#include <optional>
#include <stdexcept>
#include <thread>

namespace tarn::console {

namespace {

using namespace std::chrono_literals;
using Control = devices::service::ISerialNumberControl;
using Mock = testing::NiceMock<tests::MockMemorySerialNumberControl>;
using testing::HasSubstr;

class Requests : public testing::Test {
protected:
    Requests()
    {
        device->offer<sdk::service::IMemorySerialNumberControl>(sdk::service::IMemorySerialNumberControl::key, mock);
        ON_CALL(*mock, isAvailable).WillByDefault(testing::Return(true));
    }

    /// The instrument throws, after it was waited for in vain if it `isLate`.
    void fail(bool isLate)
    {
        instrument.emplace(device, output, isLate ? 20ms : 30s);
        const auto failing = testing::InvokeWithoutArgs([this, isLate] {
            while (isLate && instrument->unansweredRequests().timedOut == 0)
                std::this_thread::sleep_for(1ms);
            throw std::runtime_error{"the line is noisy"};
        });
        ON_CALL(*mock, serialNumber).WillByDefault(failing);
        ON_CALL(*mock, writeSerialNumber).WillByDefault(failing);
    }

    void read() const
    {
        static_cast<void>(ask<Control>(*instrument, {"read its serial number", Error{ErrorCode::Failed, "no"}},
                                       [](const Control& control) { return control.serialNumber(); }));
    }

    void write() const
    {
        InterruptWarning warning{output};
        make<Control>({"writing it", "the number", "it may be left", "look"}, *instrument, output, warning,
                      [](Control& control, const LongRequest&) { return control.writeSerialNumber(1); });
    }

    /// What `request` throws.
    static Error errorOf(const std::function<void()>& request)
    {
        try {
            request();
        } catch (...) {
            return caughtError();
        }
        ADD_FAILURE() << "no error";
        return Error{ErrorCode::Usage, {}};
    }

    int argc = 0;
    QCoreApplication application{argc, nullptr};
    const Output output{{}, {}};
    const std::shared_ptr<tests::FakeVna> device = std::make_shared<tests::FakeVna>();
    const std::shared_ptr<Mock> mock = std::make_shared<Mock>();
    std::optional<Instrument> instrument;
};

} // namespace

TEST_F(Requests, ThatThrowFailWithWhatTheyThrow)
{
    fail(false);
    const auto ofRead = errorOf([this] { read(); });
    EXPECT_EQ(ofRead.code(), ErrorCode::Failed);
    EXPECT_EQ(ofRead.message(), "the line is noisy");
    const auto ofWrite = errorOf([this] { write(); });
    EXPECT_EQ(ofWrite.code(), ErrorCode::Failed);
    EXPECT_THAT(ofWrite.message(), HasSubstr("writing it failed: the line is noisy; whether the number was changed"));
}

TEST_F(Requests, AQuestionThatThrowsTooLateWasNotAnsweredInTime)
{
    fail(true);
    const auto error = errorOf([this] { read(); });
    EXPECT_EQ(error.code(), ErrorCode::InstrumentLost);
    EXPECT_EQ(error.message(), "the instrument did not answer in time when it was to read its serial number");
}

TEST_F(Requests, AChangeThatThrowsTooLateWasNotAnsweredInTime)
{
    fail(true);
    const auto error = errorOf([this] { write(); });
    EXPECT_EQ(error.code(), ErrorCode::InstrumentLost);
    EXPECT_THAT(error.message(), HasSubstr("the instrument did not answer in time while writing it"));
}

} // namespace tarn::console
