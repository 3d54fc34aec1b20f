#include <devices/modelnames.h>

#include <sdk/models.h>

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace tarn::tests {
namespace {

namespace models = sdk::models;
using devices::prettyModelName;

TEST(PrettyModelName, IsTheNameOfEveryModelOfTheCatalogueAndNoTwoAreTheSame)
{
    std::set<QString> names{prettyModelName(models::any)};
    const auto expectNames = [&](const auto& family) {
        for (const auto& model : family) {
            const auto name = prettyModelName(model);
            EXPECT_EQ(name.toStdString(), model.name());
            EXPECT_TRUE(names.insert(name).second) << model.name();
        }
    };
    expectNames(models::pell::all);
    expectNames(models::zinnia::all);
    expectNames(models::marl::all);
    expectNames(models::tove::all);
    expectNames(models::wisp::all);
    expectNames(models::glint::all);
    expectNames(models::brae::all);
    expectNames(models::vell::all);
    expectNames(models::multiport::lum::all);
    expectNames(models::multiport::common::all);
    EXPECT_EQ(names.size(), 71U);
    EXPECT_TRUE(names.contains(QStringLiteral("Lum Multiport 907")));
}

TEST(PrettyModelName, SaysWhatTheValueForEveryModelStandsFor)
{
    EXPECT_EQ(prettyModelName(models::any), QStringLiteral("any model"));
    EXPECT_EQ(prettyModelName(sdk::Model{"*"}), QStringLiteral("any model"));
}

TEST(PrettyModelName, IsEmptyForAModelWithoutAName)
{
    EXPECT_TRUE(prettyModelName(sdk::Model{""}).isEmpty());
}

TEST(PrettyModelName, TakesTheNameOfAModelOutsideTheCatalogueAsUtf8)
{
    EXPECT_EQ(prettyModelName(sdk::Model{"Pr\xc3\xbc"
                                         "fling \xe2\x82\xac\xf0\x9f\x93\x88"}),
              QStringLiteral(u"Pr\u00fcfling \u20ac\U0001f4c8"));
}

} // namespace
} // namespace tarn::tests
