#include "ArgumentJson.h"

#include "ArgumentText.h"

namespace tresk::cli {

namespace {

/// A text that is not set is null.
QJsonValue textOrNull(const QString& text)
{
    return text.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

QJsonArray attributesJson(const UserAttributes& attributes)
{
    QStringList names = attributes.userAttributeKeys();
    names.removeDuplicates();
    QJsonArray array;
    for (const QString& name : names) {
        array += QJsonObject{{QStringLiteral("name"), name},
                             {QStringLiteral("value"), attributes.userAttribute(name)}};
    }
    return array;
}

QJsonObject stepJson(const ArgFile& options)
{
    return {{QStringLiteral("title"), textOrNull(options.title())},
            {QStringLiteral("description"), textOrNull(options.description())},
            {QStringLiteral("comment"), textOrNull(options.comment())},
            {QStringLiteral("command"), textOrNull(options.command())},
            {QStringLiteral("tool"), textOrNull(options.tool())},
            {QStringLiteral("toolPath"), textOrNull(options.toolpath())},
            {QStringLiteral("host"), textOrNull(options.host())},
            {QStringLiteral("user"), textOrNull(options.user())},
            {QStringLiteral("attributes"), attributesJson(options)}};
}

QJsonObject pdfJson(const ArgFile& options)
{
    return {{QStringLiteral("title"), textOrNull(options.pdfTitle())},
            {QStringLiteral("author"), textOrNull(options.pdfAuthor())},
            {QStringLiteral("subject"), textOrNull(options.pdfSubject())},
            {QStringLiteral("keywords"), textOrNull(options.pdfKeywords())},
            {QStringLiteral("producer"), textOrNull(options.pdfProducer())},
            {QStringLiteral("creator"), textOrNull(options.pdfCreator())}};
}

QString verbosityName(ArgFile::Verbosity verbosity)
{
    switch (verbosity) {
    case ArgFile::Quiet:
        return QStringLiteral("quiet");
    case ArgFile::Verbose:
        return QStringLiteral("verbose");
    case ArgFile::Normal:
        break;
    }
    return QStringLiteral("normal");
}

QString nameOfKind(int kind)
{
    switch (kind) {
    case ArgumentMessage::Error:
        return QStringLiteral("error");
    case ArgumentMessage::Warning:
        return QStringLiteral("warning");
    default:
        return QStringLiteral("information");
    }
}

} // namespace

QJsonObject optionsJson(const ArgFile& options)
{
    QJsonArray outputs;
    for (int i = 0; i < options.numOutputTreskfiles(); ++i)
        outputs += options.outputTreskfile(i);
    return {{QStringLiteral("outputs"), outputs},
            {QStringLiteral("rootFile"), textOrNull(options.rootfile())},
            {QStringLiteral("rootIsOptional"), options.rootIsOptional()},
            {QStringLiteral("firstPage"), textOrNull(options.firstpage())},
            {QStringLiteral("readMe"), textOrNull(options.readme())},
            {QStringLiteral("verbosity"), verbosityName(options.verbosity())},
            {QStringLiteral("pretend"), options.pretend()},
            {QStringLiteral("debug"), options.debugMode()},
            {QStringLiteral("help"), options.showHelp()},
            {QStringLiteral("version"), options.showVersion()},
            {QStringLiteral("step"), stepJson(options)},
            {QStringLiteral("pdf"), pdfJson(options)},
            {QStringLiteral("commandLine"), options.toCommandline(false)}};
}

QJsonObject wsFileJson(const WSFile& file)
{
    return {{QStringLiteral("purpose"),
             file.inputFile() ? QStringLiteral("in") : QStringLiteral("out")},
            {QStringLiteral("path"), file.filename()},
            {QStringLiteral("type"), textOrNull(file.filetype())},
            {QStringLiteral("description"), textOrNull(file.description())},
            {QStringLiteral("comment"), textOrNull(file.comment())},
            {QStringLiteral("md5File"), textOrNull(file.md5File())},
            {QStringLiteral("optional"), file.optional()},
            {QStringLiteral("compress"), file.compress()},
            {QStringLiteral("embed"), file.embed()},
            {QStringLiteral("autoMd5"), file.autoMD5()},
            {QStringLiteral("previewWs"), file.previewWS()},
            {QStringLiteral("preview"), file.preview()},
            {QStringLiteral("thumbnail"), file.thumbnail()},
            {QStringLiteral("thumbnailOnly"), file.thumbnailOnly()},
            {QStringLiteral("attributes"), attributesJson(file)}};
}

QJsonObject tokenJson(const ArgfileToken& token)
{
    return {{QStringLiteral("position"), token.position()},
            {QStringLiteral("length"), token.originalLength()},
            {QStringLiteral("kind"), kindOf(token)},
            {QStringLiteral("text"), token.originalText()},
            {QStringLiteral("value"), token.str()}};
}

QJsonArray messagesJson(const QList<ArgumentMessage>& messages)
{
    QJsonArray array;
    for (const ArgumentMessage& message : messages) {
        array += QJsonObject{{QStringLiteral("kind"), nameOfKind(message.kind)},
                             {QStringLiteral("text"), message.text}};
    }
    return array;
}

} // namespace tresk::cli
