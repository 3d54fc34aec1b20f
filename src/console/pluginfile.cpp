#include <console/pluginfile.h>

#include <console/providercatalogue.h>

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QLibrary>
#include <QPluginLoader>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <thread>

#include <elf.h>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn::console {

namespace {

using namespace std::chrono_literals;

/// Much longer than any plug-in takes to load, on a busy computer too.
constexpr auto longestTrial = 10s;

/// How the process ends that has used a plug-in; one that the plug-in ends has another status.
constexpr int trialPassed = 113;

/// The first line of the checksum that lies next to a file; nothing if there is none.
std::optional<QByteArray> checksumOf(const QString& file)
{
    constexpr qint64 longestLine = 4096;
    QFile checksum{file + QStringLiteral(".sha256")};
    if (!QFileInfo{checksum}.isFile() || !checksum.open(QIODevice::ReadOnly))
        return std::nullopt;
    return checksum.readLine(longestLine);
}

/// What a host does with every provider that it finds, but for looking for instruments.
void use(const QString& file)
{
    QPluginLoader loader{file};
    if (auto* const provider = qobject_cast<provider::IDeviceProvider*>(rootOf(loader)))
        static_cast<void>(ProviderCatalogue::Loaded{file, *provider});
    loader.unload();
}

/// In a process of its own, which leaves nothing behind and goes with the one that started it.
[[noreturn]] void tryOut(const QString& file, pid_t program) noexcept
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != program)
        ::_exit(EXIT_FAILURE); // it has gone already
    constexpr rlimit noCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
    if (const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC); nowhere >= 0) {
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            ::dup2(nowhere, stream);
    }
    use(file);
    ::_exit(trialPassed);
}

/// Whether `child` ends as it should; nothing if it had to be ended.
std::optional<bool> outcomeOf(pid_t child)
{
    int status = 0;
    for (auto left = longestTrial / 1ms; left > 0; --left) {
        if (const auto ended = ::waitpid(child, &status, WNOHANG); ended != 0)
            return ended == child && WIFEXITED(status) && WEXITSTATUS(status) == trialPassed;
        std::this_thread::sleep_for(1ms);
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    return std::nullopt;
}

/// Whether the file can be used, in a process of its own; nothing if that does not come to an end.
std::optional<bool> outcomeOfUse(const QString& file)
{
    ::signal(SIGCHLD, SIG_DFL); // where it is ignored, nobody learns how a process has ended
    const auto program = ::getpid();
    const auto child = ::fork();
    if (child < 0)
        return true; // it cannot be tried; the use itself will tell
    if (child == 0)
        tryOut(file, program);
    return outcomeOf(child);
}

} // namespace

QObject* rootOf(QPluginLoader& loader)
{
    loader.setLoadHints(loader.loadHints() | QLibrary::ResolveAllSymbolsHint);
    return loader.instance();
}

std::optional<QString> damageOf(const QString& file)
{
    QFile contents{file};
    if (!contents.open(QIODevice::ReadOnly))
        return QStringLiteral("it cannot be read: %1").arg(contents.errorString());
    if (isCutOff(contents))
        return QStringLiteral("it is damaged: its end is missing");
    if (const auto checksum = checksumOf(file)) {
        if (agreesWith(*checksum, contents))
            return std::nullopt;
        return QStringLiteral("it is damaged: it does not agree with its checksum");
    }
    const auto outcome = outcomeOfUse(file);
    if (!outcome)
        return QStringLiteral("loading it does not come to an end");
    if (!*outcome)
        return QStringLiteral("it is damaged: loading it ends the program");
    return std::nullopt;
}

bool isCutOff(QIODevice& contents)
{
    Elf64_Ehdr header{};
    contents.seek(0);
    if (contents.read(reinterpret_cast<char*>(&header), sizeof(header)) != sizeof(header))
        return true;
    const auto size = static_cast<std::uint64_t>(contents.size());
    const auto table = std::uint64_t{header.e_shnum} * header.e_shentsize;
    return table > size || header.e_shoff > size - table;
}

bool agreesWith(const QByteArray& checksum, QIODevice& contents)
{
    QCryptographicHash hash{QCryptographicHash::Sha256};
    contents.seek(0);
    return hash.addData(&contents) && checksum.startsWith(hash.result().toHex());
}

} // namespace tarn::console
