#ifndef TRESK_TESTS_MESSAGECAPTURE_H
#define TRESK_TESTS_MESSAGECAPTURE_H

#include <QByteArray>
#include <QString>
#include <QVector>
#include <QtGlobal>

namespace tresktest {

/// Takes what goes to Qt's message streams as long as it lives, in place of printing it.
/// Only one at a time.
class MessageCapture {
public:
    struct Message {
        QtMsgType type;
        QByteArray category;
        QString text;
    };

    MessageCapture();
    ~MessageCapture();

    const QVector<Message>& messages() const { return m_messages; }
    /// How many messages of @p type came in @p category.
    int count(QtMsgType type, const QByteArray& category) const;

private:
    Q_DISABLE_COPY(MessageCapture)

    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text);

    static MessageCapture* s_current;
    QVector<Message> m_messages;
    QtMessageHandler m_before;
};

} // namespace tresktest

#endif
