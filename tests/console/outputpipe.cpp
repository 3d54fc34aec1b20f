#include <console/outputpipe.h>

#include <QDeadlineTimer>
#include <QThread>

#include <gtest/gtest.h>

#include <cstddef>
#include <utility>

#include <fcntl.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tarn::console {

OutputPipe::OutputPipe(int room)
    : m_filled{size - room}
{
    EXPECT_EQ(::pipe2(m_ends.data(), O_CLOEXEC), 0);
    EXPECT_EQ(::fcntl(m_ends[1], F_SETPIPE_SZ, size), size);
    const QByteArray spaces{m_filled, ' '};
    EXPECT_EQ(::write(m_ends[1], spaces.data(), static_cast<std::size_t>(spaces.size())), spaces.size());
}

void OutputPipe::makeNonBlocking()
{
    EXPECT_EQ(::fcntl(m_ends[1], F_SETFL, O_NONBLOCK), 0);
}

void OutputPipe::start(QProcess& process)
{
    process.setChildProcessModifier([this] {
        ::dup2(m_ends[1], STDOUT_FILENO);
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<unsigned>(::sched_getcpu()), &one);
        ::sched_setaffinity(0, sizeof one, &one);
    });
    process.start();
    EXPECT_TRUE(process.waitForStarted());
    ::close(m_ends[1]);
}

void OutputPipe::awaitWritten() const
{
    for (const QDeadlineTimer latest{20'000}; held() == m_filled; QThread::msleep(1))
        ASSERT_FALSE(latest.hasExpired());
}

void OutputPipe::awaitStuck() const
{
    awaitWritten();
    const QDeadlineTimer latest{20'000};
    QDeadlineTimer settled{500};
    for (auto last = held(); !settled.hasExpired(); QThread::msleep(1)) {
        ASSERT_FALSE(latest.hasExpired());
        if (const auto now = held(); now != std::exchange(last, now))
            settled.setRemainingTime(500);
    }
}

QByteArray OutputPipe::drain() const
{
    QByteArray out;
    std::array<char, size> block{};
    for (ssize_t length = 0; (length = ::read(m_ends[0], block.data(), block.size())) > 0;)
        out.append(block.data(), length);
    return out;
}

void OutputPipe::stopReading()
{
    if (m_ends[0] >= 0)
        ::close(std::exchange(m_ends[0], -1));
}

int OutputPipe::held() const
{
    int bytes = 0;
    EXPECT_EQ(::ioctl(m_ends[0], FIONREAD, &bytes), 0);
    return bytes;
}

} // namespace tarn::console
