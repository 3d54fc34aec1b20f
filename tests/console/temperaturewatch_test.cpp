#include <console/error.h>
#include <console/lifecyclewatch.h>
#include <console/output.h>
#include <console/temperaturewatch.h>
#include <support/fakevna.h>

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

namespace tarn::console {

using namespace std::chrono_literals;

/// The watch alone, with changes that the test reports.
class TemperatureWatchTest : public testing::Test {
protected:
    void change() { emit m_control.temperaturesChanged(); }

    /// Runs until `count` readings were shown, each followed by `afterwards`.
    void watch(std::chrono::microseconds interval, std::optional<std::uint64_t> count, std::function<void()> afterwards)
    {
        TemperatureWatch{m_lifecycle,
                         m_control,
                         interval,
                         count,
                         [this, then = std::move(afterwards)] {
                             ++m_shown;
                             then();
                         },
                         m_output}
            .run();
    }

    int m_arguments = 0;
    const QCoreApplication m_application{m_arguments, nullptr};
    const LifecycleWatch m_lifecycle{std::make_shared<tests::FakeVna>()};
    TemperatureWatch::Control m_control{devices::ReacquiringControl<sdk::ITemperatureControl>{nullptr}};
    const Output m_output{{}, {}};
    int m_shown = 0;
};

TEST_F(TemperatureWatchTest, ShowsEveryChange)
{
    watch(0us, 5, [this] { change(); });
    EXPECT_EQ(m_shown, 5);
}

TEST_F(TemperatureWatchTest, ShowsNoChangeBeforeTheIntervalIsOver)
{
    const auto changeAndEnd = [this] {
        QObject::connect(
            &m_control, &TemperatureWatch::Control::temperaturesChanged, &m_application,
            [] { QCoreApplication::exit(); }, Qt::QueuedConnection); // after the watch, which is connected already
        change();
    };
    EXPECT_THROW(watch(24h, std::nullopt, changeAndEnd), Error);
    EXPECT_EQ(m_shown, 1);
}

TEST_F(TemperatureWatchTest, ShowsAChangeWhenTheIntervalIsOver)
{
    const auto start = std::chrono::steady_clock::now();
    watch(50ms, 2, [this] { change(); });
    EXPECT_GE(std::chrono::steady_clock::now() - start, 50ms);
}

} // namespace tarn::console
