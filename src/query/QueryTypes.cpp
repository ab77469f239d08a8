#include "query/QueryTypes.h"

#include "query/QueryParser.h"
#include "query/QueryValues.h"

#include <QHash>
#include <QStringList>

#include <vector>

namespace tresk {

namespace {

/// Findings repeat parts of the query, so that a long one could have any amount of them.
constexpr qsizetype mostFindingText = qsizetype(16) * 1024 * 1024; // characters

enum Type { String = 1, Number = 2, Date = 4, Boolean = 8 };

/// Of which types a value is, and of which it cannot be; of the others it may be.
struct TypeDescriptor {
    int is = 0;
    int isNot = 0;
};

const TypeDescriptor textType{String, Boolean};
const TypeDescriptor plainText{String, Number | Date | Boolean};
const TypeDescriptor dateText{String | Date, Number | Boolean};
const TypeDescriptor numberText{String | Number, Date | Boolean};
const TypeDescriptor flagType{Boolean, String | Number | Date};
const TypeDescriptor anyText{String, 0};
const TypeDescriptor conditionType{Boolean, 0};
const TypeDescriptor nothingType{0, String | Number | Date | Boolean};

const QHash<QString, TypeDescriptor>& attributeTypes()
{
    static const QHash<QString, TypeDescriptor> types{
        {QStringLiteral("hash"), plainText},
        {QStringLiteral("tagid"), numberText},
        {QStringLiteral("treskrootfile"), textType},
        {QStringLiteral("timestamp"), dateText},
        {QStringLiteral("title"), textType},
        {QStringLiteral("description"), textType},
        {QStringLiteral("comment"), textType},
        {QStringLiteral("command"), textType},
        {QStringLiteral("tool"), textType},
        {QStringLiteral("toolpath"), textType},
        {QStringLiteral("host"), textType},
        {QStringLiteral("user"), textType},
        {QStringLiteral("creator"), textType},
        {QStringLiteral("iswfs"), flagType},
        {QStringLiteral("isfile"), flagType},
        {QStringLiteral("userattrs"), textType},
        {QStringLiteral("filename"), textType},
        {QStringLiteral("filepath"), textType},
        {QStringLiteral("filetype"), textType},
        {QStringLiteral("lastmodified"), dateText},
        {QStringLiteral("embedded"), flagType},
        {QStringLiteral("compressed"), flagType},
        {QStringLiteral("filepurpose"), plainText},
        {QStringLiteral("isinfile"), flagType},
        {QStringLiteral("isoutfile"), flagType},
        {QStringLiteral("filesize"), numberText},
        {QStringLiteral("cfilesize"), numberText},
        {QStringLiteral("md5"), plainText},
        {QStringLiteral("cmd5"), plainText},
        {QStringLiteral("parentid"), numberText},
        {QStringLiteral("any"), anyText},
    };
    return types;
}

TypeDescriptor typeOfString(const QString& value, const QDate& day)
{
    TypeDescriptor type{String | Boolean, 0};
    (readNumber(value) ? type.is : type.isNot) |= Number;
    (readDate(value, day) ? type.is : type.isNot) |= Date;
    return type;
}

QString nameOf(Type type)
{
    switch (type) {
    case String:
        return QStringLiteral("string");
    case Number:
        return QStringLiteral("number");
    case Date:
        return QStringLiteral("date");
    case Boolean:
        break;
    }
    return QStringLiteral("boolean");
}

/// Computes the types of all nodes, from the leaves up, and checks each operator on the way.
class TypeCheck {
public:
    TypeCheck(const QueryTree& tree, QList<QueryError>& errors)
        : m_tree(tree)
        , m_errors(errors)
    {
        m_types.reserve(tree.nodes.size());
    }

    void run()
    {
        for (const QueryNode& node : m_tree.nodes) {
            m_types.push_back(typeOf(node));
            if (node.token.isOperator())
                checkOperator(node);
            if (m_findingText > mostFindingText)
                return giveUp();
        }
        checkRoot();
    }

private:
    const TypeDescriptor& typeAt(int place) const { return m_types[std::size_t(place)]; }
    QString textAt(int place) const { return m_tree.textOf(m_tree.nodes[std::size_t(place)]); }

    TypeDescriptor typeOf(const QueryNode& node)
    {
        if (node.token.isString())
            return typeOfString(node.token.value(), m_today);
        if (!node.token.isVariable())
            return conditionType;
        const QString attribute = node.token.variableAttribute();
        if (attribute.startsWith(QLatin1String("user:")))
            return anyText;
        const auto type = attributeTypes().constFind(attribute);
        if (type != attributeTypes().constEnd())
            return *type;
        report(node.token,
               translate("error at pos %1: attribute %2 does not exist.")
                   .arg(QString::number(node.begin), attribute));
        return nothingType;
    }

    void checkOperator(const QueryNode& node)
    {
        // "==" and "!=" take operands of any type: they are in the list of those that want texts,
        // but as the one entry "== << !=", which is no operator.
        const QueryToken& token = node.token;
        const QString op = token.operatorText();
        if (op == QLatin1String("%isapprox"))
            checkOperands(node, Number);
        else if (op == QLatin1String("%contains") || op == QLatin1String("%matches"))
            checkOperands(node, String);
        else if (op.startsWith(u'<') || op.startsWith(u'>'))
            checkNumbersOrDates(node);
        else if (token.isConjunction() || token.isDisjunction() || token.isNegation())
            checkOperands(node, Boolean);
    }

    std::vector<int> operandsOf(const QueryNode& node) const
    {
        return node.right < 0 ? std::vector<int>{node.left}
                              : std::vector<int>{node.left, node.right};
    }

    /// Operators whose operands, one or two, all have to be of type @p type.
    void checkOperands(const QueryNode& node, Type type)
    {
        QString wrong;
        QString doubtful;
        for (const int operand : operandsOf(node)) {
            if (typeAt(operand).isNot & type)
                wrong += isNotA(operand, nameOf(type));
            else if (!(typeAt(operand).is & type))
                doubtful += mayNotBeA(operand, nameOf(type));
        }
        if (wrong.isEmpty() && doubtful.isEmpty())
            return;
        const QString message = node.right < 0
            ? translate("%1 at pos %2: operator %3 requires a %4 as argument.")
            : translate("%1 at pos %2: operator %3 requires two %4s as arguments.");
        const QString grade = wrong.isEmpty() ? QStringLiteral("warning") : QStringLiteral("error");
        report(node.token,
               message.arg(grade, QString::number(node.token.position()), node.token.operatorText(),
                           nameOf(type))
                   + (wrong.isEmpty() ? doubtful : wrong));
    }

    /// Operators whose operands have to be two numbers or two dates.
    void checkNumbersOrDates(const QueryNode& node)
    {
        const TypeDescriptor& left = typeAt(node.left);
        const TypeDescriptor& right = typeAt(node.right);
        const int impossible = left.isNot | right.isNot;
        const int certain = left.is & right.is;
        QString lines;
        QString grade;
        if ((impossible & Number) && (impossible & Date)) {
            grade = QStringLiteral("error");
            lines = wrongLines(node.left) + wrongLines(node.right);
        } else if (!(certain & (Number | Date))) {
            grade = QStringLiteral("warning");
            lines = doubtfulLines(node.left) + doubtfulLines(node.right);
        } else {
            return;
        }
        const QString message = translate("%1 at pos %2: operator %3 requires either two numbers "
                                          "or two dates as arguments.");
        report(node.token,
               message.arg(grade, QString::number(node.token.position()), node.token.operatorText())
                   + lines);
    }

    QString wrongLines(int operand) const
    {
        QStringList types;
        for (const Type type : {Number, Date}) {
            if (typeAt(operand).isNot & type)
                types.append(nameOf(type));
        }
        return types.isEmpty() ? QString() : isNotA(operand, types.join(QStringLiteral(" or ")));
    }

    QString doubtfulLines(int operand) const
    {
        QString lines;
        for (const Type type : {Number, Date}) {
            if (!((typeAt(operand).is | typeAt(operand).isNot) & type))
                lines += mayNotBeA(operand, nameOf(type));
        }
        return lines;
    }

    QString isNotA(int operand, const QString& type) const
    {
        return translate("\n'%1' is not a %2.").arg(textAt(operand), type);
    }

    QString mayNotBeA(int operand, const QString& type) const
    {
        return translate("\n'%1' may not be a %2.").arg(textAt(operand), type);
    }

    /// The whole query has to be a condition, or a text that can stand for one.
    void checkRoot()
    {
        const QueryNode& root = m_tree.nodes.back();
        if (!(m_types.back().isNot & Boolean))
            return;
        const QString shown = m_tree.textOf(root);
        add({translate("Result of query %1 is not a boolean value").arg(shown), QueryErrorTypeError,
             root.begin, shown});
    }

    void report(const QueryToken& token, const QString& message)
    {
        add({message, QueryErrorTypeError, token.position(), token.originalText()});
    }

    void add(const QueryError& error)
    {
        m_findingText += error.errorMessage().size() + error.length();
        m_errors.append(error);
    }

    void giveUp()
    {
        m_errors.clear();
        m_errors.append(tooComplex(m_tree.query, 0));
    }

    const QueryTree& m_tree;
    QList<QueryError>& m_errors;
    std::vector<TypeDescriptor> m_types; ///< of the nodes so far
    qsizetype m_findingText = 0;
    QDate m_today = today();
};

} // namespace

bool checkQueryTypes(const QueryTree& tree, QList<QueryError>& errors)
{
    TypeCheck(tree, errors).run();
    return !containsErrors(errors);
}

} // namespace tresk
