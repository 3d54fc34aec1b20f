#pragma once

#include <guard/athand.h>
#include <guard/call.h>
#include <guard/pool.h>

#include <cstddef>
#include <memory>
#include <new>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>

namespace tarn::guard {

/// A call whose caller's completion is a `Done`, a kind of `sdk::Completion`.
template <class Done>
class Request final : public Call, public Pooled<Request<Done>> {
public:
    static Request& create()
    {
        auto made = std::make_unique<Request>();
        auto& request = *made;
        Watchdog::instance().add(std::move(made));
        return request;
    }

    /// Makes a request: `operation(completer)` hands it to the device, with a `Done` of `completer` that ends in `done`
    /// once. What the operation throws passes through, and `done` is not called then, unless it has been called before:
    /// by the device, or because of the time that the operation took.
    template <class Operation>
    static void make(const std::shared_ptr<Host>& host, sdk::Key control, std::string_view name, Done& done,
                     Operation operation)
    {
        auto& call = Pool<Request>::take();
        call.m_done.swap(done); // first: once it is prepared, the request may be ended
        call.prepare(host, control, name);
        try {
            operation(Completer{call});
        } catch (...) {
            call.onThrew();
            throw;
        }
        call.onReturned();
    }

private:
    static void deallocate(void* block) { ::operator delete(block); }

    /// What the device has of a call.
    class Completer {
    public:
        explicit Completer(Request& call) noexcept
            : m_call{&call}
        {
        }
        Completer(const Completer& other)
            : m_call{other.m_call}
        {
            m_call->retain();
        }
        Completer(Completer&& other) noexcept
            : m_call{std::exchange(other.m_call, nullptr)}
        {
        }
        Completer& operator=(const Completer&) = delete;
        Completer& operator=(Completer&&) = delete;
        ~Completer()
        {
            if (m_call)
                m_call->release();
        }

        // A completion keeps it in memory of its own; most often that of the thread's last one.
        static void* operator new(std::size_t size)
        {
            auto* const block = Block::take();
            return block ? block : ::operator new(size);
        }
        static void operator delete(void* block) noexcept { Block::keep(block); }

        template <class... Outcome>
        void operator()(Outcome&&... outcome) const
        {
            // what the completion leads to may destroy this
            m_call->complete([&, call = m_call] { call->taken()(std::forward<Outcome>(outcome)...); });
        }

    private:
        using Block = AtHand<void, &deallocate>;

        Request* m_call;
    };

    /// The caller's completion, which goes when it has been called, whatever the device keeps.
    [[nodiscard]] Done taken() { return std::exchange(m_done, nullptr); }

    void fail(std::error_code error) override
    {
        if constexpr (std::is_invocable_v<Done, std::error_code>)
            taken()(error);
        else
            taken()({}, error);
    }
    void forget() override { m_done = nullptr; }
    void recycle() override { Pool<Request>::giveBack(*this); }

    Done m_done;
};

} // namespace tarn::guard
