#pragma once

#include <QByteArray>
#include <QString>

#include <ostream>

/// How GoogleTest shows the texts of Qt; found by argument-dependent lookup.
inline void PrintTo(const QString& text, std::ostream* stream)
{
    *stream << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QByteArray& bytes, std::ostream* stream)
{
    *stream << '"' << bytes.toStdString() << '"';
}
