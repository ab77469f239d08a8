#include "DebugLines.h"

namespace tresktest {

QStringList debugLines(const MessageCapture& capture)
{
    QStringList lines;
    for (const MessageCapture::Message& message : capture.messages()) {
        if (message.type == QtDebugMsg && message.category == "tresk")
            lines += message.text;
        else
            lines += QStringLiteral("[%1 %2] %3")
                         .arg(QString::fromLatin1(message.category), QString::number(message.type),
                              message.text);
    }
    return lines;
}

} // namespace tresktest
