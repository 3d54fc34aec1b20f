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
class Request final : public Call {
public:
    static Request& create()
    {
        auto made = std::make_unique<Request>();
        auto& request = *made;
        Watchdog::instance().add(std::move(made));
        return request;
    }

    /// Makes a request: `operation(completion)` hands it to the device, with a completion that ends in `done` once.
    /// What the operation throws passes through, and `done` is not called then, unless the device has called it before.
    template <class Operation>
    static void make(const std::shared_ptr<Host>& host, sdk::Key control, std::string_view name, Done& done,
                     Operation operation)
    {
        auto& call = Pool<Request>::take();
        call.m_done.swap(done); // first: once it is prepared, the request may be ended
        call.prepare(host, control, name);
        try {
            operation(Done{Completer{call}});
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
            m_call->complete([&] { m_call->m_done(std::forward<Outcome>(outcome)...); });
        }

    private:
        using Block = AtHand<void, &deallocate>;

        Request* m_call;
    };

    void fail(std::error_code error) override
    {
        if constexpr (std::is_invocable_v<Done, std::error_code>)
            m_done(error);
        else
            m_done({}, error);
    }
    void recycle() override
    {
        m_done = nullptr;
        Pool<Request>::giveBack(*this);
    }

    Done m_done;
};

} // namespace tarn::guard
