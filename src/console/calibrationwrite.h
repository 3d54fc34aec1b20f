#pragma once

#include <console/change.h>

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tarn::console {

/// Why a write of calibration data came to no good end.
struct WriteFailure {
    std::optional<std::string> reason; ///< what the instrument gave; nothing: the instrument was lost or silent
    bool hasStarted = false; ///< the instrument had begun to write
    bool isSilent = false; ///< the instrument was there and said nothing for too long

    friend bool operator==(const WriteFailure&, const WriteFailure&) = default;
};

using WriteEnd = std::expected<void, WriteFailure>;

/// A write of calibration data: takes its notifications, and not those of somebody else's write as
/// far as they can be told apart, and waits for its end.
///
/// Threads: thread-safe.
class CalibrationWrite final : private LifecycleWatch::Listener {
public:
    /// Before the control under `registryKey` is observed. `onProgress` takes the progress. What is
    /// passed here must outlive the write.
    CalibrationWrite(const Instrument& instrument, std::uint64_t registryKey,
                     std::function<void(LongRequest::Progress)> onProgress);
    CalibrationWrite(const CalibrationWrite&) = delete;
    CalibrationWrite& operator=(const CalibrationWrite&) = delete;
    ~CalibrationWrite() override;

    /// The write is about to be requested; what was heard until now is not of it.
    void requested();

    /// Waits until the instrument has ended the write, until it does not come back after a drop, or until it has said
    /// nothing for longer than it may. A drop does not end the write, nor does it count as a word about it.
    [[nodiscard]] WriteEnd wait();

    void started();
    void progress(std::uint32_t percent);
    void finished();
    void failed(std::string reason);

private:
    struct State;

    void onLifecycleChanged() override;
    /// Whether the control is there, or comes back in time. Gives `lock` up meanwhile.
    bool isBack(std::unique_lock<std::mutex>& lock) const;
    void endWith(WriteEnd end);

    const Instrument& m_instrument;
    const std::uint64_t m_registryKey;
    const std::function<void(LongRequest::Progress)> m_onProgress;
    const std::unique_ptr<State> m_state;
};

/// What the observers of all controls that write calibration data have in common: all but the errors.
template <class Control>
class WriteObserver : public Control::Observer {
public:
    explicit WriteObserver(CalibrationWrite& write)
        : m_write{write}
    {
    }

    void onWriteStarted() override { m_write.started(); }
    void onWriteProgressChanged(std::uint32_t progress) override { m_write.progress(progress); }
    void onWriteFinished() override { m_write.finished(); }

protected:
    /// The write has failed with `error`; `words` has the name and the meaning of every error, from
    /// 0 on.
    void failed(typename Control::Error error, std::span<const std::string_view> words)
    {
        m_write.failed(std::string{words[static_cast<std::size_t>(error)]});
    }

private:
    CalibrationWrite& m_write;
};

/// The error of a write that came to no good end after `last` was notified.
[[nodiscard]] Error writeFailed(const Change& change, const WriteFailure& failure,
                                const std::optional<LongRequest::Progress>& last);

/// Makes a write of calibration data and waits for its end, which `Observer`, a `WriteObserver`,
/// hears; `request(control)` asks for the write. Throws `Error`: `Failed` when the instrument refuses
/// or fails or the device throws, `InstrumentLost` when it is lost; either says what is known.
template <class Observer, class Control, class Request>
void writeCalibration(const Change& change, const Instrument& instrument, const Output& output, Request request)
{
    InterruptWarning warning{output};
    warning.setConsequences(change.leftBehind, change.advice);
    const auto control = instrument.control<Control>();
    LongRequest longRequest{output, change.progress, &warning};
    const auto end = longRequest.run([&] {
        CalibrationWrite write{instrument, Control::registryKey,
                               [&](LongRequest::Progress progress) { longRequest.onProgress(progress); }};
        Observer observer{write};
        std::optional<Registration<Control, typename Control::Observer>> registration;
        // Added in the moment of a return, it would hear nothing until the next one.
        instrument.undisturbed([&] { registration.emplace(*control, observer); });
        const auto requested = [&](Control& there) {
            write.requested();
            try {
                request(there);
            } catch (...) {
                throw changeBroken(change, caughtError().message());
            }
        };
        whileThere<Control>(instrument, Control::registryKey, change.target, requested);
        try {
            return write.wait();
        } catch (...) {
            throw changeBroken(change, caughtError().message());
        }
    });
    if (!end)
        throw writeFailed(change, end.error(), longRequest.last());
}

} // namespace tarn::console
