#include <console/error.h>

#include <gmock/gmock.h>

#include <functional>
#include <new>
#include <stdexcept>

namespace tarn::console {

namespace {

Error caught(const std::function<void()>& step)
{
    try {
        step();
    } catch (...) {
        return caughtError();
    }
    ADD_FAILURE() << "nothing was thrown";
    return Error{ErrorCode::Usage, {}};
}

} // namespace

TEST(CaughtError, IsAnErrorAsItWasThrown)
{
    const auto error = caught([] { throw Error{ErrorCode::Busy, "somebody has it", "wait"}; });
    EXPECT_EQ(error.code(), ErrorCode::Busy);
    EXPECT_EQ(error.message(), "somebody has it");
    EXPECT_EQ(error.hint(), "wait");
}

TEST(CaughtError, IsTheTextOfAnyOtherException)
{
    const auto error = caught([] { throw std::runtime_error{"noise on the line"}; });
    EXPECT_EQ(error.code(), ErrorCode::Failed);
    EXPECT_EQ(error.message(), "noise on the line");
}

TEST(CaughtError, SaysWhatALackOfMemoryIsAndWhatToDo)
{
    const auto error = caught([] { throw std::bad_alloc{}; });
    EXPECT_EQ(error.code(), ErrorCode::Failed);
    EXPECT_THAT(error.message(), testing::HasSubstr("not enough memory"));
    EXPECT_THAT(error.hint(), testing::HasSubstr("close other programs"));
}

TEST(CaughtError, IsMadeOfAnythingElseToo)
{
    EXPECT_THAT(caught([] { throw 42; }).message(), testing::HasSubstr("without saying what"));
}

} // namespace tarn::console
