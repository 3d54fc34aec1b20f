#include <simulator/flashmemory.h>

#include <simulator/manualinstrument.h>

#include <QJsonArray>
#include <QJsonObject>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <string_view>

namespace tarn::simulator {
namespace {

using test::Image;
using test::makeImage;

constexpr std::uint32_t page = FlashMemory::pageSize;
constexpr std::uint32_t sector = FlashMemory::sectorSize;
constexpr std::uint32_t block = FlashMemory::blockSize;
constexpr std::uint32_t capacity = 3 * block;

/// Keeps sections and blocks for the time of a test.
class KeptInMemory final : public Storage {
public:
    [[nodiscard]] QJsonValue section(const QString& name) const override { return sections[name]; }
    [[nodiscard]] QByteArray block(const QString& digest) const override { return blocks.value(digest); }
    [[noreturn]] void refuse(const QString& reason) const override { throw StateError{{}, reason}; }

    std::error_code save(const QJsonObject& changed, const Blocks& newBlocks) override
    {
        for (auto it = changed.begin(); it != changed.end(); ++it)
            sections[it.key()] = it.value();
        for (auto it = newBlocks.begin(); it != newBlocks.end(); ++it) // a copy, as a folder makes one
            blocks[it.key()] = QByteArray{it.value().constData(), it.value().size()};
        return {};
    }

    QJsonObject sections;
    Blocks blocks;
};

Image contents(const FlashMemory& memory)
{
    Image image;
    memory.read(0, memory.imageLength(), image);
    return image;
}

bool isIntact(const FlashMemory& memory)
{
    return memory.verify(0, memory.imageLength());
}

void write(FlashMemory& memory, const Image& image, std::uint32_t piece = page)
{
    const auto length = static_cast<std::uint32_t>(image.size());
    memory.startWriting(length);
    for (std::uint32_t at = 0; at < length; at += piece)
        memory.write(image, at, std::min(at + piece, length));
}

class FlashMemoryTest : public testing::Test {
protected:
    KeptInMemory storage;
    FlashMemory memory{capacity, storage};
};

TEST_F(FlashMemoryTest, IsErasedAndIntactWhenItIsNew)
{
    EXPECT_EQ(memory.imageLength(), capacity);
    EXPECT_EQ(contents(memory), Image(capacity, std::byte{0xFF}));
    EXPECT_TRUE(isIntact(memory));
}

TEST_F(FlashMemoryTest, GivesBackWhatWasWrittenLast)
{
    for (const auto length : {block + 1, 1U, capacity, sector, block, page - 1}) {
        const auto image = makeImage(length, length);
        write(memory, image);
        EXPECT_EQ(contents(memory), image);
        EXPECT_TRUE(isIntact(memory)) << length;
    }
}

TEST_F(FlashMemoryTest, ReadsErasedAfterItWasErased)
{
    write(memory, makeImage(block + 5));
    memory.startErasing();
    memory.erase(0, sector);
    memory.erase(sector, capacity);
    EXPECT_EQ(contents(memory), Image(capacity, std::byte{0xFF}));
    EXPECT_TRUE(isIntact(memory));
}

TEST_F(FlashMemoryTest, KeepsWhatWasProgrammedWhenAWriteStops)
{
    const auto old = makeImage(2 * block, 1);
    const auto image = makeImage(2 * block, 2);
    write(memory, old);
    memory.startWriting(2 * block);
    constexpr auto reached = sector + page;
    memory.write(image, 0, reached);
    const auto left = contents(memory);
    const auto at = [](const Image& bytes, std::uint32_t position) {
        return bytes.begin() + static_cast<std::ptrdiff_t>(position);
    };
    EXPECT_TRUE(std::equal(left.begin(), at(left, reached), image.begin()));
    EXPECT_TRUE(std::all_of(at(left, reached), at(left, 2 * sector), [](auto b) { return b == std::byte{0xFF}; }))
        << "the sector was erased";
    EXPECT_TRUE(std::equal(at(left, 2 * sector), left.end(), at(old, 2 * sector)));
    EXPECT_FALSE(isIntact(memory));
}

TEST_F(FlashMemoryTest, IsNotIntactWhenAWriteOrAnErasureStopsAtAnyPage)
{
    for (std::uint32_t reached = 0; reached < 2 * block; reached += 17 * page) {
        write(memory, makeImage(2 * block, 3));
        memory.startWriting(2 * block);
        memory.write(makeImage(2 * block, 3), 0, reached); // even of the same image
        EXPECT_FALSE(isIntact(memory)) << reached;
    }
    for (std::uint32_t reached = 0; reached < capacity; reached += 3 * sector) {
        write(memory, makeImage(2 * block, 3));
        memory.startErasing();
        memory.erase(0, reached);
        EXPECT_FALSE(isIntact(memory)) << reached;
    }
}

TEST_F(FlashMemoryTest, FindsBitsThatHaveFlipped)
{
    for (std::uint64_t seed = 0; seed < 50; ++seed) {
        write(memory, makeImage(seed % 2 == 0 ? 1 : block + 100));
        memory.corrupt(seed);
        EXPECT_FALSE(isIntact(memory)) << seed;
    }
}

TEST_F(FlashMemoryTest, FlipsNothingInAnErasedMemory)
{
    memory.corrupt(1);
    EXPECT_TRUE(isIntact(memory));
    EXPECT_EQ(contents(memory), Image(capacity, std::byte{0xFF}));
}

TEST_F(FlashMemoryTest, VerifiesEachBlockByItself)
{
    const auto image = makeImage(capacity);
    memory.startWriting(capacity);
    memory.write(image, 0, 2 * block);
    EXPECT_TRUE(memory.verify(0, block));
    EXPECT_TRUE(memory.verify(block, 2 * block));
    EXPECT_FALSE(memory.verify(2 * block, capacity));
}

TEST_F(FlashMemoryTest, UsesTheCrcOfTheEthernetStandard)
{
    Image digits;
    for (const auto c : std::string_view{"123456789"})
        digits.push_back(static_cast<std::byte>(c));
    write(memory, digits);
    ASSERT_EQ(memory.save(storage), std::error_code{});
    EXPECT_EQ(storage.sections[QStringLiteral("memory")][QStringLiteral("checksums")], QStringLiteral("cbf43926"));
}

TEST_F(FlashMemoryTest, IsTheSameAfterItWasKept)
{
    const auto expectKept = [&] {
        ASSERT_EQ(memory.save(storage), std::error_code{});
        const FlashMemory again{capacity, storage};
        EXPECT_EQ(contents(again), contents(memory));
        EXPECT_EQ(isIntact(again), isIntact(memory));
    };
    expectKept();
    const auto image = makeImage(block + 77);
    memory.startWriting(block + 77);
    expectKept(); // begun
    memory.write(image, 0, page);
    expectKept();
    memory.write(image, page, block + 77);
    expectKept();
    memory.startErasing();
    expectKept();
    memory.erase(0, capacity);
    expectKept();
    EXPECT_EQ(storage.sections[QStringLiteral("memory")],
              (QJsonObject{{QStringLiteral("capacity"), static_cast<double>(capacity)}}));
}

TEST_F(FlashMemoryTest, KeepsItsCapacity)
{
    EXPECT_EQ((FlashMemory{std::nullopt, storage}.capacity()), FlashMemory::defaultCapacity) << "a new one";
    for (const bool isWritten : {false, true}) {
        if (isWritten)
            write(memory, makeImage(block + 1));
        ASSERT_EQ(memory.save(storage), std::error_code{});
        const FlashMemory again{std::nullopt, storage};
        EXPECT_EQ(again.capacity(), capacity);
        EXPECT_EQ(contents(again), contents(memory));
        EXPECT_TRUE(isIntact(again));
    }
    EXPECT_EQ((FlashMemory{2 * capacity, storage}.capacity()), 2 * capacity) << "what is asked for counts";
}

TEST_F(FlashMemoryTest, IsAsLargeAsTheNextInstrumentWhenItWasErased)
{
    ASSERT_EQ(memory.save(storage), std::error_code{});
    const FlashMemory larger{2 * capacity, storage};
    EXPECT_EQ(contents(larger).size(), 2 * capacity);
    EXPECT_TRUE(isIntact(larger));
}

TEST_F(FlashMemoryTest, RefusesAnImageThatIsLargerThanTheMemory)
{
    write(memory, makeImage(block + 1));
    ASSERT_EQ(memory.save(storage), std::error_code{});
    EXPECT_NO_THROW((FlashMemory{block + sector, storage}));
    try {
        const FlashMemory small{block, storage};
        FAIL() << "was accepted";
    } catch (const StateError& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr("memory-size"));
    }
}

RC_GTEST_PROP(FlashMemoryProperty, BehavesLikeAnImageAndAFlag, ())
{
    KeptInMemory storage;
    FlashMemory memory{capacity, storage};
    Image expected(capacity, std::byte{0xFF});
    for (int round = 0; round < 3; ++round) {
        const auto length = *rc::gen::inRange<std::uint32_t>(1, capacity + 1);
        const auto piece = page * *rc::gen::inRange<std::uint32_t>(1, 600);
        if (*rc::gen::inRange(0, 4) == 0) {
            memory.startErasing();
            memory.erase(0, capacity);
            expected.assign(capacity, std::byte{0xFF});
        } else {
            expected = makeImage(length, length);
            write(memory, expected, piece);
        }
        RC_ASSERT(contents(memory) == expected);
        RC_ASSERT(isIntact(memory));
    }
}

} // namespace
} // namespace tarn::simulator
