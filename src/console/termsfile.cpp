#include <console/termsfile.h>

#include <console/jsonnode.h>

#include <array>
#include <cmath>
#include <set>
#include <utility>

namespace tarn::console {

namespace {

using vna::ErrorTerms;
using vna::ReflectionTerms;
using vna::TransmissionTerms;

constexpr std::string_view format = "tarn-system-terms/1";

template <class Terms>
using TraceOf = std::pair<std::string_view, std::complex<double> Terms::*>;

constexpr std::array<TraceOf<ReflectionTerms>, 3> reflectionTraces{
    {{"directivity", &ReflectionTerms::directivity},
     {"sourceMatch", &ReflectionTerms::sourceMatch},
     {"reflectionTracking", &ReflectionTerms::reflectionTracking}}};

constexpr std::array<TraceOf<TransmissionTerms>, 3> transmissionTraces{
    {{"loadMatch", &TransmissionTerms::loadMatch},
     {"transmissionTracking", &TransmissionTerms::transmissionTracking},
     {"isolation", &TransmissionTerms::isolation}}};

/// Reads the traces of one port, or pair of ports, whose terms at a point are `at(point)`.
template <class Traces, class At>
void readTraces(const JsonNode& node, const Traces& traces, std::size_t pointCount, At at)
{
    for (const auto& [name, term] : traces) {
        const auto values = node[name].elements("an array of complex numbers");
        if (values.size() != pointCount)
            throw node[name].bad(fmt::format("{} values", pointCount) + ", one for each frequency");
        for (std::size_t point = 0; point < pointCount; ++point)
            at(point).*term = values[point].complex();
    }
}

template <class Traces, class At>
std::string tracesText(const Traces& traces, std::size_t pointCount, At at)
{
    std::string text;
    for (const auto& [name, term] : traces) {
        std::vector<std::string> values;
        for (std::size_t point = 0; point < pointCount; ++point) {
            const auto value = at(point).*term;
            values.push_back(fmt::format("[{}, {}]", value.real(), value.imag()));
        }
        text += fmt::format(",\n      \"{}\": [{}]", name, fmt::join(values, ", "));
    }
    return text;
}

void readPorts(const std::vector<JsonNode>& nodes, ErrorTerms& terms)
{
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const auto& node = nodes[i];
        node.expectMembers({"port", "directivity", "sourceMatch", "reflectionTracking"});
        const auto port = i + 1;
        if (node["port"].count(1) != port)
            throw node["port"].bad(fmt::format("{}: the ports stand in order, the first is 1", port));
        readTraces(node, reflectionTraces, terms.frequencies().size(),
                   [&](std::size_t point) -> auto& { return terms.reflection(point, port); });
    }
}

void readPortPairs(const JsonNode& array, ErrorTerms& terms)
{
    const auto portCount = static_cast<std::uint32_t>(terms.portCount());
    const auto nodes = array.elements("an array of port pairs");
    std::set<std::pair<std::uint32_t, std::uint32_t>> seen;
    for (const auto& node : nodes) {
        node.expectMembers({"source", "receiver", "loadMatch", "transmissionTracking", "isolation"});
        const auto source = node["source"].count(1, portCount);
        const auto receiver = node["receiver"].count(1, portCount);
        if (source == receiver)
            throw node["receiver"].bad("another port than the source");
        if (!seen.emplace(source, receiver).second)
            throw node.bad(fmt::format("source {} with receiver {} again", source, receiver), "every pair once");
        readTraces(node, transmissionTraces, terms.frequencies().size(),
                   [&](std::size_t point) -> auto& { return terms.transmission(point, receiver, source); });
    }
    if (nodes.size() != std::size_t{portCount} * (portCount - 1))
        throw array.bad(
            fmt::format("{} pairs, one for each source and each other port as receiver", portCount * (portCount - 1)));
}

} // namespace

ErrorTerms readTermsFile(const SourceFile& file, const QByteArray& bytes)
{
    const auto root = JsonNode::parse(file, bytes, format);
    root.expectMembers({"format", "frequencies", "ports", "portPairs"});
    auto frequencies = root["frequencies"].ascendingFrequencies();
    const auto ports = root["ports"].elements("an array of ports");
    if (ports.empty() || ports.size() > mostPorts)
        throw root["ports"].bad(fmt::format("1 to {} ports", mostPorts));
    // Every complex number takes five bytes at least, so a file that is too short has not all of them. Seen before
    // memory is taken for them.
    const auto traceCount = 3 * ports.size() * ports.size(); // of the ports and of their pairs
    if (traceCount * frequencies.size() > static_cast<std::size_t>(bytes.size()) / 5)
        throw root.bad("fewer numbers than that",
                       fmt::format("{} complex numbers for each of {} frequencies", traceCount, frequencies.size()));
    ErrorTerms terms{ports.size(), std::move(frequencies)};
    readPorts(ports, terms);
    readPortPairs(root["portPairs"], terms);
    return terms;
}

std::string termsFileText(const ErrorTerms& terms)
{
    const auto pointCount = terms.frequencies().size();
    std::vector<std::string> ports;
    std::vector<std::string> pairs;
    for (std::size_t source = 1; source <= terms.portCount(); ++source) {
        ports.push_back(fmt::format("    {{\n      \"port\": {}{}\n    }}", source,
                                    tracesText(reflectionTraces, pointCount, [&](std::size_t point) -> const auto& {
                                        return terms.reflection(point, source);
                                    })));
        for (std::size_t receiver = 1; receiver <= terms.portCount(); ++receiver) {
            if (receiver == source)
                continue;
            pairs.push_back(
                fmt::format("    {{\n      \"source\": {},\n      \"receiver\": {}{}\n    }}", source, receiver,
                            tracesText(transmissionTraces, pointCount, [&](std::size_t point) -> const auto& {
                                return terms.transmission(point, receiver, source);
                            })));
        }
    }
    return fmt::format("{{\n  \"format\": \"{}\",\n  \"frequencies\": [{}],\n  \"ports\": [\n{}\n  ],\n"
                       "  \"portPairs\": [\n{}\n  ]\n}}\n",
                       format, fmt::join(terms.frequencies(), ", "), fmt::join(ports, ",\n"), fmt::join(pairs, ",\n"));
}

ErrorTerms exampleTerms(std::size_t portCount, std::vector<double> frequencies)
{
    ErrorTerms terms{portCount, std::move(frequencies)};
    const auto complex = [](double real, double imaginary) { // with few digits
        return std::complex{std::round(real * 1e6) / 1e6, std::round(imaginary * 1e6) / 1e6};
    };
    // The magnitudes are those of a good instrument.
    for (std::size_t point = 0; point < terms.frequencies().size(); ++point) {
        const auto ofPoint = 0.001 * static_cast<double>(point % 100);
        for (std::size_t source = 1; source <= portCount; ++source) {
            const auto ofPort = 0.01 * static_cast<double>(source);
            terms.reflection(point, source) = {.directivity = complex(0.01 + ofPoint, ofPort),
                                               .sourceMatch = complex(-0.1 - ofPoint, ofPort),
                                               .reflectionTracking = complex(0.9 - ofPoint, -ofPort)};
            for (std::size_t receiver = 1; receiver <= portCount; ++receiver) {
                const auto ofPair = ofPort + (0.0001 * static_cast<double>(receiver));
                if (receiver != source)
                    terms.transmission(point, receiver, source)
                        = {.loadMatch = complex(0.05 + ofPoint, -ofPair),
                           .transmissionTracking = complex(0.95 - ofPoint, ofPair),
                           .isolation = complex(0.001 * ofPoint, 0.01 * ofPair)};
            }
        }
    }
    return terms;
}

} // namespace tarn::console
