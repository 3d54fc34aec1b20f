#pragma once

#include <guard/host.h>
#include <sdk/key.h>
#include <utils/mutex.h>

#include <list>
#include <memory>

namespace tarn::guard {

/// Keeps every decoration as long as the control that it decorates: a reference to a decorated control owns the
/// device's control and nothing else. There is one, as such a reference may outlive the guarded device. Thread-safe.
class Keeper {
public:
    static Keeper& instance();

    /// `control` as a host is to see it: decorated if its requests end in completions, always by the same decoration.
    /// The result is a reference to exactly the interface of `key`.
    [[nodiscard]] std::shared_ptr<void> decorated(const std::shared_ptr<void>& control, sdk::Key key,
                                                  const std::shared_ptr<Host>& host);

    /// Gives up the decorations of controls that are gone.
    void sweep();

private:
    struct Decoration {
        std::weak_ptr<void> control;
        const void* address; ///< of `control`: one owner may have several
        sdk::Key key;
        const Host* host;
        std::shared_ptr<void> owner;
        void* interface;
    };

    [[nodiscard]] std::list<Decoration> takeExpired() TARN_REQUIRES(m_mutex);

    utils::Mutex m_mutex;
    std::list<Decoration> m_decorations TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::guard
