#pragma once

#include <fuzz/fuzz.h>

#include <console/sourcefile.h>
#include <console/text.h>

#include <QByteArray>

#include <optional>

namespace tarn::fuzz {

/// A refusal of a calibration file says where in the file, what was found and what was expected, in a few words that
/// may stand on a terminal once they are escaped.
inline void requireExplanation(const console::Error& error)
{
    const auto& message = error.message();
    require(error.code() == console::ErrorCode::LocalFile, "a bad file is an error of a local file");
    require(message.starts_with("'a file', ") && message.contains(": found ") && message.contains(", expected "),
            "the message says where, what was found and what was expected");
    require(message.size() < 600, "the message is short");
    require(error.hint().contains("'tarn-service an example'"), "the hint names the example");
}

/// Reads `bytes` as a file. What is accepted has `isWithinLimits`, and is the same once it is written and read again.
template <class Read, class Write, class IsWithinLimits>
void readCalibrationFile(std::string_view bytes, Read read, Write write, IsWithinLimits isWithinLimits)
{
    static const console::SourceFile file{"a file", "an example"};
    const auto accepted = [read](const QByteArray& text) -> std::optional<decltype(read(file, text))> {
        try {
            return read(file, text);
        } catch (const console::Error& error) {
            requireExplanation(error);
            return std::nullopt;
        }
    };
    const auto data = accepted(QByteArray{bytes.data(), static_cast<qsizetype>(bytes.size())});
    if (!data)
        return;
    require(isWithinLimits(*data), "what was read is within the limits");
    require(accepted(QByteArray::fromStdString(write(*data))) == data, "it is the same when it is read again");
}

} // namespace tarn::fuzz
