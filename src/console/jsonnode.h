#pragma once

#include <console/sourcefile.h>

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>

#include <complex>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::console {

/// The largest count that every receiver of one can hold.
inline constexpr std::uint32_t mostCount = 0x7FFF'FFFF;

/// A value in a JSON file that knows its place there: `$.ports[0].directivity`. Whoever reads it
/// says what it must be; if it is anything else, that is an `Error` (`LocalFile`) with the place,
/// what was found and what was expected.
class JsonNode {
public:
    /// The object that `bytes`, the contents of `file`, hold, which must outlive all its nodes. It
    /// has a member "format" with the value `format`.
    [[nodiscard]] static JsonNode parse(const SourceFile& file, const QByteArray& bytes, std::string_view format);

    /// Checks that the value is an object with exactly these members.
    void expectMembers(std::initializer_list<std::string_view> names) const;

    /// A member of the object that the value must be.
    [[nodiscard]] JsonNode operator[](std::string_view name) const;

    /// The elements of the array that the value must be; `expected` names it ("an array of ports").
    [[nodiscard]] std::vector<JsonNode> elements(std::string_view expected) const;

    [[nodiscard]] double number() const;

    /// A whole number between `least` and `most`.
    [[nodiscard]] std::uint32_t count(std::uint32_t least, std::uint32_t most = mostCount) const;

    /// A complex number: an array of the real and the imaginary part.
    [[nodiscard]] std::complex<double> complex() const;

    /// Frequencies in hertz: at least one, none negative, each above the one before it.
    [[nodiscard]] std::vector<double> ascendingFrequencies() const;

    /// What is wrong with the value, which is shown itself or described by `found`.
    [[nodiscard]] Error bad(std::string_view expected) const;
    [[nodiscard]] Error bad(std::string_view found, std::string_view expected) const;

private:
    JsonNode(const SourceFile& file, QJsonValue value, std::string path)
        : m_file{&file}
        , m_value{std::move(value)}
        , m_path{std::move(path)}
    {
    }

    [[nodiscard]] JsonNode element(const QJsonArray& array, qsizetype index) const;

    const SourceFile* m_file;
    QJsonValue m_value;
    std::string m_path;
};

} // namespace tarn::console
