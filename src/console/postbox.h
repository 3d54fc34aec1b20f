#pragma once

#include <utils/mutex.h>

#include <QObject>

#include <deque>
#include <functional>

namespace tarn::console {

/// Calls functions on the thread that it belongs to, one for each turn of the event loop, in the
/// order in which they were posted. Those that wait when it is destroyed are not called.
///
/// It hands them over itself and only wakes the thread by an event, so that the hand-over can be
/// seen from outside of Qt.
class Postbox final : public QObject {
    Q_OBJECT

public:
    /// Threads: any. A function must not throw.
    void post(std::function<void()> function);

private:
    Q_INVOKABLE void deliver();

    utils::Mutex m_mutex;
    std::deque<std::function<void()>> m_functions TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::console
