#include <console/longrequest.h>

#include <QEventLoop>
#include <QSocketNotifier>

#include <thread>

namespace tarn::console {

LongRequest::LongRequest(const Output& output, const std::optional<OperationName>& name, InterruptWarning* warning)
    : m_warning{warning}
{
    if (name)
        m_display.emplace(output, *name);
}

void LongRequest::onProgress(const Progress& progress)
{
    m_postbox.post([this, progress] {
        m_last = progress;
        if (m_display)
            m_display->show(progress);
    });
}

void LongRequest::attend(const std::function<void()>& request)
{
    QEventLoop loop;
    std::optional<QSocketNotifier> interrupt;
    if (m_warning) {
        interrupt.emplace(m_warning->descriptor(), QSocketNotifier::Read);
        connect(&*interrupt, &QSocketNotifier::activated, this, [&] {
            interrupt->setEnabled(false); // the descriptor stays readable: once is enough
            if (m_display)
                m_display->makeRoom();
            m_warning->warn();
        });
    }
    const std::jthread worker{[&] {
        request();
        // After all progress of the request, so that nothing of it is left unseen.
        m_postbox.post([&loop] { loop.quit(); });
    }};
    loop.exec();
}

} // namespace tarn::console
