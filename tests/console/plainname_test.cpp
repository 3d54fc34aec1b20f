#include <console/plainname.h>
#include <console/printing.h>

#include <QStringList>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarn::console {

class PlainName : public testing::TestWithParam<QString> { };

TEST_P(PlainName, MayBecomeALocalName)
{
    EXPECT_EQ(whyNotPlain(GetParam()), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Names, PlainName,
                         testing::ValuesIn(QStringLiteral("README.md,a,.hidden,a..b,...a,Zähler €.bin,two words,a-b,"
                                                          "CONFIG,COM,COM10,console.txt")
                                               .split(u',')
                                           + QStringList{QString{255, u'x'}}));

struct Refusal {
    QString name;
    std::string reason;
};

void PrintTo(const Refusal& value, std::ostream* stream)
{
    *stream << value.reason;
}

class NotPlainName : public testing::TestWithParam<Refusal> { };

TEST_P(NotPlainName, IsRefusedWithTheReason)
{
    EXPECT_EQ(whyNotPlain(GetParam().name), GetParam().reason);
}

/// A refusal of each of `names`, for the same reason.
void append(std::vector<Refusal>& refusals, const std::string& reason, const QStringList& names)
{
    for (const auto& name : names)
        refusals.push_back({name, reason});
}

std::vector<Refusal> refusals()
{
    std::vector<Refusal> all;
    const auto names = [](const char* list) { return QString::fromUtf8(list).split(u' '); };
    append(all, "it is empty", {QString{}});
    append(all, "it names a folder", names(". .."));
    append(all, "it contains a separator", names("/etc/passwd ../up a/b a\\b C:x a:stream"));
    append(all, "it contains one of < > \" | ? *", names("a<b a>b a\"b a|b a? *"));
    append(all, "it contains control characters",
           names("a\nb \x1b[2J a\x7f a\u009b a\u202Etxt.exe a\u2028") + QStringList{QChar{0}});
    append(all, "it starts with a hyphen", names("-rf"));
    append(all, "it ends with a dot or a blank", names("a. ...") + QStringList{QStringLiteral("a ")});
    append(all, "it is a reserved name",
           names("CON con Nul.txt AUX.tar.gz prn COM1 lpt9.log COM\u00b9 CONOUT$")
               + QStringList{QStringLiteral("con .txt")});
    append(all, "it is longer than 255 bytes", {QString{256, u'x'}, QString{128, u'ä'}});
    return all;
}

INSTANTIATE_TEST_SUITE_P(Names, NotPlainName, testing::ValuesIn(refusals()));

} // namespace tarn::console
