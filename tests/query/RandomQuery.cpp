#include "RandomQuery.h"

#include "Records.h"

#include <QRandomGenerator>

#include <algorithm>

namespace tresktest {

namespace {

const QStringList& texts()
{
    static const QStringList list = {
        utf8("report"), utf8("Report.pdf"), utf8("REPORT.PDF"), utf8("letter"),      utf8("a"),
        utf8(""),       utf8("true"),       utf8("10"),         utf8("10.0"),        utf8("1kb"),
        utf8("1024"),   utf8("InFile"),     utf8("2019-03-12"), utf8("2019-3-12 x"),
    };
    return list;
}

const QStringList& patterns()
{
    static const QStringList list = {utf8("*"),      utf8("*.pdf"), utf8("r?port*"),
                                     utf8("*[0-9]"), utf8("[^a]*"), utf8("?"),
                                     utf8("[ab]"),   utf8("["),     utf8("*-?3-12*")};
    return list;
}

const QStringList& numbers()
{
    static const QStringList list = {utf8("0"),    utf8("10"),     utf8("1000"),  utf8("1kb"),
                                     utf8("1024"), utf8("1005"),   utf8("1.5kb"), utf8("-1"),
                                     utf8("1"),    utf8("2 files")};
    return list;
}

const QStringList& dates()
{
    static const QStringList list = {utf8("2019-03-12"), utf8("2019-03-12 14:33"),
                                     utf8("19-3-12"),    utf8("10:30"),
                                     utf8("10:30:01"),   utf8("2019-3-12  0:00")};
    return list;
}

const char* const textAttributes =
    "title comment tool filename filepurpose hash tagid filesize any user:project";

} // namespace

bool holds(const QueryModel& model, const ModelCondition& condition, const ModelPlaces& places)
{
    const auto childHolds = [&](const ModelCondition& child) {
        return holds(model, child, places);
    };
    switch (condition.kind) {
    case ModelCondition::Literal:
        return model.code(condition.literal, places) == 1;
    case ModelCondition::Not:
        return !childHolds(condition.children.at(0));
    case ModelCondition::And:
        return std::all_of(condition.children.begin(), condition.children.end(), childHolds);
    default:
        return std::any_of(condition.children.begin(), condition.children.end(), childHolds);
    }
}

RandomQuery::RandomQuery(quint32 seed)
    : m_below(
        [random = QRandomGenerator(seed)](int count) mutable { return random.bounded(count); })
{
}

RandomQuery::RandomQuery(const std::function<int(int)>& below)
    : m_below(below)
{
}

QString RandomQuery::oneOf(const char* words)
{
    return oneOf(utf8(words).split(QLatin1Char(' ')));
}

QList<tresk::Summary> RandomQuery::records()
{
    QList<tresk::Summary> steps;
    QStringList timestamps = dates();
    timestamps << texts() << utf8("2019-02-30") << utf8("1,5");
    for (int left = number(0, 6); left > 0; --left) {
        tresk::Summary step = stepTitled(oneOf(texts()));
        step.tagId = number(-1, 1);
        step.timestamp = oneOf(timestamps);
        step.comment = oneOf(texts());
        step.tool = oneOf(texts());
        step.md5Signature = oneOf(texts());
        if (oneIn(2))
            step.userAttributes.insert(utf8("project"), oneOf(texts()));
        for (; left > 1 && !oneIn(3); --left) {
            tresk::FileSummary file = fileNamed(oneOf(texts()));
            file.tagId = number(-1, 1);
            file.comment = oneOf(texts());
            file.lastModified = oneOf(timestamps);
            file.embedded = oneIn(2);
            file.uncompressedSize = oneOf("-1 0 10 1000 1005 1024").toInt();
            file.uncompressedMD5 = oneOf(texts());
            file.compressedMethod = oneOf("flate none ");
            file.compressedSize = oneOf("-1 0 10 1000 1005 1024").toInt();
            file.filePurpose = oneOf("InFile OutFile Undefined");
            if (oneIn(2))
                file.userAttributes.insert(utf8("project"), oneOf(texts()));
            step.files += file;
        }
        steps += step;
    }
    return steps;
}

void RandomQuery::startNames(bool isNamed)
{
    m_names.clear();
    m_mostNames = number(1, 4);
    m_unnamed = 0;
    m_isNamed = isNamed;
}

/// Gives @p operand a record, if there is a name for one.
bool RandomQuery::takeName(ModelOperand& operand)
{
    QStringList written = m_names.filter(QRegularExpression(utf8("^[a-z]")));
    if (m_names.size() < m_mostNames) {
        if (!m_isNamed && oneIn(3)) {
            operand.name = utf8("@unnamed-%1").arg(++m_unnamed);
            m_names += operand.name;
            return true;
        }
        for (const char* name : {"d", "b", "a", "c"}) {
            if (!written.contains(utf8(name)))
                written += utf8(name);
        }
    }
    if (written.isEmpty())
        return false;
    operand.name = oneOf(written);
    if (!m_names.contains(operand.name))
        m_names += operand.name;
    return true;
}

ModelOperand RandomQuery::attributeOr(const char* attributes, const QStringList& texts)
{
    ModelOperand operand;
    if (!oneIn(3) && takeName(operand)) {
        operand.kind = ModelOperand::Attribute;
        operand.text = oneOf(attributes);
    } else {
        operand.kind = ModelOperand::Text;
        operand.text = oneOf(texts);
    }
    return operand;
}

ModelLiteral RandomQuery::literal()
{
    const char* const flags = "iswfs isfile embedded compressed isinfile isoutfile";
    ModelLiteral literal;
    literal.negated = oneIn(3);
    switch (number(0, 7)) {
    case 0:
    case 1:
        literal.left.text = oneOf(flags);
        literal.left.kind = ModelOperand::Attribute;
        if (takeName(literal.left))
            return literal;
        [[fallthrough]];
    case 2:
    case 3:
        literal.op = oneOf("== == !=");
        literal.left = attributeOr(textAttributes, texts());
        literal.right = attributeOr(oneIn(4) ? flags : textAttributes, texts());
        break;
    case 4:
        literal.op = oneOf("%contains %matches");
        literal.left = attributeOr(textAttributes, texts());
        literal.right = attributeOr(textAttributes, patterns() + texts());
        break;
    case 5:
        literal.op = oneOf("< <= > >=");
        literal.left = attributeOr("timestamp lastmodified", dates());
        literal.right = attributeOr("timestamp lastmodified", dates());
        break;
    default:
        literal.op = oneOf("< <= > >= %isapprox");
        literal.left = attributeOr("filesize cfilesize tagid parentid", numbers());
        literal.right = attributeOr("filesize cfilesize tagid parentid", numbers());
    }
    return literal;
}

/// One side is a condition in brackets, which has no value.
ModelLiteral RandomQuery::literalWithoutValue()
{
    ModelLiteral literal;
    literal.negated = oneIn(2);
    literal.op = oneOf("== !=");
    (oneIn(2) ? literal.left : literal.right) = attributeOr(textAttributes, texts());
    return literal;
}

ModelForm RandomQuery::form()
{
    startNames(false);
    ModelForm form;
    for (int i = number(1, 4); i > 0; --i) {
        QList<ModelLiteral> disjunction;
        for (int j = number(1, 3); j > 0; --j)
            disjunction += oneIn(12) ? literalWithoutValue() : literal();
        form += disjunction;
    }
    return form;
}

ModelCondition RandomQuery::tree(bool isNamed)
{
    startNames(isNamed);
    return treeOfDepth(number(0, 4));
}

ModelCondition RandomQuery::treeOfDepth(int depth)
{
    ModelCondition tree;
    if (depth == 0 || oneIn(6)) {
        tree.literal = literal();
        return tree;
    }
    tree.kind = oneIn(4) ? ModelCondition::Not
        : oneIn(2)       ? ModelCondition::And
                         : ModelCondition::Or;
    for (int i = tree.kind == ModelCondition::Not ? 1 : 2; i > 0; --i)
        tree.children += treeOfDepth(depth - 1);
    return tree;
}

QString RandomQuery::textOf(const ModelOperand& operand)
{
    if (operand.kind == ModelOperand::Nothing)
        return oneOf(
            QStringList{utf8("(e:iswfs && a:isfile)"), utf8("(a:title == x)"), utf8("(!a:iswfs)")});
    if (operand.kind == ModelOperand::Text)
        return quoted(operand.text);
    const QString name = operand.name.startsWith(QLatin1Char('@')) ? QString() : operand.name;
    const QString key = operand.text.section(QLatin1Char(':'), 1);
    if (!key.isEmpty() && oneIn(2))
        return utf8("%1:user{%2}").arg(name, key);
    return name + QLatin1Char(':') + operand.text;
}

QString RandomQuery::textOf(const ModelLiteral& literal)
{
    // In the order of the text: some of it is chosen on the way.
    QString text = textOf(literal.left);
    if (!literal.op.isEmpty()) {
        text += QLatin1Char(' ') + literal.op + QLatin1Char(' ') + textOf(literal.right);
        const bool isSearch = literal.op == QLatin1String("%contains")
            && literal.left.text == QLatin1String("any")
            && literal.left.name.startsWith(QLatin1Char('@'))
            && literal.right.kind == ModelOperand::Text;
        if (isSearch)
            text = quoted(literal.right.text); // the same in short
        else if (literal.negated || oneIn(4))
            text = QLatin1Char('(') + text + utf8(")");
    }
    return (literal.negated ? utf8("!") : QString()) + text;
}

QString RandomQuery::textOf(const ModelForm& form)
{
    QString text;
    for (const QList<ModelLiteral>& disjunction : form) {
        QStringList literals;
        for (const ModelLiteral& literal : disjunction)
            literals += textOf(literal);
        const QString inside = literals.join(utf8(" || "));
        if (!text.isEmpty())
            text += oneOf(QStringList{utf8(" && "), utf8(" ")});
        text += oneIn(3) ? QLatin1Char('(') + inside + utf8(")") : inside;
    }
    return text;
}

QString RandomQuery::textOf(const ModelCondition& tree)
{
    if (tree.kind == ModelCondition::Literal)
        return textOf(tree.literal);
    const QString first = textOf(tree.children.at(0));
    if (tree.kind == ModelCondition::Not)
        return utf8("!(%1)").arg(first);
    const QString second = textOf(tree.children.at(1));
    const QString op = tree.kind == ModelCondition::And ? utf8("&&") : utf8("||");
    return QStringList{utf8("("), first, op, second, utf8(")")}.join(QLatin1Char(' '));
}

} // namespace tresktest
