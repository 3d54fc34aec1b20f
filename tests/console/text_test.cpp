#include <console/printing.h>
#include <console/text.h>

#include <gtest/gtest.h>

namespace tarn::console {

TEST(Escaping, LeavesPrintableTextAlone)
{
    EXPECT_EQ(escaped(QStringLiteral("Zähler 1.bin €")), "Zähler 1.bin €");
    EXPECT_EQ(escaped(QStringLiteral("\U0001F600")), "\U0001F600");
    EXPECT_EQ(escaped(QString{}), "");
}

TEST(Escaping, DoublesBackslashesSoThatTheResultIsUnambiguous)
{
    EXPECT_EQ(escaped(QStringLiteral("a\\u{1b}b")), "a\\\\u{1b}b");
}

TEST(Escaping, ShowsEveryControlCharacter)
{
    for (char32_t c = 0; c < 0xA0; ++c) {
        if (c >= 0x20 && c < 0x7F)
            continue;
        EXPECT_FALSE(isPrintable(c)) << static_cast<unsigned>(c);
        EXPECT_EQ(escaped(QString::fromUcs4(&c, 1)), fmt::format("\\u{{{:x}}}", static_cast<unsigned>(c)));
    }
}

TEST(Escaping, ShowsWhatReordersOrHidesText)
{
    EXPECT_EQ(escaped(QStringLiteral("a\u202Eb")), "a\\u{202e}b"); // right-to-left override
    EXPECT_EQ(escaped(QStringLiteral("a\u2066b")), "a\\u{2066}b"); // left-to-right isolate
    EXPECT_EQ(escaped(QStringLiteral("a\u200Bb")), "a\\u{200b}b"); // zero-width space
    EXPECT_EQ(escaped(QStringLiteral("a\u2028b")), "a\\u{2028}b"); // line separator
    EXPECT_EQ(escaped(QStringLiteral("a\u00A0b")), "a\\u{a0}b"); // no-break space
}

TEST(Escaping, TurnsBytesThatAreNotUtf8IntoReplacementCharacters)
{
    EXPECT_EQ(escaped(std::string_view{"a\x9b\xff"}), "a\uFFFD\uFFFD");
}

TEST(Decoding, TakesValidUtf8Only)
{
    EXPECT_EQ(decoded("Zähler €"), QStringLiteral("Zähler €"));
    EXPECT_EQ(decoded(""), QString{});
    for (const auto* const bytes : {"a\x9b", "\xff", "\xe2\x82", "\xc0\x80", "\xed\xa0\x80"})
        EXPECT_EQ(decoded(bytes), std::unexpected{std::string_view{"is not UTF-8"}});
    EXPECT_EQ(decoded("\uFEFFa"), std::unexpected{std::string_view{"starts with a byte order mark"}});
    EXPECT_EQ(decoded("\uFEFFa\xff"), std::unexpected{std::string_view{"is not UTF-8"}});
    EXPECT_EQ(decoded("a\uFEFF"), QStringLiteral("a\uFEFF"));
    EXPECT_EQ(decoded("\uFFFD"), QStringLiteral("\uFFFD"));
}

TEST(Shortening, KeepsWholeCharacters)
{
    EXPECT_EQ(shortened("Zähler", 7), "Zähler");
    EXPECT_EQ(shortened("Zähler", 3), "Zä...");
    EXPECT_EQ(shortened("Zähler", 2), "Z...");
    EXPECT_EQ(shortened("€", 2), "...");
    EXPECT_EQ(shortened("\x80\x80\x80", 2), "...");
}

TEST(Padding, CountsCharactersAndNeverCuts)
{
    EXPECT_EQ(padded("Zäh", 5), "Zäh  ");
    EXPECT_EQ(padded("longer", 3), "longer");
    EXPECT_EQ(characters("Zäh€"), 4U);
}

} // namespace tarn::console
