#ifndef TRESK_TESTS_ARGFILEMODEL_H
#define TRESK_TESTS_ARGFILEMODEL_H

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

/// A second reading of argument files to compare the library's with: by patterns and by lists that
/// are made anew in each step. Takes a time quadratic in the text's length.
namespace tresktest {

struct ArgfileModelToken {
    QString text;
    bool isSeparator;
    int position;
    QString originalText;
};

QList<ArgfileModelToken> modelHighlighterList(const QString& text);
QStringList modelArguments(const QString& text, const QHash<QString, QString>* variables);

} // namespace tresktest

#endif
