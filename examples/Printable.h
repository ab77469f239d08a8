#ifndef TRESK_EXAMPLES_PRINTABLE_H
#define TRESK_EXAMPLES_PRINTABLE_H

#include <QChar>
#include <QString>
#include <QVector>

#include <string>

/// @p text of a document in UTF-8, for a terminal: what is no visible character becomes "?", since
/// whoever wrote the document may have put control characters into it.
inline std::string printable(const QString& text)
{
    std::string result;
    const auto characters = text.toUcs4();
    for (const auto character : characters) {
        const char32_t c = QChar::isPrint(character) ? character : U'?';
        result += QString::fromUcs4(&c, 1).toStdString();
    }
    return result;
}

#endif
