#include <console/platform.h>

#include <utils/mutex.h>

#include <QRandomGenerator>

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdio>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn::console::platform {

namespace {

std::error_code lastError()
{
    return {errno, std::generic_category()};
}

int descriptorOf(Stream stream)
{
    switch (stream) {
    case Stream::Input:
        return STDIN_FILENO;
    case Stream::Output:
        return STDOUT_FILENO;
    case Stream::Error:
        break;
    }
    return STDERR_FILENO;
}

/// Waits until `descriptor` is ready.
void awaitEvents(int descriptor, short events)
{
    pollfd waiting{descriptor, events, 0};
    ::poll(&waiting, 1, -1);
}

std::error_code writeAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const auto written = ::write(descriptor, bytes.data(), bytes.size());
        if (written >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(written));
        else if (errno == EAGAIN)
            awaitEvents(descriptor, POLLOUT); // whoever shares the stream made it non-blocking
        else if (errno != EINTR)
            return lastError();
    }
    return {};
}

/// Owns a file descriptor.
class Descriptor {
public:
    explicit Descriptor(int descriptor)
        : m_descriptor{descriptor}
    {
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    [[nodiscard]] int get() const { return m_descriptor; }
    [[nodiscard]] explicit operator bool() const { return m_descriptor >= 0; }

private:
    int m_descriptor;
};

/// Whose turn it is on standard output, so that the command's words and the last ones never run into each other.
/// Thread-safe.
class Turn {
public:
    /// What stands on standard output: nothing to which more could not be added; a part that is being written; a
    /// result, or its beginning.
    enum class State { Open, Part, Result };

    /// The command is about to write, after which the output is in `state`. Does not return once the program is ending.
    void begin(State state)
    {
        {
            const utils::MutexLock lock{m_mutex};
            if (!m_isEnding) {
                m_state = state;
                return;
            }
        }
        for (;;)
            ::pause();
    }

    /// The command has written that.
    void end()
    {
        {
            const utils::MutexLock lock{m_mutex};
            if (m_state == State::Part)
                m_state = State::Open;
        }
        m_changed.notify_all();
    }

    /// The program is ending: the command writes nothing more. Whether there is room for the last words. Lets the part
    /// that is being written come to its end, unless its reader has stopped to read.
    [[nodiscard]] bool takeForLastWords()
    {
        const utils::MutexLock lock{m_mutex};
        m_isEnding = true;
        const auto latest = std::chrono::steady_clock::now() + std::chrono::seconds{5};
        while (m_state == State::Part && m_changed.wait_until(m_mutex, latest) == std::cv_status::no_timeout) { }
        return m_state == State::Open;
    }

private:
    utils::Mutex m_mutex;
    std::condition_variable_any m_changed;
    State m_state TARN_GUARDED_BY(m_mutex) = State::Open;
    bool m_isEnding TARN_GUARDED_BY(m_mutex) = false;
};

/// A process has one output, up to its very end.
Turn& turn()
{
    static auto* const only = new Turn; // NOLINT(cppcoreguidelines-owning-memory)
    return *only;
}

std::error_code writeOutput(Turn::State state, std::string_view bytes)
{
    turn().begin(state);
    const auto error = writeAll(STDOUT_FILENO, bytes);
    turn().end();
    return error;
}

/// Writes and syncs a new file, then gives it the name that it is for.
std::error_code writeNew(int folder, const std::string& temporary, const std::string& name, QByteArrayView contents,
                         Existing existing)
{
    struct stat old{};
    const bool replaces
        = existing == Existing::Replace && ::fstatat(folder, name.c_str(), &old, AT_SYMLINK_NOFOLLOW) == 0;
    const mode_t mode = replaces ? 0600 : 0666; // nobody sees more of the new file than of the old one
    const Descriptor file{
        ::openat(folder, temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode)};
    if (!file || (replaces && ::fchmod(file.get(), old.st_mode & 0777U) != 0))
        return lastError();
    if (const auto error = writeAll(file.get(), {contents.data(), static_cast<std::size_t>(contents.size())}))
        return error;
    if (::fsync(file.get()) != 0)
        return lastError();
    if (existing == Existing::Replace)
        return ::renameat(folder, temporary.c_str(), folder, name.c_str()) == 0 ? std::error_code{} : lastError();
    if (::renameat2(folder, temporary.c_str(), folder, name.c_str(), RENAME_NOREPLACE) == 0)
        return {};
    if (errno != EINVAL && errno != ENOSYS)
        return lastError();
    // A file system without that operation; a new hard link never replaces anything either.
    return ::linkat(folder, temporary.c_str(), folder, name.c_str(), 0) == 0 ? std::error_code{} : lastError();
}

} // namespace

void prepare()
{
    std::signal(SIGPIPE, SIG_IGN);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // Opened the wrong way round, so that using the closed stream stays an error.
        if (::fcntl(stream, F_GETFD) == -1 && errno == EBADF)
            static_cast<void>(::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
}

bool isTerminal(Stream stream)
{
    return ::isatty(descriptorOf(stream)) == 1;
}

bool isOutputClosed()
{
    pollfd output{STDOUT_FILENO, 0, 0};
    return ::poll(&output, 1, 0) == 1 && (output.revents & (POLLERR | POLLHUP)) != 0;
}

int columns(Stream stream)
{
    winsize size{};
    return ::ioctl(descriptorOf(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

std::error_code write(Stream stream, std::string_view bytes)
{
    return stream == Stream::Output ? writeOutput(Turn::State::Result, bytes) : writeAll(descriptorOf(stream), bytes);
}

std::error_code writePart(std::string_view bytes)
{
    return writeOutput(Turn::State::Part, bytes);
}

void tryWrite(Stream stream, std::string_view bytes)
{
    pollfd ready{descriptorOf(stream), POLLOUT, 0};
    if (::poll(&ready, 1, 0) == 1)
        static_cast<void>(writeAll(ready.fd, bytes));
}

void writeLastWords(Stream stream, std::string_view words)
{
    if (stream != Stream::Output || turn().takeForLastWords())
        static_cast<void>(writeAll(descriptorOf(stream), words));
}

std::optional<std::string> readLine(int cancel)
{
    std::string line;
    for (;;) {
        std::array<pollfd, 2> waiting{{{STDIN_FILENO, POLLIN, 0}, {cancel, POLLIN, 0}}};
        if (::poll(waiting.data(), waiting.size(), -1) < 0)
            continue;
        if (waiting[1].revents != 0)
            return std::nullopt;
        char character = 0;
        const auto length = ::read(STDIN_FILENO, &character, 1);
        if (length < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (length <= 0 || character == '\n')
            return line;
        line += character;
    }
}

std::error_code writeFile(const std::string& path, QByteArrayView contents, Existing existing)
{
    const auto slash = path.rfind('/');
    const auto name = slash == std::string::npos ? path : path.substr(slash + 1);
    const auto folderPath = slash == std::string::npos ? std::string{"."} : path.substr(0, slash + 1);
    const Descriptor folder{::open(folderPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
    if (!folder)
        return lastError();
    const auto temporary = fmt::format(".tarn-service-{:016x}.part", QRandomGenerator::system()->generate64());
    const auto error = writeNew(folder.get(), temporary, name, contents, existing);
    ::unlinkat(folder.get(), temporary.c_str(), 0); // gone already where it was renamed
    if (!error && ::fsync(folder.get()) != 0 && errno != EINVAL)
        return lastError();
    return error;
}

} // namespace tarn::console::platform
