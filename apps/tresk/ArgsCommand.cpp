#include "ArgumentFile.h"
#include "ArgumentJson.h"
#include "ArgumentText.h"
#include "Commands.h"
#include "Invocation.h"
#include "Json.h"

namespace tresk::cli {

namespace {

/// Completes @p object with what is said of the file in any case.
QJsonObject withFile(const ArgumentFile& file, QJsonObject object = QJsonObject())
{
    object.insert(QStringLiteral("file"), file.name());
    object.insert(QStringLiteral("messages"), messagesJson(file.messages()));
    return object;
}

void showTokens(Invocation& invocation, ArgumentFile& file)
{
    const QList<ArgfileToken> tokens = file.tokens();
    file.reportMessages();
    if (invocation.isSet("json"))
        writeJson(invocation.output, "tresk-args-tokens/1", withFile(file),
                  QStringLiteral("tokens"), int(tokens.size()),
                  [&tokens](int i) { return tokenJson(tokens[i]); });
    else if (!tokens.isEmpty())
        writeTokens(invocation.output, invocation.style, tokens);
}

void showOptions(Invocation& invocation, ArgumentFile& file)
{
    const ArgFile options = file.options();
    file.reportMessages();
    if (invocation.isSet("json"))
        writeJson(invocation.output, "tresk-args/1", withFile(file, optionsJson(options)),
                  QStringLiteral("files"), options.numFiles(),
                  [&options](int i) { return wsFileJson(options.getConstFile(i)); });
    else if (!file.isBroken())
        writeOptions(invocation.output, invocation.style, options);
}

int runArgs(Invocation& invocation)
{
    const Command* const command = findCommandNamed(QStringLiteral("args"));
    const bool asTokens = invocation.isSet("highlight");
    if (asTokens && invocation.isSet("define"))
        return reportUsage(command, QStringLiteral("--highlight and -D exclude each other"));
    ArgumentFile file;
    const QString problem = file.define(invocation.values("define"));
    if (!problem.isEmpty())
        return reportUsage(command, problem);
    if (!file.read(invocation.arguments.first()))
        return exitTrouble;
    if (asTokens)
        showTokens(invocation, file);
    else
        showOptions(invocation, file);
    return file.hasErrors() ? exitFailed : exitDone;
}

} // namespace

Command argsCommand()
{
    return {"args",
            "show what an argument file says",
            "ARGFILE",
            "Shows the options for a run of treskadd that an argument file holds, as they are\n"
            "understood, and a command line for them. What is wrong with them is reported, as\n"
            "are all flags of files but thumbnail, although they count. Variables are left\n"
            "as they are unless -D gives one a value; those without a value are empty then.\n"
            "\n"
            "The command line is for people to read. Never give it to a shell unread: single\n"
            "quotes, #, ;, *, empty words and the like are not quoted, unless there is white\n"
            "space in the word, and control characters are written out; --json has the exact\n"
            "line. As an argument file it does not say quite the same: not understood are\n"
            "--firstpage, --readme, empty words, and words with ' or # and no white space,\n"
            "and dollar signs that stand for themselves become twice as many.\n",
            "tresk args report.args\n"
            "tresk args -D TRIAL=017 report.args\n",
            {variableOption(),
             {0, "highlight", nullptr, "list the tokens of the file instead"},
             {0, "json", nullptr, "print one JSON object instead"}},
            {"ARGFILE"},
            1,
            runArgs,
            {ValueKind::File},
            {{"0", "no error is reported"},
             {"1", "an error is reported"},
             {"2", "trouble: wrong usage, or the file cannot be read"}}};
}

} // namespace tresk::cli
