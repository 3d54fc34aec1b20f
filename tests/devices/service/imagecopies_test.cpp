// How often an image of the memory is copied, in a program that counts the large blocks it allocates.

#include <devices/service/sdkmemoryoperationscontrol.h>

#include <support/allocationprobe.h>
#include <support/devicehandle.h>

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace tarn::tests::imagecopies {
namespace {

using devices::service::SdkMemoryOperationsControl;
using Sdk = sdk::service::IMemoryOperationsControl;
using Image = std::vector<std::byte>;

/// Moves its image out of and into itself, on a thread of its own.
class Memory final : public Sdk {
public:
    bool isAvailable() override { return true; }
    void read(sdk::Completion<Image> completion) override
    {
        m_thread = std::jthread{[this, completion] { completion(std::move(image), {}); }};
    }
    void write(Image written, sdk::Completion<> completion) override
    {
        image = std::move(written);
        m_thread = std::jthread{[completion] { completion({}); }};
    }
    void erase(sdk::Completion<> completion) override { completion({}); }
    void integrityCheck(sdk::Completion<> completion) override { completion({}); }
    void addObserver(IObserver* /*observer*/) override { }
    void removeObserver(IObserver* /*observer*/) override { }

    Image image;

private:
    std::jthread m_thread;
};

class ImageCopies : public testing::Test {
protected:
    std::shared_ptr<Memory> memory = std::make_shared<Memory>();
    SdkMemoryOperationsControl control{handleTo<Sdk>(memory)};
};

TEST_F(ImageCopies, AWriteCopiesTheImageOnce)
{
    const Image image(AllocationProbe::large, std::byte{7});
    const int before = AllocationProbe::largeBlocks();
    EXPECT_TRUE(control.write(image));
    EXPECT_EQ(AllocationProbe::largeBlocks(), before + 1);
    EXPECT_NE(memory->image.data(), image.data());
    EXPECT_EQ(memory->image, image);
}

TEST_F(ImageCopies, AReadMovesTheImageAndCopiesNothing)
{
    memory->image.assign(AllocationProbe::large, std::byte{7});
    const auto* const buffer = memory->image.data();
    const int before = AllocationProbe::largeBlocks();
    const auto image = control.read();
    EXPECT_EQ(AllocationProbe::largeBlocks(), before);
    ASSERT_TRUE(image.has_value());
    EXPECT_EQ(image->data(), buffer);
    EXPECT_EQ(image->size(), AllocationProbe::large);
}

} // namespace
} // namespace tarn::tests::imagecopies
