#include <simulator/statefolder.h>

#include <simulator/error.h>
#include <simulator/platform.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSysInfo>

#include <algorithm>
#include <filesystem>

namespace tarn::simulator {

namespace {

const QString formatName = QStringLiteral("tarn-simulator-state");

/// The digests that `value` refers to, at any depth.
void collectDigests(const QJsonValue& value, QSet<QString>& digests)
{
    const auto object = value.toObject();
    for (auto member = object.begin(); member != object.end(); ++member) {
        if (member.key() == u"sha256")
            digests.insert(member.value().toString());
        collectDigests(member.value(), digests);
    }
    for (const auto& element : value.toArray())
        collectDigests(element, digests);
}

/// Makes a folder, and those above it, so that they are durable; true if it is there.
bool makeFolder(const QString& path)
{
    const QFileInfo folder{path};
    if (folder.isDir())
        return true;
    const auto parent = folder.path();
    return parent != path && makeFolder(parent) && QDir{parent}.mkdir(folder.fileName()) && syncFolder(parent);
}

/// Why there can be no folder at `path`.
QString obstacle(const QString& path)
{
    QFileInfo there{path};
    while (!there.exists() && there.path() != there.filePath())
        there.setFile(there.path());
    const auto reason
        = there.isDir() ? QStringLiteral("nothing can be created in %1") : QStringLiteral("%1 is no folder");
    return reason.arg(there.filePath());
}

bool isDigest(const QString& text)
{
    static const QRegularExpression form{QStringLiteral("\\A[0-9a-f]{64}\\z")};
    return form.match(text).hasMatch();
}

/// Whether a new file holds the contents for good.
bool writeFile(const QString& path, const QByteArray& contents)
{
    QFile file{path};
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(contents) == contents.size()
        && file.flush() && syncFile(file.handle());
}

QString thisProcess()
{
    const auto name = QCoreApplication::applicationName();
    return QStringLiteral("%1 (process %2 on %3)\n")
        .arg(name.isEmpty() ? programFile() : name)
        .arg(QCoreApplication::applicationPid())
        .arg(QSysInfo::machineHostName());
}

/// Whether a string in `json` begins with a byte order mark. Qt takes it away when it writes the string, so that two
/// names could become one; no program of ours writes any.
bool hasByteOrderMark(const QByteArray& json)
{
    bool isInside = false;
    for (qsizetype at = 0; at < json.size(); ++at) {
        if (isInside && json[at] == '\\') {
            ++at;
        } else if (json[at] == '"') {
            isInside = !isInside;
            const auto text = QByteArrayView{json}.sliced(at + 1);
            const auto escape = text.first(std::min<qsizetype>(text.size(), 6));
            if (isInside && (text.startsWith("\xef\xbb\xbf") || escape.compare("\\ufeff", Qt::CaseInsensitive) == 0))
                return true;
        }
    }
    return false;
}

} // namespace

StateFolder::StateFolder(const QString& folder, const Patience& patience)
    : m_folder{QDir::cleanPath(QDir{folder}.absolutePath())}
    , m_blocks{m_folder + QStringLiteral("/blocks")}
    , m_index{m_folder + QStringLiteral("/index.json")}
    , m_unfinished{m_folder + QStringLiteral("/unfinished")}
    , m_lock{m_folder + QStringLiteral("/lock")}
{
    take(patience);
    const utils::MutexLock lock{m_mutex};
    if (QFile::exists(m_index))
        m_sections = readIndex();
    else
        begin();
}

void StateFolder::take(const Patience& patience)
{
    if (!makeFolder(m_folder))
        throw StateError{m_folder, QStringLiteral("the folder cannot be created: %1").arg(obstacle(m_folder))};
    if (!m_lock.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        throw StateError{m_lock.fileName(), QStringLiteral("it cannot be written: %1").arg(m_lock.errorString())};
    auto failure = lockFile(m_lock.handle());
    while (failure == std::errc::operation_would_block) {
        if (!patience())
            throw StateFolderBusy{holder()};
        failure = lockFile(m_lock.handle());
    }
    if (failure)
        throw StateError{m_lock.fileName(),
                         QStringLiteral("it cannot be locked: %1").arg(QString::fromStdString(failure.message()))};
    m_lock.resize(0);
    m_lock.write(thisProcess().toUtf8()); // for those who wait: nothing is lost when it fails
}

/// Who holds the folder, as the lock file says.
std::string StateFolder::holder()
{
    constexpr qint64 longest = 500;
    m_lock.seek(0);
    const std::string holder = m_lock.readLine(longest).trimmed().constData(); // as far as it can be said
    return holder.empty() ? "another process" : holder;
}

/// Makes the state of a new instrument, unless it looks as if an old one has lost its index.
void StateFolder::begin() const
{
    if (!storedBlocks().isEmpty())
        refuse(QStringLiteral("it is missing, but the folder \"blocks\" holds the contents of files"));
    if (!writeIndex({}))
        refuse(QStringLiteral("it cannot be written"));
}

QJsonObject StateFolder::readIndex() const
{
    QFile file{m_index};
    if (!file.open(QIODevice::ReadOnly))
        refuse(QStringLiteral("it cannot be read: %1").arg(file.errorString()));
    QJsonParseError error{};
    const auto text = file.readAll();
    const auto index = QJsonDocument::fromJson(text, &error).object();
    if (error.error != QJsonParseError::NoError)
        refuse(QStringLiteral("it is damaged: %1 at byte %2").arg(error.errorString()).arg(error.offset));
    if (hasByteOrderMark(text))
        refuse(QStringLiteral("it is damaged: a text in it begins with a byte order mark"));
    const auto version = index[QStringLiteral("version")].toDouble();
    const auto sections = index[QStringLiteral("sections")];
    if (index[QStringLiteral("format")] != formatName || version < 1)
        refuse(QStringLiteral("it is damaged: it does not say that it is the state of an instrument"));
    if (version > formatVersion)
        refuse(QStringLiteral("a newer program wrote it (format version %1, this program knows %2)")
                   .arg(version, 0, 'f', 0)
                   .arg(formatVersion));
    if (!sections.isObject())
        refuse(QStringLiteral("it is damaged: it has no sections"));
    return sections.toObject();
}

QJsonValue StateFolder::section(const QString& name) const
{
    const utils::MutexLock lock{m_mutex};
    return m_sections[name];
}

QByteArray StateFolder::block(const QString& digest) const
{
    if (!isDigest(digest))
        refuse(QStringLiteral("it is damaged: \"%1\" is not a digest").arg(digest));
    QFile file{blockPath(digest)};
    if (!file.open(QIODevice::ReadOnly))
        throw StateError{file.fileName(), QStringLiteral("it cannot be read: %1").arg(file.errorString())};
    const auto contents = file.readAll();
    if (digestOf(contents) != digest)
        throw StateError{file.fileName(), QStringLiteral("it is damaged: its contents have changed")};
    return contents;
}

void StateFolder::refuse(const QString& reason) const
{
    throw StateError{m_index, reason};
}

std::error_code StateFolder::save(const QJsonObject& changed, const Blocks& blocks)
{
    const utils::MutexLock lock{m_mutex};
    auto sections = m_sections;
    for (auto section = changed.begin(); section != changed.end(); ++section)
        sections[section.key()] = section.value();
    if (!writeBlocks(blocks) || !writeIndex(sections))
        return Error::Io;
    m_sections = sections;
    QSet<QString> digests;
    collectDigests(m_sections, digests);
    removeLeftovers(digests);
    return {};
}

bool StateFolder::writeIndex(const QJsonObject& sections) const
{
    const QJsonObject index{{QStringLiteral("format"), formatName},
                            {QStringLiteral("version"), formatVersion},
                            {QStringLiteral("sections"), sections}};
    return replaceFile(m_index, QJsonDocument{index}.toJson()) && syncFolder(m_folder);
}

/// Leaves alone the blocks that the index refers to: they were checked when they were read, or
/// written since.
bool StateFolder::writeBlocks(const Blocks& blocks) const
{
    QSet<QString> kept;
    collectDigests(m_sections, kept);
    bool isNew = false;
    for (auto block = blocks.begin(); block != blocks.end(); ++block) {
        if (kept.contains(block.key()))
            continue;
        if (!makeFolder(m_blocks) || !replaceFile(blockPath(block.key()), block.value()))
            return false;
        isNew = true;
    }
    return !isNew || syncFolder(m_blocks);
}

/// Replaces the file in one step. The name is durable once its folder is synced.
bool StateFolder::replaceFile(const QString& path, const QByteArray& contents) const
{
    std::error_code failure;
    if (writeFile(m_unfinished, contents))
        std::filesystem::rename(QFile{m_unfinished}.filesystemFileName(), QFile{path}.filesystemFileName(), failure);
    else
        failure = Error::Io;
    if (failure)
        QFile::remove(m_unfinished);
    return !failure;
}

/// Removes the blocks that nothing refers to any more, or that were written in vain.
void StateFolder::removeLeftovers(const QSet<QString>& digests) const
{
    for (const auto& digest : storedBlocks()) {
        if (!digests.contains(digest))
            QFile::remove(blockPath(digest));
    }
}

/// The digests of the blocks that are there. Other files in their folder are somebody else's.
QStringList StateFolder::storedBlocks() const
{
    auto names = QDir{m_blocks}.entryList(QDir::Files);
    names.removeIf([](const auto& name) { return !isDigest(name); });
    return names;
}

QString StateFolder::blockPath(const QString& digest) const
{
    return m_blocks + u'/' + digest;
}

} // namespace tarn::simulator
