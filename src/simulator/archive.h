#pragma once

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>

#include <complex>
#include <concepts>
#include <cstdint>
#include <vector>

namespace tarn::simulator {

/// Whether `T` is `U`, constant or not. For the functions that list the members of a record to both archives:
///
///     void fields(auto& archive, Is<Record> auto& record) { archive(record.first, record.second); }
template <class T, class U>
concept Is = std::same_as<std::remove_const_t<T>, U>;

/// Turns values into bytes: numbers in network byte order, and before a list the number of its elements in 64 bits.
class Writer {
public:
    /// Writes the values.
    template <class... Values>
    explicit Writer(const Values&... values)
    {
        operator()(values...);
    }

    template <class... Values>
    void operator()(const Values&... values)
    {
        (write(values), ...);
    }

    [[nodiscard]] const QByteArray& bytes() const { return m_bytes; }

private:
    void write(double value) { m_stream << value; }
    void write(float value) { m_stream << value; }
    void write(bool value) { m_stream << value; }
    void write(std::int32_t value) { m_stream << qint32{value}; }
    void write(std::uint32_t value) { m_stream << quint32{value}; }
    void write(std::int64_t value) { m_stream << qint64{value}; }
    void write(std::complex<double> value) { operator()(value.real(), value.imag()); }

    template <class T>
    void write(const std::vector<T>& list)
    {
        m_stream << quint64{list.size()};
        for (const auto& element : list)
            write(element);
    }

    template <class T>
    void write(const T& record)
    {
        fields(*this, record);
    }

    QByteArray m_bytes;
    QDataStream m_stream{&m_bytes, QIODevice::WriteOnly};
};

/// Gets the values back. Bytes that no `Writer` has made give any values, but never more than they have room for.
class Reader {
public:
    explicit Reader(const QByteArray& bytes)
        : m_stream{bytes}
    {
    }

    template <class... Values>
    void operator()(Values&... values)
    {
        (read(values), ...);
    }

    /// Whether the bytes were those of the values that were read, no more and no less.
    [[nodiscard]] bool isComplete() const { return m_stream.status() == QDataStream::Ok && m_stream.atEnd(); }

private:
    void read(double& value) { m_stream >> value; }
    void read(float& value) { m_stream >> value; }
    void read(bool& value) { m_stream >> value; }
    void read(std::int32_t& value) { m_stream >> value; }
    void read(std::uint32_t& value) { m_stream >> value; }

    void read(std::int64_t& value)
    {
        qint64 number = 0;
        m_stream >> number;
        value = number;
    }

    void read(std::complex<double>& value)
    {
        double real = 0.0;
        double imaginary = 0.0;
        operator()(real, imaginary);
        value = {real, imaginary};
    }

    template <class T>
    void read(std::vector<T>& list)
    {
        quint64 size = 0;
        m_stream >> size;
        if (size > static_cast<quint64>(m_stream.device()->bytesAvailable())) { // every element takes one at least
            m_stream.setStatus(QDataStream::ReadCorruptData);
            return;
        }
        list.resize(size);
        for (auto& element : list)
            read(element);
    }

    template <class T>
    void read(T& record)
    {
        fields(*this, record);
    }

    QDataStream m_stream;
};

} // namespace tarn::simulator
