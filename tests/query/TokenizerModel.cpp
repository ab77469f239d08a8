#include "LanguageModel.h"
#include "QueryText.h"

#include <QStringList>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QRegExp>
#else
#include <QRegularExpression>
#endif

namespace tresktest {

namespace {

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
/// Compiling takes far longer than matching.
const QRegularExpression& compiled(const QString& alternative)
{
    static QHash<QString, QRegularExpression> all;
    if (!all.contains(alternative)) {
        QString pattern = alternative;
        pattern.replace(QLatin1Char('$'), str("\\z"));
        all.insert(alternative,
                   QRegularExpression(pattern, QRegularExpression::UseUnicodePropertiesOption));
    }
    return *all.constFind(alternative);
}
#endif

/// The length of the match of @p alternatives, of which the longest counts, that a search from
/// @p from on finds right there; -1 if it finds it elsewhere or not at all.
int matchAt(const QString& text, int from, const QStringList& alternatives)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    const QRegExp pattern(alternatives.join(QLatin1Char('|')));
    return pattern.indexIn(text, from) == from ? pattern.matchedLength() : -1;
#else
    const QString wellFormed = withoutSurrogates(text); // which are like any other letter here
    int longest = -1;
    for (const QString& alternative : alternatives) {
        const QRegularExpression& pattern = compiled(alternative);
        const QRegularExpressionMatch match = pattern.match(wellFormed, from);
        if (match.hasMatch() && match.capturedStart() == from)
            longest = qMax(longest, int(match.capturedLength()));
    }
    return longest;
#endif
}

ModelToken variableOf(const QString& name, const QString& attribute)
{
    return {ModelToken::Variable, name, attribute, {}, {}, {}, -1};
}

ModelToken userAttribute(const QString& match)
{
    const int brace = int(match.indexOf(str(":user{")));
    const QString key = match.mid(brace + 6, match.size() - brace - 7);
    return variableOf(match.left(brace), str("user:") + key);
}

ModelToken attribute(const QString& match)
{
    QStringList parts = match.split(QLatin1Char(':'));
    const QString name = parts.takeFirst();
    return variableOf(name, parts.join(QLatin1Char(':')));
}

ModelToken quoted(const QString& match)
{
    QString value = match.mid(1, match.size() - 2);
    value.replace(str("\\\\"), str("\\"));
    value.replace(str("\\") + match.at(0), QString(match.at(0)));
    return {ModelToken::String, {}, {}, value, {}, {}, -1};
}

ModelToken bareWord(const QString& match)
{
    return {ModelToken::String, {}, {}, match, {}, {}, -1};
}

ModelToken operatorOf(const QString& match)
{
    return modelOperator(match.toLower().trimmed(), {}, -1);
}

struct Pattern {
    QStringList alternatives;
    ModelToken (*make)(const QString& match);
};

const QList<Pattern>& patterns()
{
    static const QList<Pattern> all{
        {{str("[ \t\n\r]+")}, nullptr},
        {{str(R"([a-zA-Z]*\:user\{([^}\\]|\\\\|\\\})+\})")}, userAttribute},
        {{str(R"([a-zA-Z]*\:[a-zA-Z0-9]+(\:[a-zA-Z0-9]+)?)")}, attribute},
        {{str(R"('((?:[^'\\]|\\\\|\\')*)')")}, quoted},
        {{str("\"((?:[^\"\\\\]|\\\\\\\\|\\\\\")*)\"")}, quoted},
        {{str(R"([^:&|!%=><\s'")(]+)")}, bareWord},
        {{str("&&"), str(R"(\|\|)"), str("=="), str("!="), str("<"), str("<="), str(">"), str(">="),
          str(R"(%contains\s)"), str("%contains$"), str(R"(%matches\s)"), str("%matches$"),
          str(R"(%isapprox\s)"), str("%isapprox$")},
         operatorOf},
        {{str(R"(\!)")}, operatorOf},
        {{str(R"(\()"), str(R"(\))")}, operatorOf},
    };
    return all;
}

tresk::QueryError invalidInput(const QString& query, int position)
{
    QString shown = query.mid(position, 20);
    if (query.size() > position + 20)
        shown += str("...");
    return {str("Error while reading text at position %1 (%2):\n input seems to be invalid")
                .arg(QString::number(position), shown),
            tresk::QueryErrorTypeError, position, query.mid(position)};
}

} // namespace

QList<ModelToken> modelTokenize(const QString& query, QList<tresk::QueryError>& errors)
{
    QList<ModelToken> tokens;
    int position = 0;
    while (position < query.size()) {
        int length = -1;
        for (const Pattern& pattern : patterns()) {
            length = matchAt(query, position, pattern.alternatives);
            if (length < 0)
                continue;
            if (pattern.make) {
                ModelToken token = pattern.make(query.mid(position, length));
                token.originalText = query.mid(position, length);
                token.position = position;
                tokens += token;
                if (pattern.make == operatorOf)
                    length = int(token.op.size());
            }
            break;
        }
        if (length < 0) {
            errors += invalidInput(query, position);
            return {};
        }
        position += length;
    }
    return tokens;
}

} // namespace tresktest
