#include <simulator/platform.h>

#include <QFile>
#include <QFileInfo>

#if defined(Q_OS_UNIX)
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace tarn::simulator {

#if defined(Q_OS_UNIX)

QString programFile()
{
    return QFileInfo{QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))}.fileName();
}

bool syncFolder(const QString& folder)
{
    const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    // Some file systems have nothing to sync in a folder and say so.
    const bool isSynced = ::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
    ::close(descriptor);
    return isSynced;
}

bool syncFile(int descriptor)
{
    return ::fsync(descriptor) == 0;
}

std::error_code lockFile(int descriptor)
{
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0)
        return {};
    return {errno, std::generic_category()};
}

#else

QString programFile()
{
    return {};
}

bool syncFolder(const QString& /*folder*/)
{
    return true;
}

bool syncFile(int /*descriptor*/)
{
    return true;
}

std::error_code lockFile(int /*descriptor*/)
{
    return std::make_error_code(std::errc::function_not_supported);
}

#endif

} // namespace tarn::simulator
