#include <simulator/correctionmodel.h>

#include <bit>
#include <cstdint>
#include <stdexcept>

namespace tarn::simulator {

namespace {

using enum sdk::CorrectionFlag;
using Flag = sdk::CorrectionFlag;
using Status = CalibrationSlot::Status;

const QString sectionName = QStringLiteral("corrections");

constexpr auto powerCorrections = SourcePower | ReceiverPower | AttenuatorSteps;
constexpr auto ifswCorrections = IfSwitch | ReceiverLinearity;
constexpr auto factoryCorrections = powerCorrections | ifswCorrections;
constexpr auto fixedCorrections = AdcLinearity | ChannelAlignment | ReferenceOscillator;
constexpr auto deliveredCorrections = PortExtension | Crosstalk | Temperature | fixedCorrections;

constexpr std::uint16_t bits(Flag set)
{
    return static_cast<std::uint16_t>(set);
}

constexpr Flag without(Flag set, Flag others)
{
    return static_cast<Flag>(bits(set) & ~bits(others));
}

Flag load(const Storage& storage)
{
    const auto section = storage.section(sectionName);
    if (section.isUndefined())
        return deliveredCorrections;
    constexpr auto all = System | factoryCorrections | deliveredCorrections;
    const auto number = section.toInt(-1);
    const auto enabled = static_cast<Flag>(number);
    if (number < 0 || number > bits(all) || (enabled & all) != enabled)
        storage.refuse(QStringLiteral("\"corrections\" is not a set of corrections"));
    return enabled;
}

/// The corrections whose calibration `has`.
template <class Predicate>
Flag correctionsOf(const Calibrations& calibrations, Predicate has)
{
    return (has(calibrations.systemTerms) ? System : None) | (has(calibrations.power) ? powerCorrections : None)
        | (has(calibrations.ifsw) ? ifswCorrections : None);
}

} // namespace

CorrectionModel::CorrectionModel(Storage& storage, const Calibrations& calibrations)
    : m_storage{storage}
    , m_calibrations{calibrations}
    , m_enabled{load(storage)}
{
}

Flag CorrectionModel::supported() const
{
    return System | deliveredCorrections | (m_calibrations.limits().hasFactoryCalibrations ? factoryCorrections : None);
}

Flag CorrectionModel::valid() const
{
    const auto calibrated = correctionsOf(m_calibrations, [](const auto& slot) { return slot.isValid(); });
    return supported() & (deliveredCorrections | calibrated);
}

Flag CorrectionModel::enabled() const
{
    const utils::MutexLock lock{m_mutex};
    return supported() & m_enabled;
}

Flag CorrectionModel::modifiable() const
{
    const auto busy = correctionsOf(m_calibrations, [](const auto& slot) { return slot.status() == Status::Saving; });
    return without(supported(), fixedCorrections | busy);
}

void CorrectionModel::setEnabled(Flag correction, bool enabled, const std::function<void()>& changed)
{
    const utils::MutexLock lock{m_mutex};
    if (!std::has_single_bit(bits(correction)) || (valid() & modifiable() & correction) == None)
        return;
    const auto switched = enabled ? m_enabled | correction : without(m_enabled, correction);
    if (switched == m_enabled)
        return;
    if (m_storage.save(sectionName, bits(switched), {}))
        throw std::runtime_error{"the switch of the correction could not be saved and stays as it was; check that the "
                                 "state folder is there and its disk is not full"};
    m_enabled = switched;
    changed();
}

} // namespace tarn::simulator
