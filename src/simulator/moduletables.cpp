#include <simulator/moduletables.h>

#include <QJsonObject>

#include <stdexcept>
#include <string>
#include <utility>

namespace tarn::simulator {

namespace {

const QString sectionName = QStringLiteral("moduleTables");

struct Kind {
    const char* name;
    std::size_t length;
};

constexpr std::array<Kind, ModuleTables::count> kinds{{
    {"Quill RF power codes", 201},
    {"Quill LO power codes", 201},
    {"Dorn receiver correction", 1024},
    {"Dorn power calibration", 2048},
    {"Sable power calibration", 4096},
}};

std::size_t indexOf(ModuleTables::Table table)
{
    return static_cast<std::size_t>(table);
}

} // namespace

ModuleTables::ModuleTables(Storage& storage)
    : m_storage{storage}
    , m_tables{load(storage)}
{
}

ModuleTables::All ModuleTables::load(const Storage& storage)
{
    All tables;
    const auto section = storage.section(sectionName);
    if (!section.isUndefined() && !section.isObject())
        storage.refuse(QStringLiteral("\"moduleTables\" is not an object"));
    for (std::size_t i = 0; i < count; ++i) {
        const auto entry = section[QLatin1StringView{kinds[i].name}];
        if (entry.isUndefined())
            continue;
        const auto bytes = storage.block(entry[QStringLiteral("sha256")].toString());
        if (static_cast<std::size_t>(bytes.size()) != kinds[i].length)
            storage.refuse(QStringLiteral("an entry of \"moduleTables\" does not refer to a table of its length"));
        tables[i].assign(bytes.begin(), bytes.end());
    }
    return tables;
}

void ModuleTables::store(Table table, const Contents& contents)
{
    const auto& kind = kinds[indexOf(table)];
    if (contents.size() != kind.length)
        throw std::length_error{std::string{"the table \""} + kind.name + "\" is " + std::to_string(contents.size())
                                + " bytes long and not " + std::to_string(kind.length)};
    const utils::MutexLock lock{m_mutex};
    auto tables = m_tables;
    tables[indexOf(table)] = contents;
    QJsonObject section;
    Storage::Blocks blocks;
    for (std::size_t i = 0; i < count; ++i) {
        if (tables[i].empty())
            continue;
        const auto bytes = QByteArrayView{tables[i]}.toByteArray();
        const auto digest = m_storage.nameOf(bytes);
        section[QLatin1StringView{kinds[i].name}] = QJsonObject{{QStringLiteral("sha256"), digest}};
        blocks.insert(digest, bytes);
    }
    if (m_storage.save(sectionName, section, blocks))
        throw std::runtime_error{"the table could not be saved and stays as it was; check that the state folder is "
                                 "there and its disk is not full"};
    m_tables = std::move(tables);
}

ModuleTables::Contents ModuleTables::contents(Table table) const
{
    const utils::MutexLock lock{m_mutex};
    return m_tables[indexOf(table)];
}

} // namespace tarn::simulator
