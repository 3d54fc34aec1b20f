#include <devices/service/access.h>

#include <support/exceptions.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>

namespace tarn::tests::access {
namespace {

using devices::service::ifAvailable;
using devices::service::ifAvailableQuietly;
using devices::service::valueOr;

class Control {
public:
    [[nodiscard]] float level() const { return 0.1F; }
    void take(std::unique_ptr<int> value) { taken = std::move(value); }

    std::unique_ptr<int> taken;
};

using Reacquiring = devices::ReacquiringControl<Control>;

class AccessTest : public testing::Test {
protected:
    std::shared_ptr<Control> offered = std::make_shared<Control>();
    Reacquiring control{[this] { return sdk::ControlHandle<Control>{offered}; }};
};

TEST_F(AccessTest, AGetterGivesWhatTheOperationReturnsInTheTypeOfTheNeutralValue)
{
    const auto level = valueOr(-1.0, control, &Control::level);
    static_assert(std::is_same_v<decltype(level), const double>);
    EXPECT_EQ(level, static_cast<double>(0.1F));
}

TEST_F(AccessTest, AGetterGivesTheNeutralValueWithoutCallingTheOperation)
{
    offered.reset();
    bool called = false;
    const auto name = valueOr(std::string{"neutral"}, control, [&](Control& /*sdk*/) {
        called = true;
        return "called";
    });
    EXPECT_EQ(name, "neutral");
    EXPECT_FALSE(called);
}

TEST_F(AccessTest, AGetterThatConvertsDoesSoWhileItHoldsTheControl)
{
    const std::weak_ptr<Control> life{offered};
    const auto drop = [&](Control& /*sdk*/) {
        offered.reset();
        return 3;
    };
    const auto convert = [&](int value) { return life.expired() ? 0 : 2 * value; };
    EXPECT_EQ(valueOr(-1, control, drop, convert), 6);
    EXPECT_EQ(valueOr(-1, control, drop, convert), -1) << "it is gone";
}

TEST_F(AccessTest, ASetterMovesItsArgumentsOn)
{
    ifAvailable(control, &Control::take, std::make_unique<int>(7));
    ASSERT_TRUE(offered->taken);
    EXPECT_EQ(*offered->taken, 7);
}

TEST_F(AccessTest, ASetterDoesNothingWhileTheControlIsAway)
{
    offered.reset();
    bool called = false;
    ifAvailable(control, [&](Control& /*sdk*/) { called = true; });
    EXPECT_FALSE(called);
}

TEST_F(AccessTest, TheQuietSetterCallsTheOperationAndSwallowsWhatItThrows)
{
    ifAvailableQuietly(control, &Control::take, std::make_unique<int>(7));
    ASSERT_TRUE(offered->taken);

    for (const auto& exception : anyExceptions()) {
        bool called = false;
        ifAvailableQuietly(control, [&](Control& /*sdk*/) {
            called = true;
            std::rethrow_exception(exception);
        });
        EXPECT_TRUE(called);
    }
}

TEST_F(AccessTest, BothHoldTheControlForTheLengthOfTheCallAlone)
{
    const std::weak_ptr<Control> life{offered};
    const auto drop = [&](Control& /*sdk*/) {
        offered.reset();
        return !life.expired();
    };
    EXPECT_TRUE(valueOr(false, control, drop));
    EXPECT_TRUE(life.expired());

    offered = std::make_shared<Control>();
    const std::weak_ptr<Control> next{offered};
    bool held = false;
    ifAvailable(control, [&](Control& /*sdk*/) {
        offered.reset();
        held = !next.expired();
    });
    EXPECT_TRUE(held);
    EXPECT_TRUE(next.expired());
}

} // namespace
} // namespace tarn::tests::access
