#include <console/postbox.h>

#include <utility>

namespace tarn::console {

void Postbox::post(std::function<void()> function)
{
    {
        const utils::MutexLock lock{m_mutex};
        m_functions.push_back(std::move(function));
    }
    QMetaObject::invokeMethod(this, "deliver", Qt::QueuedConnection);
}

void Postbox::deliver()
{
    std::function<void()> function;
    {
        const utils::MutexLock lock{m_mutex};
        function = std::move(m_functions.front());
        m_functions.pop_front();
    }
    function();
}

} // namespace tarn::console
