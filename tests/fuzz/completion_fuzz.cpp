#include <fuzz/fuzz.h>

#include <console/commandline.h>
#include <console/console.h>
#include <console/text.h>

using namespace tarn::console;
using tarn::fuzz::require;

/// The words of a command line that is being typed, one in each line.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static auto& line = *[] {
        auto* const made = new CommandLine;
        addCommands(*made);
        return made;
    }();
    const auto words = tarn::fuzz::split(tarn::fuzz::textOf(data, size), "\n");
    const auto proposals = line.propose(words);
    require(std::ranges::is_sorted(proposals) && std::ranges::adjacent_find(proposals) == proposals.end(),
            "each proposal is made once, in order");
    for (const auto& proposal : proposals)
        require(proposal.starts_with(words.back()) && escaped(proposal) == proposal,
                "a proposal goes on as the word begins, and prints");
    return 0;
}
