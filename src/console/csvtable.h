#pragma once

#include <console/sourcefile.h>

#include <QByteArray>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::console {

/// A field in a CSV file that knows its place there: its line, counted as an editor counts them,
/// and its column. Whoever reads it says what it must be; if it is anything else, that is an
/// `Error` (`LocalFile`) with the place, what was found and what was expected.
class CsvField {
public:
    CsvField(const SourceFile& file, std::size_t line, std::string_view column, std::string text)
        : m_file{&file}
        , m_line{line}
        , m_column{column}
        , m_text{std::move(text)}
    {
    }

    /// A finite number that `Number` can hold.
    template <class Number>
    [[nodiscard]] Number number() const;

    /// `on` or `off`.
    [[nodiscard]] bool onOff() const;

    /// What is wrong with the field.
    [[nodiscard]] Error bad(std::string_view expected) const;

private:
    const SourceFile* m_file;
    std::size_t m_line;
    std::string_view m_column;
    std::string m_text;
};

extern template double CsvField::number<double>() const;
extern template float CsvField::number<float>() const;

using CsvRow = std::vector<CsvField>;

/// The rows of a CSV file: fields separated by commas, blanks around them ignored, no quotes. The
/// first line names the `columns`. Empty lines, and lines that start with `#`, count only as lines.
/// Throws `Error` (`LocalFile`). `file` and `columns` must outlive the rows.
[[nodiscard]] std::vector<CsvRow> readCsv(const SourceFile& file, const QByteArray& bytes,
                                          std::span<const std::string_view> columns);

} // namespace tarn::console
