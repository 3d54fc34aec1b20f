#pragma once

#include <console/consoletest.h>

namespace tarn::console {

/// What `files` does.
class FilesTest : public ConsoleTest {
protected:
    Outcome files(const QStringList& arguments, const QByteArray& input = {})
    {
        return run(QStringList{QStringLiteral("files")} + arguments, input);
    }

    Outcome filesJson(const QStringList& arguments)
    {
        return run(QStringList{QStringLiteral("--json"), QStringLiteral("files")} + arguments);
    }

    Outcome write(const QString& name) { return files({QStringLiteral("write"), name}); }
};

/// Contents that hold every byte.
inline QByteArray everyByte()
{
    QByteArray bytes;
    for (int i = 0; i < 4 * 256; ++i)
        bytes.append(static_cast<char>(i));
    return bytes;
}

} // namespace tarn::console
