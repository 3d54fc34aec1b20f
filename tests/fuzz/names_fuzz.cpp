#include <fuzz/fuzz.h>

#include <console/output.h>
#include <console/plainname.h>
#include <console/text.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QList>

#include <sys/mman.h>
#include <unistd.h>

using namespace tarn::console;
using tarn::fuzz::require;

namespace {

/// Takes the place of standard output, in memory.
class CapturedOutput {
public:
    CapturedOutput()
        : m_descriptor{::memfd_create("output", MFD_CLOEXEC)}
    {
        require(m_descriptor >= 0 && ::dup2(m_descriptor, STDOUT_FILENO) == STDOUT_FILENO, "the output is captured");
    }

    /// What was written since the last time.
    [[nodiscard]] std::string take() const
    {
        const auto length = ::lseek(m_descriptor, 0, SEEK_CUR);
        std::string bytes(static_cast<std::size_t>(length), '\0');
        require(::pread(m_descriptor, bytes.data(), bytes.size(), 0) == length
                    && ::lseek(m_descriptor, 0, SEEK_SET) == 0,
                "the output is read");
        return bytes;
    }

private:
    int m_descriptor;
};

/// Whether a terminal may take the character for something else than a character.
bool steers(char32_t character)
{
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x2028 || character == 0x2029
        || QChar::category(character) == QChar::Other_Format;
}

bool prints(std::string_view text)
{
    return std::ranges::none_of(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).toUcs4(), &steers);
}

/// What `escaped` was made of.
std::string unescaped(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        if (text.starts_with("\\\\")) {
            result += '\\';
            text.remove_prefix(2);
        } else if (text.starts_with("\\u{")) {
            const auto end = text.find('}');
            const char32_t character
                = QByteArray::fromStdString(std::string{text.substr(3, end - 3)}).toUInt(nullptr, 16);
            result += QStringView{QChar::fromUcs4(character)}.toUtf8().toStdString();
            text.remove_prefix(end + 1);
        } else {
            result += text.front();
            text.remove_prefix(1);
        }
    }
    return result;
}

void requirePlain(const QString& name)
{
    const auto bytes = name.toStdString();
    require(!bytes.empty() && bytes.size() <= 255 && prints(bytes), "a plain name prints and is not too long");
    require(bytes.find_first_of("/\\:<>\"|?*") == std::string::npos, "a plain name leads nowhere else");
    require(bytes.front() != '-' && bytes.back() != '.' && bytes.back() != ' ', "a plain name is none to mistake");
}

} // namespace

/// A name as an instrument gives it.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t longest = 600; // twice what a name may be
    static const CapturedOutput captured;
    static const Output output{{.json = true, .color = ColorMode::Never}, "files list"};
    const auto bytes = tarn::fuzz::textOf(data, std::min(size, longest));
    const auto name = QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
    const auto valid = name.toStdString(); // has replacements where the bytes were not UTF-8

    require(decoded(valid) == name || valid.starts_with("\uFEFF"), "UTF-8 is decoded");
    require(decoded(bytes).has_value() == (valid == bytes), "what is decoded has lost nothing");
    const auto shown = escaped(name);
    require(prints(shown) && unescaped(shown) == valid, "an escaped name prints and is unambiguous");
    require(prints(escaped(bytes)), "escaped bytes print");
    require(shortened(valid, 40).size() <= 43
                && decoded(shortened(valid, 40)).has_value() == decoded(valid).has_value(),
            "a name is cut between two characters");
    if (!whyNotPlain(name))
        requirePlain(name);

    output.result(name, shown);
    output.error(Error{ErrorCode::NotFound, std::string{bytes}, "look again"});
    const auto lines = tarn::fuzz::split(captured.take(), "\n");
    require(lines.size() == 3 && lines[2].empty() && prints(lines[0]) && prints(lines[1]),
            "each object is a line that prints");
    const auto result = QJsonDocument::fromJson(QByteArray::fromStdString(lines[0])).object();
    require(result[QStringLiteral("result")].toString() == name, "JSON carries the name as it is");
    const auto error = QJsonDocument::fromJson(QByteArray::fromStdString(lines[1])).object();
    require(error[QStringLiteral("error")][QStringLiteral("message")].toString() == name, "an error does too");
    return 0;
}
