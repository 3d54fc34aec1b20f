#include <console/jsonnode.h>

#include <console/output.h>
#include <console/text.h>

#include <QJsonDocument>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tarn::console {

namespace {

/// A text of the file, short enough for a message.
std::string inQuotes(const QString& text)
{
    return fmt::format("\"{}\"", shortened(text.toStdString(), 40));
}

/// What stands in the file, short enough for a message.
std::string described(const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::Null:
        return "null";
    case QJsonValue::Bool:
        return value.toBool() ? "true" : "false";
    case QJsonValue::Double:
        return fmt::format("{}", value.toDouble());
    case QJsonValue::String:
        return inQuotes(value.toString());
    case QJsonValue::Array:
        return fmt::format("an array of {} elements", value.toArray().size());
    case QJsonValue::Object:
        return "an object";
    case QJsonValue::Undefined:
        break;
    }
    return "nothing";
}

/// Where `offset` is, as an editor counts.
std::string place(const QByteArray& bytes, qsizetype offset)
{
    const auto before = bytes.first(std::clamp<qsizetype>(offset, 0, bytes.size()));
    return fmt::format("line {}, column {}", before.count('\n') + 1, before.size() - before.lastIndexOf('\n'));
}

} // namespace

JsonNode JsonNode::parse(const SourceFile& file, const QByteArray& bytes, std::string_view format)
{
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError)
        throw badFile(file, place(bytes, error.offset), fmt::format("a mistake ({})", error.errorString()), "JSON");
    JsonNode root{file, document.isObject() ? QJsonValue{document.object()} : QJsonValue{document.array()}, "$"};
    const auto found = root["format"];
    if (found.m_value != toJson(format))
        throw found.bad(fmt::format("\"{}\"", format));
    return root;
}

void JsonNode::expectMembers(std::initializer_list<std::string_view> names) const
{
    for (const auto name : names)
        static_cast<void>((*this)[name]);
    for (const auto& key : m_value.toObject().keys()) {
        if (std::ranges::find(names, key.toStdString()) == names.end())
            throw bad("a member " + inQuotes(key), fmt::format("only {}", fmt::join(names, ", ")));
    }
}

JsonNode JsonNode::operator[](std::string_view name) const
{
    if (!m_value.isObject())
        throw bad("an object");
    const auto object = m_value.toObject();
    const auto member = object.find(QLatin1StringView{name.data(), static_cast<qsizetype>(name.size())});
    if (member == object.end())
        throw bad(fmt::format("no member \"{}\"", name), "one");
    return {*m_file, *member, fmt::format("{}.{}", m_path, name)};
}

std::vector<JsonNode> JsonNode::elements(std::string_view expected) const
{
    if (!m_value.isArray())
        throw bad(expected);
    const auto array = m_value.toArray();
    std::vector<JsonNode> nodes;
    nodes.reserve(static_cast<std::size_t>(array.size()));
    for (qsizetype i = 0; i < array.size(); ++i)
        nodes.push_back(element(array, i));
    return nodes;
}

double JsonNode::number() const
{
    if (!m_value.isDouble() || !std::isfinite(m_value.toDouble()))
        throw bad("a finite number");
    return m_value.toDouble();
}

std::uint32_t JsonNode::count(std::uint32_t least, std::uint32_t most) const
{
    const auto number = m_value.toDouble(-1);
    if (!m_value.isDouble() || number != std::floor(number) || number < least || number > most)
        throw bad(fmt::format("a whole number from {} to {}", least, most));
    return static_cast<std::uint32_t>(number);
}

std::complex<double> JsonNode::complex() const
{
    const auto parts = m_value.toArray();
    if (!m_value.isArray() || parts.size() != 2)
        throw bad("a complex number: [real, imaginary]");
    return {element(parts, 0).number(), element(parts, 1).number()};
}

std::vector<double> JsonNode::ascendingFrequencies() const
{
    const auto nodes = elements("an array of frequencies in hertz");
    if (nodes.empty())
        throw bad("at least one frequency in hertz");
    std::vector<double> frequencies;
    frequencies.reserve(nodes.size());
    for (const auto& node : nodes) {
        const auto frequency = node.number();
        if (frequency < 0)
            throw node.bad("a frequency in hertz, not below 0");
        if (!frequencies.empty() && frequency <= frequencies.back())
            throw node.bad(fmt::format("a frequency above the one before it, {}", frequencies.back()));
        frequencies.push_back(frequency);
    }
    return frequencies;
}

Error JsonNode::bad(std::string_view expected) const
{
    return bad(described(m_value), expected);
}

Error JsonNode::bad(std::string_view found, std::string_view expected) const
{
    return badFile(*m_file, m_path, found, expected);
}

JsonNode JsonNode::element(const QJsonArray& array, qsizetype index) const
{
    return {*m_file, array.at(index), fmt::format("{}[{}]", m_path, index)};
}

} // namespace tarn::console
