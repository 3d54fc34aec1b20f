// Writes the memory of an instrument while the event loop goes on: a thread of its own makes the call that blocks, and
// signals bring progress and the result to the thread of the user interface, here a program without one.

#include <devices/controlregistry.h>
#include <devices/instrumentcontrols.h>
#include <devices/service/imemoryoperationscontrol.h>
#include <devices/service/servicecontrols.h>
#include <simulator/open.h>

#include <QCoreApplication>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

using tarn::devices::ControlRegistry;
using tarn::devices::ControlTypes;
using tarn::devices::InstrumentControls;
using tarn::devices::service::IMemoryOperationsControl;
using tarn::devices::service::Progress;

/// Emits its signals on other threads than its own. Qt passes them on to the thread of the receiver.
class MemoryWriter final : public QObject, private IMemoryOperationsControl::IObserver {
    Q_OBJECT

public:
    explicit MemoryWriter(std::shared_ptr<IMemoryOperationsControl> memory)
        : m_memory{std::move(memory)}
    {
        m_memory->addObserver(*this);
    }

    /// Once the observer is removed nobody calls it any more.
    ~MemoryWriter() override { m_memory->removeObserver(*this); }

    /// Blocks until the instrument has answered.
    void write(const std::vector<std::byte>& image) { emit finished(m_memory->write(image).has_value()); }

signals:
    void progressed(int percent);
    void finished(bool isWritten);

private:
    // On a thread of the device, and the list of observers is locked: pass it on, and do nothing else.
    void onWriteProgressChanged(const Progress& progress) override
    {
        if (progress.total > 0)
            emit progressed(static_cast<int>(100ULL * progress.done / progress.total));
    }
    void onReadProgressChanged(const Progress& /*progress*/) override { }
    void onEraseProgressChanged(const Progress& /*progress*/) override { }
    void onIntegrityCheckProgressChanged(const Progress& /*progress*/) override { }

    const std::shared_ptr<IMemoryOperationsControl> m_memory;
};

namespace {

ControlRegistry registryOfMemory()
{
    ControlRegistry all;
    tarn::devices::service::servicecontrols::registrate(&all);
    ControlRegistry registry;
    registry.addEntry(*all.find(IMemoryOperationsControl::registryKey));
    return registry;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication app{argc, argv};

    // A memory that takes half a second.
    const auto device = tarn::simulator::open(
        {.address = QStringLiteral("memory-size=64KiB,speed=2"), .stateFolder = QStringLiteral("none")});
    if (!device) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(device.error().message));
        return 1;
    }
    const auto registry = registryOfMemory();
    const InstrumentControls controls{*device, registry, ControlTypes<IMemoryOperationsControl>{}};
    auto memory = controls.control<IMemoryOperationsControl>();
    if (!memory) {
        std::fprintf(stderr, "this instrument has no memory operations\n");
        return 1;
    }

    MemoryWriter writer{std::move(memory)};

    // The receivers live on this thread, so that all of this runs here, in the event loop.
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &app, [&ticks] { ++ticks; });
    int shown = -1;
    QObject::connect(&writer, &MemoryWriter::progressed, &app, [&shown](int percent) {
        if (const int quarter = percent / 25; std::exchange(shown, quarter) != quarter)
            std::printf("%d %%\n", quarter * 25);
    });
    QObject::connect(&writer, &MemoryWriter::finished, &app, [](bool isWritten) {
        std::printf("%s\n", isWritten ? "written" : "the write has failed");
        QCoreApplication::exit(isWritten ? 0 : 1);
    });

    const std::vector<std::byte> image(std::size_t{64} * 1024, std::byte{0x5a});
    timer.start(std::chrono::milliseconds{10});
    std::jthread worker{[&] { writer.write(image); }};
    const int result = QCoreApplication::exec();
    worker.join();
    std::printf("the event loop %s meanwhile\n", ticks > 0 ? "went on" : "stood still");
    return result;
}

#include "main.moc"
