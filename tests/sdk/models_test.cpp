#include <sdk/models.h>

#include <gtest/gtest.h>

#include <set>
#include <string_view>
#include <type_traits>

namespace tarn::tests {
namespace {

namespace models = sdk::models;

static_assert(std::is_constructible_v<sdk::Model, const char*>);
static_assert(models::pell::all.size() == 15);
static_assert(models::zinnia::all.size() == 8);
static_assert(models::marl::all.size() == 4);
static_assert(models::tove::all.size() == 9);
static_assert(models::wisp::all.size() == 2);
static_assert(models::glint::all.size() == 7);
static_assert(models::brae::all.size() == 2);
static_assert(models::vell::all.size() == 9);
static_assert(models::multiport::lum::all.size() == 7);
static_assert(models::multiport::common::all.size() == 7);

TEST(Model, IsItsName)
{
    const std::string sameText{"Pell 101"};
    EXPECT_EQ(sdk::Model{"Pell 101"}.name(), "Pell 101");
    EXPECT_EQ(sdk::Model{sameText.c_str()}, models::pell::pell101) << "the text counts, not where it lies";
    EXPECT_NE(models::pell::pell101, models::pell::pell102);
}

TEST(Models, HaveNamesThatDifferAcrossAllFamilies)
{
    std::set<std::string_view> names{models::any.name()};
    std::size_t count = 1;
    const auto collect = [&](const auto& family) {
        for (const auto& model : family) {
            EXPECT_FALSE(model.name().empty());
            names.insert(model.name());
            ++count;
        }
    };
    collect(models::pell::all);
    collect(models::zinnia::all);
    collect(models::marl::all);
    collect(models::tove::all);
    collect(models::wisp::all);
    collect(models::glint::all);
    collect(models::brae::all);
    collect(models::vell::all);
    collect(models::multiport::lum::all);
    collect(models::multiport::common::all);
    EXPECT_EQ(count, 71U);
    EXPECT_EQ(names.size(), count);
}

} // namespace
} // namespace tarn::tests
