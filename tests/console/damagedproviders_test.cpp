// Provider plug-ins that are none, or not whole. Whatever is wrong with them, the program says so and goes on.

#include <console/consoletest.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QProcess>

#include <gmock/gmock.h>

#include <array>
#include <csignal>
#include <cstddef>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarn::console {

using testing::HasSubstr;

class DamagedProviders : public ConsoleTest {
protected:
    DamagedProviders()
    {
        setVariable(QStringLiteral("TARN_SERVICE_PROVIDERS"), path(QString{}));
        QFile file{QStringLiteral(TARN_TEST_PROVIDERS "/awkward_provider/libawkward_provider.so")};
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        whole = file.readAll();
    }

    /// Writes a plug-in that is whole but for what `damage` does to it.
    void write(const QString& name, const std::function<void(QByteArray&)>& damage)
    {
        auto contents = whole;
        damage(contents);
        writeLocal(name, contents);
    }

    /// For a plug-in that is whole.
    void writeChecksum(const QString& name)
    {
        writeLocal(name + QStringLiteral(".sha256"),
                   QCryptographicHash::hash(whole, QCryptographicHash::Sha256).toHex() + "  " + name.toUtf8() + '\n');
    }

    /// A run to its end; the reasons for which files were refused, and the number of those that were not.
    QJsonArray refused()
    {
        const auto outcome = run({QStringLiteral("--json"), QStringLiteral("providers")});
        EXPECT_EQ(outcome.exitCode, 0);
        const auto result = outcome.result().toObject();
        loaded = result.value(QStringLiteral("providers")).toArray().size();
        return result.value(QStringLiteral("refused")).toArray();
    }

    static std::string reasonOf(const QJsonValue& file)
    {
        return file.toObject().value(QStringLiteral("reason")).toString().toStdString();
    }

    /// Why a whole plug-in is refused that the variable makes misbehave.
    std::string refusalOf(const QString& variable, const QString& value)
    {
        setVariable(variable, value);
        writeLocal(QStringLiteral("libawkward.so"), whole);
        const auto files = refused();
        EXPECT_EQ(loaded, 0);
        EXPECT_EQ(files.size(), 1);
        return reasonOf(files.first());
    }

    QByteArray whole;
    qsizetype loaded = 0;
};

/// Changes the first `from` in the file.
std::function<void(QByteArray&)> replaced(const QByteArray& from, const QByteArray& to)
{
    return [=](QByteArray& contents) {
        const auto at = contents.indexOf(from);
        ASSERT_GE(at, 0) << from.toStdString();
        contents.replace(at, to.size(), to);
    };
}

std::function<void(QByteArray&)> withByte(qsizetype at, char value)
{
    return [=](QByteArray& contents) { contents[at] = value; };
}

bool hasChild(qint64 parent)
{
    for (const auto& entry : QDir{QStringLiteral("/proc")}.entryList(QDir::Dirs)) {
        QFile status{QStringLiteral("/proc/%1/status").arg(entry)};
        if (status.open(QIODevice::ReadOnly)
            && status.readAll().contains("\nPPid:\t" + QByteArray::number(parent) + '\n'))
            return true;
    }
    return false;
}

TEST_F(DamagedProviders, AForeignFileIsRefusedWithTheReason)
{
    const QByteArray metaData{"qt-project!\0\1", 13};
    const struct {
        const char* what;
        std::function<void(QByteArray&)> damage;
        const char* reason;
    } cases[] = {
        {"nothing", [](QByteArray& contents) { contents.clear(); }, "not a Qt plug-in"},
        {"text", [](QByteArray& contents) { contents = "not a library\n"; }, "not a Qt plug-in"},
        {"zeros", [](QByteArray& contents) { contents.fill('\0'); }, "not a Qt plug-in"},
        {"no plug-in", replaced(metaData, "qt-project?"), "not a Qt plug-in"},
        {"other word size", withByte(4, 1), "not a Qt plug-in"},
        {"other byte order", withByte(5, 2), "not a Qt plug-in"},
        {"other machine", withByte(18, '\xf3'), "not a Qt plug-in"},
        {"other Qt", replaced(metaData + '\6', metaData + '\5'), "incompatible Qt library"},
        {"other interface", replaced("tarn.DeviceProvider/2", "tarn.DeviceProvider/1"), "'tarn.DeviceProvider/1'"},
        {"missing function", replaced("_ZN7QObjectD2Ev", "_ZN7QObjectD9Ev"), "_ZN7QObjectD9Ev"},
    };
    for (const auto& [what, damage, reason] : cases) {
        SCOPED_TRACE(what);
        write(QStringLiteral("libforeign.so"), damage);
        const auto files = refused();
        EXPECT_EQ(loaded, 0);
        ASSERT_EQ(files.size(), 1);
        EXPECT_THAT(reasonOf(files.first()), HasSubstr(reason));
    }
}

TEST_F(DamagedProviders, WhatIsNoFileIsRefused)
{
    ASSERT_TRUE(QDir{path(QString{})}.mkdir(QStringLiteral("libfolder.so")));
    ASSERT_TRUE(QFile::link(QStringLiteral("nowhere"), path(QStringLiteral("liblink.so"))));
    ASSERT_EQ(::mkfifo(path(QStringLiteral("libpipe.so")).toUtf8().constData(), 0600), 0);
    const auto files = refused();
    EXPECT_EQ(files.size(), 3);
    for (const auto file : files)
        EXPECT_EQ(reasonOf(file), "it is not a file");
}

TEST_F(DamagedProviders, AFileThatWasCutOffIsRefusedWhereverThatWas)
{
    constexpr qsizetype parts = 32;
    for (qsizetype part = 0; part != parts; ++part)
        write(QStringLiteral("libcut%1.so").arg(part),
              [=](QByteArray& contents) { contents.truncate(contents.size() * part / parts); });
    write(QStringLiteral("liblast.so"), [](QByteArray& contents) { contents.chop(1); });
    const auto files = refused();
    EXPECT_EQ(loaded, 0);
    EXPECT_EQ(files.size(), parts + 1);
    for (const auto file : files)
        EXPECT_THAT(reasonOf(file), testing::AnyOf(HasSubstr("not a Qt plug-in"), HasSubstr("its end is missing")));
}

TEST_F(DamagedProviders, AFileThatDoesNotAgreeWithItsChecksumIsRefusedWhicheverBitsWereTurnedOver)
{
    constexpr unsigned int count = 100;
    const auto checksum = QCryptographicHash::hash(whole, QCryptographicHash::Sha256).toHex() + "  libwhole.so\n";
    for (unsigned int seed = 0; seed != count; ++seed) {
        const auto name = QStringLiteral("libturned%1.so").arg(seed);
        write(name, [seed](QByteArray& contents) {
            std::mt19937 random{seed};
            // in the headers, or anywhere
            const auto size = seed % 2 == 0 ? std::size_t{4096} : static_cast<std::size_t>(contents.size());
            for (unsigned int i = 0; i <= seed % 8; ++i) {
                auto& byte = contents[static_cast<qsizetype>(random() % size)];
                byte = static_cast<char>(byte ^ 1 << random() % 8);
            }
        });
        writeLocal(name + QStringLiteral(".sha256"), checksum);
    }
    writeLocal(QStringLiteral("libwhole.so"), whole);
    writeLocal(QStringLiteral("libwhole.so.sha256"), checksum);
    const auto files = refused();
    EXPECT_EQ(loaded, 1);
    EXPECT_EQ(files.size(), count);
    for (const auto file : files)
        EXPECT_THAT(
            reasonOf(file),
            testing::AnyOf(HasSubstr("its checksum"), HasSubstr("not a Qt plug-in"), HasSubstr("it is a plug-in for")));
}

TEST_F(DamagedProviders, AFileWhoseLoadingDoesNotComeToAnEndIsRefused)
{
    EXPECT_EQ(refusalOf(QStringLiteral("AWKWARD_STUCK"), QStringLiteral("name")), "loading it does not come to an end");
}

TEST_F(DamagedProviders, AFileWhoseLoadingEndsTheProgramWithoutAnErrorIsRefused)
{
    EXPECT_EQ(refusalOf(QStringLiteral("AWKWARD_EXITS"), QStringLiteral("1")),
              "it is damaged: loading it ends the program");
}

TEST_F(DamagedProviders, FilesAreTriedAlsoWhereTheEndsOfProcessesAreIgnored)
{
    writeLocal(QStringLiteral("libwhole.so"), whole);
    const auto said = [this] {
        QProcess process;
        prepare(process, {QStringLiteral("providers")});
        process.setChildProcessModifier([] { std::signal(SIGCHLD, SIG_IGN); });
        process.start();
        return finish(process).err.toStdString();
    };
    EXPECT_EQ(said(), "");
    setVariable(QStringLiteral("AWKWARD_EXITS"), QStringLiteral("1"));
    EXPECT_THAT(said(), HasSubstr("loading it ends the program"));
}

TEST_F(DamagedProviders, AProviderThatThrowsIsRefusedAndNoOther)
{
    setVariable(QStringLiteral("AWKWARD_THROWS"), QStringLiteral("1"));
    writeLocal(QStringLiteral("libtried.so"), whole);
    writeLocal(QStringLiteral("libtrusted.so"), whole);
    writeChecksum(QStringLiteral("libtrusted.so"));
    const auto files = refused();
    ASSERT_EQ(files.size(), 2);
    EXPECT_EQ(reasonOf(files.first()), "it is damaged: loading it ends the program");
    EXPECT_EQ(reasonOf(files.last()), "it fails when it is asked what it is: nameless");
}

TEST_F(DamagedProviders, AFileThatAgreesWithItsChecksumIsNotTriedButLoadedInTime)
{
    writeLocal(QStringLiteral("libstuck.so"), whole);
    writeChecksum(QStringLiteral("libstuck.so"));
    for (const auto* const call : {"name", "description"}) {
        setVariable(QStringLiteral("AWKWARD_STUCK"), QString::fromUtf8(call));
        const auto outcome = run(words("--timeout 300ms providers"));
        EXPECT_EQ(outcome.exitCode, 5) << call;
        EXPECT_THAT(outcome.err.toStdString(), HasSubstr("did not answer in time")) << call;
    }
}

TEST_F(DamagedProviders, AChecksumThatIsNoFileIsNone)
{
    writeLocal(QStringLiteral("libwhole.so"), whole);
    ASSERT_EQ(::mkfifo(path(QStringLiteral("libwhole.so.sha256")).toUtf8().constData(), 0600), 0);
    EXPECT_EQ(refused().size(), 0);
    EXPECT_EQ(loaded, 1);
}

TEST_F(DamagedProviders, AFileThatIsBeingTriedIsGivenUpWithTheProgram)
{
    setVariable(QStringLiteral("AWKWARD_STUCK"), QStringLiteral("name"));
    writeLocal(QStringLiteral("libstuck.so"), whole);
    std::array<int, 2> pipe{}; // has a writer as long as one of the processes lives
    ASSERT_EQ(::pipe(pipe.data()), 0);
    QProcess process;
    prepare(process, words("providers"));
    process.start();
    ASSERT_TRUE(process.waitForStarted());
    ::close(pipe[1]);
    while (!hasChild(process.processId()))
        ASSERT_FALSE(process.waitForFinished(10));
    interrupt(process);
    EXPECT_EQ(finish(process).exitCode, 130);
    pollfd end{pipe[0], POLLIN, 0};
    EXPECT_EQ(::poll(&end, 1, 5'000), 1);
    ::close(pipe[0]);
}

TEST_F(DamagedProviders, AFileWhoseCodeEndsTheProgramIsRefusedWithoutThat)
{
    write(QStringLiteral("libholed.so"), [](QByteArray& contents) {
        const auto quarter = contents.size() / 4;
        contents.replace(quarter, 2 * quarter, QByteArray(2 * quarter, '\xcc'));
    });
    const auto files = refused();
    EXPECT_EQ(loaded, 0);
    ASSERT_EQ(files.size(), 1);
    EXPECT_THAT(reasonOf(files.first()), HasSubstr("ends the program"));
}

} // namespace tarn::console
