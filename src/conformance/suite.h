#pragma once

#include <conformance/conformance.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace tarn::conformance {

/// Fails the running test, with what was found, if `device` breaks the guarantee, and skips it if that could not be
/// checked. See `check`.
///
/// Threads: bound to the thread of the test; blocks while the check runs.
inline void expectKept(const Guarantee& guarantee, std::shared_ptr<sdk::IVna> device, const Options& options)
{
    const auto outcome = check(guarantee, std::move(device), options);
    if (outcome.verdict == Verdict::NotChecked)
        GTEST_SKIP() << outcome.reason;
    if (outcome.verdict == Verdict::Kept)
        return;
    std::string text{guarantee.sentence};
    for (const auto& [where, what] : outcome.findings)
        text.append("\n  ").append(where).append(" ").append(what);
    ADD_FAILURE() << text << "\n  What to do: " << guarantee.remedy;
}

/// The name of the guarantee as GoogleTest takes it: "OneCompletion".
///
/// Threads: thread-safe; at once.
[[nodiscard]] inline std::string testName(const Guarantee& guarantee)
{
    std::string name;
    bool isFirst = true;
    for (const char letter : guarantee.name) {
        if (letter != '-')
            name += isFirst ? static_cast<char>(letter - 'a' + 'A') : letter;
        isFirst = letter == '-';
    }
    return name;
}

/// Adds a test for each guarantee to the program, in the test suite `suite`. `open` connects to the instrument anew for
/// each of them; what it throws, and a null pointer, fail the test. Before `RUN_ALL_TESTS`:
///
///     const bool isRegistered = (tarn::conformance::registerTests("Mine", &openMine, {.writes = true}), true);
///
/// Threads: bound to the thread that registers and runs the tests; `open` is called on it, with no lock held.
inline void registerTests(const std::string& suite, std::function<std::shared_ptr<sdk::IVna>()> open,
                          const Options& options)
{
    class GuaranteeTest final : public testing::Test {
    public:
        explicit GuaranteeTest(std::function<void()> body)
            : m_body{std::move(body)}
        {
        }

    private:
        void TestBody() override { m_body(); }

        const std::function<void()> m_body;
    };
    for (const auto& guarantee : guarantees()) {
        const auto body = [&guarantee, open, options] {
            auto device = open();
            ASSERT_NE(device, nullptr) << "no device was opened";
            expectKept(guarantee, std::move(device), options);
        };
        testing::RegisterTest(suite.c_str(), testName(guarantee).c_str(), nullptr, nullptr, __FILE__, __LINE__,
                              [body]() -> testing::Test* { return new GuaranteeTest{body}; });
    }
}

} // namespace tarn::conformance
