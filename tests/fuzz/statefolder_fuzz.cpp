#include <fuzz/fuzz.h>

#include <simulator/statefolder.h>

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <map>

using namespace tarn::simulator;
using tarn::fuzz::require;

namespace {

/// The folder of a state, emptied for each run.
class Folder {
public:
    Folder() { require(m_root.isValid() && QDir{m_root.path()}.mkdir(QStringLiteral("blocks")), "there is a folder"); }

    [[nodiscard]] QString path() const { return m_root.path(); }
    [[nodiscard]] QString index() const { return m_root.filePath(QStringLiteral("index.json")); }
    [[nodiscard]] QString lock() const { return m_root.filePath(QStringLiteral("lock")); }
    [[nodiscard]] QString block(const QString& digest) const
    {
        return m_root.filePath(QStringLiteral("blocks/") + digest);
    }

    void clear() const
    {
        QFile::remove(index());
        QDir blocks{m_root.filePath(QStringLiteral("blocks"))};
        for (const auto& name : blocks.entryList(QDir::Files))
            blocks.remove(name);
    }

private:
    QTemporaryDir m_root;
};

void write(const QString& path, const QByteArray& contents)
{
    QFile file{path};
    require(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size(), "a file is written");
}

QByteArray contentsOf(const QString& path)
{
    QFile file{path};
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray{};
}

/// What a state folder holds.
struct Contents {
    QByteArray index;
    std::map<QString, QByteArray> blocks; ///< by the names of their files
};

/// The index, then the blocks, whose digests stand in the index as @1, @2, ... A block that starts with a ! has
/// changed since.
Contents contentsFrom(std::string_view text)
{
    const auto parts = tarn::fuzz::split(text, "\n--\n");
    Contents contents{QByteArray::fromStdString(parts[0]), {}};
    for (std::size_t i = 1; i < parts.size(); ++i) {
        const auto block = QByteArray::fromStdString(parts[i]);
        const auto digest = Storage::digestOf(block);
        contents.index.replace('@' + QByteArray::number(i), digest.toLatin1());
        contents.blocks[digest] = block.startsWith('!') ? block + '!' : block;
    }
    return contents;
}

bool isDamaged(const QByteArray& block)
{
    return block.startsWith('!');
}

void requireReason(const StateError& error, const Folder& folder)
{
    require(error.file.startsWith(folder.path()) && error.what() != std::string_view{}, "a refusal says where and why");
}

/// Reads all blocks: those that are as they were, and only those, are there.
void readBlocks(const StateFolder& state, const Contents& contents, const Folder& folder)
{
    for (const auto& [digest, block] : contents.blocks) {
        try {
            require(state.block(digest) == block && !isDamaged(block), "a block is as it was");
        } catch (const StateError& error) {
            requireReason(error, folder);
            require(isDamaged(block), "a block that is as it was is there");
        }
    }
}

const StateFolder::Patience none = [] { return false; };

/// Who holds a folder stands in its lock, whatever that is.
void requireHeld(const Folder& folder, const QByteArray& lock)
{
    write(folder.lock(), lock);
    try {
        const StateFolder second{folder.path(), none};
        require(false, "a folder is held by one at a time");
    } catch (const StateFolderBusy& busy) {
        const std::string_view holder{busy.what()};
        require(!holder.empty() && holder.size() <= 500, "it is said who holds the folder");
    }
}

/// Reads one section of every name that the index has.
QJsonObject sectionsOf(const StateFolder& state, const QByteArray& index)
{
    QJsonObject sections;
    for (const auto& name : QJsonDocument::fromJson(index)[QStringLiteral("sections")].toObject().keys())
        sections[name] = state.section(name);
    return sections;
}

} // namespace

/// The files of a state folder.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Folder folder;
    folder.clear();
    const auto contents = contentsFrom(tarn::fuzz::textOf(data, size));
    write(folder.index(), contents.index);
    for (const auto& [digest, block] : contents.blocks)
        write(folder.block(digest), block);
    try {
        QJsonObject sections;
        {
            StateFolder state{folder.path(), none};
            readBlocks(state, contents, folder);
            sections = sectionsOf(state, contents.index);
            const auto index = QJsonDocument::fromJson(contents.index);
            require(index[QStringLiteral("format")] == QStringLiteral("tarn-simulator-state")
                        && index[QStringLiteral("version")] == StateFolder::formatVersion,
                    "the index is one of this format");
            require(index[QStringLiteral("sections")] == sections, "the sections are those of the index");
            require(contentsOf(folder.index()) == contents.index, "reading changes nothing");
            requireHeld(folder, contents.blocks.empty() ? QByteArray{} : contents.blocks.begin()->second);
            require(!state.save({{QStringLiteral("added"), true}}, {}), "a section is saved");
        }
        const StateFolder again{folder.path(), none};
        sections[QStringLiteral("added")] = true;
        require(sectionsOf(again, contentsOf(folder.index())) == sections, "the other sections are kept");
    } catch (const StateError& error) {
        requireReason(error, folder);
        require(contentsOf(folder.index()) == contents.index, "what is refused is not touched");
    }
    return 0;
}
