#include <console/filesverbs.h>

#include <console/filerequests.h>
#include <console/localfile.h>
#include <console/plainname.h>
#include <console/platform.h>
#include <console/text.h>

#include <QJsonArray>

#include <algorithm>

namespace tarn::console::filesverbs {

namespace {

std::uint64_t sizeOf(const QByteArray& contents)
{
    return static_cast<std::uint64_t>(contents.size());
}

/// A name on the instrument as the user spells it.
QString nameFrom(const std::string& argument)
{
    auto name = decoded(argument);
    if (!name)
        throw Error{ErrorCode::Usage, fmt::format("the name '{}' {}", argument, name.error()),
                    "spell it in UTF-8, without a byte order mark; 'files write' takes a name with --as NAME"};
    return *std::move(name);
}

/// Where the file goes. Without a path of the user's choice it is the file's own name, which comes
/// from the instrument and is therefore trusted only if it is a plain one.
std::string destination(const ReadOptions& options, const QString& name)
{
    if (options.path)
        return *options.path;
    if (const auto reason = whyNotPlain(name))
        throw Error{ErrorCode::Refused, fmt::format("'{}' is not taken as the name of a file here: {}", name, *reason),
                    "choose a name yourself with -o PATH"};
    return name.toStdString();
}

/// Whether `contents` are lines of UTF-8 that cannot steer a terminal; a carriage return may only end
/// a line, for it overwrites one otherwise.
bool isPlainText(const QByteArray& contents)
{
    const auto text = decoded({contents.constData(), static_cast<std::size_t>(contents.size())});
    if (!text)
        return false;
    auto lines = *text;
    lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return std::ranges::all_of(lines.toUcs4(), [](char32_t c) { return isPrintable(c) || c == U'\n' || c == U'\t'; });
}

/// Standard output gets the bytes as they are; a terminal only those that cannot steer it.
void writeToOutput(const Output& output, const QByteArray& contents)
{
    if (platform::isTerminal(platform::Stream::Output) && !isPlainText(contents))
        throw Error{ErrorCode::Refused, "the file is not plain text, and standard output is a terminal",
                    "send it elsewhere with '| ...', '> FILE' or -o PATH"};
    output.data({contents.constData(), static_cast<std::size_t>(contents.size())});
}

QString nameOnInstrument(const WriteOptions& options)
{
    const auto name = nameFrom(options.name.value_or(options.path.substr(options.path.rfind('/') + 1)));
    if (name.isEmpty() || (!options.name && name == QLatin1StringView{"-"}))
        throw Error{ErrorCode::Usage, "the file needs a name on the instrument", "give it one with --as NAME"};
    return name;
}

} // namespace

QJsonObject json(const QString& name, std::uint64_t size)
{
    return {{QStringLiteral("name"), name}, {QStringLiteral("size"), toJson(size)}};
}

QJsonObject json(const SpaceInfo& space)
{
    return {{QStringLiteral("total"), toJson(space.total)},
            {QStringLiteral("used"), toJson(space.used)},
            {QStringLiteral("free"), toJson(space.free)}};
}

std::string text(const SpaceInfo& space)
{
    return fmt::format("{} bytes in all, {} used, {} free", space.total, space.used, space.free);
}

void listFiles(Session& session)
{
    QJsonArray files;
    std::string lines;
    for (const auto& file : filerequests::list(session.instrument())) {
        files.append(json(file.name, file.size));
        lines += fmt::format("{:>10}  {}\n", file.size, escaped(file.name));
    }
    session.output().result(files, lines);
    if (files.isEmpty() && !session.output().isJson())
        session.output().message("the file memory holds no files");
}

void showSpace(Session& session)
{
    const auto found = filerequests::space(session.instrument());
    session.output().result(json(found), text(found));
}

void readFile(Session& session, const ReadOptions& options)
{
    const auto& output = session.output();
    const bool toOutput = options.path == "-";
    if (toOutput && output.isJson())
        throw Error{ErrorCode::Usage, "--json and '-o -' both want standard output", "leave one of them out"};
    const auto file = filerequests::findOrThrow(session.instrument(), nameFrom(options.name));
    const auto path = destination(options, file.name);
    const auto contents = filerequests::contentsOf(session.instrument(), file);
    if (toOutput)
        return writeToOutput(output, contents);

    const bool identical = writeLocalFile(path, contents, options.overwrite) == LocalWrite::Identical;
    auto result = json(file.name, sizeOf(contents));
    result.insert(QStringLiteral("path"), toJson(path));
    result.insert(QStringLiteral("status"), identical ? QStringLiteral("identical") : QStringLiteral("written"));
    output.done(result,
                identical ? fmt::format("'{}' is there already, identical ({} bytes)", path, contents.size())
                          : fmt::format("read '{}' into '{}' ({} bytes)", file.name, path, contents.size()));
}

void writeFile(Session& session, const WriteOptions& options)
{
    const auto name = nameOnInstrument(options);
    const auto contents = readLocalFile(options.path);
    const auto& instrument = session.instrument();
    const auto old = filerequests::find(instrument, name);
    const bool identical = old && filerequests::contentsOf(instrument, *old) == contents;
    if (old && !identical && !options.overwrite)
        throw Error{ErrorCode::Refused,
                    fmt::format("the instrument has a file '{}' with other contents; it is as it was", name),
                    "--overwrite replaces it, --as NAME writes another one"};
    if (!identical) {
        session.output().expectChange();
        filerequests::write(instrument, name, contents);
    }

    auto result = json(name, sizeOf(contents));
    result.insert(QStringLiteral("status"), identical ? QStringLiteral("identical") : QStringLiteral("written"));
    session.output().done(result,
                          identical
                              ? fmt::format("'{}' is there already, identical ({} bytes)", name, contents.size())
                              : fmt::format("wrote '{}' ({} bytes), read back and compared", name, contents.size()));
}

void deleteFile(Session& session, const DeleteOptions& options)
{
    const auto& output = session.output();
    const auto file = filerequests::findOrThrow(session.instrument(), nameFrom(options.name));
    options.confirmation.obtain(output, fmt::format("deleting '{}'", file.name),
                                fmt::format("Delete '{}' ({} bytes) from the instrument?", file.name, file.size));
    output.expectChange();
    filerequests::remove(session.instrument(), file);
    output.done(json(file.name, file.size), fmt::format("deleted '{}'", file.name));
}

} // namespace tarn::console::filesverbs
