#pragma once

#include <QString>

#include <fmt/format.h>

#include <cstddef>
#include <expected>
#include <string>
#include <string_view>

/// Formats a `QString` as UTF-8, as it is.
template <>
struct fmt::formatter<QString> : fmt::formatter<std::string> {
    template <class Context>
    auto format(const QString& text, Context& context) const
    {
        return fmt::formatter<std::string>::format(text.toStdString(), context);
    }
};

namespace tarn::console {

/// Whether a character shows as itself on a terminal: not a control or format character (the
/// bidirectional overrides among them), a line or paragraph separator, a space other than the
/// ordinary one, or half of a surrogate pair.
[[nodiscard]] bool isPrintable(char32_t character);

/// The text that `bytes` spell in UTF-8, or why they spell none, as the end of a sentence ("is not
/// UTF-8"). A byte order mark is none of a text.
[[nodiscard]] std::expected<QString, std::string_view> decoded(std::string_view bytes);

/// `text` for a terminal, UTF-8: every character that is not printable as `\u{hex}` and a
/// backslash doubled, so that the result is unambiguous.
[[nodiscard]] std::string escaped(const QString& text);
[[nodiscard]] std::string escaped(std::string_view text);

/// `text`, filled with blanks up to `width` characters.
[[nodiscard]] std::string padded(std::string text, std::size_t width);

/// `text`, UTF-8, or its first characters and "..." if it is longer than `longest` bytes.
[[nodiscard]] std::string shortened(std::string_view text, std::size_t longest);

/// The number of characters of a UTF-8 text.
[[nodiscard]] std::size_t characters(std::string_view text);

} // namespace tarn::console
