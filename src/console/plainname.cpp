#include <console/plainname.h>

#include <console/text.h>

#include <QList>
#include <QRegularExpression>

#include <algorithm>

namespace tarn::console {

namespace {

constexpr qsizetype longestName = 255; // bytes, on every common file system

/// The devices that Windows sees in every folder, whatever extension follows.
bool isDeviceName(const QString& name)
{
    static const QRegularExpression devices{
        QStringLiteral("^(CON|PRN|AUX|NUL|CLOCK\\$|CONIN\\$|CONOUT\\$|(COM|LPT)[0-9\u00b9\u00b2\u00b3]) *(\\..*)?$"),
        QRegularExpression::CaseInsensitiveOption};
    return devices.match(name).hasMatch();
}

bool containsUnprintable(const QString& name)
{
    return !std::ranges::all_of(name.toUcs4(), [](char32_t character) { return isPrintable(character); });
}

} // namespace

std::optional<std::string> whyNotPlain(const QString& name)
{
    if (name.isEmpty())
        return "it is empty";
    if (name == QLatin1StringView{"."} || name == QLatin1StringView{".."})
        return "it names a folder";
    if (std::ranges::any_of(name, [](QChar c) { return c == u'/' || c == u'\\' || c == u':'; }))
        return "it contains a separator";
    if (std::ranges::any_of(name, [](QChar c) { return QStringLiteral("<>\"|?*").contains(c); }))
        return "it contains one of < > \" | ? *";
    if (containsUnprintable(name))
        return "it contains control characters";
    if (name.startsWith(u'-'))
        return "it starts with a hyphen";
    if (name.endsWith(u'.') || name.endsWith(u' '))
        return "it ends with a dot or a blank";
    if (isDeviceName(name))
        return "it is a reserved name";
    if (name.toUtf8().size() > longestName)
        return "it is longer than 255 bytes";
    return std::nullopt;
}

} // namespace tarn::console
