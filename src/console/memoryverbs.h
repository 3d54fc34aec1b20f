#pragma once

#include <console/confirmation.h>
#include <console/session.h>

#include <cstddef>
#include <string>

/// What the verbs of `memory` do.
namespace tarn::console::memoryverbs {

struct ReadOptions {
    std::string path;
    bool overwrite = false;
};

void readMemory(Session& session, const ReadOptions& options);

struct WriteOptions {
    std::string path;
    Confirmation confirmation;
};

void writeMemory(Session& session, const WriteOptions& options);
void eraseMemory(Session& session, const Confirmation& confirmation);
void checkMemory(Session& session);

/// The size of the image that the memory holds, without a word on the way.
[[nodiscard]] std::size_t imageSize(const Instrument& instrument);

/// Has the memory checked, without a word on the way; throws `Error` when it does not match its
/// checksums.
void expectIntact(const Instrument& instrument);

} // namespace tarn::console::memoryverbs
