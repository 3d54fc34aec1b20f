#include <provider/ideviceprovider.h>
#include <sdk/itemperaturecontrol.h>
#include <sdk/service/ifilememorycontrol.h>
#include <sdk/service/iloleakagecontrol.h>

#include <QJsonObject>
#include <QPluginLoader>

#include <gtest/gtest.h>

#include <future>

namespace {

using tarn::provider::IDeviceProvider;
using tarn::provider::OpenError;
using tarn::provider::OpenRequest;

class SimulatorProvider : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_loader.load()) << m_loader.errorString().toStdString();
        m_provider = qobject_cast<IDeviceProvider*>(m_loader.instance());
        ASSERT_NE(m_provider, nullptr);
    }

    QPluginLoader m_loader{QStringLiteral(SIMULATOR_PROVIDER)};
    IDeviceProvider* m_provider = nullptr;
};

TEST_F(SimulatorProvider, NamesTheInterfaceInItsMetaData)
{
    EXPECT_EQ(m_loader.metaData()[QStringLiteral("IID")].toString(), QStringLiteral(TARN_DEVICE_PROVIDER_IID));
}

TEST_F(SimulatorProvider, IntroducesItself)
{
    EXPECT_EQ(m_provider->name(), QStringLiteral("simulator"));
    EXPECT_FALSE(m_provider->description().isEmpty());
    EXPECT_TRUE(m_provider->isSimulated());
    EXPECT_FALSE(m_provider->addressSyntax().isEmpty());
    EXPECT_EQ(m_provider->addressOptions().size(), 22);
}

TEST_F(SimulatorProvider, OpensTheFirstOfItsAddresses)
{
    const auto addresses = m_provider->addresses();
    ASSERT_FALSE(addresses.isEmpty());
    const auto device = m_provider->open({addresses.first().address, QStringLiteral("none")});
    ASSERT_TRUE(device.has_value());
    EXPECT_NE((*device)->control(sdk::service::IFileMemoryControl::key), nullptr);
    EXPECT_NE((*device)->control(sdk::service::ILoLeakageControl::key), nullptr);
    EXPECT_NE((*device)->control(sdk::ITemperatureControl::key), nullptr);
}

TEST_F(SimulatorProvider, OpensAnInstrumentThatAnswers)
{
    const auto device = m_provider->open({{}, QStringLiteral("none")});
    ASSERT_TRUE(device.has_value());
    const auto files = (*device)->control<sdk::service::IFileMemoryControl>(sdk::service::IFileMemoryControl::key);
    std::promise<std::error_code> written;
    files->writeFile("cal.dat", {1, 2, 3}, [&](auto code) { written.set_value(code); });
    EXPECT_EQ(written.get_future().get().value(), 0);
    std::promise<std::vector<std::uint8_t>> contents;
    files->readFile({"cal.dat", 3}, [&](auto bytes, auto) { contents.set_value(std::move(bytes)); });
    EXPECT_EQ(contents.get_future().get(), (std::vector<std::uint8_t>{1, 2, 3}));
}

TEST_F(SimulatorProvider, RefusesAnOptionThatDoesNotExist)
{
    const auto device = m_provider->open({QStringLiteral("sim,colour=red"), QStringLiteral("none")});
    ASSERT_FALSE(device.has_value());
    EXPECT_EQ(device.error().code, OpenError::Code::InvalidAddress);
    for (const auto& option : m_provider->addressOptions())
        EXPECT_TRUE(device.error().hint.contains(option.name + u'=')) << option.name.toStdString();
}

} // namespace
