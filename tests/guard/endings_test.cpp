#include <guard/error.h>
#include <guard/guardfixture.h>

#include <stdexcept>

namespace tarn::guard {

using testing::ElementsAre;
using testing::IsEmpty;

/// How a request ends, seen by its caller and by the observer of breaches.
class GuardEndings : public GuardTest { };

TEST_F(GuardEndings, AGivenUpRequestIsReportedBeforeItsCompletionIsCalled)
{
    offer([](const FilesDone& /*done*/) { });
    std::vector<Breach> before;
    control()->fileList([&](const Files& /*files*/, std::error_code /*code*/) { before = breaches->breaches(); });
    EXPECT_THAT(before, ElementsAre(Breach::Dropped));
}

TEST_F(GuardEndings, ATimeOutIsReportedBeforeTheCompletionIsCalled)
{
    useLimit(shortLimit);
    FilesDone kept;
    offer([&](FilesDone done) { kept = std::move(done); });
    std::promise<std::vector<Breach>> before;
    control()->fileList(
        [&](const Files& /*files*/, std::error_code /*code*/) { before.set_value(breaches->breaches()); });
    EXPECT_THAT(before.get_future().get(), ElementsAre(Breach::TimedOut));
}

TEST_F(GuardEndings, ATimeOutComesSoonAfterTheLimit)
{
    useLimit(std::chrono::milliseconds{200});
    FilesDone kept;
    offer([&](FilesDone done) { kept = std::move(done); });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(fileList().code, Error::TimedOut);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds{10}); // with time for a busy machine
}

TEST_F(GuardEndings, ACompletionDuringTheReportOfATimeOutIsALateOne)
{
    class Waiting final : public IBreachObserver {
    public:
        void onBreach(const BreachReport& report) noexcept override
        {
            if (report.breach == Breach::TimedOut) {
                reported.set_value();
                goOn.get_future().wait();
            }
            log.onBreach(report);
        }

        std::promise<void> reported;
        std::promise<void> goOn;
        BreachLog log;
    };
    const auto observer = std::make_shared<Waiting>();
    guarded = tarn::guard::guarded(device, {shortLimit, observer});
    FilesDone kept;
    offer([&](FilesDone done) { kept = std::move(done); });
    auto ended = std::async(std::launch::async, [this] { return fileList().code; });
    observer->reported.get_future().wait();
    auto late = std::async(std::launch::async, [&] { kept(someFiles, {}); });
    EXPECT_EQ(late.wait_for(std::chrono::milliseconds{50}), std::future_status::timeout);
    observer->goOn.set_value();
    late.get();
    EXPECT_EQ(ended.get(), Error::TimedOut);
    EXPECT_THAT(observer->log.breaches(), ElementsAre(Breach::TimedOut, Breach::CompletedLate));
}

TEST_F(GuardEndings, ACompletionBeforeAThrowIsCountedOnce)
{
    offer([&](const FilesDone& done) {
        done(someFiles, {});
        throw std::runtime_error{"device"};
    });
    EXPECT_THROW(control()->fileList([](const Files& /*files*/, std::error_code /*code*/) { }), std::runtime_error);
    const auto reports = breaches->await(1);
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].completions, 1U);
}

TEST_F(GuardEndings, NothingOfTheCallersCompletionIsKeptAfterItsEnd)
{
    FilesDone kept;
    offer([&](FilesDone done) {
        kept = done;
        done(someFiles, {});
    });
    auto captured = std::make_shared<int>(0);
    const std::weak_ptr<int> observed = captured;
    control()->fileList([captured = std::move(captured)](const Files& /*files*/, std::error_code /*code*/) { });
    kept = nullptr;
    EXPECT_TRUE(observed.expired());
}

TEST_F(GuardEndings, ARequestAfterAnotherIsJudgedByItself)
{
    useLimit(shortLimit);
    std::promise<void> goOn;
    int calls = 0;
    offer([&](const FilesDone& done) {
        if (++calls == 2)
            goOn.get_future().wait();
        done(someFiles, {});
    });
    EXPECT_EQ(fileList().files, someFiles);
    auto observer = std::async(std::launch::async, [&] {
        const auto reports = breaches->await(1);
        goOn.set_value();
        return reports;
    });
    EXPECT_EQ(fileList().code, Error::TimedOut); // in the same thread, so with the same call
    const auto reports = observer.get();
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].breach, Breach::NotReturned);
}

} // namespace tarn::guard
