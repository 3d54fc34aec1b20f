// Devices that break one guarantee each, and what is found.

#include <conformance/fakes.h>

#include <array>
#include <cstddef>
#include <mutex>
#include <stdexcept>

namespace tarn::tests {

using conformance::Verdict;
using testing::ElementsAre;
using testing::HasSubstr;

struct Breach {
    const char* what;
    MakeDevice make;
    const char* guarantee;
    const char* finding;
    bool writes = true;
};

void PrintTo(const Breach& breach, std::ostream* stream)
{
    *stream << breach.what;
}

// ---- keys

MakeDevice odd(OddVna::Replace replace)
{
    return [replace = std::move(replace)] { return std::make_shared<OddVna>(simulated("")(), replace); };
}

std::shared_ptr<void> somethingForUnknownKeys(sdk::Key key, std::shared_ptr<void> control)
{
    static const auto something = std::make_shared<int>(0);
    return key == sdk::Key{0} ? something : control;
}

/// Two controls in turn, both of which the device owns.
MakeDevice inTurn()
{
    return [] {
        auto device = std::make_shared<FakeVna>();
        device->offerFrom(FakeLoLeakage::key,
                          [both = std::array{std::make_shared<FakeLoLeakage>(), std::make_shared<FakeLoLeakage>()},
                           turn = std::make_shared<std::size_t>(0)] { return both.at((*turn)++ % 2); });
        return device;
    };
}

// ---- observers

class ListsTwice final : public FakeMemory {
    void addObserver(IObserver* observer) override
    {
        const std::scoped_lock lock{mutex};
        observers.push_back(observer);
    }
};

class KeepsNotifying final : public FakeMemory {
    void removeObserver(IObserver* /*observer*/) override { }
};

class DoesNotWait final : public FakeMemory {
public:
    void read(sdk::Completion<std::vector<std::byte>> completion) override
    {
        for (auto* const observer : now())
            observer->onReadProgressChanged(0, 1);
        completion({}, {});
    }

private:
    std::vector<IObserver*> now()
    {
        const std::scoped_lock lock{mutex};
        return observers;
    }
};

class ThrowsAtRemoval final : public FakeMemory {
    void removeObserver(IObserver* observer) override
    {
        FakeMemory::removeObserver(observer);
        throw std::runtime_error{"not registered"};
    }
};

class NotifiesTheCaller final : public FakeCorrections {
    void setEnabled(sdk::CorrectionFlag /*correction*/, bool value) override
    {
        enabled = value;
        notify(&Observer::onEnabledChanged, correction, value);
    }
};

class StartsWhatItRefuses final : public FakeIfswCalibration {
    void saveCalibrationData(IfswCalibrationData /*data*/) override
    {
        threads.emplace_back([this] {
            notify(&Observer::onWriteStarted);
            notify(&Observer::onError, Error::NoData);
        });
    }
};

class TakesNothing final : public FakeIfswCalibration {
    void saveCalibrationData(IfswCalibrationData /*data*/) override
    {
        threads.emplace_back([this] { notify(&Observer::onWriteFinished); });
    }
};

// ---- values and references

class Forgetful final : public FakeLoLeakage {
    void setEnabled(bool /*value*/) override { }
};

class ForgetsTheEeprom final : public FakePotentiometers {
    void writeToEeprom(unsigned long /*index*/, int /*newValue*/, sdk::Completion<> completion) override
    {
        completion({});
    }
};

class NewListEachTime final : public FakeVellSynthesis {
    std::span<const double> supportedIfs() override { return m_lists.emplace_back(ifs); }

    std::list<std::vector<double>> m_lists;
};

class OneMapForAll final : public FakeTemperatures {
    const ModuleTemperatures& moduleTemperatures() override
    {
        m_map["LO"] = value;
        return m_map;
    }

    ModuleTemperatures m_map;
};

class KeepsWhatItDeletes final : public FakeFiles {
    void deleteFile(const FileInfo& /*file*/, sdk::Completion<> completion) override { completion({}); }
};

class WritesTwice final : public FakePotentiometers {
    void writeToEeprom(unsigned long index, int newValue, sdk::Completion<> completion) override
    {
        FakePotentiometers::writeToEeprom(index, newValue, completion);
        completion({});
    }
};

/// Answers after a while, and nothing any more once it is closed.
class ForgetsAtTheEnd final : public FakePotentiometers {
    void readFromEeprom(unsigned long index, sdk::Completion<int> completion) override
    {
        m_threads.emplace_back([this, index, completion = std::move(completion)](const std::stop_token& stop) {
            for (int i = 0; i != 20 && !stop.stop_requested(); ++i)
                std::this_thread::sleep_for(std::chrono::milliseconds{1});
            if (!stop.stop_requested())
                FakePotentiometers::readFromEeprom(index, completion);
        });
    }

    std::list<std::jthread> m_threads;
};

// ---- handles

/// Notifies the observers that were removed from it as well, when it is closed.
class KeepsItsObservers final : public sdk::IVna {
public:
    ~KeepsItsObservers() override
    {
        for (auto* const observer : m_observers)
            observer->onControlsAboutToBeReleased();
    }

    using sdk::IVna::control;
    std::shared_ptr<void> control(sdk::Key /*key*/) override { return nullptr; }
    void addObserver(Observer* observer) override { m_observers.push_back(observer); }
    void removeObserver(Observer* /*observer*/) override { }
    [[nodiscard]] sdk::Model model() const override { return sdk::Model{"Fake"}; }

private:
    std::vector<Observer*> m_observers;
};

/// Has another control when it is asked again, without a word.
MakeDevice droppingUnannounced()
{
    return [] {
        const auto device = std::make_shared<FakeVna>();
        device->offer<sdk::service::ILoLeakageControl>(FakeLoLeakage::key, std::make_shared<FakeLoLeakage>());
        device->whenAsked([&device = *device](sdk::Key key) {
            if (key == FakeLoLeakage::key && device.asked(key) == 2)
                device.offer<sdk::service::ILoLeakageControl>(key, std::make_shared<FakeLoLeakage>());
        });
        return device;
    };
}

/// Keeps every control that it sees.
class Keeper {
public:
    std::shared_ptr<void> keep(std::shared_ptr<void> control)
    {
        const std::scoped_lock lock{m_mutex};
        return m_kept.emplace_back(std::move(control));
    }

private:
    std::mutex m_mutex;
    std::vector<std::shared_ptr<void>> m_kept;
};

auto keeping()
{
    return [keeper = std::make_shared<Keeper>()](sdk::Key /*key*/, std::shared_ptr<void> control) {
        return keeper->keep(std::move(control));
    };
}

/// Somebody else keeps the controls, and outlives the device.
MakeDevice keptBySomebodyElse()
{
    return odd(keeping());
}

/// The same as long as the device lives, which drops its controls.
MakeDevice keptByTheDevice()
{
    return [] { return std::make_shared<OddVna>(simulated("drop-every=20")(), keeping()); };
}

const std::vector<Breach> breaches{
    {"UnknownKey", odd(&somethingForUnknownKeys), "keys", "control gives something for a key", false},
    {"InTurn", inTurn(), "keys", "lo-leakage is another one each time", false},
    {"WritesTwice", offering<WritesTwice, sdk::service::IPotentiometersControl>(), "one-completion",
     "potentiometers writeToEeprom of what is there was completed 2 times"},
    {"ForgetsAtTheEnd", offering<ForgetsAtTheEnd, sdk::service::IPotentiometersControl>(), "one-completion",
     "potentiometers readFromEeprom 0 that is outstanding when the device is closed let go of its completion"},
    {"EmptyRange",
     offering<FakePotentiometers, sdk::service::IPotentiometersControl>([](auto& one) { one.lowest = 10; }), "slots",
     "potentiometers potentiometers lists one whose minimum is above its maximum"},
    {"OutsideOfItsRange",
     offering<FakePotentiometers, sdk::service::IPotentiometersControl>([](auto& one) { one.lowest = 5; }), "slots",
     "potentiometers readFromEeprom 0 gives a value outside of its range", false},
    {"NoError",
     offering<FakePotentiometers, sdk::service::IPotentiometersControl>([](auto& one) { one.behindTheLast = {}; }),
     "slots", "potentiometers readFromEeprom behind the last succeeds"},
    {"NotInTheList",
     offering<FakeVellSynthesis, sdk::service::IVellSynthesisControl>([](auto& one) { one.selected = 3; }), "slots",
     "vell-synthesis selectedIf is 3"},
    {"NewListEachTime", offering<NewListEachTime, sdk::service::IVellSynthesisControl>(), "references-stay",
     "vell-synthesis supportedIfs is another list"},
    {"OneMapForAll", offering<OneMapForAll, sdk::ITemperatureControl>(), "references-stay",
     "temperature moduleTemperatures changes a map"},
    {"Twice", simulated("misbehave=twice"), "one-completion", "file-memory fileList was completed 2 times", false},
    {"Drop", simulated("misbehave=drop"), "one-completion", "file-memory fileList let go of its completion", false},
    {"DropControls", simulated("misbehave=drop-controls"), "one-completion", "let go of its completion", false},
    {"ThrowLate", simulated("misbehave=throw-late,delay=1ms"), "one-completion",
     "file-memory fileList threw, and was completed", false},
    {"FallingProgress",
     offering<FakeMemory, sdk::service::IMemoryOperationsControl>([](auto& one) { one.steps = {1, 0, 2}; }),
     "progress-rises", "was told a progress that falls"},
    {"ProgressBeyondItsEnd",
     offering<FakeMemory, sdk::service::IMemoryOperationsControl>([](auto& one) { one.steps = {1, 3}; }),
     "progress-rises", "was told a progress of more than there is to do"},
    {"ListsTwice", offering<ListsTwice, sdk::service::IMemoryOperationsControl>(), "registered-once",
     "was notified 6 times when it was registered twice, and 3 times"},
    {"KeepsNotifying", offering<KeepsNotifying, sdk::service::IMemoryOperationsControl>(), "silent-after-removal",
     "was notified after removeObserver had returned"},
    {"DoesNotWait", offering<DoesNotWait, sdk::service::IMemoryOperationsControl>(), "silent-after-removal",
     "removeObserver returned while a notification was running"},
    {"ThrowsAtRemoval", offering<ThrowsAtRemoval, sdk::service::IMemoryOperationsControl>(), "silent-after-removal",
     "has thrown from removeObserver"},
    {"NotifiesTheCaller", offering<NotifiesTheCaller, sdk::IFactoryCorrectionControl>(), "own-thread",
     "corrections Observer was notified inside of 'corrections setEnabled there and back'"},
    {"StartsWhatItRefuses", offering<StartsWhatItRefuses, sdk::service::IVellIfswCalibrationControl>(), "refused-alone",
     "was answered by 'start, error 1'"},
    {"TakesNothing", offering<TakesNothing, sdk::service::IVellIfswCalibrationControl>(), "refused-alone",
     "was answered by 'finish'"},
    {"Forgetful", offering<Forgetful, sdk::service::ILoLeakageControl>(), "values-survive",
     "lo-leakage isEnabled was set to 1 and is 0"},
    {"ForgetsTheEeprom", offering<ForgetsTheEeprom, sdk::service::IPotentiometersControl>(), "values-survive",
     "potentiometers EEPROM is read as something else"},
    {"KeepsWhatItDeletes", offering<KeepsWhatItDeletes, sdk::service::IFileMemoryControl>(), "values-survive",
     "file-memory deleteFile has not removed 'tarn-check-"},
    {"KeepsItsObservers", [] { return std::make_shared<KeepsItsObservers>(); }, "silent-after-removal",
     "the device has notified an observer after removeObserver had returned"},
    {"DropsUnannounced", droppingUnannounced(), "handles-expire", "lo-leakage is not kept by the device"},
    {"KeptBySomebodyElse", keptBySomebodyElse(), "handles-expire", "lo-leakage lives on when the device has gone",
     false},
    {"KeptByTheDevice", keptByTheDevice(), "handles-expire", "lo-leakage was dropped and lives on", false},
};

class BrokenDevice : public testing::TestWithParam<Breach> { };

TEST_P(BrokenDevice, IsFoundToBreakThatGuaranteeAlone)
{
    auto options = quick();
    options.writes = GetParam().writes;
    const auto outcomes = checkAll(GetParam().make, options);
    EXPECT_THAT(broken(outcomes), ElementsAre(GetParam().guarantee));
    EXPECT_THAT(textOf(outcomes.at(GetParam().guarantee)), HasSubstr(GetParam().finding));
    for (const auto& [name, outcome] : outcomes)
        EXPECT_TRUE(name == GetParam().guarantee || outcome.findings.empty()) << name << ": " << textOf(outcome);
}

INSTANTIATE_TEST_SUITE_P(Breaches, BrokenDevice, testing::ValuesIn(breaches),
                         [](const auto& each) { return std::string{each.param.what}; });

TEST(OneObjectForTwoKeys, IsFoundByWhereItStands)
{
    // Two interfaces of one object, which is handed out as it is.
    struct Both : FakeVellSynthesis, FakeLoLeakage { };
    const auto make = odd([both = std::make_shared<Both>()](sdk::Key key, const std::shared_ptr<void>& control) {
        return key == FakeVellSynthesis::key || key == FakeLoLeakage::key ? both : control;
    });
    const auto outcome = conformance::check(guarantee("keys"), make(), quick());
    EXPECT_THAT(textOf(outcome), HasSubstr("vell-synthesis stands where lo-leakage does"));
}

struct LateEnd {
    const char* address;
    const char* finding;
};

void PrintTo(const LateEnd& end, std::ostream* stream)
{
    *stream << end.address;
}

class LateCompletion : public testing::TestWithParam<LateEnd> { };

TEST_P(LateCompletion, IsWaitedForNoLongerThanTheLimit)
{
    auto options = quick();
    options.writes = false;
    const auto make = simulated(GetParam().address);
    const auto outcome = conformance::check(guarantee("one-completion"), make(), options);
    EXPECT_EQ(outcome.verdict, Verdict::Broken);
    EXPECT_THAT(textOf(outcome), HasSubstr(GetParam().finding));
    const auto answers = conformance::check(guarantee("slots"), make(), options);
    EXPECT_EQ(answers.verdict, Verdict::Kept) << textOf(answers);
}

INSTANTIATE_TEST_SUITE_P(
    Ends, LateCompletion,
    testing::Values(LateEnd{"misbehave=keep,profile=pell", "file-memory fileList was not completed within 400 ms"},
                    LateEnd{"misbehave=at-end,profile=pell", "file-memory fileList was completed only after 400 ms"},
                    LateEnd{"misbehave=late,delay=600ms,profile=pell", "was completed only after 400 ms"}));

} // namespace tarn::tests
