#include "query/QueryParser.h"

#include <QCoreApplication>

namespace tresk {

namespace {

constexpr int deepestNesting = 1000; // brackets and negations together

/// Goes through the tokens of a query and says what is wrong with their order.
class StructureCheck {
public:
    StructureCheck(const std::vector<QueryToken>& tokens, QList<QueryError>& errors)
        : m_tokens(tokens)
        , m_errors(errors)
    {
        m_checked.reserve(tokens.size());
    }

    std::vector<QueryToken> run()
    {
        for (const QueryToken& token : m_tokens) {
            if (!(m_operandComplete ? goOn(token) : beginOperand(token)))
                return {};
            if (m_nesting > deepestNesting) {
                m_errors.append(tooComplex(token.originalText(), token.position()));
                return {};
            }
        }
        return checkEnd() ? m_checked : std::vector<QueryToken>();
    }

private:
    /// Takes @p token where an operand is expected.
    bool beginOperand(const QueryToken& token)
    {
        if (token.isOperator(QLatin1String("("))) {
            m_negationsOutside.push_back(m_negations);
            m_negations = 0;
            ++m_nesting;
        } else if (token.isNegation()) {
            ++m_negations;
            ++m_nesting;
        } else if (token.isOperator()) {
            return fail(token,
                        translate("Error at position %1:\n expected a string, a variable, an open "
                                  "bracket '(' or an unary operator (e.g. !), but found '%2'.")
                            .arg(QString::number(token.position()), token.originalText()));
        } else {
            completeOperand();
        }
        m_checked.push_back(token);
        return true;
    }

    /// Takes @p token behind a complete operand.
    bool goOn(const QueryToken& token)
    {
        if (token.isOperator(QLatin1String(")")))
            return closeBracket(token);
        m_operandComplete = false;
        if (token.isOperator() && token.arity() == 2) {
            m_checked.push_back(token);
            return true;
        }
        m_checked.push_back(QueryToken::implicitConjunction(token.position()));
        return beginOperand(token);
    }

    bool closeBracket(const QueryToken& token)
    {
        if (m_negationsOutside.empty())
            return fail(token,
                        translate("Error at position %1:\n found a closing  bracket ) but did not "
                                  "except one.")
                            .arg(token.position()));
        m_negations = m_negationsOutside.back();
        m_negationsOutside.pop_back();
        --m_nesting;
        completeOperand();
        m_checked.push_back(token);
        return true;
    }

    /// An operand is complete, and so are the negations in front of it.
    void completeOperand()
    {
        m_nesting -= m_negations;
        m_negations = 0;
        m_operandComplete = true;
    }

    bool checkEnd()
    {
        if (m_tokens.empty()) {
            m_errors.append(QueryError(translate("Error after position 0:\n query is empty."),
                                       QueryErrorTypeError, 0, QString()));
            return false;
        }
        if (m_operandComplete && m_negationsOutside.empty())
            return true;
        const QueryToken& last = m_tokens.back();
        const int end = last.position() + last.length();
        return fail(last,
                    translate("Error after position %1:\n premature end of query  after %2.")
                        .arg(QString::number(end), last.originalText()));
    }

    bool fail(const QueryToken& token, const QString& message)
    {
        m_errors.append(
            QueryError(message, QueryErrorTypeError, token.position(), token.originalText()));
        return false;
    }

    const std::vector<QueryToken>& m_tokens;
    QList<QueryError>& m_errors;
    std::vector<QueryToken> m_checked;
    bool m_operandComplete = false;
    int m_negations = 0; ///< in front of the operand that is expected
    std::vector<int> m_negationsOutside; ///< the same in front of each open bracket
    int m_nesting = 0; ///< open brackets, and negations whose operand is not complete
};

} // namespace

QString translate(const char* message)
{
    return QCoreApplication::translate("tresk", message);
}

QueryError tooComplex(const QString& text, int position)
{
    return {translate("query is too complex"), QueryErrorTypeError, position, text};
}

std::vector<QueryToken> checkStructure(const std::vector<QueryToken>& tokens,
                                       QList<QueryError>& errors)
{
    return StructureCheck(tokens, errors).run();
}

} // namespace tresk
