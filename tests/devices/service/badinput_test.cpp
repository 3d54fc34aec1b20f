// What becomes of parameters and answers that nobody should give: they are handed on as they are, but
// for bytes that are no UTF-8, which `QString` replaces, and for what an enumeration does not know.

#include <devices/controlregistry.h>
#include <devices/instrumentcontrols.h>
#include <devices/modelnames.h>
#include <devices/service/frequencyplanconversion.h>
#include <devices/service/sdkfactorycorrectioncontrol.h>
#include <devices/service/sdkfilememorycontrol.h>
#include <devices/service/sdkpotentiometerscontrol.h>
#include <devices/service/sdksystemtermscontrol.h>
#include <devices/service/sdktemperaturecontrol.h>
#include <devices/service/sdkusbidcontrol.h>
#include <devices/service/servicecontrols.h>

#include <support/calibrationbench.h>
#include <support/devicehandle.h>
#include <support/errorcategory.h>
#include <support/mockfactorycorrectioncontrol.h>
#include <support/mockfilememorycontrol.h>
#include <support/mockmemoryusbidcontrol.h>
#include <support/mockpotentiometerscontrol.h>
#include <support/mocksystemtermscontrol.h>
#include <support/mocktemperaturecontrol.h>

#include <gmock/gmock.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

using testing::_;
using testing::NiceMock;
using testing::Return;
using testing::StrictMock;

namespace tarn::tests::badinput {
namespace {

using namespace devices::service;

/// A string with the zero bytes that are in it.
template <std::size_t size>
std::string bytes(const char (&text)[size])
{
    return {text, size - 1};
}

struct Text {
    std::string bytes;
    bool isUtf8;
};

/// One of every class of UTF-8 and of what is none.
std::vector<Text> texts()
{
    return {{"", true},
            {"a", true},
            {bytes("a\0b\0"), true},
            {bytes("\0"), true},
            {"\x7f\xc2\x80\xdf\xbf\xe0\xa0\x80\xef\xbf\xbf\xf0\x90\x80\x80\xf4\x8f\xbf\xbf", true}, // the bounds
            {"a\xcc\x88", true}, // a combining character
            {"a\x80", false}, // a continuation alone
            {"\xbf\xbf", false},
            {"\xc3", false}, // an end too early
            {"\xc3(", false},
            {"\xe2\x82", false},
            {"\xe2(\xa1", false},
            {"\xf0\x9f\x93", false},
            {"\xf0\x28\x8c\x28", false},
            {"\xc0\x80", false}, // longer than need be
            {"\xc1\xbf", false},
            {"\xe0\x80\xaf", false},
            {"\xf0\x80\x80\xaf", false},
            {"\xed\xa0\x80", false}, // halves of a pair
            {"\xed\xbf\xbf", false},
            {"\xf4\x90\x80\x80", false}, // past the last character
            {"\xf8\x88\x80\x80\x80", false},
            {"\xfc\x84\x80\x80\x80\x80", false},
            {"\xfe", false},
            {"\xff\xff", false},
            {bytes("a\xff\0b"), false},
            {std::string(65536, '\xff'), false}};
}

/// A name is taken whole, with a replacement for what is no UTF-8.
void expectTaken(const QString& name, const Text& text)
{
    EXPECT_EQ(name, QString::fromUtf8(text.bytes.data(), static_cast<qsizetype>(text.bytes.size())));
    EXPECT_EQ(name.contains(QChar{QChar::ReplacementCharacter}), !text.isUtf8);
    EXPECT_EQ(name.toStdString() == text.bytes, text.isUtf8);
}

TEST(BadInput, NamesAndTextsOfTheInstrumentAreTakenWhole)
{
    const auto files = std::make_shared<NiceMock<MockFileMemoryControl>>();
    const auto temperatures = std::make_shared<NiceMock<MockTemperatureControl>>();
    const auto potentiometers = std::make_shared<NiceMock<MockPotentiometersControl>>();
    SdkFileMemoryControl fileControl{handleTo<sdk::service::IFileMemoryControl>(files)};
    SdkTemperatureControl temperatureControl{handleTo<sdk::ITemperatureControl>(temperatures)};
    const SdkPotentiometersControl potentiometersControl{
        handleTo<sdk::service::IPotentiometersControl>(potentiometers)};
    for (const auto& text : texts()) {
        SCOPED_TRACE(testing::PrintToString(text.bytes.substr(0, 20)));
        ON_CALL(*files, fileList).WillByDefault([&](const auto& done) { done({{text.bytes, 1}}, {}); });
        expectTaken(fileControl.fileList().value().at(0).name, text);

        const ErrorCategory category{text.bytes};
        ON_CALL(*files, deleteFile).WillByDefault([&](const auto&, const auto& done) { done(category.code(1)); });
        expectTaken(fileControl.deleteFile({}).error(), text);

        temperatures->modules = {{text.bytes, 1.0F}};
        temperatureControl.onControlsAvailable();
        expectTaken(temperatureControl.modulesTemperature().at(0).name, text);

        ON_CALL(*potentiometers, potentiometers)
            .WillByDefault(
                Return(std::vector<sdk::service::IPotentiometersControl::Potentiometer>{{text.bytes, 0, 0}}));
        EXPECT_EQ(potentiometersControl.potentiometers().at(0).name, text.bytes);
    }
}

TEST(BadInput, NamesOfModelsAreTakenWhole)
{
    const auto mock = std::make_shared<NiceMock<MockMemoryUsbIdControl>>();
    const SdkMemoryUsbId control{handleTo<sdk::service::IMemoryUsbIdControl>(mock)};
    for (const auto& text : texts()) {
        SCOPED_TRACE(testing::PrintToString(text.bytes.substr(0, 20)));
        mock->device.model = sdk::Model{text.bytes.c_str()}; // up to the first zero
        const auto name = control.currentDeviceProperties().modelName;
        EXPECT_EQ(name == text.bytes.c_str(), text.isUtf8);
        EXPECT_EQ(name, devices::prettyModelName(mock->device.model).toStdString());
    }
}

TEST(BadInput, NamesOfTheHostReachTheInstrumentAsUtf8WhateverTheyHold)
{
    const auto mock = std::make_shared<StrictMock<MockFileMemoryControl>>();
    SdkFileMemoryControl control{handleTo<sdk::service::IFileMemoryControl>(mock)};
    EXPECT_CALL(*mock, isAvailable).WillRepeatedly(Return(true));
    const std::vector<std::pair<QString, std::string>> names{
        {{}, ""},
        {QString{u'\0'}, bytes("\0")},
        {QString{u'a'} + QChar{u'\0'} + u'b', bytes("a\0b")},
        {QString{QChar{0xd800}}, QString{QChar{0xd800}}.toStdString()}, // halves of a pair
        {QString{QChar{0xdfff}} + u'a', QString{QChar{0xdfff}}.toStdString() + "a"},
        {QString{65536, u'\u20ac'}, QString{65536, u'\u20ac'}.toUtf8().toStdString()}};
    for (const auto& [name, expected] : names) {
        EXPECT_CALL(*mock, writeFile(expected, std::vector<std::uint8_t>{}, _))
            .WillOnce(testing::InvokeArgument<2>(std::error_code{}));
        EXPECT_TRUE(control.writeFile(name, {}));
        for (const auto size : {std::uint64_t{0}, std::numeric_limits<std::uint64_t>::max()}) {
            const sdk::service::IFileMemoryControl::FileInfo file{expected, size};
            EXPECT_CALL(*mock, readFile(file, _)).WillOnce([](const auto&, const auto& done) { done({}, {}); });
            EXPECT_TRUE(control.readFile({name, size}));
            EXPECT_CALL(*mock, deleteFile(file, _)).WillOnce(testing::InvokeArgument<1>(std::error_code{}));
            EXPECT_TRUE(control.deleteFile({name, size}));
        }
    }
}

template <class Number>
std::vector<Number> oddNumbers()
{
    using Limits = std::numeric_limits<Number>;
    return {Limits::quiet_NaN(), -Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(),  Number{0},
            -Number{0},          Limits::max(),        Limits::lowest(),   Limits::denorm_min(), Limits::min()};
}

/// Matches the number itself, a NaN or the negative zero too.
MATCHER_P(IsSame, number, "")
{
    return (std::isnan(arg) && std::isnan(number)) || (arg == number && std::signbit(arg) == std::signbit(number));
}

TEST(BadInput, TemperaturesAndLevelsAreWrittenWhateverTheyAre)
{
    const auto terms = std::make_shared<StrictMock<MockSystemTermsControl>>();
    const auto power = std::make_shared<StrictMock<Power::Mock>>();
    EXPECT_CALL(*terms, addObserver);
    EXPECT_CALL(*terms, removeObserver);
    SdkSystemTermsControl termsControl{handleTo<sdk::service::ISystemTermsControl>(terms)};
    Power::Adapter powerControl{handleTo<Power::Sdk>(power)};
    for (const double number : oddNumbers<double>()) {
        EXPECT_CALL(*terms, writeTerms(_, _, IsSame(number)));
        termsControl.requestWriteTerms({}, number, {});
        EXPECT_CALL(*terms, writeTermsForPlan(_, _, _, IsSame(number)));
        termsControl.requestWriteTerms({}, number, {{number, number, 0}}, {});

        const auto level = static_cast<float>(number);
        EXPECT_CALL(*power, saveCalibrationData(_, _, IsSame(number)))
            .WillOnce([&](auto, const std::vector<Power::Sdk::PowerCalPoint>& points, auto) {
                EXPECT_THAT(points.at(0).frequency, IsSame(number));
                for (const float written :
                     {points[0].nominalPower, points[0].measuredPower, points[0].sourceAttenuation,
                      points[0].receiverAttenuation, points[0].receiverPower})
                    EXPECT_THAT(written, IsSame(level));
            });
        powerControl.saveCalibrationData({}, number, {{number, level, level, true, true, level, true, level, level}});
    }
}

TEST(BadInput, FrequenciesAndRatiosAreCarriedWhateverTheyAre)
{
    const auto ifsw = std::make_shared<StrictMock<Ifsw::Mock>>();
    Ifsw::Adapter control{handleTo<Ifsw::Sdk>(ifsw)};
    for (const double number : oddNumbers<double>()) {
        const auto there = toSdkFrequencyPlan({{number, number, 0xffff'ffff}}).segments.at(0);
        EXPECT_THAT(there.startFrequency, IsSame(number));
        EXPECT_THAT(there.stopFrequency, IsSame(number));
        const auto back = fromSdkFrequencyPlan({{{number, number, -1}}}).at(0);
        EXPECT_THAT(back.start, IsSame(number));
        EXPECT_THAT(back.stop, IsSame(number));

        EXPECT_CALL(*ifsw, saveCalibrationData).WillOnce([&](const Ifsw::Sdk::IfswCalibrationData& data) {
            EXPECT_THAT(data.frequencies.at(0), IsSame(number));
            for (const auto* const receiver : {&data.reference, &data.reflection, &data.transmission}) {
                const auto& ratio = receiver->ratios.at(0);
                const auto& linearity = receiver->linearities.at(0);
                for (const double written : {ratio.intermediateFrequency, ratio.magnitude, ratio.phase, linearity.level,
                                             linearity.magnitudeError, linearity.phaseError})
                    EXPECT_THAT(written, IsSame(number));
            }
        });
        const Ifsw::Adapter::ReceiverCalibration receiver{{{number, number, number}}, {{number, number, number}}};
        control.saveCalibrationData({{number}, receiver, receiver, receiver});
    }
}

TEST(BadInput, ACorrectionThatNobodyKnowsIsNothingAndIsNotSwitched)
{
    const auto mock = std::make_shared<StrictMock<MockFactoryCorrectionControl>>();
    SdkFactoryCorrectionControl control{handleTo<sdk::IFactoryCorrectionControl>(mock)};
    const auto all = static_cast<sdk::CorrectionFlag>(0xffff);
    for (const int value : {-1, 10, 11, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        const auto unknown = static_cast<devices::FactoryCorrection>(value);
        EXPECT_CALL(*mock, validCorrections).Times(2).WillRepeatedly(Return(all));
        EXPECT_CALL(*mock, enabledCorrections).WillOnce(Return(all));
        EXPECT_CALL(*mock, modifiableCorrections).WillOnce(Return(all));
        EXPECT_FALSE(control.isValid(unknown));
        EXPECT_FALSE(control.isEnabled(unknown));
        EXPECT_FALSE(control.isModifiable(unknown));
        control.setEnabled(unknown, true);
    }
}

TEST(BadInput, ATimeIsCarriedInSecondsHoweverFarAwayItIs)
{
    const auto mock = std::make_shared<NiceMock<MockSystemTermsControl>>();
    SdkSystemTermsControl control{handleTo<sdk::service::ISystemTermsControl>(mock)};
    constexpr qint64 lastOf9999 = 253'402'300'799;
    constexpr qint64 lastOfAll = std::numeric_limits<qint64>::max() / 1000; // Qt counts milliseconds
    for (const qint64 seconds :
         {qint64{0}, qint64{-1}, lastOf9999, lastOf9999 + 1, -lastOf9999, lastOfAll, -lastOfAll}) {
        EXPECT_CALL(*mock, writeTerms(seconds, _, _));
        control.requestWriteTerms(QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC), 0.0, {});
        EXPECT_CALL(*mock, writeTermsForPlan(seconds, _, _, _));
        control.requestWriteTerms(QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC), 0.0, {{1.0, 2.0, 3}}, {});
    }
}

TEST(BadInput, ATimeThatIsNoneIsTheEpoch)
{
    const auto mock = std::make_shared<NiceMock<MockSystemTermsControl>>();
    SdkSystemTermsControl control{handleTo<sdk::service::ISystemTermsControl>(mock)};
    EXPECT_CALL(*mock, writeTerms(QDateTime{}.toSecsSinceEpoch(), _, _));
    control.requestWriteTerms({}, 0.0, {});
}

TEST(BadInputDeathTest, NeitherARegistryNorADeviceIsEverMissing)
{
    EXPECT_DEATH(servicecontrols::registrate(nullptr), "");
    const devices::ControlRegistry registry;
    EXPECT_DEATH((devices::InstrumentControls{nullptr, registry, devices::ControlTypes<>{}}), "");
}

TEST(BadInput, NoObserverIsRemovedFromNowhere)
{
    const auto corrections = std::make_shared<StrictMock<MockFactoryCorrectionControl>>();
    const auto ifsw = std::make_shared<StrictMock<Ifsw::Mock>>();
    const auto power = std::make_shared<StrictMock<Power::Mock>>();
    SdkFactoryCorrectionControl{handleTo<sdk::IFactoryCorrectionControl>(corrections)}.removeObserver(nullptr);
    Ifsw::Adapter{handleTo<Ifsw::Sdk>(ifsw)}.removeObserver(nullptr);
    Power::Adapter{handleTo<Power::Sdk>(power)}.removeObserver(nullptr);
}

} // namespace
} // namespace tarn::tests::badinput
