#include <fuzz/fuzz.h>

#include <console/commandline.h>
#include <console/console.h>

using namespace tarn::console;
using tarn::fuzz::require;

/// The words of a command line, one in each line. They are understood or refused, and nothing is done.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static auto& line = *[] {
        auto* const made = new CommandLine; // dear to make; parsing starts anew each time
        addCommands(*made);
        return made;
    }();
    const auto words = tarn::fuzz::split(tarn::fuzz::textOf(data, size), "\n");
    std::vector<const char*> arguments{"tarn-service"};
    for (const auto& word : words)
        arguments.push_back(word.c_str());
    try {
        line.parse(static_cast<int>(arguments.size()), arguments.data());
        const auto asksForItself = [](const auto& word) {
            return word.starts_with('-') && (word.contains('h') || word.contains("version"));
        };
        require(!line.command().empty() || std::ranges::any_of(words, asksForItself), "a command was selected");
    } catch (const Error& error) {
        require(error.code() == ErrorCode::Usage, "what is not understood is an error of usage");
        require(!error.message().empty() && error.hint().contains("tarn-service"),
                "it says what is wrong and who helps");
    }
    return 0;
}
