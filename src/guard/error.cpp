#include <guard/error.h>

#include <string>

namespace tarn::guard {

namespace {

class Category final : public std::error_category {
public:
    [[nodiscard]] const char* name() const noexcept override { return "guard"; }

    [[nodiscard]] std::string message(int value) const override
    {
        switch (static_cast<Error>(value)) {
        case Error::Dropped:
            return "the instrument gave the request up without an answer";
        case Error::TimedOut:
            return "the instrument did not answer in time";
        }
        return "unknown error";
    }
};

} // namespace

const std::error_category& errorCategory() noexcept
{
    static const Category category;
    return category;
}

} // namespace tarn::guard
