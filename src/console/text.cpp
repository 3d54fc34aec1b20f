#include <console/text.h>

#include <QList>

#include <algorithm>
#include <utility>

namespace tarn::console {

namespace {

bool startsCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

} // namespace

bool isPrintable(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return false;
    case QChar::Separator_Space:
        return character == U' ';
    default:
        return true;
    }
}

std::expected<QString, std::string_view> decoded(std::string_view bytes)
{
    auto text = QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
    // What could not be decoded has become something else, and a byte order mark is gone.
    const auto again = text.toStdString();
    if (again == bytes)
        return text;
    return std::unexpected{"\uFEFF" + again == bytes ? "starts with a byte order mark" : "is not UTF-8"};
}

std::string escaped(const QString& text)
{
    std::string result;
    for (const char32_t character : text.toUcs4()) {
        if (character == U'\\')
            result += "\\\\";
        else if (isPrintable(character))
            result += QString::fromUcs4(&character, 1).toStdString();
        else
            result += fmt::format("\\u{{{:x}}}", static_cast<std::uint32_t>(character));
    }
    return result;
}

std::string escaped(std::string_view text)
{
    return escaped(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
}

std::string padded(std::string text, std::size_t width)
{
    const auto length = characters(text);
    text.append(width > length ? width - length : 0, ' ');
    return text;
}

std::string shortened(std::string_view text, std::size_t longest)
{
    if (text.size() <= longest)
        return std::string{text};
    while (longest > 0 && !startsCharacter(text[longest]))
        --longest;
    return std::string{text.substr(0, longest)} + "...";
}

std::size_t characters(std::string_view text)
{
    return static_cast<std::size_t>(std::ranges::count_if(text, &startsCharacter));
}

} // namespace tarn::console
