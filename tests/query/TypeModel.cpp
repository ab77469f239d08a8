#include "LanguageModel.h"
#include "QueryText.h"

#include <QDate>
#include <QRegularExpression>
#include <QTime>

namespace tresktest {

namespace {

/// Attributes and their descriptors, as lists of words.
QString descriptorOfAttribute(const QString& attribute)
{
    static const QList<QPair<QString, QString>> table{
        {str("hash filepurpose md5 cmd5"), str("string,nonumber,nodate,noboolean")},
        {str("tagid filesize cfilesize parentid"), str("string,number,nodate,noboolean")},
        {str("timestamp lastmodified"), str("string,date,nonumber,noboolean")},
        {str("iswfs isfile embedded compressed isinfile isoutfile"),
         str("nostring,nonumber,nodate,boolean")},
        {str("treskrootfile title description comment command tool toolpath host user creator "
             "userattrs filename filepath filetype"),
         str("string,noboolean")},
        {str("any"), str("string")},
    };
    if (attribute.startsWith(str("user:")))
        return str("string");
    for (const auto& row : table) {
        if (row.first.split(QLatin1Char(' ')).contains(attribute))
            return row.second;
    }
    return QString();
}

bool readsAsNumber(QString text)
{
    text = withoutSurrogates(text.toLower());
    if (text.endsWith(str("kb")) || text.endsWith(str("mb")) || text.endsWith(str("gb")))
        text.chop(2);
    static const QRegularExpression number(str(R"(\A[+-]?[0-9.,]+(e[+-]?[0-9]+)?)"));
    bool valid = false;
    number.match(text).captured().toFloat(&valid);
    return valid;
}

bool readsAsDate(const QString& value)
{
    const QString text = withoutSurrogates(value);
    static const QString datePattern = str("([0-9]{4}|[0-9]{2})-([0-9]{1,2})-([0-9]{1,2})");
    static const QString timePattern = str("([0-9]{1,2}):([0-9]{1,2})(?::([0-9]{1,2}))?");
    static const QRegularExpression dateAndTime(str("\\A") + datePattern + str(" +") + timePattern);
    static const QRegularExpression date(str("\\A") + datePattern);
    static const QRegularExpression time(str("\\A") + timePattern);
    const auto isDate = [](const QRegularExpressionMatch& match) {
        return QDate(match.captured(1).toInt(), match.captured(2).toInt(),
                     match.captured(3).toInt())
            .isValid();
    };
    const auto isTime = [](const QRegularExpressionMatch& match, int first) {
        return QTime(match.captured(first).toInt(), match.captured(first + 1).toInt(),
                     match.captured(first + 2).toInt())
            .isValid();
    };
    const QRegularExpressionMatch both = dateAndTime.match(text);
    if (both.hasMatch())
        return isDate(both) && isTime(both, 4);
    if (date.match(text).hasMatch())
        return isDate(date.match(text));
    return time.match(text).hasMatch() && isTime(time.match(text), 1);
}

bool cannotBe(const QString& descriptor, const QString& type)
{
    return descriptor.contains(str("no") + type);
}

bool isCertain(const QString& descriptor, const QString& type)
{
    return !cannotBe(descriptor, type) && descriptor.contains(type);
}

class TypeModel {
public:
    explicit TypeModel(QList<tresk::QueryError>& errors)
        : m_errors(errors)
    {
    }

    QString check(const ModelNodePointer& node)
    {
        const ModelToken& token = node->token;
        if (token.kind == ModelToken::String)
            return str("string,boolean,%1,%2")
                .arg(readsAsNumber(token.value) ? str("number") : str("nonumber"),
                     readsAsDate(token.value) ? str("date") : str("nodate"));
        if (token.kind == ModelToken::Variable) {
            const QString descriptor = descriptorOfAttribute(token.attribute);
            if (!descriptor.isEmpty())
                return descriptor;
            report(node,
                   str("error at pos %1: attribute %2 does not exist.")
                       .arg(QString::number(node->position), token.attribute));
            return str("nostring,noboolean,nonumber,nodate");
        }
        QStringList operands;
        for (const ModelNodePointer& child : node->children)
            operands += check(child);
        const QStringList numbers{str("%isapprox")};
        const QStringList strings{str("%contains"), str("%matches"), str("== << !=")};
        const QStringList ordered{str("<"), str("<="), str(">"), str(">=")};
        const QStringList booleans{str("&&"), str("implizit &&"), str("||")};
        if (numbers.contains(token.op))
            checkAll(node, operands, str("number"), str("two numbers as arguments"));
        if (strings.contains(token.op))
            checkAll(node, operands, str("string"), str("two strings as arguments"));
        if (booleans.contains(token.op))
            checkAll(node, operands, str("boolean"), str("two booleans as arguments"));
        if (token.op == str("!"))
            checkAll(node, operands, str("boolean"), str("a boolean as argument"));
        if (ordered.contains(token.op))
            checkOrdered(node, operands);
        return str("boolean");
    }

private:
    void report(const ModelNodePointer& node, const QString& message)
    {
        m_errors += tresk::QueryError(message, tresk::QueryErrorTypeError, node->token.position,
                                      node->token.originalText);
    }

    void report(const ModelNodePointer& node, const char* grade, const QString& wanted,
                const QString& lines)
    {
        report(node,
               str("%1 at pos %2: operator %3 requires %4.%5")
                   .arg(str(grade), QString::number(node->token.position), node->token.op, wanted,
                        lines));
    }

    void checkAll(const ModelNodePointer& node, const QStringList& operands, const QString& type,
                  const QString& wanted)
    {
        QString wrong;
        QString doubtful;
        for (int i = 0; i < operands.size(); ++i) {
            const QString text = node->children.at(i)->text;
            if (cannotBe(operands.at(i), type))
                wrong += str("\n'%1' is not a %2.").arg(text, type);
            else if (!isCertain(operands.at(i), type))
                doubtful += str("\n'%1' may not be a %2.").arg(text, type);
        }
        if (!wrong.isEmpty())
            report(node, "error", wanted, wrong);
        else if (!doubtful.isEmpty())
            report(node, "warning", wanted, doubtful);
    }

    void checkOrdered(const ModelNodePointer& node, const QStringList& operands)
    {
        bool isPossible = false;
        bool isSure = false;
        QString wrong;
        QString doubtful;
        for (const QString& type : {str("number"), str("date")}) {
            isPossible = isPossible
                || !(cannotBe(operands.first(), type) || cannotBe(operands.last(), type));
            isSure = isSure
                || (isCertain(operands.first(), type) && isCertain(operands.last(), type));
        }
        for (int i = 0; i < operands.size(); ++i) {
            QStringList excluded;
            for (const QString& type : {str("number"), str("date")}) {
                if (cannotBe(operands.at(i), type))
                    excluded += type;
                else if (!isCertain(operands.at(i), type))
                    doubtful +=
                        str("\n'%1' may not be a %2.").arg(node->children.at(i)->text, type);
            }
            if (!excluded.isEmpty())
                wrong += str("\n'%1' is not a %2.")
                             .arg(node->children.at(i)->text, excluded.join(str(" or ")));
        }
        const QString wanted = str("either two numbers or two dates as arguments");
        if (!isPossible)
            report(node, "error", wanted, wrong);
        else if (!isSure)
            report(node, "warning", wanted, doubtful);
    }

    QList<tresk::QueryError>& m_errors;
};

} // namespace

void modelCheckTypes(const ModelNodePointer& root, QList<tresk::QueryError>& errors)
{
    const QString descriptor = TypeModel(errors).check(root);
    if (cannotBe(descriptor, str("boolean")))
        errors += tresk::QueryError(
            str("Result of query %1 is not a boolean value").arg(root->text),
            tresk::QueryErrorTypeError, root->position, root->text);
}

} // namespace tresktest
