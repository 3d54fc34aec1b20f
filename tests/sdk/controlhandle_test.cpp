#include <sdk/controlhandle.h>

#include <gtest/gtest.h>

#include <memory>

namespace tarn::tests {
namespace {

using Handle = sdk::ControlHandle<int>;

TEST(ControlHandle, IsExpiredFromTheStartWhenEmpty)
{
    const Handle handle;
    EXPECT_TRUE(handle.expired());
    EXPECT_EQ(handle.lock(), nullptr);
}

TEST(ControlHandle, DoesNotKeepTheControlAlive)
{
    auto control = std::make_shared<int>(5);
    const Handle handle{control};
    EXPECT_EQ(control.use_count(), 1);
    EXPECT_FALSE(handle.expired());
    control.reset();
    EXPECT_TRUE(handle.expired());
    EXPECT_EQ(handle.lock(), nullptr);
}

TEST(ControlHandle, PromotesToAnOwningReferenceToTheSameControl)
{
    auto control = std::make_shared<int>(5);
    const Handle handle{control};
    const auto owner = handle.lock();
    EXPECT_EQ(owner, control);
    control.reset();
    EXPECT_FALSE(handle.expired());
    EXPECT_EQ(*owner, 5);
}

TEST(ControlHandle, CopiesTheWeakReference)
{
    auto control = std::make_shared<int>(5);
    const Handle handle{control};
    const Handle copy = handle; // NOLINT(performance-unnecessary-copy-initialization)
    EXPECT_EQ(copy.lock(), control);
    control.reset();
    EXPECT_TRUE(copy.expired());
}

TEST(ControlHandle, LooksAtTheOwnerAloneAndNotAtThePointer)
{
    const auto owner = std::make_shared<int>(5);
    const Handle ownedNull{std::shared_ptr<int>{owner, nullptr}};
    EXPECT_FALSE(ownedNull.expired());
    EXPECT_EQ(ownedNull.lock().get(), nullptr);
    EXPECT_EQ(ownedNull.lock().use_count(), 2);

    int unowned = 5;
    const Handle notOwned{std::shared_ptr<int>{std::shared_ptr<int>{}, &unowned}};
    EXPECT_TRUE(notOwned.expired());
    EXPECT_EQ(notOwned.lock(), nullptr);
}

} // namespace
} // namespace tarn::tests
