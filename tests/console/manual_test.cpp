#include <console/consoletest.h>

#include <QFile>

#include <gmock/gmock.h>

#include <algorithm>

namespace tarn::console {

using testing::UnorderedElementsAreArray;

class ManualTest : public ConsoleTest {
protected:
    ManualTest()
    {
        QFile file{QStringLiteral(TARN_MANUAL)};
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        m_lines = QString::fromUtf8(file.readAll()).split(QLatin1Char{'\n'});
    }

    /// What bash would be proposed after `words`.
    QStringList proposed(const QStringList& words)
    {
        const QStringList command{QStringLiteral("completion"), QStringLiteral("words"), QStringLiteral("--")};
        return QString::fromUtf8(run(command + words).out).split(QLatin1Char{'\n'}, Qt::SkipEmptyParts);
    }

    /// What follows `macro` on the lines of the manual that begin with it.
    [[nodiscard]] QStringList entries(const QString& macro) const
    {
        QStringList found;
        for (const auto& line : m_lines) {
            if (line.startsWith(macro))
                found.append(line.mid(macro.size()));
        }
        return found;
    }

private:
    QStringList m_lines;
};

TEST_F(ManualTest, DescribesEveryNounWithItsVerbsAndNoOthers)
{
    QStringList wanted;
    for (const auto& noun : proposed({QString{}}))
        wanted.append((QStringList{noun} + proposed({noun, QString{}})).join(QLatin1Char{' '}));
    ASSERT_GT(wanted.size(), 20);
    QStringList described;
    for (const auto& entry : entries(QStringLiteral(".It Cm "))) {
        auto words = entry.split(QLatin1Char{' '});
        words.removeAll(QStringLiteral("Cm"));
        words.removeAll(QStringLiteral("|"));
        std::sort(words.begin() + 1, words.end());
        described.append(words.join(QLatin1Char{' '}));
    }
    EXPECT_THAT(described, UnorderedElementsAreArray(wanted));
}

TEST_F(ManualTest, DescribesEveryGlobalOption)
{
    const auto options = proposed({QStringLiteral("-")});
    ASSERT_GT(options.size(), 8);
    QStringList described;
    for (const auto& entry : entries(QStringLiteral(".It Fl "))) {
        for (const auto& word : entry.split(QLatin1Char{' '})) {
            if (word.startsWith(QLatin1Char{'-'}))
                described.append(QLatin1Char{'-'} + word);
        }
    }
    EXPECT_THAT(described, UnorderedElementsAreArray(options));
}

} // namespace tarn::console
