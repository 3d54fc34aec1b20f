#pragma once

#include <console/commandtable.h>
#include <console/confirmation.h>
#include <console/session.h>

#include <QJsonObject>
#include <QString>

#include <cstdint>
#include <optional>
#include <string>

/// What the verbs of `files` do.
namespace tarn::console::filesverbs {

using SpaceInfo = FilesCommand::Control::SpaceInfo;

[[nodiscard]] QJsonObject json(const QString& name, std::uint64_t size);
[[nodiscard]] QJsonObject json(const SpaceInfo& space);
[[nodiscard]] std::string text(const SpaceInfo& space);

void listFiles(Session& session);
void showSpace(Session& session);

struct ReadOptions {
    std::string name;
    std::optional<std::string> path;
    bool overwrite = false;
};

void readFile(Session& session, const ReadOptions& options);

struct WriteOptions {
    std::string path;
    std::optional<std::string> name;
    bool overwrite = false;
};

void writeFile(Session& session, const WriteOptions& options);

struct DeleteOptions {
    std::string name;
    Confirmation confirmation;
};

void deleteFile(Session& session, const DeleteOptions& options);

} // namespace tarn::console::filesverbs
