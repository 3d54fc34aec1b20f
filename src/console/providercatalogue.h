#pragma once

#include <provider/ideviceprovider.h>

#include <QList>
#include <QString>
#include <QStringList>

#include <expected>
#include <vector>

namespace tarn::console {

/// The provider plug-ins that are there to be used.
///
/// Looks into the folders that the environment variable `TARN_SERVICE_PROVIDERS` lists, in the
/// manner of `PATH`, or, when it is not set, into `../lib/tarn-service/providers` next to the
/// program. What a plug-in was made for is read from its meta data before any of its code runs,
/// and it is tried in a process of its own before it is loaded. Next to a plug-in its checksum may lie,
/// `NAME.so.sha256`, as `sha256sum` writes it; then one that was changed is refused.
class ProviderCatalogue {
public:
    /// A provider with what it says of itself, so that nobody has to ask it again.
    struct Loaded {
        Loaded(QString file, provider::IDeviceProvider& provider);

        QString file;
        provider::IDeviceProvider* provider; ///< lives until the program ends
        QString name;
        QString description;
        QString addressSyntax;
        QList<provider::AddressOption> addressOptions;
        bool isSimulated;
    };

    /// A file that is no provider of ours, and why.
    struct Refused {
        QString file;
        QString reason;
    };

    ProviderCatalogue();

    [[nodiscard]] const QStringList& folders() const { return m_folders; }
    [[nodiscard]] const std::vector<Loaded>& loaded() const { return m_loaded; }
    [[nodiscard]] const std::vector<Refused>& refused() const { return m_refused; }

    /// The provider of that name, or null.
    [[nodiscard]] const Loaded* find(const QString& name) const;

private:
    [[nodiscard]] std::expected<Loaded, QString> load(const QString& file) const;

    QStringList m_folders;
    std::vector<Loaded> m_loaded;
    std::vector<Refused> m_refused;
};

} // namespace tarn::console
