#include <console/quantity.h>

#include <gmock/gmock.h>

namespace tarn::console {

TEST(Quantity, IsReadWithTheUnitsOfItsKind)
{
    EXPECT_EQ(parseQuantity("10 MHz", Unit::Hertz), 10e6);
    EXPECT_EQ(parseQuantity("10MHz", Unit::Hertz), 10e6);
    EXPECT_EQ(parseQuantity(" 2.4  GHz ", Unit::Hertz), 2.4e9);
    EXPECT_EQ(parseQuantity("12.8kHz", Unit::Hertz), 12.8e3);
    EXPECT_EQ(parseQuantity("7Hz", Unit::Hertz), 7.0);
    EXPECT_EQ(parseQuantity("1e7", Unit::Hertz), 1e7);
    EXPECT_EQ(parseQuantity("1.5ms", Unit::Second), 1.5e-3);
    EXPECT_EQ(parseQuantity("3 us", Unit::Second), 3e-6);
    EXPECT_EQ(parseQuantity("20ns", Unit::Second), 20e-9);
    EXPECT_EQ(parseQuantity("2s", Unit::Second), 2.0);
    EXPECT_EQ(parseQuantity("20 pF", Unit::Farad), 20e-12);
    EXPECT_EQ(parseQuantity("7 nF", Unit::Farad), 7e-9);
    EXPECT_EQ(parseQuantity("1 uF", Unit::Farad), 1e-6);
    EXPECT_EQ(parseQuantity("-3.5 dB", Unit::Decibel), -3.5);
}

TEST(Quantity, OfNoUnitIsAWholeNumberDecimalOrHexadecimal)
{
    EXPECT_EQ(parseQuantity("0x1F", Unit::None), 31.0);
    EXPECT_EQ(parseQuantity("0X1f", Unit::None), 31.0);
    EXPECT_EQ(parseQuantity("31", Unit::None), 31.0);
    EXPECT_EQ(parseQuantity("-1", Unit::None), -1.0);
    EXPECT_EQ(parseQuantity("4294967296", Unit::None), 4294967296.0);
    for (const auto* const text : {"", "0x", "0x-5", "1.5", "1e3", "7 dB", "1F", "+1", "nan", "99999999999999999999"})
        EXPECT_FALSE(parseQuantity(text, Unit::None)) << text;
}

TEST(Quantity, IsTheNumberNextToWhatIsWritten)
{
    EXPECT_EQ(parseQuantity("1.001MHz", Unit::Hertz), 1001000.0);
    EXPECT_EQ(parseQuantity("0.02 nF", Unit::Farad), 20e-12);
    EXPECT_EQ(parseQuantity("0.23pF", Unit::Farad), 0.23e-12);
    EXPECT_EQ(parseQuantity("1.5e3 kHz", Unit::Hertz), 1.5e6);
    EXPECT_EQ(parseQuantity("1.5E+3kHz", Unit::Hertz), 1.5e6);
    EXPECT_EQ(parseQuantity("5e-1 GHz", Unit::Hertz), 5e8);
    for (int thousandth = 1; thousandth < 10000; ++thousandth)
        EXPECT_EQ(parseQuantity(std::to_string(thousandth / 1000.0) + "GHz", Unit::Hertz), thousandth * 1e6);
}

TEST(Quantity, HasNoNegativeZero)
{
    EXPECT_EQ(quantityText(*parseQuantity("-0", Unit::Decibel), Unit::Decibel), "0 dB");
}

TEST(Quantity, KnowsTheSymbolsOfUnits)
{
    for (const auto* const symbol : {"Hz", "kHz", "MHz", "GHz", "ns", "us", "ms", "s", "pF", "nF", "uF", "F", "dB"})
        EXPECT_TRUE(isSymbol(symbol)) << symbol;
    for (const auto* const word : {"", "H", "mhz", "10", "MHz ", "THz"})
        EXPECT_FALSE(isSymbol(word)) << word;
}

TEST(Quantity, IsNothingElse)
{
    for (const auto* const text : {"",         " ",           "MHz",
                                   "nan",      "inf",         "-inf",
                                   "nanHz",    "1e400",       "1e308 GHz",
                                   "10 mhz",   "10 MHZ",      "10 s",
                                   "10 MHz 5", "ten",         "0x10",
                                   "10M",      "--5",         "1e99999999999 Hz",
                                   "1e Hz",    "1e-99999 Hz", "1e-2147483648 Hz"})
        EXPECT_FALSE(parseQuantity(text, Unit::Hertz)) << text;
}

TEST(Quantity, IsShownWithThePrefixThatSuitsIt)
{
    EXPECT_EQ(quantityText(0, Unit::Hertz), "0 Hz");
    EXPECT_EQ(quantityText(999, Unit::Hertz), "999 Hz");
    EXPECT_EQ(quantityText(1000, Unit::Hertz), "1 kHz");
    EXPECT_EQ(quantityText(12.8e6, Unit::Hertz), "12.8 MHz");
    EXPECT_EQ(quantityText(9e9, Unit::Hertz), "9 GHz");
    EXPECT_EQ(quantityText(100e-6, Unit::Second), "100 us");
    EXPECT_EQ(quantityText(1, Unit::Second), "1 s");
    EXPECT_EQ(quantityText(8e-12, Unit::Farad), "8 pF");
    EXPECT_EQ(quantityText(-0.5, Unit::Decibel), "-0.5 dB");
    EXPECT_EQ(quantityText(0.25e-12, Unit::Farad), "2.5e-13 F");
    EXPECT_EQ(quantityText(4095, Unit::None), "4095");
}

TEST(Quantity, IsReadAgainAsTheSameNumber)
{
    for (const double value : {1.0 / 3, 1e9 / 3, 2e-11 / 3, 12345678.9012345, 1e-300, 1e300, 0.1 + 0.2})
        for (const auto unit : {Unit::Hertz, Unit::Second, Unit::Farad, Unit::Decibel})
            EXPECT_EQ(parseQuantity(quantityText(value, unit), unit), value) << quantityText(value, unit);
}

TEST(Quantity, NamesItsUnits)
{
    EXPECT_EQ(symbols(Unit::Hertz), "Hz, kHz, MHz or GHz");
    EXPECT_EQ(symbols(Unit::Decibel), "dB");
    EXPECT_EQ(symbol(Unit::Hertz), "Hz");
    EXPECT_EQ(symbol(Unit::Second), "s");
    EXPECT_EQ(symbol(Unit::Farad), "F");
    EXPECT_EQ(symbol(Unit::None), "");
}

} // namespace tarn::console
