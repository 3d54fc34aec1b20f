#pragma once

#include <simulator/childprocess.h>
#include <simulator/manualinstrument.h>
#include <simulator/open.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <map>
#include <memory>
#include <stdexcept>

namespace tarn::simulator::test {

/// Instruments with a state folder of the test's own.
class StateTest : public testing::Test {
protected:
    [[nodiscard]] QString folder() const { return m_root.filePath(QStringLiteral("simulator/sim")); }
    [[nodiscard]] QString file(const char* name) const { return QDir{folder()}.filePath(QString::fromUtf8(name)); }

    [[nodiscard]] std::shared_ptr<sdk::IVna> open(const char* address = "") const
    {
        auto device = simulator::open({QString::fromUtf8(address), m_root.path()});
        if (!device) {
            ADD_FAILURE() << device.error().message.toStdString();
            throw std::runtime_error{"no instrument"};
        }
        return *device;
    }

    [[nodiscard]] provider::OpenError refused(const char* address = "") const
    {
        const auto device = simulator::open({QString::fromUtf8(address), m_root.path()});
        return device ? provider::OpenError{} : device.error();
    }

    static std::shared_ptr<Files> files(sdk::IVna& device) { return device.control<Files>(Files::key); }
    static std::shared_ptr<Leakage> leakage(sdk::IVna& device) { return device.control<Leakage>(Leakage::key); }

    template <class Interface>
    static std::shared_ptr<Interface> control(sdk::IVna& device)
    {
        return device.control<Interface>(Interface::key);
    }

    void writeOnce(const char* name, const Bytes& contents) const
    {
        const auto device = open();
        ASSERT_EQ(write(*files(*device), name, contents), std::error_code{});
    }

    [[nodiscard]] QStringList blocks() const { return QDir{file("blocks")}.entryList(QDir::Files); }

    static QByteArray contentsOf(const QString& path)
    {
        QFile file{path};
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
        return file.readAll();
    }

    static void replace(const QString& path, const QByteArray& contents)
    {
        QFile file{path};
        ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
        ASSERT_EQ(file.write(contents), contents.size());
    }

    /// Every file below the state folder with its contents.
    [[nodiscard]] std::map<QString, QByteArray> everything() const
    {
        std::map<QString, QByteArray> all;
        for (QDirIterator it{m_root.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories}; it.hasNext();) {
            const auto path = it.next();
            all.emplace(path, contentsOf(path));
        }
        return all;
    }

    /// The program that works with the state in a process of its own.
    [[nodiscard]] ChildProcess writer() const { return {STATE_WRITER, {m_root.path().toStdString()}}; }
    [[nodiscard]] ChildProcess holder() const { return {STATE_WRITER, {m_root.path().toStdString(), "hold"}}; }

    QTemporaryDir m_root;
};

} // namespace tarn::simulator::test
