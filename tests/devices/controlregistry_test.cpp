#include <devices/controlregistry.h>
#include <devices/icontrollifecycleobserver.h>

#include <support/exceptions.h>
#include <support/virtualslot.h>

#include <gmock/gmock.h>

#include <any>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace tarn::tests {
namespace {

using devices::ControlRegistry;
using devices::IControlLifecycleObserver;
using testing::HasSubstr;

struct Device {
    int number = 0;
};
struct DerivedDevice : Device { };

using Entry = ControlRegistry::ControlEntry<Device>;
using EntryBase = ControlRegistry::ControlEntryBase;

static_assert(std::is_same_v<decltype(EntryBase::key), std::uint64_t>);
static_assert(std::is_same_v<decltype(EntryBase::create), std::function<std::any(std::any)>>);
static_assert(std::is_same_v<decltype(Entry::create), std::function<std::any(Device*)>>);
static_assert(std::is_convertible_v<Entry, EntryBase>);
static_assert(!std::is_convertible_v<Entry&, EntryBase>, "on an rvalue only");

EntryBase entry(std::uint64_t key)
{
    return {key, [key](const std::any& /*device*/) { return std::any{key}; }};
}

EntryBase wrapped(std::function<std::any(Device*)> create)
{
    return Entry{1, std::move(create)};
}

EntryBase numberOfTheDevice()
{
    return wrapped([](Device* device) { return std::any{device ? device->number : -1}; });
}

TEST(ControlEntry, GivesTheDeviceInTheAnyToTheTypedFunctionAndReturnsItsResult)
{
    Device device{42};
    EXPECT_EQ(std::any_cast<int>(numberOfTheDevice().create(&device)), 42);
    EXPECT_EQ(numberOfTheDevice().key, 1U);
}

TEST(ControlEntry, GivesANullDevicePointerOnAsItIs)
{
    EXPECT_EQ(std::any_cast<int>(numberOfTheDevice().create(static_cast<Device*>(nullptr))), -1);
}

TEST(ControlEntry, GivesNothingForAnyArgumentThatIsNotExactlyThePointer)
{
    Device device;
    DerivedDevice derived;
    const Device* const constant = &device;
    const auto create = numberOfTheDevice().create;
    EXPECT_FALSE(create(std::any{}).has_value());
    EXPECT_FALSE(create(5).has_value());
    EXPECT_FALSE(create(constant).has_value());
    EXPECT_FALSE(create(&derived).has_value());
    EXPECT_FALSE(create(nullptr).has_value());
    EXPECT_FALSE(create(std::ref(device)).has_value());
}

TEST(ControlEntry, GivesNothingWhenTheTypedFunctionItselfThrowsABadAnyCast)
{
    Device device;
    const auto create = wrapped([](Device*) -> std::any { throw std::bad_any_cast{}; }).create;
    std::any result{1};
    EXPECT_NO_THROW(result = create(&device));
    EXPECT_FALSE(result.has_value());
}

TEST(ControlEntry, LetsEveryOtherExceptionPassUnchanged)
{
    Device device;
    for (const auto& exception : anyExceptions()) {
        const auto create = wrapped([&](Device*) -> std::any { std::rethrow_exception(exception); }).create;
        EXPECT_EQ(thrownBy([&] { create(&device); }), exception);
    }
}

TEST(ControlEntry, ThrowsABadFunctionCallForAnEmptyTypedFunction)
{
    Device device;
    const auto create = wrapped(nullptr).create;
    EXPECT_THROW(create(&device), std::bad_function_call);
    EXPECT_FALSE(create(5).has_value()) << "the argument is looked at first";
}

TEST(ControlEntry, MovesTheTypedFunctionWhenItGivesUpTheType)
{
    int copies = 0;
    struct CountsCopies {
        int* copies;
        explicit CountsCopies(int& count)
            : copies{&count}
        {
        }
        CountsCopies(const CountsCopies& other)
            : copies{other.copies}
        {
            ++*copies;
        }
        CountsCopies(CountsCopies&&) = default;
        CountsCopies& operator=(const CountsCopies&) = delete;
        CountsCopies& operator=(CountsCopies&&) = delete;
        ~CountsCopies() = default;
        std::any operator()(Device*) const { return 1; }
    };
    Entry typed{1, CountsCopies{copies}};
    const int before = copies;
    const EntryBase base = std::move(typed);
    EXPECT_EQ(copies, before);
    Device device;
    EXPECT_EQ(std::any_cast<int>(base.create(&device)), 1);
}

TEST(ControlRegistry, IsEmptyAtFirst)
{
    const ControlRegistry registry;
    EXPECT_TRUE(registry.entries().empty());
    EXPECT_EQ(registry.find(0), nullptr);
}

TEST(ControlRegistry, WalksItsEntriesInTheOrderInWhichTheyWereAdded)
{
    ControlRegistry registry;
    const std::vector<std::uint64_t> keys{9, 1, std::numeric_limits<std::uint64_t>::max(), 0, 5};
    for (const auto key : keys)
        registry.addEntry(entry(key));
    ASSERT_EQ(registry.entries().size(), keys.size());
    for (std::size_t i = 0; i != keys.size(); ++i)
        EXPECT_EQ(registry.entries()[i].key, keys[i]);
}

TEST(ControlRegistry, FindsEachEntryByItsKey)
{
    ControlRegistry registry;
    for (const std::uint64_t key : {3U, 1U, 2U})
        registry.addEntry(entry(key));
    for (const std::uint64_t key : {1U, 2U, 3U}) {
        ASSERT_NE(registry.find(key), nullptr);
        EXPECT_EQ(registry.find(key)->key, key);
        EXPECT_EQ(std::any_cast<std::uint64_t>(registry.find(key)->create({})), key);
    }
    EXPECT_EQ(registry.find(4), nullptr);
}

TEST(ControlRegistry, KeepsACopyOfTheEntry)
{
    ControlRegistry registry;
    auto original = entry(1);
    registry.addEntry(original);
    original.create = nullptr;
    ASSERT_NE(registry.find(1), nullptr);
    EXPECT_TRUE(registry.find(1)->create);
}

TEST(ControlRegistry, RefusesASecondEntryUnderAKeyAndNamesTheKey)
{
    ControlRegistry registry;
    registry.addEntry(entry(0x0b8ee0a3ce2543ab));
    registry.addEntry(entry(2));
    try {
        registry.addEntry({0x0b8ee0a3ce2543ab, nullptr});
        FAIL() << "the second entry was taken";
    } catch (const std::invalid_argument& error) {
        EXPECT_THAT(error.what(), HasSubstr("0x0b8ee0a3ce2543ab"));
    }
    EXPECT_EQ(registry.entries().size(), 2U);
    EXPECT_TRUE(registry.find(0x0b8ee0a3ce2543ab)->create) << "the first entry stays";
}

TEST(ControlRegistry, WritesKeysWithAllTheirDigits)
{
    EXPECT_EQ(ControlRegistry::keyText(0), "0x0000000000000000");
    EXPECT_EQ(ControlRegistry::keyText(0x0b8ee0a3ce2543ab), "0x0b8ee0a3ce2543ab");
    EXPECT_EQ(ControlRegistry::keyText(std::numeric_limits<std::uint64_t>::max()), "0xffffffffffffffff");
}

TEST(ControlLifecycleObserver, HasItsOperationsInTheOrderOfTheInterface)
{
    EXPECT_EQ(slotOf(&IControlLifecycleObserver::onControlsAboutToBeReleased), 0);
    EXPECT_EQ(slotOf(&IControlLifecycleObserver::onControlsAvailable), 1);
    static_assert(std::has_virtual_destructor_v<IControlLifecycleObserver>);
    static_assert(sizeof(IControlLifecycleObserver) == sizeof(void*), "it has no data");
}

} // namespace
} // namespace tarn::tests
