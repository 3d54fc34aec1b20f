#pragma once

#include <simulator/export.h>
#include <simulator/storage.h>
#include <utils/mutex.h>

#include <QFile>
#include <QJsonObject>
#include <QSet>
#include <QStringList>

#include <functional>
#include <stdexcept>
#include <string>

namespace tarn::simulator {

/// Somebody else uses the state folder; `what()` says who.
class StateFolderBusy final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Keeps an instrument's state in a folder of its own:
///
///     index.json        {"format": "tarn-simulator-state", "version": 1, "sections": {...}}
///     blocks/DIGEST     one block each, named by its SHA-256
///     unfinished        what is being written, before it takes its place
///     lock              locked by whoever uses the folder; says who did so last
///
/// The index is there from the beginning: blocks without one are not taken for a new instrument's.
/// A block is written before the index that refers to it, and the index is replaced in one step,
/// so that a process that is killed at any moment leaves the old state or the new one. What it may
/// leave besides is removed with the next change; files of other names are left alone. Thread-safe.
class TARN_DEVICE_SIMULATOR_EXPORT StateFolder final : public Storage {
public:
    static constexpr int formatVersion = 1;

    /// Called whenever somebody else is found to hold the folder: waits a little and returns
    /// whether to try again.
    using Patience = std::function<bool()>;

    /// Takes the folder for this object alone, creating it if need be, and reads the index.
    /// Throws `StateFolderBusy` if somebody else holds it and `patience` has run out, `StateError`
    /// if it cannot be used; what it keeps is then as it was.
    StateFolder(const QString& folder, const Patience& patience);

    [[nodiscard]] QJsonValue section(const QString& name) const override;
    [[nodiscard]] QByteArray block(const QString& digest) const override;
    [[noreturn]] void refuse(const QString& reason) const override;
    [[nodiscard]] std::error_code save(const QJsonObject& changed, const Blocks& blocks) override;

private:
    void take(const Patience& patience);
    [[nodiscard]] std::string holder();
    void begin() const;
    [[nodiscard]] QJsonObject readIndex() const;
    [[nodiscard]] bool writeIndex(const QJsonObject& sections) const;
    [[nodiscard]] bool writeBlocks(const Blocks& blocks) const TARN_REQUIRES(m_mutex);
    [[nodiscard]] bool replaceFile(const QString& path, const QByteArray& contents) const;
    void removeLeftovers(const QSet<QString>& digests) const;
    [[nodiscard]] QStringList storedBlocks() const;
    [[nodiscard]] QString blockPath(const QString& digest) const;

    const QString m_folder;
    const QString m_blocks;
    const QString m_index;
    const QString m_unfinished;
    QFile m_lock;
    mutable utils::Mutex m_mutex;
    QJsonObject m_sections TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::simulator
