#include <console/powerfile.h>

#include <console/csvtable.h>

#include <array>

namespace tarn::console {

namespace {

constexpr std::array<std::string_view, 9> powerColumns{
    "frequency_hz",          "nominal_power_dbm",   "measured_power_dbm",      "source_amplifier",  "source_attenuator",
    "source_attenuation_db", "receiver_attenuator", "receiver_attenuation_db", "receiver_power_dbm"};

PowerPoint point(const CsvRow& row)
{
    return {.frequency = row[0].number<double>(),
            .nominalPower = row[1].number<float>(),
            .measuredPower = row[2].number<float>(),
            .isSourceAmplifierOn = row[3].onOff(),
            .isSourceAttenuatorOn = row[4].onOff(),
            .sourceAttenuation = row[5].number<float>(),
            .isReceiverAttenuatorOn = row[6].onOff(),
            .receiverAttenuation = row[7].number<float>(),
            .receiverPower = row[8].number<float>()};
}

constexpr std::string_view onOff(bool on)
{
    return on ? "on" : "off";
}

} // namespace

std::vector<PowerPoint> readPowerFile(const SourceFile& file, const QByteArray& bytes)
{
    std::vector<PowerPoint> points;
    for (const auto& row : readCsv(file, bytes, powerColumns)) {
        const auto& next = points.emplace_back(point(row));
        if (next.frequency < 0)
            throw row[0].bad("a frequency in hertz, not below 0");
        if (points.size() > 1 && next.frequency < points[points.size() - 2].frequency)
            throw row[0].bad(
                fmt::format("a frequency not below the one before it, {}", points[points.size() - 2].frequency));
    }
    return points;
}

std::string powerFileText(std::span<const PowerPoint> points)
{
    auto text = fmt::format("# Factory power calibration: one row for each frequency and level\n{}\n",
                            fmt::join(powerColumns, ","));
    for (const auto& p : points)
        text += fmt::format("{},{},{},{},{},{},{},{},{}\n", p.frequency, p.nominalPower, p.measuredPower,
                            onOff(p.isSourceAmplifierOn), onOff(p.isSourceAttenuatorOn), p.sourceAttenuation,
                            onOff(p.isReceiverAttenuatorOn), p.receiverAttenuation, p.receiverPower);
    return text;
}

std::vector<PowerPoint> examplePowerPoints(std::span<const double> frequencies)
{
    std::vector<PowerPoint> points;
    for (const auto frequency : frequencies) {
        const auto deviation = 0.125F * static_cast<float>(points.size() % 8); // exact in binary, short in decimal
        points.push_back({.frequency = frequency,
                          .nominalPower = 0,
                          .measuredPower = 0.25F - deviation,
                          .isSourceAmplifierOn = true,
                          .isSourceAttenuatorOn = false,
                          .sourceAttenuation = 0,
                          .isReceiverAttenuatorOn = true,
                          .receiverAttenuation = 10.125F,
                          .receiverPower = -10 - deviation});
        points.push_back({.frequency = frequency,
                          .nominalPower = -20,
                          .measuredPower = -20.25F - deviation,
                          .isSourceAmplifierOn = false,
                          .isSourceAttenuatorOn = true,
                          .sourceAttenuation = 20.25F,
                          .isReceiverAttenuatorOn = false,
                          .receiverAttenuation = 0,
                          .receiverPower = -20.5F - deviation});
    }
    return points;
}

} // namespace tarn::console
