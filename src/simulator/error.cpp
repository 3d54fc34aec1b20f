#include <simulator/error.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <string>

namespace tarn::simulator {

namespace {

struct Description {
    Error error;
    std::string_view name;
    const char* message;
};

constexpr std::array descriptions{
    Description{Error::NotFound, "not-found", "the instrument has no file of this name"},
    Description{Error::Full, "full", "the file memory is full; delete files that are not needed"},
    Description{Error::BadName, "bad-name",
                "a file name must be UTF-8 text of 1 to 255 bytes without a null character"},
    Description{Error::Io, "io", "the memory could not be read or written"},
    Description{Error::Corrupt, "corrupt", "the contents of the memory are damaged"},
    Description{Error::Busy, "busy", "the instrument is busy; try again later"},
    Description{Error::Timeout, "timeout", "the instrument did not answer in time"},
    Description{Error::WriteProtected, "write-protected", "the memory is write-protected; release the protection"},
    Description{Error::BadSize, "bad-size", "an image must have at least one byte and fit into the memory"},
    Description{Error::PowerLoss, "power-loss", "the instrument lost its power during the operation; repeat it"},
    Description{Error::Disconnected, "disconnected",
                "the instrument was disconnected during the operation; connect it and repeat the operation"},
    Description{Error::BadIndex, "bad-index", "the instrument has no potentiometer of this number"},
    Description{Error::OutOfRange, "out-of-range", "the value is outside the potentiometer's range"},
    Description{Error::BadIdentity, "bad-identity", "this is not the USB identity of a supported model"},
};

class Category final : public std::error_category {
public:
    [[nodiscard]] const char* name() const noexcept override { return "simulated instrument"; }

    [[nodiscard]] std::string message(int value) const override
    {
        const auto* const known
            = std::ranges::find(descriptions, value, [](const auto& d) { return static_cast<int>(d.error); });
        return known != descriptions.end() ? known->message : "instrument error " + std::to_string(value);
    }
};

} // namespace

const std::error_category& errorCategory() noexcept
{
    static const Category category;
    return category;
}

std::optional<std::error_code> errorFromText(std::string_view text)
{
    if (const auto* const known = std::ranges::find(descriptions, text, &Description::name);
        known != descriptions.end())
        return make_error_code(known->error);
    int value = 0;
    const auto* const end = text.data() + text.size();
    const auto [rest, failure] = std::from_chars(text.data(), end, value);
    if (failure != std::errc{} || rest != end || value == 0)
        return std::nullopt;
    return std::error_code{value, errorCategory()};
}

} // namespace tarn::simulator
