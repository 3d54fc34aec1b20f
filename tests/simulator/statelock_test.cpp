#include <simulator/statetest.h>

#include <simulator/statefolder.h>

#include <QSysInfo>

#include <unistd.h>

#include <chrono>

namespace tarn::simulator {
namespace {

using namespace std::chrono_literals;
using provider::OpenError;
using test::StateTest;
using testing::HasSubstr;

class StateLockTest : public StateTest { };

TEST_F(StateLockTest, BelongsToOneProcessAtATime)
{
    auto process = holder();
    ASSERT_EQ(process.readLine(), "open");
    const auto start = std::chrono::steady_clock::now();
    const auto error = refused();
    EXPECT_GE(std::chrono::steady_clock::now() - start, 3s) << "the holder may be about to end";
    EXPECT_EQ(error.code, OpenError::Code::Busy);
    EXPECT_THAT(error.message.toStdString(), HasSubstr("\"sim\""));
    EXPECT_THAT(error.message.toStdString(), HasSubstr("process " + std::to_string(process.id())));
    EXPECT_THAT(error.message.toStdString(), HasSubstr("statewriter"));
    EXPECT_THAT(error.message.toStdString(), HasSubstr(QSysInfo::machineHostName().toStdString()));
    EXPECT_THAT(error.hint.toStdString(), HasSubstr(file("lock").toStdString()));
    EXPECT_NE(open("other"), nullptr) << "another instrument is free";

    ASSERT_EQ(process.finish(), 0);
    EXPECT_NE(open(), nullptr) << "and so is this one once the holder has ended";
}

TEST_F(StateLockTest, BelongsToOneInstrumentOfAProcessAtATime)
{
    auto first = open();
    const auto error = refused();
    EXPECT_EQ(error.code, OpenError::Code::Busy);
    EXPECT_THAT(error.message.toStdString(), HasSubstr("process " + std::to_string(::getpid())));
    first.reset();
    EXPECT_NE(open(), nullptr);
}

TEST_F(StateLockTest, IsWaitedForWhileItsHolderIsAboutToEnd)
{
    auto first = open();
    int waited = 0;
    const StateFolder second{folder(), [&] {
                                 if (++waited == 3)
                                     first.reset();
                                 return waited < 10;
                             }};
    EXPECT_EQ(waited, 3);
}

TEST_F(StateLockTest, IsFreeWhateverTheLockFileSaysWhenNobodyHoldsIt)
{
    writeOnce("f", {1});
    for (const auto* const contents :
         {"", "1\nanother program\nanother host\n", "someone (process 1 on elsewhere)\n"}) {
        replace(file("lock"), contents);
        EXPECT_NE(open(), nullptr) << contents;
    }
}

TEST_F(StateLockTest, IsHeldByAnotherProcessWhenTheLockFileDoesNotSayByWhom)
{
    const StateFolder first{folder(), [] { return false; }};
    for (const auto& contents : {QByteArray{}, QByteArray{"\n"}, QByteArray{1, '\0'} + "x"}) {
        replace(file("lock"), contents);
        try {
            const StateFolder second{folder(), [] { return false; }};
            ADD_FAILURE() << "held twice";
        } catch (const StateFolderBusy& busy) {
            EXPECT_STREQ(busy.what(), "another process");
        }
    }
}

TEST_F(StateLockTest, KeepsTheLockFileSoThatAllLockTheSameOne)
{
    static_cast<void>(open());
    EXPECT_TRUE(QFile::exists(file("lock"))) << "whoever waits has it open";
}

TEST_F(StateLockTest, IsFreeAgainAfterItsHolderWasKilled)
{
    auto process = holder();
    ASSERT_EQ(process.readLine(), "open");
    process.kill();
    EXPECT_NE(open(), nullptr);
}

} // namespace
} // namespace tarn::simulator
