#include <tresk/ArgfileReader.h>

#include <tresk/ArgfileParser.h>

#include <algorithm>
#include <array>
#include <utility>

namespace tresk {

namespace {

/// What is being read, and what was understood so far.
struct Reading {
    ArgfileReader& reader;
    const QStringList& args;
    ArgFile result;
    WSFile* file = nullptr; ///< the last one of the result; null if there is none yet

    void report(const QString& message, int type) { Q_EMIT reader.log(message, type); }
};

/// A key or a flag word, and what it sets.
template <typename Setter>
struct Field {
    const char* name;
    Setter set;
};

using TextField = Field<void (ArgFile::*)(const QString&)>;
using FileTextField = Field<void (WSFile::*)(const QString&)>;
using FileFlagField = Field<void (WSFile::*)(bool)>;

constexpr std::array<TextField, 6> docFields = {{{"producer", &ArgFile::setPdfProducer},
                                                 {"creator", &ArgFile::setPdfCreator},
                                                 {"author", &ArgFile::setPdfAuthor},
                                                 {"keywords", &ArgFile::setPdfKeywords},
                                                 {"title", &ArgFile::setPdfTitle},
                                                 {"subject", &ArgFile::setPdfSubject}}};

constexpr std::array<TextField, 9> stepFields = {{{"comment", &ArgFile::setComment},
                                                  {"description", &ArgFile::setDescription},
                                                  {"title", &ArgFile::setTitle},
                                                  {"tool", &ArgFile::setTool},
                                                  {"toolversion", &ArgFile::setTool},
                                                  {"toolpath", &ArgFile::setToolpath},
                                                  {"host", &ArgFile::setHost},
                                                  {"command", &ArgFile::setCommand},
                                                  {"user", &ArgFile::setUser}}};

constexpr std::array<FileTextField, 4> fileFields = {{{"comment", &WSFile::setComment},
                                                      {"md5file", &WSFile::setMD5File},
                                                      {"filetype", &WSFile::setFiletype},
                                                      {"description", &WSFile::setDescription}}};

constexpr std::array<FileFlagField, 8> fileFlags = {{{"optional", &WSFile::setOptional},
                                                     {"compress", &WSFile::setCompress},
                                                     {"thumbnailonly", &WSFile::setThumbnailOnly},
                                                     {"previewws", &WSFile::setPreviewWS},
                                                     {"embed", &WSFile::setEmbed},
                                                     {"preview", &WSFile::setPreview},
                                                     {"automd5", &WSFile::setAutoMD5},
                                                     {"thumbnail", &WSFile::setThumbnail}}};

/// Sets the field of @p target that is called @p name. False if @p fields have no such name.
template <typename Fields, typename Target, typename Value>
bool setField(const Fields& fields, const QString& name, Target& target, const Value& value)
{
    for (const auto& field : fields) {
        if (name == QLatin1String(field.name)) {
            (target.*field.set)(value);
            return true;
        }
    }
    return false;
}

/// Applies an option of two parameters, a key and a value; that at @p index is the key.
template <typename Fields, typename Target>
void saveAttr(const Fields& fields, Reading& reading, int index, Target& target)
{
    const QString& option = reading.args.at(index - 1);
    const QString& value = reading.args.at(index + 1);
    // The message names the value where its text speaks of the key; so users know it.
    if (!setField(fields, reading.args.at(index), target, value))
        reading.report(
            ArgfileReader::tr("first parameter (%1) of option %2 is invalid").arg(value, option),
            2);
}

void saveDocAttr(Reading& reading, int index)
{
    saveAttr(docFields, reading, index, reading.result);
}

void saveStepAttr(Reading& reading, int index)
{
    saveAttr(stepFields, reading, index, reading.result);
}

void saveFileAttr(Reading& reading, int index)
{
    if (reading.file != nullptr)
        saveAttr(fileFields, reading, index, *reading.file);
}

void saveFileFlag(Reading& reading, int index)
{
    if (reading.file == nullptr)
        return;
    QString word = reading.args.at(index);
    const bool on = !word.startsWith(QLatin1String("no-"));
    if (!on)
        word.remove(0, 3);
    setField(fileFlags, word, *reading.file, on);
    // Every word but the last of the flags is reported, also one that was just set, and by the
    // value instead of the word. Users know these messages too.
    if (word != QLatin1String("thumbnail"))
        reading.report(ArgfileReader::tr("\"%1\" is no valid parameter for option %2")
                           .arg(QString::number(on ? 1 : 0), reading.args.at(index - 1)),
                       2);
}

void addStepUser(Reading& reading, int index)
{
    reading.result.addUserAttribute(reading.args.at(index), reading.args.at(index + 1));
}

void addFileUser(Reading& reading, int index)
{
    if (reading.file != nullptr)
        reading.file->addUserAttribute(reading.args.at(index), reading.args.at(index + 1));
}

void addFile(Reading& reading, int index, WSFile::FilePurpose purpose)
{
    WSFile file;
    file.setFilePurpose(purpose);
    file.setFilenameAndPath(reading.args.at(index));
    reading.file = reading.result.addFile(file);
}

void setRoot(Reading& reading, int index, bool optional)
{
    reading.result.setRootfile(reading.args.at(index));
    reading.result.setRootIsOptional(optional);
}

struct Option {
    const char* name;
    const char* letter; ///< the same as the name where there is only one form
    int parameters;
    void (*apply)(Reading& reading, int index); ///< from the parameters at index; null: invalid
};

// "-c" and "--sync-cwd" are let pass and then called invalid.
constexpr std::array<Option, 23> options = {{
    {"--debug", "--debug", 0, [](Reading& r, int) { r.result.setDebugMode(true); }},
    {"--stdin", "--stdin", 0, [](Reading&, int) {}},
    {"--verbose", "-v", 0, [](Reading& r, int) { r.result.setVerbosity(ArgFile::Verbose); }},
    {"--quiet", "-q", 0, [](Reading& r, int) { r.result.setVerbosity(ArgFile::Quiet); }},
    {"--pretend", "-p", 0, [](Reading& r, int) { r.result.setPretend(true); }},
    {"--sync-cwd", "--sync-cwd", 0, nullptr},
    {"--version", "-V", 0, [](Reading& r, int) { r.result.setShowVersion(true); }},
    {"--help", "-h", 0, [](Reading& r, int) { r.result.setShowHelp(true); }},
    {"-c", "-c", 1, nullptr},
    {"--firstpage", "-1", 1, [](Reading& r, int i) { r.result.setFirstpage(r.args.at(i)); }},
    {"--readme", "-r", 1, [](Reading& r, int i) { r.result.setReadme(r.args.at(i)); }},
    {"--file-flag", "-f", 1, saveFileFlag},
    {"--append-to-treskfile", "-A", 1,
     [](Reading& r, int i) {
         r.result.addOutputTreskfile(r.args.at(i));
         setRoot(r, i, true);
     }},
    {"-O", "-O", 1, [](Reading& r, int i) { r.result.addOutputTreskfile(r.args.at(i)); }},
    {"-J", "-J", 1, [](Reading& r, int i) { setRoot(r, i, true); }},
    {"-I", "-I", 1, [](Reading& r, int i) { setRoot(r, i, false); }},
    {"--outfile", "-o", 1, [](Reading& r, int i) { addFile(r, i, WSFile::Output); }},
    {"--infile", "-i", 1, [](Reading& r, int i) { addFile(r, i, WSFile::Input); }},
    {"--file-user", "-u", 2, addFileUser},
    {"--file-attr", "-a", 2, saveFileAttr},
    {"--step-user", "-U", 2, addStepUser},
    {"--step", "-s", 2, saveStepAttr},
    {"--doc", "-d", 2, saveDocAttr},
}};

const Option* findOption(const QString& name)
{
    const auto isNamed = [&name](const Option& option) {
        return name == QLatin1String(option.name) || name == QLatin1String(option.letter);
    };
    const auto* found = std::find_if(options.begin(), options.end(), isNamed);
    return found == options.end() ? nullptr : found;
}

/// The check does not know two options that ArgFile writes. Behind "-c", where they are not checked
/// as options, they do what they say.
const Option* findCheckedOption(const QString& name)
{
    const bool isUnknown = name == QLatin1String("--firstpage")
        || name == QLatin1String("--readme");
    return isUnknown ? nullptr : findOption(name);
}

} // namespace

ArgfileReader::~ArgfileReader() = default;

ArgFile ArgfileReader::readArgfile(const QString& text, const QHash<QString, QString>* variables)
{
    const QStringList args = ArgfileParser().parseArgfile(text, variables);
    return parseCommandline(checkOptionSignatures(args));
}

QStringList ArgfileReader::checkOptionSignatures(const QStringList& args)
{
    int i = 0;
    while (i < args.size()) {
        const Option* option = findCheckedOption(args.at(i));
        if (option == nullptr) {
            Q_EMIT log(tr("unknown option found: %1").arg(args.at(i)), 2);
            break;
        }
        if (i + option->parameters >= args.size()) {
            Q_EMIT log(tr("not enough parameters for option: %1").arg(args.at(i)), 2);
            break;
        }
        i += 1 + option->parameters;
    }
    return args.mid(0, i);
}

ArgFile ArgfileReader::parseCommandline(const QStringList& args)
{
    Reading reading{*this, args, ArgFile()};
    int i = 0;
    while (i < args.size()) {
        const Option* option = findOption(args.at(i));
        // What was checked as the parameter of "-c" is read as an option here, so it can be
        // anything, and can lack its own parameters.
        if (option == nullptr || option->apply == nullptr) {
            Q_EMIT log(tr("invalid option (%1) found").arg(args.at(i)), 0);
            ++i;
        } else if (i + option->parameters >= args.size()) {
            Q_EMIT log(tr("not enough parameters for option: %1").arg(args.at(i)), 2);
            break;
        } else {
            option->apply(reading, i + 1);
            i += 1 + option->parameters;
        }
    }
    return std::move(reading.result);
}

} // namespace tresk
