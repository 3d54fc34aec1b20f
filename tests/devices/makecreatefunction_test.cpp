#include <devices/makecreatefunction.h>

#include <support/exceptions.h>
#include <support/fakevna.h>

#include <gtest/gtest.h>

#include <any>
#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>

namespace tarn::tests {
namespace {

struct SdkControl {
    int number = 0;
};

class IThing {
public:
    IThing() = default;
    IThing(const IThing&) = delete;
    IThing& operator=(const IThing&) = delete;
    virtual ~IThing() = default;
    [[nodiscard]] virtual int number() const = 0;
};

class SdkThing final : public IThing {
public:
    explicit SdkThing(devices::ReacquiringControl<SdkControl> control)
        : m_control{std::move(control)}
    {
    }

    [[nodiscard]] int number() const override
    {
        const auto locked = m_control.lock();
        return locked ? locked->number : -1;
    }

    // std::make_shared does not come past here.
    static void* operator new(std::size_t size)
    {
        ++ownAllocations;
        return ::operator new(size);
    }
    static void operator delete(void* block) { ::operator delete(block); }
    static inline int ownAllocations = 0;

private:
    devices::ReacquiringControl<SdkControl> m_control;
};

constexpr sdk::Key key{0x1234};

class MakeCreateFunctionTest : public testing::Test {
protected:
    std::shared_ptr<SdkControl> offer(int number)
    {
        auto control = std::make_shared<SdkControl>(number);
        device.offer<SdkControl>(key, control);
        return control;
    }

    std::shared_ptr<IThing> createThing() { return std::any_cast<std::shared_ptr<IThing>>(create(&device)); }

    FakeVna device;
    std::function<std::any(sdk::IVna*)> create
        = devices::makeCreateFunction<sdk::IVna, SdkControl, IThing, SdkThing, sdk::Key>(key);
};

TEST_F(MakeCreateFunctionTest, GivesASharedPointerToThePublicType)
{
    offer(7);
    const auto result = create(&device);
    EXPECT_EQ(std::any_cast<std::shared_ptr<SdkThing>>(&result), nullptr);
    const auto* const thing = std::any_cast<std::shared_ptr<IThing>>(&result);
    ASSERT_NE(thing, nullptr);
    EXPECT_EQ(thing->use_count(), 1) << "the caller is the only owner";
    EXPECT_NE(dynamic_cast<SdkThing*>(thing->get()), nullptr);
    EXPECT_EQ((*thing)->number(), 7);
}

TEST_F(MakeCreateFunctionTest, GivesTheAdapterItselfWhenThatIsThePublicType)
{
    offer(7);
    const auto createAdapter = devices::makeCreateFunction<sdk::IVna, SdkControl, SdkThing, SdkThing, sdk::Key>(key);
    EXPECT_EQ(std::any_cast<std::shared_ptr<SdkThing>>(createAdapter(&device))->number(), 7);
}

TEST_F(MakeCreateFunctionTest, AsksTheDeviceExactlyTwiceAndTheFirstCallOfTheAdapterNotAtAll)
{
    offer(7);
    const auto thing = createThing();
    EXPECT_EQ(device.asked(key), 2);
    EXPECT_EQ(thing->number(), 7);
    EXPECT_EQ(device.asked(key), 2);
}

TEST_F(MakeCreateFunctionTest, GivesNothingAfterOneQuestionWhenTheDeviceLacksTheControl)
{
    EXPECT_FALSE(create(&device).has_value());
    EXPECT_EQ(device.asked(key), 1);
}

TEST_F(MakeCreateFunctionTest, GivesNothingWhenTheDeviceDoesNotKeepTheControlAlive)
{
    device.offerFrom(key, [] { return std::make_shared<SdkControl>(); });
    EXPECT_FALSE(create(&device).has_value());
    EXPECT_EQ(device.asked(key), 1);
}

TEST_F(MakeCreateFunctionTest, GivesNothingWithoutADevice)
{
    EXPECT_FALSE(create(nullptr).has_value());
}

TEST_F(MakeCreateFunctionTest, TestsTheOwnerOfTheControlAndNotThePointer)
{
    const auto owner = std::make_shared<int>();
    device.offerFrom(key, [&] { return std::shared_ptr<void>{owner, nullptr}; });
    const auto thing = createThing();
    ASSERT_NE(thing, nullptr);
    EXPECT_EQ(device.asked(key), 2);
    EXPECT_EQ(thing->number(), -1);
    EXPECT_EQ(device.asked(key), 3);
}

TEST_F(MakeCreateFunctionTest, UsesTheSecondHandleAndNotTheOneOfTheProbe)
{
    const auto first = offer(1);
    device.whenAsked([&](sdk::Key) {
        if (device.asked(key) == 2)
            offer(2);
    });
    const auto thing = createThing();
    EXPECT_EQ(thing->number(), 2);
    EXPECT_EQ(device.asked(key), 2);
    EXPECT_EQ(first->number, 1) << "the probed control is still there, and not the one in use";
}

TEST_F(MakeCreateFunctionTest, CreatesTheAdapterEvenIfTheControlGoesAfterTheProbe)
{
    offer(1);
    device.whenAsked([&](sdk::Key) {
        if (device.asked(key) == 2)
            device.drop(key);
    });
    const auto thing = createThing();
    ASSERT_NE(thing, nullptr);
    EXPECT_EQ(thing->number(), -1);
    offer(2);
    EXPECT_EQ(thing->number(), 2);
}

TEST_F(MakeCreateFunctionTest, TheAdapterAsksTheSameDeviceUnderTheSameKeyAgain)
{
    offer(1);
    const auto thing = createThing();
    device.drop(key);
    EXPECT_EQ(thing->number(), -1);
    offer(2);
    EXPECT_EQ(thing->number(), 2);
    EXPECT_EQ(device.asked(key), 4);
}

TEST_F(MakeCreateFunctionTest, NeitherTheFunctionNorTheAdapterOwnsTheControl)
{
    const auto control = offer(1);
    const auto before = control.use_count();
    const auto thing = createThing();
    EXPECT_EQ(thing->number(), 1);
    EXPECT_EQ(control.use_count(), before);
}

TEST_F(MakeCreateFunctionTest, MakesANewIndependentAdapterEachTime)
{
    offer(1);
    const auto first = createThing();
    const auto second = createThing();
    EXPECT_NE(first, second);
    EXPECT_EQ(device.asked(key), 4);
    offer(2);
    EXPECT_EQ(first->number(), 2);
    EXPECT_EQ(device.asked(key), 5);
    EXPECT_EQ(second->number(), 2) << "it has a handle of its own";
    EXPECT_EQ(device.asked(key), 6);
}

TEST_F(MakeCreateFunctionTest, ServesSeveralDevices)
{
    FakeVna other;
    other.offer<SdkControl>(key, std::make_shared<SdkControl>(2));
    offer(1);
    const auto onOther = std::any_cast<std::shared_ptr<IThing>>(create(&other));
    EXPECT_EQ(createThing()->number(), 1);
    EXPECT_EQ(onOther->number(), 2);
}

TEST_F(MakeCreateFunctionTest, PutsTheAdapterAndItsCountIntoOneAllocation)
{
    offer(1);
    const int before = SdkThing::ownAllocations;
    const auto thing = createThing();
    EXPECT_EQ(SdkThing::ownAllocations, before);
}

TEST_F(MakeCreateFunctionTest, LetsAnExceptionOfTheDevicePassUnchanged)
{
    offer(1);
    for (const int question : {1, 2}) {
        for (const auto& exception : anyExceptions()) {
            const int before = device.asked(key);
            device.whenAsked([&](sdk::Key) {
                if (device.asked(key) == before + question)
                    std::rethrow_exception(exception);
            });
            EXPECT_EQ(thrownBy([&] { create(&device); }), exception);
            EXPECT_EQ(device.asked(key), before + question);
        }
    }
}

TEST_F(MakeCreateFunctionTest, LetsAnExceptionOfTheAdaptersConstructorPassUnchanged)
{
    struct Failing {
        explicit Failing(devices::ReacquiringControl<SdkControl> /*control*/) { throw std::bad_any_cast{}; }
    };
    const auto control = offer(1);
    const auto before = control.use_count();
    const auto createFailing = devices::makeCreateFunction<sdk::IVna, SdkControl, Failing, Failing, sdk::Key>(key);
    EXPECT_THROW(createFailing(&device), std::bad_any_cast);
    EXPECT_EQ(control.use_count(), before);
}

} // namespace
} // namespace tarn::tests
