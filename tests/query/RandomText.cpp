#include "RandomText.h"

#include "QueryText.h"

#include <QStringList>

namespace tresktest {

namespace {

QString oneOf(QRandomGenerator& random, const QStringList& texts)
{
    return texts.at(random.bounded(int(texts.size())));
}

QString piece(QRandomGenerator& random)
{
    static const QStringList tokens{str("a"),
                                    str("report"),
                                    str("5"),
                                    str("10kb"),
                                    str("2019-03-12"),
                                    str("'14:30'"),
                                    str("'x y'"),
                                    str("\"it's\""),
                                    str("'it\\'s'"),
                                    str("\"a\\\\b\""),
                                    str("''"),
                                    str("f:hash"),
                                    str(":hash"),
                                    str(":iswfs"),
                                    str("g:isfile"),
                                    str("f:filesize"),
                                    str(":timestamp"),
                                    str(":title"),
                                    str(":any"),
                                    str(":nosuch"),
                                    str("f:user:key"),
                                    str(":user{a key}"),
                                    str(":user{\\}\\\\}"),
                                    str("f:iswfs:x"),
                                    str("&&"),
                                    str("||"),
                                    str("!"),
                                    str("!"),
                                    str("("),
                                    str("("),
                                    str(")"),
                                    str(")"),
                                    str("=="),
                                    str("!="),
                                    str("<"),
                                    str("<="),
                                    str(">"),
                                    str(">="),
                                    str("%contains "),
                                    str("%matches\t"),
                                    str("%isapprox\n")};
    static const QStringList halves{
        str("&"),         str("|"),         str("="),          str("%"),   str(":"),
        str("f:"),        str("'"),         str("\""),         str("\\"),  str(":user{"),
        str("f:user{}"),  str(":user{\\x"), str("{"),          str("}"),   str("user"),
        str("%contains"), str("%matche"),   str("%isapproxx"), str("\\'"), str("%1"),
        str("%CONTAINS ")};
    static const QStringList odd{str("\xc2\xa0"),
                                 str("\x0b"),
                                 str("\x0c"),
                                 str("\xe2\x80\x83"),
                                 str("\xc3\xa4"),
                                 str("\xf0\x9f\x98\x80"),
                                 QString(QChar(0xd83d)),
                                 QString(QChar(0xde00)),
                                 QString(QChar(0)),
                                 str("\x7f"),
                                 str("-"),
                                 str("@"),
                                 str(",")};
    const int kind = random.bounded(20);
    return oneOf(random, kind < 16 ? tokens : kind < 19 ? halves : odd);
}

QString blanks(QRandomGenerator& random)
{
    return oneOf(random, {str(" "), str(" "), str(" "), str("  "), str("\t"), str("\r\n")});
}

class Expression {
public:
    explicit Expression(QRandomGenerator& random)
        : m_random(random)
    {
    }

    QString condition(int depth)
    {
        const int kind = depth == 0 ? m_random.bounded(5) : m_random.bounded(12);
        if (kind < 2)
            return oneOf(
                m_random,
                {str("a"), str("report"), str("'x y'"), str("\"\\\"\""), str("5"), str("''")});
        if (kind < 4)
            return comparison();
        if (kind == 4)
            return oneOf(m_random,
                         {str(":iswfs"), str("f:isfile"), str("g:embedded"), str(":isinfile"),
                          str(":any"), str(":title")});
        if (kind == 5)
            return str("!") + condition(depth - 1);
        if (kind == 6)
            return str("!(") + condition(depth - 1) + str(")");
        if (kind == 7)
            return str("(") + condition(depth - 1) + str(")");
        const QString connective = oneOf(m_random, {str("&&"), str("||"), str("||"), QString()});
        const QString joined = condition(depth - 1) + blanks(m_random) + connective
            + blanks(m_random) + condition(depth - 1);
        return m_random.bounded(2) ? str("(") + joined + str(")") : joined;
    }

private:
    QString comparison()
    {
        switch (m_random.bounded(5)) {
        case 0:
            return text() + oneOf(m_random, {str(" %contains "), str("%matches ")}) + text();
        case 1:
            return number() + oneOf(m_random, {str("<"), str("<="), str(" %isapprox ")}) + number();
        case 2:
            return date() + oneOf(m_random, {str(">"), str(" >= ")}) + date();
        case 3:
            return oneOf(m_random,
                         {text(), number(), date(), str("(:iswfs b)"), str("!!:isfile"), str("!c"),
                          str("!(!(!(!f:iswfs)))")})
                + oneOf(m_random, {str("=="), str("!=")})
                + oneOf(m_random, {text(), number(), date(), str("!:isfile"), str("!!!d")});
        default:
            return oneOf(m_random, {text(), number(), date(), str(":isfile"), str("f:nosuch")})
                + oneOf(m_random, {str("<"), str(" %isapprox "), str(" %matches ")})
                + oneOf(m_random, {text(), number(), date()});
        }
    }

    QString text()
    {
        return oneOf(m_random,
                     {str("f:title"), str(":hash"), str("a"), str("'*.pdf'"), str(":any"),
                      str(":user{a \\} key}"), str("f:user:k"), str("g:userattrs")});
    }

    QString number()
    {
        return oneOf(m_random,
                     {str("f:filesize"), str(":tagid"), str("5"), str("10kb"), str("-1.5e3"),
                      str("'1,5'"), str("2019-02-30")});
    }

    QString date()
    {
        return oneOf(m_random,
                     {str("f:timestamp"), str(":lastmodified"), str("2019-03-12"),
                      str("'19-3-1 9:30'"), str("'25:00'")});
    }

    QRandomGenerator& m_random;
};

} // namespace

QString randomPieces(QRandomGenerator& random)
{
    QString query;
    for (int count = random.bounded(12); count >= 0; --count) {
        query += piece(random);
        if (random.bounded(3) > 0)
            query += blanks(random);
    }
    return query;
}

QString randomExpression(QRandomGenerator& random)
{
    return Expression(random).condition(random.bounded(4));
}

void damageQuery(QString& query, QRandomGenerator& random)
{
    const int position = random.bounded(int(query.size()) + 1);
    if (random.bounded(2))
        query.remove(position, 1 + random.bounded(3));
    else
        query.insert(position, piece(random));
}

} // namespace tresktest
