#pragma once

#include <QMetaMethod>
#include <QObject>

namespace tarn::tests {

/// Counts all signals of an object, on the threads that emit them.
class SignalCounter final : public QObject {
public:
    SignalCounter(QObject& sender, int& count)
        : m_count{count}
    {
        const auto& meta = *sender.metaObject();
        for (int i = slot(); i != meta.methodCount(); ++i) {
            if (meta.method(i).methodType() == QMetaMethod::Signal)
                QMetaObject::connect(&sender, i, this, slot(), Qt::DirectConnection);
        }
    }

    /// Does what the code that moc makes for a slot would do.
    int qt_metacall(QMetaObject::Call call, int method, void** arguments) override
    {
        method = QObject::qt_metacall(call, method, arguments);
        if (method == 0 && call == QMetaObject::InvokeMetaMethod)
            ++m_count;
        return method - 1;
    }

private:
    /// The first number that `QObject` itself leaves free.
    static int slot() { return QObject::staticMetaObject.methodCount(); }

    int& m_count;
};

} // namespace tarn::tests
