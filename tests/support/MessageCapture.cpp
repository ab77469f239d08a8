#include "MessageCapture.h"

#include <algorithm>

namespace tresktest {

MessageCapture* MessageCapture::s_current = nullptr;

MessageCapture::MessageCapture()
{
    s_current = this;
    m_before = qInstallMessageHandler(handle);
}

MessageCapture::~MessageCapture()
{
    qInstallMessageHandler(m_before);
    s_current = nullptr;
}

int MessageCapture::count(QtMsgType type, const QByteArray& category) const
{
    return static_cast<int>(
        std::count_if(m_messages.begin(), m_messages.end(), [&](const Message& message) {
            return message.type == type && message.category == category;
        }));
}

void MessageCapture::handle(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    s_current->m_messages.append({type, context.category, text});
}

} // namespace tresktest
