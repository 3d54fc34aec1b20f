#include <guard/error.h>
#include <guard/guardfixture.h>

#include <stdexcept>

namespace tarn::guard {

using testing::ElementsAre;
using testing::IsEmpty;

class GuardBehaviours : public GuardTest { };

TEST_F(GuardBehaviours, PassesACompletionOnTheCallersThreadOn)
{
    offer([&](const FilesDone& done) { done(someFiles, {}); });
    const auto ended = fileList();
    EXPECT_EQ(ended.files, someFiles);
    EXPECT_EQ(ended.code, std::error_code{});
    EXPECT_THAT(breaches->breaches(), IsEmpty());
}

TEST_F(GuardBehaviours, PassesACompletionOnAnotherThreadOn)
{
    std::jthread thread;
    offer([&](FilesDone done) { thread = std::jthread{[this, done = std::move(done)] { done(someFiles, {}); }}; });
    const auto ended = fileList();
    EXPECT_EQ(ended.files, someFiles);
    EXPECT_EQ(ended.code, std::error_code{});
    thread.join();
    EXPECT_THAT(breaches->breaches(), IsEmpty());
}

TEST_F(GuardBehaviours, PassesAnErrorOn)
{
    const auto code = std::make_error_code(std::errc::io_error);
    offer([&](const FilesDone& done) { done({}, code); });
    EXPECT_EQ(fileList().code, code);
    EXPECT_THAT(breaches->breaches(), IsEmpty());
}

TEST_F(GuardBehaviours, TakesTheFirstOfTwoCompletionsOnTheCallersThread)
{
    offer([&](const FilesDone& done) {
        done(someFiles, {});
        done({}, std::make_error_code(std::errc::io_error));
    });
    const auto ended = fileList();
    EXPECT_EQ(ended.files, someFiles);
    EXPECT_EQ(ended.code, std::error_code{});
    EXPECT_THAT(breaches->breaches(), ElementsAre(Breach::CompletedAgain));
}

TEST_F(GuardBehaviours, CountsTheCompletionsOfARequestAndNamesIt)
{
    offer([&](const FilesDone& done) {
        for (int i = 0; i < 3; ++i)
            done(someFiles, {});
    });
    fileList();
    const auto reports = breaches->await(2);
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_EQ(reports[0].completions, 2U);
    EXPECT_EQ(reports[1].completions, 3U);
    EXPECT_EQ(reports[0].control, FileMemory::key);
    EXPECT_EQ(reports[0].operation, "fileList");
}

TEST_F(GuardBehaviours, TakesTheFirstOfTwoCompletionsFromAnotherThread)
{
    std::jthread thread;
    offer([&](FilesDone done) {
        thread = std::jthread{[this, done = std::move(done)] {
            done(someFiles, {});
            done({}, {});
        }};
    });
    EXPECT_EQ(fileList().files, someFiles);
    thread.join();
    EXPECT_THAT(breaches->breaches(), ElementsAre(Breach::CompletedAgain));
}

TEST_F(GuardBehaviours, TakesOneOfManyCompletionsAtATime)
{
    std::vector<std::jthread> threads;
    offer([&](const FilesDone& done) {
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([this, done] { done(someFiles, {}); });
    });
    EXPECT_EQ(fileList().files, someFiles);
    threads.clear();
    EXPECT_THAT(breaches->breaches(),
                ElementsAre(Breach::CompletedAgain, Breach::CompletedAgain, Breach::CompletedAgain));
}

TEST_F(GuardBehaviours, EndsARequestThatIsGivenUpWithAnError)
{
    offer([](const FilesDone& /*done*/) { });
    EXPECT_EQ(fileList().code, Error::Dropped);
    EXPECT_THAT(breaches->breaches(), ElementsAre(Breach::Dropped));
}

TEST_F(GuardBehaviours, EndsARequestThatIsGivenUpLaterWithAnError)
{
    std::jthread thread;
    offer([&](FilesDone done) { thread = std::jthread{[done = std::move(done)] { }}; });
    EXPECT_EQ(fileList().code, Error::Dropped);
    thread.join();
    EXPECT_THAT(breaches->breaches(), ElementsAre(Breach::Dropped));
}

TEST_F(GuardBehaviours, EndsARequestThatIsNeverCompletedWithAnError)
{
    useLimit(returnLimit);
    FilesDone kept;
    offer([&](FilesDone done) { kept = std::move(done); });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(fileList().code, Error::TimedOut);
    EXPECT_GE(std::chrono::steady_clock::now() - start, returnLimit);
    const auto reports = breaches->await(1);
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].breach, Breach::TimedOut);
    EXPECT_EQ(reports[0].completions, 0U);
}

TEST_F(GuardBehaviours, DoesNotCountTheTimeBeforeARequest)
{
    FilesDone kept;
    offer([&](FilesDone done) { kept = std::move(done); });
    for (int i = 0; i < 10; ++i) {
        useLimit(std::chrono::seconds{20});
        std::this_thread::sleep_for(2 * shortLimit);
        const auto start = std::chrono::steady_clock::now();
        useLimit(shortLimit);
        EXPECT_EQ(fileList().code, Error::TimedOut);
        EXPECT_GE(std::chrono::steady_clock::now() - start, shortLimit);
    }
}

TEST_F(GuardBehaviours, TakesALimitOfNothingOrLessForAVeryShortOne)
{
    using std::chrono::milliseconds;
    FilesDone kept;
    offer([&](FilesDone done) { kept = std::move(done); });
    for (const auto limit : {milliseconds{0}, milliseconds{-1}, milliseconds::min()}) {
        useLimit(limit);
        EXPECT_EQ(fileList().code, Error::TimedOut) << limit.count();
    }
}

TEST_F(GuardBehaviours, TakesTheLongestLimitForOneOfYears)
{
    useLimit(std::chrono::milliseconds::max());
    FilesDone kept;
    offer([&](FilesDone done) { kept = std::move(done); });
    std::promise<Files> ended;
    control()->fileList([&](Files files, std::error_code /*code*/) { ended.set_value(std::move(files)); });
    auto end = ended.get_future();
    EXPECT_EQ(end.wait_for(2 * shortLimit), std::future_status::timeout);
    kept(someFiles, {});
    EXPECT_EQ(end.get(), someFiles);
    EXPECT_THAT(breaches->breaches(), IsEmpty());
}

TEST_F(GuardBehaviours, BearsACompletionAfterTheTimeOut)
{
    useLimit(shortLimit);
    FilesDone kept;
    offer([&](FilesDone done) { kept = std::move(done); });
    EXPECT_EQ(fileList().code, Error::TimedOut);
    kept(someFiles, {});
    kept(someFiles, {});
    kept = nullptr;
    const auto reports = breaches->await(3);
    ASSERT_EQ(reports.size(), 3U);
    EXPECT_EQ(reports[1].breach, Breach::CompletedLate);
    EXPECT_EQ(reports[1].completions, 1U);
    EXPECT_EQ(reports[2].breach, Breach::CompletedLate);
    EXPECT_EQ(reports[2].completions, 2U);
}

TEST_F(GuardBehaviours, LetsWhatAnOperationThrowsThroughWithoutACompletion)
{
    offer([](const FilesDone& /*done*/) { throw std::runtime_error{"device"}; });
    bool completed = false;
    EXPECT_THROW(control()->fileList([&](const Files& /*files*/, std::error_code /*code*/) { completed = true; }),
                 std::runtime_error);
    EXPECT_FALSE(completed);
    EXPECT_THAT(breaches->breaches(), IsEmpty());
}

TEST_F(GuardBehaviours, DoesNotCompleteAfterAThrow)
{
    FilesDone kept;
    offer([&](FilesDone done) {
        kept = std::move(done);
        throw std::runtime_error{"device"};
    });
    bool completed = false;
    EXPECT_THROW(control()->fileList([&](const Files& /*files*/, std::error_code /*code*/) { completed = true; }),
                 std::runtime_error);
    kept(someFiles, {});
    EXPECT_FALSE(completed);
    EXPECT_THAT(breaches->breaches(), ElementsAre(Breach::CompletedAndThrew));
}

TEST_F(GuardBehaviours, SaysWhenAnOperationThrewAfterItsCompletion)
{
    offer([&](const FilesDone& done) {
        done(someFiles, {});
        throw std::runtime_error{"device"};
    });
    int completed = 0;
    EXPECT_THROW(control()->fileList([&](const Files& /*files*/, std::error_code /*code*/) { ++completed; }),
                 std::runtime_error);
    EXPECT_EQ(completed, 1);
    EXPECT_THAT(breaches->breaches(), ElementsAre(Breach::CompletedAndThrew));
}

TEST_F(GuardBehaviours, WaitsForARunningCompletionBeforeItLetsAnExceptionThrough)
{
    std::jthread thread;
    std::promise<void> inside;
    std::atomic<bool> isOver = false;
    offer([&](FilesDone done) {
        thread = std::jthread{[this, done = std::move(done)] { done(someFiles, {}); }};
        inside.get_future().wait();
        throw std::runtime_error{"device"};
    });
    EXPECT_THROW(control()->fileList([&](const Files& /*files*/, std::error_code /*code*/) {
        inside.set_value();
        std::this_thread::sleep_for(std::chrono::milliseconds{20});
        isOver = true;
    }),
                 std::runtime_error);
    EXPECT_TRUE(isOver);
    EXPECT_THAT(breaches->breaches(), ElementsAre(Breach::CompletedAndThrew));
}

TEST_F(GuardBehaviours, BearsACompletionFromTheControlsDestructor)
{
    useLimit(shortLimit);
    FilesDone kept;
    offer([&](FilesDone done) { kept = std::move(done); })->atEnd = [&] { kept(someFiles, {}); };
    EXPECT_EQ(fileList().code, Error::TimedOut);
    device->drop(FileMemory::key);
    const auto reports = breaches->await(2);
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_EQ(reports[1].breach, Breach::CompletedLate);
}

TEST_F(GuardBehaviours, CarriesARequestThroughADropOfTheControls)
{
    std::jthread thread;
    offer([&](FilesDone done) {
        device->drop(FileMemory::key);
        thread = std::jthread{[this, done = std::move(done)] { done(someFiles, {}); }};
    });
    EXPECT_EQ(fileList().files, someFiles);
    EXPECT_EQ(control(), nullptr);
    EXPECT_THAT(breaches->breaches(), IsEmpty());
}

TEST_F(GuardBehaviours, EndsARequestThatTheControlsTookAlongWhenTheyWereDropped)
{
    FilesDone kept;
    auto memory = offer([&](FilesDone done) { kept = std::move(done); });
    memory->atEnd = [&] { kept = nullptr; };
    std::promise<std::error_code> ended;
    control()->fileList([&](const Files& /*files*/, std::error_code code) { ended.set_value(code); });
    memory.reset();
    device->drop(FileMemory::key);
    EXPECT_EQ(ended.get_future().get(), Error::Dropped);
}

TEST_F(GuardBehaviours, SaysThatAnOperationDoesNotReturnWhileAnotherSucceeds)
{
    useLimit(returnLimit);
    std::promise<void> goOn;
    std::atomic<int> calls = 0;
    offer([&](const FilesDone& done) {
        if (++calls == 1)
            goOn.get_future().wait();
        done(someFiles, {});
    });
    auto first = std::async(std::launch::async, [this] { return fileList(); });
    const auto reports = breaches->await(1);
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].breach, Breach::NotReturned);
    EXPECT_EQ(fileList().files, someFiles);
    goOn.set_value();
    EXPECT_EQ(first.get().code, Error::TimedOut);
    EXPECT_EQ(breaches->await(2).at(1).breach, Breach::CompletedLate);
}

TEST_F(GuardBehaviours, NeedsNoObserver)
{
    guarded = tarn::guard::guarded(device, {shortLimit, nullptr});
    offer([](const FilesDone& /*done*/) { });
    EXPECT_EQ(fileList().code, Error::Dropped);
}

TEST(GuardError, HasAMessageForPeople)
{
    EXPECT_STREQ(errorCategory().name(), "guard");
    EXPECT_EQ(std::error_code{Error::Dropped}.message(), "the instrument gave the request up without an answer");
    EXPECT_EQ(std::error_code{Error::TimedOut}.message(), "the instrument did not answer in time");
    EXPECT_EQ(errorCategory().message(7), "unknown error");
}

} // namespace tarn::guard
