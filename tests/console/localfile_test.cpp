#include <console/error.h>
#include <console/localfile.h>
#include <console/platform.h>
#include <console/printing.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

#include <sys/stat.h>
#include <unistd.h>

namespace {

unsigned modeAtFirst = 0; // of the last file whose permissions were changed

} // namespace

// The linker sends the program's own calls here (--wrap).
extern "C" {
int __real_fchmod(int file, mode_t mode); // NOLINT
int __wrap_fchmod(int file, mode_t mode); // NOLINT

int __wrap_fchmod(int file, mode_t mode) // NOLINT
{
    struct stat status{};
    if (::fstat(file, &status) == 0)
        modeAtFirst = status.st_mode & 0777U;
    return __real_fchmod(file, mode);
}
}

namespace tarn::console {

class LocalFile : public testing::Test {
protected:
    [[nodiscard]] std::string path(const char* name) const
    {
        return m_folder.filePath(QString::fromUtf8(name)).toStdString();
    }

    void put(const char* name, const QByteArray& contents) const
    {
        QFile file{QString::fromStdString(path(name))};
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(contents), contents.size());
    }

    [[nodiscard]] QByteArray get(const char* name) const
    {
        QFile file{QString::fromStdString(path(name))};
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        return file.readAll();
    }

    /// Everything in the folder: shows that no temporary file stays behind.
    [[nodiscard]] QStringList names() const
    {
        return QDir{m_folder.path()}.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                               QDir::Name);
    }

    /// The code of the error with which writing ends.
    [[nodiscard]] std::optional<ErrorCode> refusal(const std::string& path, bool overwrite) const
    {
        try {
            writeLocalFile(path, "new", overwrite);
        } catch (const Error& error) {
            EXPECT_FALSE(error.hint().empty());
            return error.code();
        }
        return std::nullopt;
    }

    QTemporaryDir m_folder;
};

TEST_F(LocalFile, IsWrittenWholeAndLeavesNothingElseBehind)
{
    EXPECT_EQ(writeLocalFile(path("new"), QByteArray{"a\0b", 3}, false), LocalWrite::Written);
    EXPECT_EQ(get("new"), (QByteArray{"a\0b", 3}));
    EXPECT_EQ(names(), QStringList{QStringLiteral("new")});
}

TEST_F(LocalFile, IsNotReplacedWithoutBeingAsked)
{
    put("old", "old");
    EXPECT_EQ(refusal(path("old"), false), ErrorCode::Refused);
    EXPECT_EQ(get("old"), "old");
    EXPECT_EQ(names(), QStringList{QStringLiteral("old")});
}

TEST_F(LocalFile, IsLeftAloneWhenItHasTheContentsAlready)
{
    put("same", "new");
    EXPECT_EQ(writeLocalFile(path("same"), "new", false), LocalWrite::Identical);
    put("longer", "newer");
    EXPECT_EQ(refusal(path("longer"), false), ErrorCode::Refused);
    put("shorter", "ne");
    EXPECT_EQ(refusal(path("shorter"), false), ErrorCode::Refused);
}

TEST_F(LocalFile, IsReplacedOnRequestAndKeepsItsPermissions)
{
    put("old", "old");
    ASSERT_EQ(::chmod(path("old").c_str(), 0600), 0);
    EXPECT_EQ(writeLocalFile(path("old"), "new", true), LocalWrite::Written);
    EXPECT_EQ(get("old"), "new");
    struct stat status{};
    ASSERT_EQ(::stat(path("old").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    EXPECT_EQ(names(), QStringList{QStringLiteral("old")});
}

TEST_F(LocalFile, IsNobodyElsesBeforeItHasThePermissionsOfTheFileThatItReplaces)
{
    put("old", "old");
    const auto umask = ::umask(0);
    EXPECT_EQ(writeLocalFile(path("old"), "new", true), LocalWrite::Written);
    ::umask(umask);
    EXPECT_EQ(modeAtFirst, 0600U);
}

TEST_F(LocalFile, IsNeverWrittenThroughALink)
{
    put("target", "target");
    ASSERT_EQ(::symlink("target", path("link").c_str()), 0);
    ASSERT_EQ(::symlink("missing", path("dangling").c_str()), 0);
    for (const bool overwrite : {false, true}) {
        EXPECT_EQ(refusal(path("link"), overwrite), ErrorCode::Refused);
        EXPECT_EQ(refusal(path("dangling"), overwrite), ErrorCode::Refused);
    }
    EXPECT_EQ(get("target"), "target");
    EXPECT_TRUE(std::filesystem::is_symlink(path("link")));
    EXPECT_FALSE(std::filesystem::exists(path("missing")));
}

TEST_F(LocalFile, DoesNotFollowALinkThatAppearsAtTheLastMoment)
{
    put("target", "target");
    ASSERT_EQ(::symlink("target", path("link").c_str()), 0);
    EXPECT_EQ(platform::writeFile(path("link"), "new", platform::Existing::Keep), std::errc::file_exists);
    EXPECT_EQ(get("target"), "target");
    EXPECT_FALSE(platform::writeFile(path("link"), "new", platform::Existing::Replace));
    EXPECT_EQ(get("target"), "target");
    EXPECT_FALSE(std::filesystem::is_symlink(path("link")));
    EXPECT_EQ(get("link"), "new");
}

TEST_F(LocalFile, DoesNotReplaceAFileThatAppearsAtTheLastMoment)
{
    put("old", "old");
    EXPECT_EQ(platform::writeFile(path("old"), "new", platform::Existing::Keep), std::errc::file_exists);
    EXPECT_EQ(get("old"), "old");
    EXPECT_EQ(names(), QStringList{QStringLiteral("old")});
}

TEST_F(LocalFile, IsNeverADeviceOrAPipe)
{
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(refusal(path("pipe"), true), ErrorCode::Refused);
    EXPECT_EQ(refusal("/dev/null", true), ErrorCode::Refused);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST_F(LocalFile, CannotBeAFolderOrInAFolderThatIsNotThere)
{
    EXPECT_EQ(refusal(m_folder.path().toStdString(), true), ErrorCode::LocalFile);
    EXPECT_EQ(refusal(path("missing/new"), false), ErrorCode::LocalFile);
}

TEST_F(LocalFile, LeavesNoTemporaryFileBehindWhenItCannotBeWritten)
{
    // The file system refuses the name only after the temporary file has been written.
    EXPECT_EQ(refusal(path("x") + std::string(300, 'x'), false), ErrorCode::LocalFile);
    EXPECT_EQ(names(), QStringList{});
}

TEST_F(LocalFile, ThatCannotBeReadIsALocalFileError)
{
    for (const auto& name : {path("missing"), m_folder.path().toStdString()}) {
        try {
            static_cast<void>(readLocalFile(name));
            ADD_FAILURE() << name;
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), ErrorCode::LocalFile);
            EXPECT_NE(error.message().find(name), std::string::npos);
        }
    }
}

TEST_F(LocalFile, IsReadUpToALimitOnly)
{
    put("ten", "0123456789");
    EXPECT_EQ(readLocalFile(path("ten"), 10), QByteArray{"0123456789"});
    EXPECT_EQ(readLocalImage(path("ten"), 10).size(), 10U);
    for (const auto& name : {path("ten"), std::string{"/dev/zero"}}) {
        EXPECT_THROW(static_cast<void>(readLocalFile(name, 9)), Error) << name;
        EXPECT_THROW(static_cast<void>(readLocalImage(name, 9)), Error) << name;
    }
}

} // namespace tarn::console
