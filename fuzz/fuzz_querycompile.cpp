// Takes any text for a query, in UTF-8 or, behind a byte order mark, in UTF-16, which may be broken
// in its own ways. What the compiler says of it has to lie in the text, and to be what a plain
// model of the language says.

#include "FuzzTarget.h"
#include "LanguageModel.h"
#include "QueryText.h"

#include <tresk/TreskFindQuery.h>

#include "query/QueryTokenizer.h"

#include <cstring>

using tresk::ConjunctiveNormalForm;
using tresk::QueryError;
using tresk::QueryToken;
using tresktest::ModelToken;
using tresktest::textOf;

namespace {

constexpr int longestQuery = 4096;
// The model's time grows with the square of the length, and exponentially with the operands.
constexpr int longestForModel = 200;
constexpr int mostOperandsForModel = 14;
constexpr int mostLiterals = 100000; // of what is not too complex

QString queryIn(const QByteArray& input)
{
    const QByteArray mark("\xFF\xFE");
    if (!input.startsWith(mark))
        return QString::fromUtf8(input);
    QString text((int(input.size()) - 2) / 2, Qt::Uninitialized);
    std::memcpy(text.data(), input.constData() + 2, sizeof(QChar) * std::size_t(text.size()));
    return text;
}

bool isBlank(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\n')
        || c == QLatin1Char('\r');
}

/// All of the query is tokens and blanks, in their order, unless there is an error.
void checkTokens(const QString& query)
{
    QList<QueryError> errors;
    const std::vector<QueryToken> tokens = tresk::tokenize(query, errors);
    if (!errors.isEmpty()) {
        TRESK_REQUIRE(errors.size() == 1 && tokens.empty());
        const QueryError& error = errors.first();
        TRESK_REQUIRE(error.position() >= 0 && error.position() < query.size());
        TRESK_REQUIRE(error.originalText() == query.mid(error.position()));
        return;
    }
    int end = 0;
    const auto skipBlanks = [&] {
        while (end < query.size() && isBlank(query.at(end)))
            ++end;
    };
    for (const QueryToken& token : tokens) {
        skipBlanks();
        TRESK_REQUIRE(token.position() == end && token.length() > 0);
        TRESK_REQUIRE(token.originalText() == query.mid(end, token.length()));
        // The blank that ends a word operator is a blank, too.
        end += token.isOperator() ? int(token.operatorText().size()) : token.length();
    }
    skipBlanks();
    TRESK_REQUIRE(end == query.size());
}

void checkErrors(const QString& query, const QList<QueryError>& errors)
{
    for (const QueryError& error : errors) {
        TRESK_REQUIRE(error.isError() && !error.isWarning() && !error.errorMessage().isEmpty());
        TRESK_REQUIRE(error.position() >= 0 && error.position() <= query.size());
        TRESK_REQUIRE(error.originalText() == query.mid(error.position(), error.length()));
    }
}

void checkForm(const ConjunctiveNormalForm& form)
{
    int literals = 0;
    for (int i = 0; i < form.numDisjunctions(); ++i) {
        const int count = form.disjunctionAt(i)->numLiterals();
        TRESK_REQUIRE(count > 0);
        literals += count;
        for (int j = 0; j < count; ++j) {
            const QList<QString> names =
                form.disjunctionAt(i)->literalAt(j)->variableNames().values();
            TRESK_REQUIRE(!names.contains(QString()));
        }
    }
    TRESK_REQUIRE(literals <= mostLiterals);
}

void compareWithModel(const QString& query, const tresktest::CompiledQuery& compiled)
{
    QList<QueryError> modelErrors;
    const QList<ModelToken> modelTokens = tresktest::modelTokenize(query, modelErrors);
    QList<QueryError> errors;
    TRESK_REQUIRE(textOf(tresk::tokenize(query, errors)) == textOf(modelTokens));
    int operands = 0;
    for (const ModelToken& token : modelTokens)
        operands += int(token.kind != ModelToken::Operator);
    if (operands > mostOperandsForModel)
        return;
    modelErrors.clear();
    const ConjunctiveNormalForm modelForm = tresktest::modelCompile(query, modelErrors);
    TRESK_REQUIRE(textOf(compiled.errors) == textOf(modelErrors));
    TRESK_REQUIRE(textOf(compiled.form) == textOf(modelForm));
}

void runQueryCompile(const QByteArray& input)
{
    const QString query = queryIn(input).left(longestQuery);
    checkTokens(query);

    const tresktest::CompiledQuery compiled = tresktest::compile(query);
    checkErrors(query, compiled.errors);
    checkForm(compiled.form);
    TRESK_REQUIRE((compiled.form.numDisjunctions() > 0) == compiled.errors.isEmpty());

    tresk::TreskFindQuery findQuery(QStringLiteral(":nosuch"));
    TRESK_REQUIRE(findQuery.setQuery(query) == compiled.errors.isEmpty());
    TRESK_REQUIRE(findQuery.isValid() == compiled.errors.isEmpty());
    TRESK_REQUIRE(findQuery.query() == query);
    TRESK_REQUIRE(!tresk::containsWarnings(findQuery.getErrors()));
    TRESK_REQUIRE(textOf(findQuery.getErrors()) == textOf(compiled.errors));

    if (query.size() <= longestForModel)
        compareWithModel(query, compiled);
}

const tresk_fuzz::Target target("querycompile", runQueryCompile);

} // namespace
