#include "SystemText.h"

#include <algorithm>
#include <clocale>
#include <cstring>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QTextCodec>
#endif

namespace tresk::cli {

namespace {

bool isByte(QChar c)
{
    return c.unicode() >= 0xDC80 && c.unicode() <= 0xDCFF;
}

} // namespace

void useUtf8ForSystemText()
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    // Qt 6 does so by itself. Qt 5 asks the locale, and in the "C" locale loses every
    // character of a path that is not ASCII.
    const int mibOfUtf8 = 106;
    QTextCodec::setCodecForLocale(QTextCodec::codecForMib(mibOfUtf8));
#endif
}

void useEnglishSystemMessages()
{
    std::setlocale(LC_ALL, "C");
}

QString fromSystem(const QByteArray& bytes)
{
    QString text = QString::fromUtf8(bytes);
    if (text.toUtf8() == bytes)
        return text;
    text.clear();
    for (const char byte : bytes) {
        const auto code = static_cast<uchar>(byte);
        text += QChar(code < 0x80 ? code : 0xDC00 + code);
    }
    return text;
}

QByteArray toSystem(const QString& text)
{
    if (!isUndecoded(text))
        return text.toUtf8();
    QByteArray bytes;
    for (const QChar c : text)
        bytes += static_cast<char>(c.unicode() & 0xFF);
    return bytes;
}

bool isUndecoded(const QString& text)
{
    // In decoded text such a character never comes without the one that makes it a pair.
    const auto first = std::find_if(text.begin(), text.end(), isByte);
    return first != text.end() && (first == text.begin() || !(first - 1)->isHighSurrogate());
}

QString systemError(int code)
{
    return QString::fromUtf8(std::strerror(code));
}

} // namespace tresk::cli
