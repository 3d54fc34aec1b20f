#include <console/error.h>
#include <console/watchloop.h>
#include <support/fakevna.h>

#include <QCoreApplication>

#include <gmock/gmock.h>

#include <atomic>
#include <memory>
#include <thread>

namespace tarn::console {

using testing::ElementsAre;

namespace {

/// Hears that the controls are to go after the watch has.
class LaterObserver final : public sdk::IVna::Observer {
public:
    void onControlsAboutToBeReleased() override { isReleased = true; }
    void onControlsAvailable() override { }

    std::atomic<bool> isReleased{false};
};

class WatchLoopTest : public testing::Test {
protected:
    std::function<void()> question(int number)
    {
        return [this, number] { loop.show([&] { shown.push_back(number); }); };
    }

    int arguments = 0;
    const QCoreApplication application{arguments, nullptr};
    const std::shared_ptr<tests::FakeVna> device = std::make_shared<tests::FakeVna>();
    const LifecycleWatch lifecycle{device};
    const Output output{{.quiet = true}, {}};
    WatchLoop loop{lifecycle, 2, output};
    std::vector<int> shown;
};

} // namespace

TEST_F(WatchLoopTest, PutsAllQuestionsBeforeTheInstrumentCanDropItsControls)
{
    LaterObserver observer;
    device->addObserver(&observer);
    std::jthread drop;
    loop.ask([&] {
        drop = std::jthread{[&] { device->announceRelease(); }};
        std::this_thread::sleep_for(std::chrono::milliseconds{20});
        question(1)();
    });
    loop.ask([&] {
        EXPECT_FALSE(observer.isReleased);
        question(2)();
    });
    loop.run();
    EXPECT_THAT(shown, ElementsAre(1, 2));
    drop.join();
    EXPECT_TRUE(observer.isReleased);
}

TEST_F(WatchLoopTest, KeepsAQuestionToControlsThatAreAwayForTheNextOnes)
{
    device->announceRelease();
    loop.ask(question(1));
    QMetaObject::invokeMethod(
        &loop,
        [&] {
            EXPECT_THAT(shown, ElementsAre());
            device->announceAvailable();
            loop.ask(question(2));
        },
        Qt::QueuedConnection);
    loop.run();
    EXPECT_THAT(shown, ElementsAre(1, 2));
}

} // namespace tarn::console
