#include <simulator/calibrationslot.h>

#include <QJsonObject>

#include <utility>

namespace tarn::simulator {

CalibrationSlot::CalibrationSlot(Storage& storage, QString section)
    : m_storage{storage}
    , m_section{std::move(section)}
{
}

CalibrationSlot::Status CalibrationSlot::status() const
{
    const utils::MutexLock lock{m_mutex};
    if (m_isSaving)
        return Status::Saving;
    if (!m_hasData)
        return Status::Empty;
    return m_isValid ? Status::Valid : Status::Invalid;
}

bool CalibrationSlot::isValid() const
{
    const utils::MutexLock lock{m_mutex};
    return m_hasData && m_isValid;
}

void CalibrationSlot::startSaving()
{
    setSaving(true);
}

void CalibrationSlot::tellProgress(Progress progress) const
{
    for (const auto& react : progressed)
        react(progress);
}

void CalibrationSlot::endSaving()
{
    setSaving(false);
}

void CalibrationSlot::setSaving(bool isSaving)
{
    {
        const utils::MutexLock lock{m_mutex};
        m_isSaving = isSaving;
    }
    for (const auto& react : changed)
        react();
}

QByteArray CalibrationSlot::load() const
{
    const auto section = m_storage.section(m_section);
    if (section.isUndefined())
        return {};
    const auto digest = section[QStringLiteral("sha256")];
    if (!digest.isString())
        refuse();
    const auto bytes = m_storage.block(digest.toString());
    if (bytes.isEmpty())
        refuse();
    return bytes;
}

std::error_code CalibrationSlot::save(const QByteArray& bytes) const
{
    const auto digest = m_storage.nameOf(bytes);
    return m_storage.save(m_section, QJsonObject{{QStringLiteral("sha256"), digest}}, {{digest, bytes}});
}

void CalibrationSlot::refuse() const
{
    m_storage.refuse(QStringLiteral("\"%1\" does not refer to calibration data of its kind").arg(m_section));
}

void CalibrationSlot::setContents(bool hasData, bool isValid)
{
    const utils::MutexLock lock{m_mutex};
    m_hasData = hasData;
    m_isValid = isValid;
}

} // namespace tarn::simulator
