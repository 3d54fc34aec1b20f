// A thousand times loaded and let go: the library, and a provider with an instrument.

#include <devices/controlregistry.h>
#include <devices/icontrollifecycleobserver.h>
#include <provider/ideviceprovider.h>

#include <support/fakevna.h>
#include <support/mocktemperaturecontrol.h>
#include <support/processentries.h>

#include <QFile>
#include <QLibrary>
#include <QPluginLoader>
#include <gmock/gmock.h>

#include <algorithm>
#include <any>
#include <cstddef>
#include <functional>
#include <memory>

#include <malloc.h>

extern "C" {
// There if a sanitizer is.
[[gnu::weak]] std::size_t __sanitizer_get_current_allocated_bytes(); // NOLINT
}

namespace tarn::tests {
namespace {

QByteArray mappings()
{
    QFile maps{QStringLiteral("/proc/self/maps")};
    EXPECT_TRUE(maps.open(QIODevice::ReadOnly));
    return maps.readAll();
}

/// What this program holds on to.
struct Footprint {
    std::size_t bytes
        = __sanitizer_get_current_allocated_bytes ? __sanitizer_get_current_allocated_bytes() : mallinfo2().uordblks;
    std::size_t files = entriesOf("fd");
    std::size_t threads = entriesOf("task");
    qsizetype mappingCount = mappings().count('\n');
    qsizetype mappedFiles = mappings().count(" /"); ///< the mappings of files: a library has several
};

bool isSanitized()
{
    return __sanitizer_get_current_allocated_bytes != nullptr;
}

/// Less than a block in each cycle may stay, unless said otherwise.
void expectFlat(const std::function<void()>& cycle, std::size_t bytesPerCycle = 24)
{
    constexpr int warmUps = 100;
    constexpr int cycles = 1000;
    // For the heap, which may have grown; that of a sanitizer does so in many small steps.
    const qsizetype heapMappings = isSanitized() ? cycles / 10 : 2;
    for (int i = 0; i != warmUps; ++i)
        cycle();
    const Footprint before;
    for (int i = 0; i != cycles; ++i)
        cycle();
    const Footprint after;
    EXPECT_LT(after.bytes, before.bytes + bytesPerCycle * cycles);
    EXPECT_EQ(after.files, before.files);
    EXPECT_LE(threadsDownTo(before.threads), before.threads);
    EXPECT_EQ(after.mappedFiles, before.mappedFiles);
    EXPECT_LE(after.mappingCount, before.mappingCount + heapMappings);
}

/// Loads the provider, opens an instrument and unloads the provider again, which with `hints` may mean nothing.
void useProvider(QLibrary::LoadHints hints)
{
    QPluginLoader loader{QStringLiteral(SIMULATOR_PROVIDER)};
    loader.setLoadHints(hints);
    auto* const provider = qobject_cast<provider::IDeviceProvider*>(loader.instance());
    ASSERT_NE(provider, nullptr) << loader.errorString().toStdString();
    {
        const auto device = provider->open({{}, QStringLiteral("none")});
        ASSERT_TRUE(device.has_value());
        EXPECT_NE((*device)->control(sdk::ITemperatureControl::key), nullptr);
    }
    EXPECT_TRUE(loader.unload());
}

TEST(Loading, AProviderAndItsInstrumentComeAndGoWithoutATrace)
{
    // For each static object of a library that is destroyed at the end, the address sanitizer leaves entries in the
    // list of what is done at exit.
    expectFlat([] { useProvider({}); }, isSanitized() ? 2048 : 24);
    EXPECT_FALSE(mappings().contains("libsimulatorprovider")) << "it has never gone";
    // The plug-in's library is never unloaded where it has symbols that the program may have only once: g++ makes such
    // of the static data of inline functions, clang does not.
#ifdef __clang__
    EXPECT_FALSE(mappings().contains("libDeviceSimulator")) << "it has never gone";
#else
    EXPECT_TRUE(mappings().contains("libDeviceSimulator"));
#endif
    // As hosts load it, who do not unload it.
    expectFlat([] { useProvider(QLibrary::PreventUnloadHint); });
    EXPECT_TRUE(mappings().contains("libsimulatorprovider"));
}

TEST(Loading, TheLibraryAndItsControlsComeAndGoWithoutATrace)
{
    const auto sdk = std::make_shared<testing::NiceMock<MockTemperatureControl>>();
    FakeVna device;
    device.offer<sdk::ITemperatureControl>(sdk::ITemperatureControl::key, sdk);
    expectFlat([&] {
        QLibrary library{QStringLiteral(TARN_DEVICES_SERVICE_FILE)};
        const auto registrate = reinterpret_cast<void (*)(devices::ControlRegistry*)>(
            library.resolve("_ZN4tarn7devices7service15servicecontrols10registrateEPNS0_15ControlRegistryE"));
        ASSERT_NE(registrate, nullptr) << library.errorString().toStdString();
        {
            devices::ControlRegistry registry;
            registrate(&registry);
            const auto made = std::ranges::count_if(registry.entries(), [&](const auto& entry) {
                return entry.create(static_cast<sdk::IVna*>(&device)).has_value();
            });
            EXPECT_EQ(made, 1);
        }
        EXPECT_TRUE(library.unload());
    });
    EXPECT_FALSE(mappings().contains("libDevicesService")) << "it has never gone";
}

} // namespace
} // namespace tarn::tests
