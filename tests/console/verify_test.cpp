#include <console/verify.h>

#include <gmock/gmock.h>

#include <functional>
#include <stdexcept>

namespace tarn::console {

using testing::HasSubstr;

class Verify : public testing::Test {
protected:
    /// The error with which the verification ends; it must end with one.
    Error errorOf(const std::function<bool()>& check)
    {
        try {
            verify("it was done", "look", [&] {
                ++m_checks;
                return check();
            });
        } catch (const Error& error) {
            return error;
        }
        ADD_FAILURE() << "no error";
        return Error{ErrorCode::Usage, {}};
    }

    int m_checks = 0;
};

TEST_F(Verify, ChecksAgainAfterACheckThatFailed)
{
    int checks = 0;
    verify("it was done", "look", [&] {
        if (++checks < attempts)
            throw std::runtime_error{"noise on the line"};
        return true;
    });
    EXPECT_EQ(checks, attempts);
}

TEST_F(Verify, EndsWithTheReasonOfTheLastCheckIfAllFail)
{
    const auto error = errorOf([]() -> bool { throw std::runtime_error{"noise on the line"}; });
    EXPECT_EQ(m_checks, attempts);
    EXPECT_EQ(error.code(), ErrorCode::Failed);
    EXPECT_EQ(error.message(), "it was done, but this could not be confirmed: noise on the line");
    EXPECT_EQ(error.hint(), "look");
}

TEST_F(Verify, EndsWhateverTheInstrumentThrows)
{
    EXPECT_THAT(errorOf([]() -> bool { throw 42; }).message(), HasSubstr("could not be confirmed: something failed"));
}

TEST_F(Verify, TakesAnInstrumentThatShowsOtherwiseAtItsWord)
{
    const auto error = errorOf([] { return false; });
    EXPECT_EQ(m_checks, 1);
    EXPECT_THAT(error.message(), HasSubstr("the instrument shows otherwise"));
}

TEST_F(Verify, DoesNotCheckALostInstrumentAgain)
{
    const auto error = errorOf([]() -> bool { throw Error{ErrorCode::InstrumentLost, "it is gone"}; });
    EXPECT_EQ(m_checks, 1);
    EXPECT_EQ(error.code(), ErrorCode::InstrumentLost);
}

} // namespace tarn::console
