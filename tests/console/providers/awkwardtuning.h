#pragma once

#include "awkwardstuck.h"

#include <sdk/service/iquillpowercontrol.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace awkward {

/// Forgets what is set, throws with a text that must not be trusted, is one that others change, too, or has returned
/// with another setting.
class QuillPower final : public sdk::service::IQuillPowerControl {
public:
    explicit QuillPower(std::string behaviour)
        : m_behaviour{std::move(behaviour)}
        , m_loPower{m_behaviour == "returned" ? std::uint8_t{20} : std::uint8_t{10}}
    {
    }

    std::uint8_t loPower() override
    {
        enter("quill");
        return m_loPower;
    }
    std::uint8_t rfPower() override { return get<std::uint8_t>(0); }
    void setLoPower(std::uint8_t code) override
    {
        enter("quill-set");
        if (m_behaviour == "throwing")
            throw std::runtime_error{"the amplifier \x1b[31mcaught fire"};
        if (m_behaviour != "forgetful")
            m_loPower = code;
    }
    void setRfPower(std::uint8_t code) override { set(0, code); }
    std::uint8_t minPowerCode() override { return 1; }
    std::uint8_t maxPowerCode() override { return 250; }
    void setSyntPowerMode(SyntPowerMode mode) override { set(1, mode); }
    SyntPowerMode syntPowerMode() override { return get<SyntPowerMode>(1); }
    void setAttenuationMode(AttenuationMode mode) override { set(2, mode); }
    AttenuationMode attenuationMode() override { return get<AttenuationMode>(2); }
    void setAttenuationStep(int step) override { set(3, step); }
    int attenuationStep() override { return get<int>(3); }
    void setStepAttenuatorMode(StepAttenuatorMode mode) override { set(4, mode); }
    StepAttenuatorMode stepAttenuatorMode() override { return get<StepAttenuatorMode>(4); }
    int defaultAttenuationStep() override { return 5; }
    void setDiscreteAttenuatorEnabled(bool enabled) override { set(5, enabled); }
    bool discreteAttenuatorEnabled() override { return get<bool>(5); }
    void setDiscreteAttenuatorMode(DiscreteAttenuatorMode mode) override { set(6, mode); }
    DiscreteAttenuatorMode discreteAttenuatorMode() override { return get<DiscreteAttenuatorMode>(6); }
    void setCommonAttenuationMode(CommonAttenuationMode mode) override { set(7, mode); }
    CommonAttenuationMode commonAttenuationMode() override { return get<CommonAttenuationMode>(7); }
    void setCommonAttenuationStep(int step) override { set(8, step); }
    int commonAttenuationStep() override { return get<int>(8); }
    void setAmpTPort2(AmpGain gain) override { set(9, gain); }
    AmpGain ampTPort2() override { return get<AmpGain>(9); }
    void setAmpRPort1(AmpGain gain) override { set(10, gain); }
    AmpGain ampRPort1() override { return get<AmpGain>(10); }
    void setAmpTPort1(AmpGain gain) override { set(11, gain); }
    AmpGain ampTPort1() override { return get<AmpGain>(11); }
    void setRfPowerCodes(const std::vector<std::uint8_t>& /*codes*/) override
    {
        enter("quill-load");
        if (m_behaviour == "throwing")
            throw std::runtime_error{"the table \x1b[31mburns"};
    }
    void setLoPowerCodes(const std::vector<std::uint8_t>& /*codes*/) override { }
    void reset() override
    {
        enter("quill-reset");
        for (auto& value : m_values)
            value = 0;
    }

    /// One more than before, as if somebody else had set it.
    void live()
    {
        if (m_behaviour == "shared")
            ++m_loPower;
    }

private:
    template <class Value>
    Value get(std::size_t which) const
    {
        return static_cast<Value>(m_values.at(which).load());
    }

    template <class Value>
    void set(std::size_t which, Value value)
    {
        m_values.at(which) = static_cast<int>(value);
    }

    const std::string m_behaviour;
    std::atomic<std::uint8_t> m_loPower;
    std::array<std::atomic<int>, 12> m_values{};
};

} // namespace awkward
