#include <simulator/address.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <limits>

namespace tarn::simulator {
namespace {

using namespace std::chrono_literals;
using provider::OpenError;

SimulatorAddress valid(const char* text)
{
    const auto address = parseAddress(QString::fromUtf8(text));
    if (!address) {
        ADD_FAILURE() << address.error().message.toStdString();
        return {};
    }
    return *address;
}

OpenError invalid(const char* text)
{
    const auto address = parseAddress(QString::fromUtf8(text));
    if (address) {
        ADD_FAILURE() << text << " was accepted";
        return {OpenError::Code::Failed, {}, {}};
    }
    return address.error();
}

TEST(AddressTest, GivesTheDefaultInstrumentWhenEmpty)
{
    const auto address = valid("");
    EXPECT_EQ(address.name, QStringLiteral("sim"));
    EXPECT_EQ(address.settings.profile, Profile::Full);
    EXPECT_EQ(address.settings.seed, 0U);
    EXPECT_EQ(address.settings.latency, Duration{});
    EXPECT_EQ(address.settings.completion, CompletionMode::Thread);
    EXPECT_EQ(address.settings.faults.dropEvery, 0U);
}

TEST(AddressTest, TakesANameFirst)
{
    EXPECT_EQ(valid("bench_2-A").name, QStringLiteral("bench_2-A"));
    EXPECT_EQ(valid("bench2,seed=7").name, QStringLiteral("bench2"));
    EXPECT_EQ(valid("seed=7").name, QStringLiteral("sim"));
}

TEST(AddressTest, ReadsEveryOption)
{
    const auto settings = valid("sim,profile=vell,seed=18446744073709551615,latency=5ms,completion=inline,drop-every=3,"
                                "drop-chance=0.25,drop-for=2s,fail-next=full,fail-every=4,fail=17,delay-every=5,"
                                "delay=100us,throw-every=6,hang-every=7,misbehave=keep,misbehave-every=8")
                              .settings;
    EXPECT_EQ(settings.profile, Profile::Vell);
    EXPECT_EQ(settings.seed, 18446744073709551615U);
    EXPECT_EQ(settings.latency, 5ms);
    EXPECT_EQ(settings.completion, CompletionMode::Inline);
    EXPECT_EQ(settings.faults.dropEvery, 3U);
    EXPECT_EQ(settings.faults.dropChance, 0.25);
    EXPECT_EQ(settings.faults.dropFor, 2s);
    EXPECT_EQ(settings.faults.failNext, Error::Full);
    EXPECT_EQ(settings.faults.failEvery, 4U);
    EXPECT_EQ(settings.faults.failure.value(), 17);
    EXPECT_EQ(settings.faults.delayEvery, 5U);
    EXPECT_EQ(settings.faults.delay, 100us);
    EXPECT_EQ(settings.faults.throwEvery, 6U);
    EXPECT_EQ(settings.faults.hangEvery, 7U);
    EXPECT_EQ(settings.faults.misbehaviour, Misbehaviour::Keep);
    EXPECT_EQ(settings.faults.misbehaveEvery, 8U);
}

TEST(AddressTest, ReadsEveryProfile)
{
    for (const auto& info : profiles()) {
        const auto text = "profile=" + std::string{info.name};
        EXPECT_EQ(valid(text.c_str()).settings.profile, info.profile);
    }
}

TEST(AddressTest, ReadsTheOptionsOfTheMemory)
{
    EXPECT_EQ(valid("").settings.memorySize, std::nullopt);
    EXPECT_EQ(valid("memory-size=4KiB").settings.memorySize, 4096U);
    EXPECT_EQ(valid("memory-size=256MiB").settings.memorySize, 268435456U);
    EXPECT_EQ(valid("memory-size=262144KiB").settings.memorySize, 268435456U);
    EXPECT_EQ(valid("").settings.speed, 1000.0);
    EXPECT_EQ(valid("speed=0.5").settings.speed, 0.5);
    EXPECT_EQ(valid("speed=unlimited").settings.speed, std::numeric_limits<double>::infinity());
    EXPECT_FALSE(valid("").settings.faults.writeProtect);
    EXPECT_TRUE(valid("write-protect=on").settings.faults.writeProtect);
    EXPECT_FALSE(valid("write-protect=off").settings.faults.writeProtect);
    EXPECT_FALSE(valid("").settings.faults.corrupt);
    EXPECT_TRUE(valid("corrupt=on").settings.faults.corrupt);
    EXPECT_EQ(valid("power-loss-every=3").settings.faults.powerLossEvery, 3U);
    EXPECT_EQ(valid("unplug-every=4").settings.faults.unplugEvery, 4U);
}

TEST(AddressTest, ReadsEveryMisbehaviourThatItDocuments)
{
    std::vector<Misbehaviour> read;
    for (const auto& option : addressOptions()) {
        if (option.name != u"misbehave")
            continue;
        for (const auto& word : option.value.split(u'|'))
            read.push_back(
                valid((QStringLiteral("misbehave=") + word).toUtf8().constData()).settings.faults.misbehaviour);
    }
    using enum Misbehaviour;
    EXPECT_EQ(read, (std::vector{Twice, Drop, DropControls, Keep, AtEnd, Late, ThrowLate}));
    EXPECT_EQ(invalid("misbehave=none").hint,
              QStringLiteral("Write misbehave=twice|drop|drop-controls|keep|at-end|late|throw-late."));
}

TEST(AddressTest, DocumentsEveryError)
{
    for (const auto& option : addressOptions()) {
        if (option.name != u"fail")
            continue;
        for (int value = 1; value <= static_cast<int>(Error::BadIdentity); ++value) {
            const auto error = make_error_code(static_cast<Error>(value));
            const auto names = option.value.split(u'|');
            EXPECT_TRUE(std::ranges::any_of(names, [&](const auto& name) {
                return errorFromText(name.toStdString()) == error;
            })) << error.message();
        }
    }
}

TEST(AddressTest, DocumentsExactlyTheOptionsThatItReads)
{
    for (const auto& option : addressOptions()) {
        EXPECT_FALSE(option.description.isEmpty());
        // An option that is read refuses the empty value, one that is not is unknown.
        const auto error = invalid((option.name + u'=').toUtf8().constData());
        EXPECT_TRUE(error.message.contains(QStringLiteral("is not a value of the option")))
            << error.message.toStdString();
        EXPECT_TRUE(error.hint.contains(option.value));
    }
}

TEST(AddressTest, DocumentsEveryProfile)
{
    const auto form = addressOptions().first();
    ASSERT_EQ(form.name, QStringLiteral("profile"));
    for (const auto& info : profiles())
        EXPECT_TRUE(form.value.split(u'|').contains(QString::fromUtf8(info.name.data()))) << info.name;
    EXPECT_EQ(form.value.split(u'|').size(), static_cast<qsizetype>(profiles().size()));
}

TEST(AddressTest, DocumentsDefaultsThatMeanTheDefault)
{
    for (const auto& option : addressOptions()) {
        if (option.defaultValue == u"never" || option.defaultValue == u"none")
            continue; // said by leaving the option out
        const auto text = QStringLiteral("drop-every=1,fail-every=1,delay-every=1,misbehave=drop,") + option.name + u'='
            + option.defaultValue;
        EXPECT_TRUE(parseAddress(text).has_value()) << text.toStdString();
    }
    EXPECT_EQ(valid("delay-every=1,delay=100ms").settings.faults.delay, FaultPlan{}.delay);
    EXPECT_EQ(valid("fail-every=1,fail=io").settings.faults.failure, FaultPlan{}.failure);
    EXPECT_EQ(valid("").settings.faults.misbehaviour, Misbehaviour::None);
    EXPECT_EQ(valid("misbehave=drop").settings.faults.misbehaveEvery, 1U);
}

TEST(AddressTest, ListsTheValidOptionsForAnUnknownOne)
{
    const auto error = invalid("sim,colour=red");
    EXPECT_EQ(error.code, OpenError::Code::InvalidAddress);
    EXPECT_TRUE(error.message.contains(QStringLiteral("colour=red")));
    for (const auto& option : addressOptions())
        EXPECT_TRUE(error.hint.contains(option.name + u'=')) << option.name.toStdString();
}

TEST(AddressTest, NamesTheOptionThatIsWrong)
{
    EXPECT_TRUE(invalid("sim,bogus=1").message.endsWith(QStringLiteral("there is no option \"bogus\"")));
    EXPECT_TRUE(invalid("sim,bogus").message.endsWith(QStringLiteral("there is no option \"bogus\"")));
    EXPECT_TRUE(invalid("sim,seed").message.endsWith(QStringLiteral("\"\" is not a value of the option \"seed\"")));
}

TEST(AddressTest, RefusesAnOptionThatDoesNothingByItself)
{
    const auto fail = invalid("drop-every=2,fail=full");
    EXPECT_TRUE(fail.message.endsWith(QStringLiteral("the option \"fail\" does nothing by itself")));
    EXPECT_EQ(fail.hint, QStringLiteral("Give fail-every with it."));
    EXPECT_EQ(invalid("delay=1s").hint, QStringLiteral("Give delay-every or misbehave with it."));
    EXPECT_EQ(valid("delay=1s,misbehave=late").settings.faults.delay, 1s);
    EXPECT_EQ(invalid("misbehave-every=2").hint, QStringLiteral("Give misbehave with it."));
    EXPECT_EQ(invalid("drop-for=1s").hint,
              QStringLiteral("Give drop-every or drop-chance or power-loss-every or unplug-every or "
                             "misbehave with it."));
    for (const auto* const cause :
         {"drop-every=1", "drop-chance=0.5", "power-loss-every=1", "unplug-every=1", "misbehave=drop"})
        EXPECT_EQ(valid(("drop-for=1s," + std::string{cause}).c_str()).settings.faults.dropFor, 1s) << cause;
}

TEST(AddressTest, ExplainsTheValueThatIsMissingAndNoOther)
{
    EXPECT_EQ(invalid("seed=x").hint, QStringLiteral("Write seed=NUMBER, where NUMBER is a whole number from 0."));
    EXPECT_EQ(invalid("drop-every=x").hint, QStringLiteral("Write drop-every=N, where N is a whole number from 1."));
    EXPECT_EQ(invalid("completion=x").hint, QStringLiteral("Write completion=thread|inline."));
    EXPECT_EQ(invalid("delay=x").hint,
              QStringLiteral("Write delay=TIME, where TIME is a number with the unit us, ms, "
                             "s, min or h, at most a day."));
    EXPECT_TRUE(
        invalid("fail=x").hint.endsWith(QStringLiteral("|NUMBER, where NUMBER is an error code other than 0.")));
}

class InvalidAddress : public testing::TestWithParam<const char*> { };

TEST_P(InvalidAddress, IsRefused)
{
    const auto error = invalid(GetParam());
    EXPECT_EQ(error.code, OpenError::Code::InvalidAddress);
    EXPECT_FALSE(error.hint.isEmpty());
    EXPECT_TRUE(error.message.contains(QString::fromUtf8(GetParam())));
}

INSTANTIATE_TEST_SUITE_P(
    Address, InvalidAddress,
    testing::Values(
        // names
        "..", "a/b", "a b", "\xc3\xbc", ",", ",seed=1",
        "abcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyzabcdefghijklm",
        // items
        "sim,", "sim,,seed=1", "sim,bench", "sim,=5", "sim, seed=1", "sim,seed=1,seed=1",
        // counts
        "drop-every=0", "drop-every=-1", "drop-every=", "drop-every=1.5", "drop-every=+1", "drop-every= 1",
        "drop-every=18446744073709551616", "drop-every=3x", "drop-every=1=1",
        // seeds
        "seed=-1", "seed=18446744073709551616", "seed=0x10",
        // times
        "latency=5", "latency=ms", "latency=-5ms", "latency=5 ms", "latency=25h", "latency=5d", "latency=86401s",
        "latency=9223372036854775807s", "latency=99999999999999999999us",
        // chances
        "drop-chance=1.1", "drop-chance=-0.1", "drop-chance=nan", "drop-chance=inf", "drop-chance=1e999",
        "drop-chance=0,5", "drop-chance=half",
        // sizes, speeds and switches
        "memory-size=4194304", "memory-size=0MiB", "memory-size=257MiB", "memory-size=4mib", "memory-size=5KiB",
        "memory-size=-4KiB", "memory-size=4294967296MiB", "memory-size=MiB", "speed=0", "speed=-1", "speed=nan",
        "speed=inf", "speed=fast", "speed=0.0009", "speed=", "write-protect=yes", "write-protect=", "corrupt=1",
        "power-loss-every=0", "unplug-every=never",
        // misbehaviours
        "misbehave=", "misbehave=Twice", "misbehave=1", "misbehave=drop|keep", "misbehave=drop,misbehave-every=0",
        "misbehave=drop,misbehave-every=", "hang-every=0", "hang-every=first",
        // words
        "profile=Full", "profile=sable", "profile=", "completion=both", "fail=0", "fail=nothing", "fail-next="));

TEST(AddressTest, AcceptsTheLimits)
{
    EXPECT_EQ(valid("drop-every=18446744073709551615").settings.faults.dropEvery, 18446744073709551615U);
    EXPECT_EQ(valid("latency=86400s").settings.latency, 24h);
    EXPECT_EQ(valid("latency=86400000000us").settings.latency, 24h);
    EXPECT_EQ(valid("latency=1.5s").settings.latency, 1500ms);
    EXPECT_EQ(valid("latency=0s").settings.latency, Duration{});
    EXPECT_EQ(valid("drop-chance=1").settings.faults.dropChance, 1.0);
    EXPECT_EQ(valid("drop-chance=0").settings.faults.dropChance, 0.0);
}

RC_GTEST_PROP(AddressTest, NeverStumblesOverAnyText, (const std::string& text))
{
    const auto address = parseAddress(QString::fromUtf8(text));
    if (address)
        RC_ASSERT(!address->name.isEmpty());
    else
        RC_ASSERT(address.error().code == OpenError::Code::InvalidAddress);
}

RC_GTEST_PROP(AddressTest, ReadsBackAnyNumbers, (std::uint64_t seed, std::uint32_t count, std::uint16_t milliseconds))
{
    const auto text
        = QStringLiteral("sim,seed=%1,latency=%2ms,drop-every=%3").arg(seed).arg(milliseconds).arg(count + 1ULL);
    const auto address = parseAddress(text);
    RC_ASSERT(address.has_value());
    RC_ASSERT(address->settings.seed == seed);
    RC_ASSERT(address->settings.latency == std::chrono::milliseconds{milliseconds});
    RC_ASSERT(address->settings.faults.dropEvery == count + 1ULL);
}

} // namespace
} // namespace tarn::simulator
