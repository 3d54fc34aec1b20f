#include <utils/association.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace tarn::tests {
namespace {

struct Observer {
    virtual ~Observer() = default;
    int value = 0;
    friend bool operator==(const Observer&, const Observer&) { return true; }
};

using utils::Association;

static_assert(sizeof(Association<Observer>) == sizeof(Observer*));
static_assert(std::is_trivially_copyable_v<Association<Observer>>);
static_assert(!std::is_default_constructible_v<Association<Observer>>, "it always refers to an observer");
static_assert(std::is_convertible_v<Observer&, Association<Observer>>);
static_assert(!std::is_constructible_v<Association<Observer>, Observer>, "not to a temporary");

constexpr int first = 1;
constexpr int second = 1;
static_assert(Association<const int>{first} == Association<const int>{first});
static_assert(Association<const int>{first} != Association<const int>{second}, "identity, not value");

TEST(Association, IsEqualExactlyWhenItRefersToTheSameObject)
{
    Observer one;
    Observer other;
    ASSERT_TRUE(one == other) << "equal by value";
    const Association<Observer> association{one};
    EXPECT_EQ(association, Association<Observer>{one});
    EXPECT_NE(association, Association<Observer>{other});
}

TEST(Association, LeadsToTheObserverItself)
{
    Observer observer;
    const Association<Observer> association{observer};
    association->value = 7;
    EXPECT_EQ(observer.value, 7);
    EXPECT_EQ(&*association, &observer);
}

TEST(Association, IsRepointedByAssignmentWithoutTouchingTheObservers)
{
    Observer one;
    Observer other;
    other.value = 2;
    Association<Observer> association{one};
    association = other;
    EXPECT_EQ(association, Association<Observer>{other});
    EXPECT_EQ(one.value, 0);
}

} // namespace
} // namespace tarn::tests
