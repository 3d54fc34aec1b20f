// One notification of the device, handed on to 1 to 10,000 observers: by the adapter's list, and by other ways to tell
// many.

#include "fakes.h"
#include "ways.h"

#include <devices/service/sdkserialnumbercontrol.h>

#include <QObject>

#ifdef TARN_WITH_BOOST
#include <boost/signals2/signal.hpp>
#endif

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace tarn::benchmarks {
namespace {

using Sdk = sdk::service::IMemorySerialNumberControl;
using Adapter = devices::service::SdkSerialNumberControl;
using devices::service::Progress;

/// Emits a signal.
class Sender final : public QObject {
    Q_OBJECT

Q_SIGNALS:
    void progressChanged(const tarn::devices::service::Progress& progress);
};

class Receiver final : public QObject {
    Q_OBJECT

public Q_SLOTS:
    [[gnu::noinline]] void onProgressChanged(const tarn::devices::service::Progress& progress)
    {
        m_heard += progress.done;
    }

private:
    unsigned int m_heard = 0;
};

/// Observers of every kind, so many of each.
struct Audience {
    explicit Audience(std::size_t size)
    {
        // One kind after the other: what is told together lies together.
        for (std::size_t i = 0; i != size; ++i)
            pointers.push_back(ears.emplace_back(makeEars()).get());
        for (std::size_t i = 0; i != size; ++i)
            receivers.push_back(std::make_unique<Receiver>());
        for (auto* const ear : pointers)
            adapter->addObserver(*ear);
        for (const auto& receiver : receivers)
            QObject::connect(&sender, &Sender::progressChanged, receiver.get(), &Receiver::onProgressChanged,
                             Qt::DirectConnection);
#ifdef TARN_WITH_BOOST
        for (auto* const ear : pointers)
            boostSignal.connect([ear](const Progress& progress) { ear->onWriteProgressChanged(progress); });
#endif
    }

    std::vector<std::unique_ptr<Adapter::IObserver>> ears;
    std::vector<std::unique_ptr<Receiver>> receivers;
    std::shared_ptr<SerialNumber> control = std::make_shared<SerialNumber>();
    std::shared_ptr<Adapter> adapter = adapterOf<Adapter, Sdk>(control);
    std::mutex mutex;
    std::vector<Adapter::IObserver*> pointers;
    Sender sender;
#ifdef TARN_WITH_BOOST
    boost::signals2::signal<void(const Progress&)> boostSignal;
#endif
};

/// One notification, handed on to so many observers.
std::vector<Way> progressTo(std::size_t size)
{
    const auto row = "progress to " + std::to_string(size);
    const auto audience = std::make_shared<Audience>(size);
    return {
        repeated(row, "library", [audience] { audience->control->attached->onWriteProgressChanged(1, 2); }),
        repeated(row, "lock", [audience] { const std::scoped_lock lock{audience->mutex}; }),
        repeated(row, "raw loop", [audience] { tellAll(audience->pointers, {2, 1}); }),
        repeated(row, "Qt direct connection", [audience] { Q_EMIT audience->sender.progressChanged({2, 1}); }),
#ifdef TARN_WITH_BOOST
        repeated(row, "boost::signals2", [audience] { audience->boostSignal({2, 1}); }),
#endif
    };
}

} // namespace

std::vector<Way> allWays()
{
    return forEach({1, 10, 100, 10'000}, &progressTo);
}

} // namespace tarn::benchmarks

#include "observers.moc"
