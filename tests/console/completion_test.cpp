#include <console/completion.h>

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>

#include <optional>

namespace tarn::console {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

using Words = std::vector<std::string>;

class CompletionTest : public testing::Test {
protected:
    CompletionTest()
    {
        m_program.set_help_flag();
        m_program.add_option("--address", m_text);
        m_program.add_flag("--json", m_flag);
        auto* const power = m_program.add_subcommand("power");
        power->set_help_flag();
        power->add_subcommand("show")->set_help_flag();
        auto* const set = power->add_subcommand("set");
        set->set_help_flag();
        set->add_option("NAME", m_list);
        set->add_option("-o,--output", m_text);
        m_program.add_subcommand("potentiometers")->set_help_flag();
        m_completion.add(*set, [this](std::span<const std::string> given) {
            m_given = Words{given.begin(), given.end()};
            return Words{"low", "lo", "high", "lo"};
        });
    }

    Words propose(const Words& words) { return m_completion.propose(m_program, words); }

    std::optional<Words> m_given; ///< to the candidates of `power set`

private:
    std::string m_text;
    Words m_list;
    bool m_flag = false;
    CLI::App m_program;
    Completion m_completion;
};

TEST_F(CompletionTest, ProposesTheCommandsThatBeginLikeTheWord)
{
    EXPECT_THAT(propose({""}), ElementsAre("potentiometers", "power"));
    EXPECT_THAT(propose({"pow"}), ElementsAre("power"));
    EXPECT_THAT(propose({"x"}), IsEmpty());
    EXPECT_THAT(propose({"power", ""}), ElementsAre("set", "show"));
}

TEST_F(CompletionTest, ProposesTheOptionsOfTheCommandAndOfThoseAboveIt)
{
    EXPECT_THAT(propose({"-"}), ElementsAre("--address", "--json"));
    EXPECT_THAT(propose({"power", "set", "-"}), ElementsAre("--address", "--json", "--output"));
    EXPECT_THAT(propose({"power", "set", "--o"}), ElementsAre("--output"));
}

TEST_F(CompletionTest, LeavesTheValueOfAnOptionToTheShell)
{
    EXPECT_THAT(propose({"--address", ""}), IsEmpty());
    EXPECT_THAT(propose({"power", "set", "-o", "l"}), IsEmpty());
    EXPECT_FALSE(m_given);
}

TEST_F(CompletionTest, GoesOnAfterOptions)
{
    EXPECT_THAT(propose({"--address", "power", "po"}), UnorderedElementsAre("power", "potentiometers"));
    EXPECT_THAT(propose({"--json", "power", "s"}), ElementsAre("set", "show"));
    EXPECT_THAT(propose({"power", "--address", "x", "--unknown", "sh"}), ElementsAre("show"));
}

TEST_F(CompletionTest, ProposesTheCandidatesOfACommandSortedAndOnce)
{
    EXPECT_THAT(propose({"power", "set", ""}), ElementsAre("high", "lo", "low"));
    EXPECT_THAT(propose({"power", "set", "lo"}), ElementsAre("lo", "low"));
}

TEST_F(CompletionTest, TellsTheCandidatesWhichArgumentsWereGiven)
{
    propose({"--json", "power", "set", "a", "--output", "file", "-", "power", ""});
    EXPECT_EQ(m_given, (Words{"a", "-", "power"}));
}

} // namespace tarn::console
