#include "quilltuning.h"

#include <support/adaptertest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace tarn::tests::sdkquillsynthesiscontrol {
namespace {

using Sdk = QuillSynthesis::Sdk;
using QuillSynthesisControl = AdapterTest<Sdk, QuillSynthesis::Adapter, QuillSynthesis::Mock>;

TEST_F(QuillSynthesisControl, CopiesTheListsInTheirOrder)
{
    std::vector<double> list{3.0, 1.0, 2.0};
    mock->answer = std::span<const double>{list};
    const auto ifs = control.supportedIfs();
    const auto refs = control.supportedRefs();
    list.assign(3, 0.0); // the copies do not refer to it
    EXPECT_THAT(ifs, ElementsAre(3.0, 1.0, 2.0));
    EXPECT_THAT(refs, ElementsAre(3.0, 1.0, 2.0));
    EXPECT_EQ(ifs.capacity(), 3U);
    EXPECT_EQ(refs.capacity(), 3U);
}

TEST_F(QuillSynthesisControl, MakesAnEmptyListOfAnEmptyOne)
{
    mock->answer = std::span<const double>{};
    EXPECT_THAT(control.supportedIfs(), IsEmpty());
    EXPECT_THAT(control.supportedRefs(), IsEmpty());
}

TEST_F(QuillSynthesisControl, ResetsNothingWithoutAControl)
{
    device.drop(Sdk::key);
    mock.reset();
    EXPECT_NO_THROW(control.reset());
}

TEST(QuillSynthesisInterface, HasItsOperationsInTheOrderOfTheSdk)
{
    expectSlots(&Sdk::setLoLeakageMode, &Sdk::loLeakageMode, &Sdk::setManualIfEnabled, &Sdk::manualIfEnabled,
                &Sdk::setSelectedIf, &Sdk::selectedIf, &Sdk::supportedIfs, &Sdk::setFilter1Frequency,
                &Sdk::filter1Frequency, &Sdk::setManualRefEnabled, &Sdk::manualRefEnabled, &Sdk::setSelectedRef,
                &Sdk::selectedRef, &Sdk::supportedRefs, &Sdk::reset);
}

} // namespace
} // namespace tarn::tests::sdkquillsynthesiscontrol
