#include <simulator/settinglimits.h>

#include <QLocale>
#include <QString>

#include <stdexcept>
#include <string>

namespace tarn::simulator {

namespace {

std::string text(double number)
{
    return QString::number(number, 'g', QLocale::FloatingPointShortest).toStdString();
}

} // namespace

void Within::operator()(const char* name, double value) const
{
    const bool isWithin = value >= m_lowest && value <= m_highest;
    if (!isWithin)
        throw std::out_of_range{std::string{"the "} + name + ' ' + text(value) + " is not from " + text(m_lowest)
                                + " to " + text(m_highest)};
}

void OneOf::operator()(const char* name, double value) const
{
    std::string list;
    for (const auto element : m_list) {
        if (element == value)
            return;
        list += (list.empty() ? "" : ", ") + text(element);
    }
    throw std::invalid_argument{std::string{"the "} + name + ' ' + text(value) + " is not one of " + list};
}

} // namespace tarn::simulator
