#include <simulator/open.h>

#include <simulator/address.h>
#include <simulator/simulatedvna.h>
#include <simulator/statefolder.h>

#include <QDir>

#include <chrono>
#include <thread>

namespace tarn::simulator {

namespace {

using provider::OpenError;

/// Waits three seconds in all for another process to end.
class Patience {
public:
    bool operator()() const
    {
        if (std::chrono::steady_clock::now() >= m_end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds{20});
        return true;
    }

private:
    std::chrono::steady_clock::time_point m_end = std::chrono::steady_clock::now() + std::chrono::seconds{3};
};

QString stateFolderOf(const QString& stateFolder, const QString& instrument)
{
    return QDir{stateFolder}.filePath(QStringLiteral("simulator/") + instrument);
}

std::unique_ptr<Storage> makeStorage(const QString& stateFolder, const QString& instrument)
{
    if (stateFolder.isEmpty() || stateFolder == u"none")
        return std::make_unique<NoStorage>();
    return std::make_unique<StateFolder>(stateFolderOf(stateFolder, instrument), Patience{});
}

std::unexpected<OpenError> busy(const QString& instrument, const QString& folder, const StateFolderBusy& reason)
{
    return std::unexpected{OpenError{
        OpenError::Code::Busy,
        QStringLiteral("the instrument \"%1\" is in use by %2").arg(instrument, QString::fromUtf8(reason.what())),
        QStringLiteral("Wait until that has ended, or choose another instrument name or another state folder. It holds "
                       "the lock %1/lock.")
            .arg(folder)}};
}

std::unexpected<OpenError> unusable(const QString& folder, const StateError& reason)
{
    const auto wayOut = QDir{folder}.exists()
        ? QStringLiteral("Nothing was changed. Move the folder %1 away to start afresh, choose another state folder "
                         "(--state DIR), or keep nothing (--state none).")
              .arg(folder)
        : QStringLiteral("Choose another state folder (--state DIR), or keep nothing (--state none).");
    return std::unexpected{OpenError{OpenError::Code::State,
                                     QStringLiteral("the instrument's state cannot be used: %1: %2")
                                         .arg(reason.file, QString::fromUtf8(reason.what())),
                                     wayOut}};
}

} // namespace

std::expected<std::shared_ptr<sdk::IVna>, OpenError> open(const provider::OpenRequest& request)
{
    const auto address = parseAddress(request.address);
    if (!address)
        return std::unexpected{address.error()};
    const auto folder = stateFolderOf(request.stateFolder, address->name);
    try {
        return std::make_shared<SimulatedVna>(address->settings, std::make_shared<SteadyClock>(),
                                              makeStorage(request.stateFolder, address->name));
    } catch (const StateFolderBusy& reason) {
        return busy(address->name, folder, reason);
    } catch (const StateError& reason) {
        return unusable(folder, reason);
    } catch (const std::exception& reason) {
        return std::unexpected{OpenError{OpenError::Code::Failed,
                                         QStringLiteral("the instrument \"%1\" could not be switched on: %2")
                                             .arg(address->name, QString::fromUtf8(reason.what())),
                                         QStringLiteral("Try again.")}};
    }
}

} // namespace tarn::simulator
