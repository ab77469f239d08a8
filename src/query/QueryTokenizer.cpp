#include "query/QueryTokenizer.h"

#include <QCoreApplication>
#include <QStringView>

#include <optional>

namespace tresk {

namespace {

constexpr int shownAtError = 20; // characters

bool isLetter(QChar c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

bool isLetterOrDigit(QChar c)
{
    return isLetter(c) || (c >= u'0' && c <= u'9');
}

/// Not all white space: other kinds make a query invalid.
bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

bool isInBareWord(QChar c)
{
    return !c.isSpace() && !QStringView(u":&|!%=><'\")(").contains(c);
}

/// Reads the words of a query one after the other.
class Tokenizer {
public:
    /// @p query has to outlive the reading.
    explicit Tokenizer(QStringView query)
        : m_query(query)
    {
    }

    bool atEnd() const { return m_pos >= m_query.size(); }
    int position() const { return int(m_pos); }

    void skipBlanks() { m_pos = endOfRun(m_pos, isBlank); }

    /// The next token, behind which the reading goes on; nothing where there is no token.
    std::optional<QueryToken> next()
    {
        for (const auto read :
             {&Tokenizer::readUserAttribute, &Tokenizer::readAttribute, &Tokenizer::readQuoted,
              &Tokenizer::readBareWord, &Tokenizer::readOperator}) {
            if (std::optional<QueryToken> token = (this->*read)())
                return token;
        }
        return std::nullopt;
    }

private:
    template <typename Predicate>
    qsizetype endOfRun(qsizetype from, Predicate predicate) const
    {
        while (from < m_query.size() && predicate(m_query.at(from)))
            ++from;
        return from;
    }

    bool hasAt(qsizetype pos, QChar c) const
    {
        return pos < m_query.size() && m_query.at(pos) == c;
    }
    bool hasAt(qsizetype pos, QStringView text) const { return m_query.mid(pos).startsWith(text); }
    QString text(qsizetype from, qsizetype to) const
    {
        return m_query.mid(from, to - from).toString();
    }

    /// Where a quoted run from @p pos on is closed by @p close, or cannot go on: a backslash stands
    /// only in front of a backslash or of @p close.
    qsizetype endOfQuoted(qsizetype pos, QChar close) const
    {
        while (pos < m_query.size() && m_query.at(pos) != close) {
            const bool escape = m_query.at(pos) == u'\\';
            if (escape && !hasAt(pos + 1, u'\\') && !hasAt(pos + 1, close))
                return pos;
            pos += escape ? 2 : 1;
        }
        return pos;
    }

    /// `name:user{key}`. Escapes in the key stay as they are written.
    std::optional<QueryToken> readUserAttribute()
    {
        const QStringView opening(u":user{");
        const qsizetype nameEnd = endOfRun(m_pos, isLetter);
        if (!hasAt(nameEnd, opening))
            return std::nullopt;
        const qsizetype keyStart = nameEnd + opening.size();
        if (keyStart <= m_noKeyUpTo)
            return std::nullopt;
        const qsizetype keyEnd = endOfQuoted(keyStart, u'}');
        if (!hasAt(keyEnd, u'}')) {
            m_noKeyUpTo = keyEnd;
            return std::nullopt;
        }
        if (keyEnd == keyStart)
            return std::nullopt;
        const QString attribute = QStringLiteral("user:") + text(keyStart, keyEnd);
        return finish(keyEnd + 1, [&](const QString& original, int start) {
            return QueryToken::variable(text(start, nameEnd), attribute, original, start);
        });
    }

    /// `name:attribute` or `name:user:key`.
    std::optional<QueryToken> readAttribute()
    {
        const qsizetype nameEnd = endOfRun(m_pos, isLetter);
        if (!hasAt(nameEnd, u':'))
            return std::nullopt;
        qsizetype end = endOfRun(nameEnd + 1, isLetterOrDigit);
        if (end == nameEnd + 1)
            return std::nullopt;
        if (hasAt(end, u':'))
            end = std::max(end, endOfKey(end + 1));
        return finish(end, [&](const QString& original, int start) {
            return QueryToken::variable(text(start, nameEnd), text(nameEnd + 1, end), original,
                                        start);
        });
    }

    /// The end of the letters and digits from @p from on; 0 if there are none.
    qsizetype endOfKey(qsizetype from) const
    {
        const qsizetype end = endOfRun(from, isLetterOrDigit);
        return end > from ? end : 0;
    }

    std::optional<QueryToken> readQuoted()
    {
        const QChar quote = m_query.at(m_pos);
        if (quote != u'\'' && quote != u'"')
            return std::nullopt;
        const qsizetype end = endOfQuoted(m_pos + 1, quote);
        if (!hasAt(end, quote))
            return std::nullopt;
        // One after the other over the whole text: first the backslashes, then the quotes.
        QString value = text(m_pos + 1, end);
        value.replace(QStringLiteral("\\\\"), QStringLiteral("\\"));
        value.replace(QLatin1Char('\\') + QString(quote), QString(quote));
        return finish(end + 1, [&](const QString& original, int start) {
            return QueryToken::string(value, original, start);
        });
    }

    std::optional<QueryToken> readBareWord()
    {
        const qsizetype end = endOfRun(m_pos, isInBareWord);
        if (end == m_pos)
            return std::nullopt;
        return finish(end, [&](const QString& original, int start) {
            return QueryToken::string(original, original, start);
        });
    }

    std::optional<QueryToken> readOperator()
    {
        for (const QStringView word : {u"%contains", u"%matches", u"%isapprox"}) {
            const qsizetype end = m_pos + word.size();
            if (!hasAt(m_pos, word) || (end < m_query.size() && !m_query.at(end).isSpace()))
                continue;
            // The white space behind it is part of the token's text, but is read again.
            const QString original = text(m_pos, std::min<qsizetype>(end + 1, m_query.size()));
            const int start = position();
            m_pos = end;
            return QueryToken::op(word.toString(), original, start);
        }
        // The longer ones before those that they begin with.
        for (const QStringView sign :
             {u"&&", u"||", u"==", u"!=", u"<=", u"<", u">=", u">", u"!", u"(", u")"}) {
            if (!hasAt(m_pos, sign))
                continue;
            return finish(m_pos + sign.size(), [](const QString& original, int start) {
                return QueryToken::op(original, original, start);
            });
        }
        return std::nullopt;
    }

    /// The token that @p make makes of the text up to @p end, where the reading goes on.
    template <typename Make>
    QueryToken finish(qsizetype end, Make make)
    {
        QueryToken token = make(text(m_pos, end), position());
        m_pos = end;
        return token;
    }

    QStringView m_query;
    qsizetype m_pos = 0;
    /// A key that starts up to here is not closed; so that no text is searched for its end twice.
    qsizetype m_noKeyUpTo = 0;
};

QueryError invalidInput(const QString& query, int position)
{
    QString shown = query.mid(position, shownAtError);
    if (query.size() > position + shownAtError)
        shown += QStringLiteral("...");
    const QString message =
        QCoreApplication::translate(
            "tresk", "Error while reading text at position %1 (%2):\n input seems to be invalid")
            .arg(QString::number(position), shown);
    return {message, QueryErrorTypeError, position, query.mid(position)};
}

} // namespace

std::vector<QueryToken> tokenize(const QString& query, QList<QueryError>& errors)
{
    std::vector<QueryToken> tokens;
    Tokenizer tokenizer(query);
    for (tokenizer.skipBlanks(); !tokenizer.atEnd(); tokenizer.skipBlanks()) {
        const std::optional<QueryToken> token = tokenizer.next();
        if (!token) {
            errors.append(invalidInput(query, tokenizer.position()));
            return {};
        }
        tokens.push_back(*token);
    }
    return tokens;
}

} // namespace tresk
