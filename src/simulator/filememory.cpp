#include <simulator/filememory.h>

#include <simulator/error.h>

#include <QJsonArray>
#include <QJsonObject>
#include <QStringDecoder>

#include <utility>

namespace tarn::simulator {

FileStore::FileStore(Files files, Keep keep)
    : m_keep{std::move(keep)}
    , m_files{std::move(files)}
{
}

bool FileStore::isValidName(const std::string& name)
{
    if (name.empty() || name.size() > maximumNameLength || name.contains('\0'))
        return false;
    QStringDecoder decoder{QStringDecoder::Utf8, QStringDecoder::Flag::Stateless};
    const QString text = decoder(name);
    return !decoder.hasError() && text.toStdString() == name;
}

std::uint64_t FileStore::used(const Files& files)
{
    std::uint64_t used = 0;
    for (const auto& [name, contents] : files)
        used += recordSize + contents->size();
    return used;
}

std::vector<FileStore::FileInfo> FileStore::list() const
{
    const utils::MutexLock lock{m_mutex};
    std::vector<FileInfo> list;
    list.reserve(m_files.size());
    for (const auto& [name, contents] : m_files)
        list.push_back({name, contents->size()});
    return list;
}

FileStore::SpaceInfo FileStore::space() const
{
    const utils::MutexLock lock{m_mutex};
    const auto taken = used(m_files);
    return {.total = capacity, .used = taken, .free = capacity - taken};
}

std::expected<FileStore::Contents, std::error_code> FileStore::read(const std::string& name) const
{
    const utils::MutexLock lock{m_mutex};
    const auto file = m_files.find(name);
    if (file == m_files.end())
        return std::unexpected{make_error_code(Error::NotFound)};
    return *file->second;
}

std::error_code FileStore::write(const std::string& name, Contents contents)
{
    if (!isValidName(name))
        return Error::BadName;
    const utils::MutexLock lock{m_mutex};
    auto files = m_files;
    files.insert_or_assign(name, std::make_shared<const Contents>(std::move(contents)));
    if (used(files) > capacity)
        return Error::Full;
    return take(std::move(files));
}

std::error_code FileStore::remove(const std::string& name)
{
    const utils::MutexLock lock{m_mutex};
    auto files = m_files;
    if (files.erase(name) == 0)
        return Error::NotFound;
    return take(std::move(files));
}

std::error_code FileStore::take(Files files)
{
    if (m_keep) {
        if (const auto failure = m_keep(files))
            return failure;
    }
    m_files = std::move(files);
    return {};
}

namespace {

const QString sectionName = QStringLiteral("files");

std::error_code save(Storage& storage, const FileStore::Files& files)
{
    QJsonArray section;
    Storage::Blocks blocks;
    for (const auto& [name, contents] : files) {
        const QByteArray bytes{reinterpret_cast<const char*>(contents->data()),
                               static_cast<qsizetype>(contents->size())};
        const auto digest = storage.nameOf(bytes);
        section.append(QJsonObject{{QStringLiteral("name"), QString::fromStdString(name)},
                                   {QStringLiteral("size"), bytes.size()},
                                   {QStringLiteral("sha256"), digest}});
        blocks.insert(digest, bytes);
    }
    return storage.save(sectionName, section, blocks);
}

void load(const Storage& storage, const QJsonObject& entry, FileStore::Files& files)
{
    const auto name = entry[QStringLiteral("name")].toString().toStdString();
    const auto digest = entry[QStringLiteral("sha256")];
    const auto size = entry[QStringLiteral("size")];
    if (!FileStore::isValidName(name) || !digest.isString() || !size.isDouble())
        storage.refuse(QStringLiteral("an entry of \"files\" is not a name, a size and a digest"));
    const auto bytes = storage.block(digest.toString());
    if (static_cast<double>(bytes.size()) != size.toDouble())
        storage.refuse(QStringLiteral("the size of the file \"%1\" is wrong").arg(QString::fromStdString(name)));
    if (!files.emplace(name, std::make_shared<const FileStore::Contents>(bytes.begin(), bytes.end())).second)
        storage.refuse(QStringLiteral("the file \"%1\" is listed twice").arg(QString::fromStdString(name)));
}

FileStore::Files load(const Storage& storage)
{
    FileStore::Files files;
    const auto section = storage.section(sectionName);
    if (section.isUndefined())
        return files;
    if (!section.isArray())
        storage.refuse(QStringLiteral("\"files\" is not a list"));
    for (const auto& entry : section.toArray())
        load(storage, entry.toObject(), files);
    if (FileStore::used(files) > FileStore::capacity)
        storage.refuse(QStringLiteral("the files are larger than the memory"));
    return files;
}

class FileMemoryControl final : public sdk::service::IFileMemoryControl {
public:
    FileMemoryControl(std::shared_ptr<Bench> bench, std::shared_ptr<FileStore> store)
        : m_bench{std::move(bench)}
        , m_store{std::move(store)}
    {
    }

    bool isAvailable() override
    {
        return m_bench->operations.call([] { return true; });
    }

    void fileList(sdk::Completion<std::vector<FileInfo>> completion) override
    {
        m_bench->operations.request(std::move(completion), [store = m_store] { return store->list(); });
    }

    void spaceInfo(sdk::Completion<SpaceInfo> completion) override
    {
        m_bench->operations.request(std::move(completion), [store = m_store] { return store->space(); });
    }

    void readFile(const FileInfo& file, sdk::Completion<FileStore::Contents> completion) override
    {
        m_bench->operations.request(std::move(completion),
                                    [store = m_store, name = file.name] { return store->read(name); });
    }

    void writeFile(std::string name, FileStore::Contents contents, sdk::Completion<> completion) override
    {
        m_bench->operations.request(
            std::move(completion), [store = m_store, name = std::move(name), contents = std::move(contents)]() mutable {
                return store->write(name, std::move(contents));
            });
    }

    void deleteFile(const FileInfo& file, sdk::Completion<> completion) override
    {
        m_bench->operations.request(std::move(completion),
                                    [store = m_store, name = file.name] { return store->remove(name); });
    }

private:
    const std::shared_ptr<Bench> m_bench;
    const std::shared_ptr<FileStore> m_store;
};

} // namespace

MakeControl installFileMemory(const std::shared_ptr<Bench>& bench)
{
    auto& storage = *bench->storage;
    auto store
        = std::make_shared<FileStore>(load(storage), [&storage](const auto& files) { return save(storage, files); });
    return [bench, store]() -> std::shared_ptr<sdk::service::IFileMemoryControl> {
        return std::make_shared<FileMemoryControl>(bench, store);
    };
}

} // namespace tarn::simulator
