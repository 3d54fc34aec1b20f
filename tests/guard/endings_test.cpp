#include <guard/error.h>
#include <guard/guardfixture.h>

#include <stdexcept>

namespace tarn::guard {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Does something before it notes that a request has taken too long.
class ActingLog final : public IBreachObserver {
public:
    void onBreach(const BreachReport& report) noexcept override
    {
        if (report.breach == Breach::TimedOut || report.breach == Breach::NotReturned)
            atTimeOut();
        log.onBreach(report);
    }

    std::function<void()> atTimeOut;
    BreachLog log;
};

/// Matches a report.
auto is(Breach breach, unsigned completions)
{
    return testing::AllOf(testing::Field(&BreachReport::breach, breach),
                          testing::Field(&BreachReport::completions, completions));
}

} // namespace

/// How a request ends, seen by its caller and by the observer of breaches.
class GuardEndings : public GuardTest {
protected:
    /// Makes a request that the device completes within the operation, and does `step` in the caller's completion with
    /// the one that the device has kept.
    void whileCompleting(const std::function<void(FilesDone& kept)>& step)
    {
        FilesDone kept;
        offer([&](const FilesDone& done) {
            kept = done;
            done(someFiles, {});
        });
        int completed = 0;
        control()->fileList([&](const Files& /*files*/, std::error_code /*code*/) {
            ++completed;
            step(kept);
        });
        EXPECT_EQ(completed, 1);
    }
};

TEST_F(GuardEndings, AGivenUpRequestIsReportedBeforeItsCompletionIsCalled)
{
    offer([](const FilesDone& /*done*/) { });
    std::vector<Breach> before;
    control()->fileList([&](const Files& /*files*/, std::error_code /*code*/) { before = breaches->breaches(); });
    EXPECT_THAT(before, ElementsAre(Breach::Dropped));
}

TEST_F(GuardEndings, ATimeOutIsReportedBeforeTheCompletionIsCalled)
{
    useLimit(returnLimit);
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
    const auto observer = std::make_shared<ActingLog>();
    guarded = tarn::guard::guarded(device, {returnLimit, observer});
    FilesDone kept;
    offer([&](FilesDone done) { kept = std::move(done); });
    std::promise<void> reported;
    std::promise<void> goOn;
    observer->atTimeOut = [&] {
        reported.set_value();
        goOn.get_future().wait();
    };
    auto ended = std::async(std::launch::async, [this] { return fileList().code; });
    reported.get_future().wait();
    kept(someFiles, {}); // waits for nobody
    kept(someFiles, {});
    EXPECT_THAT(observer->log.breaches(), IsEmpty());
    goOn.set_value();
    EXPECT_EQ(ended.get(), Error::TimedOut);
    EXPECT_THAT(observer->log.await(3),
                ElementsAre(is(Breach::TimedOut, 0), is(Breach::CompletedLate, 1), is(Breach::CompletedLate, 2)));
}

TEST_F(GuardEndings, TheObserverOfATimeOutMayLetTheDeviceGo)
{
    const auto observer = std::make_shared<ActingLog>();
    guarded = tarn::guard::guarded(device, {returnLimit, observer});
    FilesDone kept;
    offer([&](FilesDone done) { kept = std::move(done); })->atEnd = [&] { kept(someFiles, {}); };
    observer->atTimeOut = [&] {
        device.reset();
        guarded.reset(); // the last that has the device
    };
    std::promise<std::error_code> ended;
    control()->fileList([&](const Files& /*files*/, std::error_code code) { ended.set_value(code); });
    EXPECT_EQ(ended.get_future().get(), Error::TimedOut);
    EXPECT_THAT(observer->log.await(2), ElementsAre(is(Breach::TimedOut, 0), is(Breach::CompletedLate, 1)));
}

TEST_F(GuardEndings, ACompletionInsideTheCallersCompletionIsOneTooMany)
{
    whileCompleting([](FilesDone& kept) {
        kept({}, {});
        kept({}, {});
    });
    EXPECT_THAT(breaches->await(0), ElementsAre(is(Breach::CompletedAgain, 2), is(Breach::CompletedAgain, 3)));
}

TEST_F(GuardEndings, TheCallersCompletionMayLeadToTheEndOfTheDevices)
{
    std::unique_ptr<FilesDone> kept;
    offer([&](FilesDone done) { kept = std::make_unique<FilesDone>(std::move(done)); });
    std::error_code second = std::make_error_code(std::errc::no_message);
    control()->fileList([&](const Files& /*files*/, std::error_code /*code*/) {
        kept.reset();
        control()->fileList([&](const Files& /*files*/, std::error_code code) { second = code; });
    });
    (*kept)(someFiles, {});
    (*kept)(someFiles, {});
    EXPECT_EQ(second, std::error_code{});
    EXPECT_THAT(breaches->breaches(), IsEmpty());
}

TEST_F(GuardEndings, TheCallersCompletionMayLeadToTheEndOfTheDevicesWithinTheOperation)
{
    std::unique_ptr<FilesDone> kept;
    int requests = 0;
    offer([&](FilesDone done) {
        const bool isFirst = ++requests == 1;
        kept = std::make_unique<FilesDone>(std::move(done));
        (*kept)(someFiles, {});
        if (isFirst)
            throw std::runtime_error{"device"};
    });
    int first = 0;
    std::error_code second = std::make_error_code(std::errc::no_message);
    EXPECT_THROW(control()->fileList([&](const Files& /*files*/, std::error_code /*code*/) {
        ++first;
        kept.reset();
        control()->fileList([&](const Files& /*files*/, std::error_code code) { second = code; });
    }),
                 std::runtime_error);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, std::error_code{});
    EXPECT_THAT(breaches->await(0), ElementsAre(is(Breach::CompletedAndThrew, 1)));
}

TEST_F(GuardEndings, ACompletionOnAnotherThreadDuringTheCallersCompletionIsOneTooMany)
{
    whileCompleting([](FilesDone& kept) {
        std::jthread{[&] {
            kept({}, {});
            kept = nullptr;
        }}.join();
    });
    EXPECT_THAT(breaches->await(0), ElementsAre(is(Breach::CompletedAgain, 2)));
}

TEST_F(GuardEndings, ACompletionWithinTheOperationDuringTheReportOfATimeOutIsALateOne)
{
    const auto observer = std::make_shared<ActingLog>();
    guarded = tarn::guard::guarded(device, {shortLimit, observer});
    std::promise<void> reported;
    std::promise<void> goOn;
    offer([&](const FilesDone& done) {
        reported.get_future().wait();
        done(someFiles, {}); // waits for nobody
        goOn.set_value();
    });
    observer->atTimeOut = [&] {
        reported.set_value();
        goOn.get_future().wait();
    };
    EXPECT_EQ(fileList().code, Error::TimedOut);
    EXPECT_THAT(observer->log.await(2), ElementsAre(is(Breach::NotReturned, 0), is(Breach::CompletedLate, 1)));
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

TEST_F(GuardEndings, EveryCompletionBeforeAThrowIsCounted)
{
    offer([&](const FilesDone& done) {
        done(someFiles, {});
        done(someFiles, {});
        throw std::runtime_error{"device"};
    });
    EXPECT_THROW(control()->fileList([](const Files& /*files*/, std::error_code /*code*/) { }), std::runtime_error);
    const auto reports = breaches->await(2);
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_EQ(reports[0].breach, Breach::CompletedAgain);
    EXPECT_EQ(reports[0].completions, 2U);
    EXPECT_EQ(reports[1].breach, Breach::CompletedAndThrew);
    EXPECT_EQ(reports[1].completions, 2U);
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
    EXPECT_TRUE(observed.expired());
}

TEST_F(GuardEndings, NothingOfTheCallersCompletionIsKeptAfterATimeOut)
{
    useLimit(shortLimit);
    FilesDone kept;
    offer([&](FilesDone done) { kept = std::move(done); });
    const auto atItsEnd = [this](std::promise<void>* gone) {
        return std::shared_ptr<void>{this, [gone](void* /*fixture*/) { gone->set_value(); }};
    };
    std::promise<void> gone;
    control()->fileList([captured = atItsEnd(&gone)](const Files& /*files*/, std::error_code /*code*/) { });
    gone.get_future().wait();
    EXPECT_TRUE(kept);
}

TEST_F(GuardEndings, NothingOfTheCallersCompletionIsKeptAfterAThrow)
{
    FilesDone kept;
    offer([&](FilesDone done) {
        kept = std::move(done);
        throw std::runtime_error{"device"};
    });
    auto captured = std::make_shared<int>(0);
    const std::weak_ptr<int> observed = captured;
    EXPECT_THROW(
        control()->fileList([captured = std::move(captured)](const Files& /*files*/, std::error_code /*code*/) { }),
        std::runtime_error);
    EXPECT_TRUE(observed.expired());
}

TEST_F(GuardEndings, AnExceptionWaitsForTheEndOfATimeOut)
{
    const auto observer = std::make_shared<ActingLog>();
    guarded = tarn::guard::guarded(device, {shortLimit, observer});
    std::promise<void> reported;
    std::atomic<bool> isOver = false;
    offer([&](const FilesDone& /*done*/) {
        reported.get_future().wait();
        throw std::runtime_error{"device"};
    });
    observer->atTimeOut = [&] {
        reported.set_value();
        std::this_thread::sleep_for(std::chrono::milliseconds{20});
    };
    EXPECT_THROW(control()->fileList([&](const Files& /*files*/, std::error_code code) {
        EXPECT_EQ(code, Error::TimedOut);
        isOver = true;
    }),
                 std::runtime_error);
    EXPECT_TRUE(isOver);
    EXPECT_THAT(observer->log.breaches(), ElementsAre(Breach::NotReturned));
}

TEST_F(GuardEndings, ARequestAfterAnotherIsJudgedByItself)
{
    std::promise<void> goOn;
    int calls = 0;
    offer([&](const FilesDone& done) {
        if (++calls == 2)
            goOn.get_future().wait();
        done(someFiles, {});
    });
    EXPECT_EQ(fileList().files, someFiles);
    useLimit(shortLimit);
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
