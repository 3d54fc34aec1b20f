#pragma once

#include <console/devicecall.h>
#include <console/interruptwarning.h>
#include <console/postbox.h>
#include <console/progressdisplay.h>
#include <utils/association.h>

#include <QObject>

#include <functional>
#include <future>
#include <optional>
#include <type_traits>
#include <utility>

namespace tarn::console {

/// A blocking request of the library, made on a thread of its own while the calling thread shows
/// how far it has come and attends to Ctrl-C.
class LongRequest final : public QObject {
public:
    using Progress = devices::service::Progress;

    /// Shows nothing without a `name`; without a `warning` Ctrl-C does what it does anyway.
    /// `output` and `warning` must outlive the request.
    LongRequest(const Output& output, const std::optional<OperationName>& name, InterruptWarning* warning);

    /// To be called by the observer of the request. Threads: any.
    void onProgress(const Progress& progress);

    /// Makes the request and returns its result, an `std::expected` or a `bool`, or throws what it throws.
    template <class Request>
    std::invoke_result_t<Request> run(Request request)
    {
        std::packaged_task<std::invoke_result_t<Request>()> task{std::move(request)};
        auto future = task.get_future();
        attend([&task] { task(); });
        auto result = future.get();
        if (result && m_display)
            m_display->finish();
        return result;
    }

    /// What the instrument notified last; nothing if it was silent.
    [[nodiscard]] const std::optional<Progress>& last() const { return m_last; }

private:
    void attend(const std::function<void()>& request);

    std::optional<ProgressDisplay> m_display;
    InterruptWarning* const m_warning;
    std::optional<Progress> m_last;
    Postbox m_postbox; ///< last: what it calls uses the others
};

/// Keeps an observer of a control registered for as long as it lives.
template <class Control, class Observer>
class Registration {
public:
    Registration(Control& control, Observer& observer)
        : m_control{control}
        , m_observer{observer}
    {
        const DeviceCall call;
        m_control.addObserver(handle());
    }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
    ~Registration()
    {
        const DeviceCall call;
        try {
            m_control.removeObserver(handle());
        } catch (...) { // NOLINT(bugprone-empty-catch)
            // The device throws when it is asked for the control. The request, if it was still under way, tells of it.
        }
    }

private:
    /// The observer as the control takes it: by pointer or by association.
    [[nodiscard]] auto handle() const
    {
        if constexpr (requires { m_control.addObserver(&m_observer); })
            return &m_observer;
        else
            return utils::Association<Observer>{m_observer};
    }

    Control& m_control;
    Observer& m_observer;
};

} // namespace tarn::console
