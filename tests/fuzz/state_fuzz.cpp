#include <fuzz/fuzz.h>

#include <sdk/service/idornpowercontrol.h>
#include <sdk/service/idornsynthesiscontrol.h>
#include <sdk/service/ifilememorycontrol.h>
#include <sdk/service/iquillpowercontrol.h>
#include <sdk/service/iquillsynthesiscontrol.h>
#include <sdk/service/isablepowermodulecontrol.h>
#include <sdk/service/isablesynthesiscontrol.h>
#include <sdk/service/ivellsynthesiscontrol.h>
#include <simulator/filememory.h>
#include <simulator/flashmemory.h>
#include <simulator/moduletables.h>
#include <simulator/simulatedvna.h>
#include <simulator/storage.h>

#include <QJsonArray>
#include <QJsonDocument>

#include <array>
#include <memory>

using namespace tarn::simulator;
using namespace sdk::service;
using tarn::fuzz::require;

namespace {

struct State {
    QJsonObject sections;
    Storage::Blocks blocks;
};

/// Keeps the state in memory, where whatever a block is called by is its name.
class MemoryStorage final : public Storage {
public:
    explicit MemoryStorage(State& state)
        : m_state{state}
    {
    }

    [[nodiscard]] QJsonValue section(const QString& name) const override { return m_state.sections.value(name); }

    [[nodiscard]] QByteArray block(const QString& digest) const override
    {
        if (!m_state.blocks.contains(digest))
            refuse(QStringLiteral("there is no block \"%1\"").arg(digest));
        return m_state.blocks.value(digest);
    }

    [[noreturn]] void refuse(const QString& reason) const override
    {
        throw StateError{QStringLiteral("state"), reason};
    }

    [[nodiscard]] std::error_code save(const QJsonObject& sections, const Blocks& blocks) override
    {
        for (auto section = sections.begin(); section != sections.end(); ++section)
            m_state.sections[section.key()] = section.value();
        m_state.blocks.insert(blocks);
        return {};
    }

private:
    State& m_state;
};

std::unique_ptr<SimulatedVna> switchOn(State& state)
{
    Settings settings;
    settings.completion = CompletionMode::Inline;
    settings.memorySize = FlashMemory::sectorSize;
    return std::make_unique<SimulatedVna>(settings, std::make_shared<SteadyClock>(),
                                          std::make_unique<MemoryStorage>(state));
}

template <class Interface>
std::shared_ptr<Interface> controlOf(SimulatedVna& vna)
{
    return vna.control<Interface>(Interface::key);
}

std::vector<IFileMemoryControl::FileInfo> listFiles(SimulatedVna& vna)
{
    const auto memory = controlOf<IFileMemoryControl>(vna);
    std::vector<IFileMemoryControl::FileInfo> files;
    memory->fileList([&](auto list, std::error_code error) {
        require(!error, "the files are listed");
        files = std::move(list);
    });
    std::uint64_t used = 0;
    for (const auto& file : files) {
        used += FileStore::recordSize + file.size;
        require(FileStore::isValidName(file.name), "a file has a valid name");
        memory->readFile(file, [&](const auto& contents, std::error_code error) {
            require(!error && contents.size() == file.size, "a file has its size");
        });
    }
    require(used <= FileStore::capacity, "the files fit");
    return files;
}

/// The files are as large as the state says.
void requireOfTheirSizes(const std::vector<IFileMemoryControl::FileInfo>& files, const QJsonArray& section)
{
    double size = 0;
    for (const auto& file : files)
        size += static_cast<double>(file.size);
    for (const auto& entry : section)
        size -= entry.toObject()[QStringLiteral("size")].toDouble();
    require(size == 0, "the files are as large as they were");
}

void requireWithinLimits(const std::vector<PotentiometerModel::Value>& values)
{
    const auto kinds = PotentiometerModel::list();
    require(values.size() == kinds.size(), "all potentiometers are there");
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        for (const auto value : {values[i].ram, values[i].eeprom})
            require(value >= kinds[i].minimum && value <= kinds[i].maximum, "a potentiometer is in its range");
    }
}

void requireOfTheirLengths(const ModuleTables& tables)
{
    static constexpr std::array<std::size_t, ModuleTables::count> lengths{201, 201, 1024, 2048, 4096};
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        const auto length = tables.contents(static_cast<ModuleTables::Table>(i)).size();
        require(length == 0 || length == lengths.at(i), "a table is of its length");
    }
}

/// Has the files and the settings of all modules saved, which checks them.
void saveEverything(SimulatedVna& vna)
{
    FileStore::Contents contents;
    const auto files = controlOf<IFileMemoryControl>(vna);
    files->readFile({"f", 0}, [&](auto read, std::error_code) { contents = std::move(read); });
    files->writeFile("f", contents, [](std::error_code) { });
    controlOf<IQuillPowerControl>(vna)->setLoPower(8);
    controlOf<IQuillSynthesisControl>(vna)->setSelectedIf(2);
    controlOf<ISablePowerModuleControl>(vna)->setRfDac(1);
    controlOf<ISableSynthesisControl>(vna)->setSelectedIf(2);
    controlOf<IDORNPowerControl>(vna)->setLoPower(1);
    controlOf<IDORNSynthesisControl>(vna)->setReferenceFrequency(5e6);
    controlOf<IVellSynthesisControl>(vna)->setSelectedIf(3);
}

State stateOf(std::string_view text)
{
    const auto parts = tarn::fuzz::split(text, "\n--\n");
    State state{QJsonDocument::fromJson(QByteArray::fromStdString(parts[0])).object(), {}};
    for (std::size_t i = 1; i < parts.size(); ++i)
        state.blocks.insert(QString::number(i), QByteArray::fromStdString(parts[i]));
    return state;
}

/// The instrument of a state that it can be switched on with.
std::unique_ptr<SimulatedVna> tryToSwitchOn(State& state)
{
    try {
        return switchOn(state);
    } catch (const StateError& error) {
        require(error.what() != std::string_view{} && !error.file.isEmpty(), "a refusal says where and why");
        return nullptr;
    }
}

} // namespace

/// The sections of a state, then the blocks, which are called 1, 2, ...
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    auto state = stateOf(tarn::fuzz::textOf(data, size));
    auto vna = tryToSwitchOn(state);
    require(vna || !state.sections.isEmpty(), "a new instrument is switched on");
    if (!vna)
        return 0;
    requireOfTheirSizes(listFiles(*vna), state.sections.value(QStringLiteral("files")).toArray());
    saveEverything(*vna);
    const auto files = listFiles(*vna);
    const auto potentiometers = vna->potentiometers();
    requireWithinLimits(potentiometers);
    requireOfTheirLengths(vna->tables());
    vna.reset();
    vna = tryToSwitchOn(state);
    require(vna && listFiles(*vna) == files && vna->potentiometers() == potentiometers, "a state is kept");
    return 0;
}
