#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QHash>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <stdexcept>
#include <system_error>
#include <utility>

namespace tarn::simulator {

/// What is kept cannot be used: `file` is where, `what()` is why.
class StateError final : public std::runtime_error {
public:
    StateError(QString theFile, const QString& reason)
        : std::runtime_error{reason.toStdString()}
        , file{std::move(theFile)}
    {
    }

    QString file;
};

/// Where an instrument keeps what must last: named sections, each a JSON value, and blocks of
/// bytes that sections refer to. Thread-safe.
///
/// A section refers to a block by an object member called `sha256` with the block's digest in
/// lower-case hexadecimal. A block that no section refers to any more is given up.
class Storage {
public:
    /// Blocks by their digests.
    using Blocks = QHash<QString, QByteArray>;

    /// The digest of `bytes`, in lower-case hexadecimal.
    [[nodiscard]] static QString digestOf(const QByteArray& bytes)
    {
        return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
    }

    Storage() = default;
    Storage(const Storage&) = delete;
    Storage& operator=(const Storage&) = delete;
    virtual ~Storage() = default;

    /// What a block of these bytes is called in a section: its digest, or nothing where nothing is kept.
    [[nodiscard]] virtual QString nameOf(const QByteArray& bytes) const { return digestOf(bytes); }

    /// A section as it was kept last; undefined if it never was.
    [[nodiscard]] virtual QJsonValue section(const QString& name) const = 0;

    /// A block by its digest. Throws `StateError` if it is missing or altered.
    [[nodiscard]] virtual QByteArray block(const QString& digest) const = 0;

    /// Throws a `StateError` that blames the place where sections are kept.
    [[noreturn]] virtual void refuse(const QString& reason) const = 0;

    /// Replaces sections, all in one step, where `blocks` are all those that they refer to; returns
    /// when they are durable. After a failure the old sections stand.
    [[nodiscard]] virtual std::error_code save(const QJsonObject& sections, const Blocks& blocks) = 0;

    /// Replaces one section.
    [[nodiscard]] std::error_code save(const QString& name, const QJsonValue& value, const Blocks& blocks)
    {
        return save({{name, value}}, blocks);
    }
};

/// Keeps nothing, and spares the digests: that of 256 MiB takes a second.
class NoStorage : public Storage {
public:
    [[nodiscard]] QString nameOf(const QByteArray& /*bytes*/) const override { return {}; }
    [[nodiscard]] QJsonValue section(const QString& /*name*/) const override { return QJsonValue::Undefined; }
    [[nodiscard]] QByteArray block(const QString& digest) const override { refuse(digest); }
    [[noreturn]] void refuse(const QString& reason) const final { throw StateError{{}, reason}; }
    std::error_code save(const QJsonObject& /*sections*/, const Blocks& /*blocks*/) override { return {}; }
};

} // namespace tarn::simulator
