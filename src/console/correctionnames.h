#pragma once

#include <devices/factorycorrection.h>

#include <QJsonArray>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::console {

/// The name of a correction on the command line: "port-extension".
[[nodiscard]] std::string_view correctionName(devices::FactoryCorrection correction);

/// The correction of that name.
[[nodiscard]] std::optional<devices::FactoryCorrection> findCorrection(std::string_view name);

/// All names, separated by commas.
[[nodiscard]] std::string correctionNames();

/// The names of some corrections, for machines and for people.
struct NameList {
    QJsonArray json;
    std::string text;
};

[[nodiscard]] NameList namesOf(const std::vector<devices::FactoryCorrection>& corrections);

} // namespace tarn::console
