#include <console/csvtable.h>

#include <console/text.h>

#include <QList>

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <system_error>

namespace tarn::console {

namespace {

/// The numbered lines of a file that say something.
struct Line {
    std::size_t number;
    std::string text;
};

/// What stands in the file, short enough for a message.
std::string inQuotes(std::string_view text)
{
    return fmt::format("'{}'", shortened(text, 80));
}

std::vector<Line> linesOf(const QByteArray& bytes)
{
    static constexpr QByteArrayView byteOrderMark{"\xEF\xBB\xBF"}; // spreadsheets write one
    std::vector<Line> lines;
    std::size_t number = 0;
    for (const auto& raw : bytes.mid(bytes.startsWith(byteOrderMark) ? byteOrderMark.size() : 0).split('\n')) {
        ++number;
        auto text = raw.trimmed().toStdString();
        if (!text.empty() && !text.starts_with('#'))
            lines.push_back({number, std::move(text)});
    }
    return lines;
}

std::vector<std::string> fieldsOf(const Line& line)
{
    std::vector<std::string> fields;
    for (const auto& field : QByteArray::fromStdString(line.text).split(','))
        fields.push_back(field.trimmed().toStdString());
    return fields;
}

std::string place(const Line& line)
{
    return fmt::format("line {}", line.number);
}

} // namespace

template <class Number>
Number CsvField::number() const
{
    Number value{};
    const auto* const end = m_text.data() + m_text.size();
    const auto [rest, error] = std::from_chars(m_text.data(), end, value);
    if (error == std::errc::result_out_of_range && rest == end)
        throw bad(fmt::format("a number of {} bits: 0, or from {} to {} apart from its sign", 8 * sizeof(Number),
                              std::numeric_limits<Number>::denorm_min(), std::numeric_limits<Number>::max()));
    if (error != std::errc{} || rest != end || !std::isfinite(value))
        throw bad("a finite number");
    return value;
}

template double CsvField::number<double>() const;
template float CsvField::number<float>() const;

bool CsvField::onOff() const
{
    if (m_text != "on" && m_text != "off")
        throw bad("'on' or 'off'");
    return m_text == "on";
}

Error CsvField::bad(std::string_view expected) const
{
    return badFile(*m_file, fmt::format("line {}, column {}", m_line, m_column), inQuotes(m_text), expected);
}

std::vector<CsvRow> readCsv(const SourceFile& file, const QByteArray& bytes, std::span<const std::string_view> columns)
{
    const auto header = fmt::format("{}", fmt::join(columns, ","));
    std::vector<CsvRow> rows;
    std::optional<std::string> found;
    for (const auto& line : linesOf(bytes)) {
        const auto fields = fieldsOf(line);
        if (!found) {
            found = fmt::format("{}", fmt::join(fields, ","));
            if (*found != header)
                throw badFile(file, place(line), inQuotes(line.text), fmt::format("the header '{}'", header));
            continue;
        }
        if (fields.size() != columns.size())
            throw badFile(file, place(line), fmt::format("{} fields", fields.size()),
                          fmt::format("{}, separated by commas", columns.size()));
        auto& row = rows.emplace_back();
        for (std::size_t i = 0; i < fields.size(); ++i)
            row.emplace_back(file, line.number, columns[i], fields[i]);
    }
    if (rows.empty())
        throw badFile(file, "the last line", found ? "no row" : "no header",
                      found ? "at least one" : fmt::format("the header '{}'", header));
    return rows;
}

} // namespace tarn::console
