#pragma once

namespace tarn::utils {

/// A non-owning reference to an observer. One pointer wide, passed and stored by value; two
/// associations are equal exactly when they refer to the same object.
///
/// It tracks no lifetime: whoever registers an observer removes it before the observer goes.
///
/// Threads: reentrant; at once.
template <class T>
class Association {
public:
    /// Refers to `observer`, which must outlive every use of the association. Implicit, so that
    /// an observer can be handed over as it stands.
    constexpr Association(T& observer) noexcept
        : m_observer{&observer}
    {
    }

    /// The observer.
    [[nodiscard]] constexpr T& operator*() const noexcept { return *m_observer; }

    /// The observer; never null.
    [[nodiscard]] constexpr T* operator->() const noexcept { return m_observer; }

    friend constexpr bool operator==(Association, Association) noexcept = default;

private:
    T* m_observer;
};

} // namespace tarn::utils
