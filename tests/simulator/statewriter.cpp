// Works with an instrument until it is killed: `statewriter STATE_FOLDER`. Writes the file
// "generation" and then the image of the memory again and again, each time with contents of one
// repeated byte, and says on standard output which generation is durable. With `hold` as a second
// argument it opens the instrument, says so, and waits for the end of its standard input.

#include <sdk/service/ifilememorycontrol.h>
#include <sdk/service/imemoryoperationscontrol.h>
#include <simulator/open.h>

#include <cstdio>
#include <future>
#include <string_view>

using Files = sdk::service::IFileMemoryControl;
using Memory = sdk::service::IMemoryOperationsControl;

namespace {

/// The result of the request that `request` makes with a completion.
template <class Request>
std::error_code resultOf(Request request)
{
    std::promise<std::error_code> result;
    request([&](std::error_code code) { result.set_value(code); });
    return result.get_future().get();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2)
        return 2;
    const auto device = tarn::simulator::open({{}, QString::fromLocal8Bit(argv[1])});
    if (!device) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(device.error().message));
        return 1;
    }
    std::puts("open");
    std::fflush(stdout);
    if (argc > 2 && std::string_view{argv[2]} == "hold") {
        while (std::getchar() != EOF) { }
        return 0;
    }
    const auto files = (*device)->control<Files>(Files::key);
    const auto memory = (*device)->control<Memory>(Memory::key);
    for (unsigned generation = 1;; ++generation) {
        const auto byte = static_cast<std::uint8_t>(generation);
        if (resultOf([&](auto done) {
                files->writeFile("generation", std::vector<std::uint8_t>(1000 + generation, byte), done);
            }))
            return 1;
        if (resultOf(
                [&](auto done) { memory->write(std::vector<std::byte>(70'000 + generation, std::byte{byte}), done); }))
            return 1;
        std::printf("%u\n", generation);
        std::fflush(stdout);
    }
}
