// Asks a query of records and compares the answer with that of plain searches. The first byte says
// what comes behind it: "0" a query as text, up to the end of its line, then choices for the
// records; "1" choices for a conjunction of disjunctions and its records; "2" the same for
// conditions in any combination.

#include "ByteSource.h"
#include "FuzzTarget.h"
#include "LanguageModel.h"
#include "QueryText.h"
#include "RandomQuery.h"
#include "Records.h"

#include <tresk/TreskFindQuery.h>

#include <algorithm>

using tresk::FileSummary;
using tresk::Summary;
using tresk_fuzz::ByteSource;
using tresktest::ModelBindings;
using tresktest::ModelForm;
using tresktest::modelFormOf;
using tresktest::ModelPlaces;
using tresktest::QueryModel;
using tresktest::RandomQuery;

namespace {

// The plain searches take a time that grows exponentially with names, operands and wildcards.
constexpr int longestQuery = 160;
constexpr int longestPattern = 80;
constexpr int mostOperands = 12;
constexpr int mostNames = 4;
constexpr int mostStars = 3;

QString textOf(const std::optional<ModelBindings>& bindings)
{
    return tresktest::textOf(bindings.has_value(), bindings.value_or(ModelBindings()));
}

RandomQuery queryFrom(ByteSource& source)
{
    return RandomQuery([&source](int count) { return source.below(count); });
}

/// Checks what @p query finds among @p records against both plain searches for @p form.
void check(const QString& query, const ModelForm& form, const QList<Summary>& records)
{
    const QueryModel model(records);
    const QString found = tresktest::found(query, records);
    TRESK_REQUIRE(found == textOf(model.search(form)));
    TRESK_REQUIRE(found == textOf(model.tryAll(form)));
    TRESK_REQUIRE(found == tresktest::found(query, records));
}

void runForm(ByteSource& source)
{
    RandomQuery choices = queryFrom(source);
    const ModelForm form = choices.form();
    const QString query = choices.textOf(form);
    check(query, form, choices.records());
}

void runConditions(ByteSource& source)
{
    RandomQuery choices = queryFrom(source);
    const tresktest::ModelCondition condition = choices.tree(source.flag());
    const QString query = choices.textOf(condition);
    const ModelForm form = modelFormOf(tresktest::compile(query).form);
    const QList<Summary> records = choices.records();
    const QueryModel model(records);
    const auto expected = model.tryAll(
        namesOf(form), [&](const ModelPlaces& places) { return holds(model, condition, places); });
    TRESK_REQUIRE(tresktest::found(query, records) == textOf(expected));
}

/// Whether the models can answer @p query, which has @p texts, in a short time. Of sets in patterns
/// they know too little.
bool isForModels(const QString& query, int operands)
{
    if (operands > mostOperands)
        return false;
    if (!query.contains(QLatin1String("%matches")))
        return true;
    return query.size() <= longestPattern && query.count(QLatin1Char('*')) <= mostStars
        && !query.contains(QLatin1Char('[')) && !query.contains(QLatin1Char(']'));
}

/// Fills what RandomQuery leaves empty, with @p texts.
void fillUp(QList<Summary>& records, const QStringList& texts, ByteSource& source)
{
    const auto fill = [&](std::initializer_list<QString*> fields) {
        for (QString* const field : fields) {
            if (source.flag())
                *field = texts.at(source.below(int(texts.size())));
        }
    };
    const auto addAttributes = [&](auto& record) {
        for (int count = source.below(3); count > 0; --count) {
            const QString name = texts.at(source.below(int(texts.size())));
            record.userAttributeNames += name;
            record.userAttributes.insert(name, texts.at(source.below(int(texts.size()))));
        }
    };
    for (Summary& step : records) {
        fill({&step.treskRootFile, &step.timestamp, &step.title, &step.description, &step.comment,
              &step.command, &step.tool, &step.toolPath, &step.host, &step.user, &step.creator,
              &step.md5Signature});
        addAttributes(step);
        for (FileSummary& file : step.files) {
            fill({&file.filename, &file.filepath, &file.filetype, &file.description, &file.comment,
                  &file.lastModified, &file.uncompressedMD5, &file.compressedMD5});
            addAttributes(file);
        }
    }
}

void runText(const QByteArray& input)
{
    const int end = int((input + '\n').indexOf('\n'));
    const QString query = QString::fromUtf8(input.left(end)).left(longestQuery);
    ByteSource source(input.mid(end + 1));

    QList<tresk::QueryError> errors;
    QStringList texts{QString(), QStringLiteral("key")};
    int operands = 0;
    for (const tresktest::ModelToken& token : tresktest::modelTokenize(query, errors)) {
        operands += int(token.kind != tresktest::ModelToken::Operator);
        if (token.kind == tresktest::ModelToken::String)
            texts += token.value;
    }
    if (!isForModels(query, operands))
        return;
    errors.clear();
    const ModelForm form = modelFormOf(tresktest::modelCompile(query, errors));
    TRESK_REQUIRE(tresk::TreskFindQuery(query).isValid() == errors.isEmpty());
    if (!errors.isEmpty() || namesOf(form).size() > mostNames)
        return;
    QList<Summary> records = queryFrom(source).records();
    fillUp(records, texts, source);
    check(query, form, records);
}

void runQueryEvaluate(const QByteArray& input)
{
    ByteSource source(input);
    const int kind = source.below(3);
    if (kind == 0)
        runText(source.rest());
    else if (kind == 1)
        runForm(source);
    else
        runConditions(source);
}

const tresk_fuzz::Target target("queryevaluate", runQueryEvaluate);

} // namespace
