#include <console/pluginfile.h>

#include <provider/ideviceprovider.h>

#include <QCryptographicHash>
#include <QFile>
#include <QPluginLoader>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>

#include <elf.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn::console {

namespace {

/// The table of sections is the last thing in a file that a linker has written.
bool isCutOff(QFile& file)
{
    Elf64_Ehdr header{};
    if (file.read(reinterpret_cast<char*>(&header), sizeof(header)) != sizeof(header))
        return true;
    const auto rest = static_cast<std::uint64_t>(file.size()) - sizeof(header);
    const auto table = std::uint64_t{header.e_shnum} * header.e_shentsize;
    return table > rest || header.e_shoff > sizeof(header) + rest - table;
}

/// Whether the file is what its checksum says. That stands next to it, as `sha256sum` writes it; nothing if there is
/// none.
std::optional<bool> agreesWithChecksum(const QString& name, QFile& file)
{
    QFile checksum{name + QStringLiteral(".sha256")};
    if (!checksum.open(QIODevice::ReadOnly))
        return std::nullopt;
    QCryptographicHash hash{QCryptographicHash::Sha256};
    file.seek(0);
    return hash.addData(&file) && checksum.readAll().startsWith(hash.result().toHex());
}

/// What a host does with every provider that it finds, but for looking for instruments.
void use(const QString& file)
{
    QPluginLoader loader{file};
    if (const auto* const provider = qobject_cast<provider::IDeviceProvider*>(loader.instance())) {
        static_cast<void>(provider->name());
        static_cast<void>(provider->description());
        static_cast<void>(provider->addressSyntax());
        static_cast<void>(provider->addressOptions());
    }
    loader.unload();
}

/// In a process of its own, which leaves nothing behind.
[[noreturn]] void tryOut(const QString& file)
{
    constexpr unsigned int secondsToLoad = 10;
    constexpr rlimit noCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
    if (const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC); nowhere >= 0) {
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            ::dup2(nowhere, stream);
    }
    ::signal(SIGALRM, SIG_DFL);
    ::alarm(secondsToLoad);
    use(file);
    ::_exit(EXIT_SUCCESS);
}

/// How the process ends in which the file is used.
int outcomeOfUse(const QString& file)
{
    const auto child = ::fork();
    if (child < 0)
        return EXIT_SUCCESS; // it cannot be tried; the use itself will tell
    if (child == 0)
        tryOut(file);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR)
        ;
    return status;
}

} // namespace

std::optional<QString> damageOf(const QString& file)
{
    QFile contents{file};
    if (!contents.open(QIODevice::ReadOnly))
        return QStringLiteral("it cannot be read: %1").arg(contents.errorString());
    if (isCutOff(contents))
        return QStringLiteral("it is damaged: its end is missing");
    if (const auto agrees = agreesWithChecksum(file, contents)) {
        if (*agrees)
            return std::nullopt;
        return QStringLiteral("it is damaged: it does not agree with its checksum");
    }
    const int outcome = outcomeOfUse(file);
    if (WIFSIGNALED(outcome) && WTERMSIG(outcome) == SIGALRM)
        return QStringLiteral("loading it does not come to an end");
    if (outcome != EXIT_SUCCESS)
        return QStringLiteral("it is damaged: loading it ends the program");
    return std::nullopt;
}

} // namespace tarn::console
