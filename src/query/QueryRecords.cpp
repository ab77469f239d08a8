#include "query/QueryRecords.h"

#include <QSet>
#include <QStringList>

#include <algorithm>
#include <iterator>

namespace tresk {

namespace {

/// A text of steps, of files or of both.
struct TextField {
    QLatin1String name;
    QString Summary::*ofStep;
    QString FileSummary::*ofFile;
};

const TextField textFields[] = {
    {QLatin1String("hash"), &Summary::md5Signature, &FileSummary::uncompressedMD5},
    {QLatin1String("treskrootfile"), &Summary::treskRootFile, nullptr},
    {QLatin1String("timestamp"), &Summary::timestamp, nullptr},
    {QLatin1String("title"), &Summary::title, nullptr},
    {QLatin1String("description"), &Summary::description, &FileSummary::description},
    {QLatin1String("comment"), &Summary::comment, &FileSummary::comment},
    {QLatin1String("command"), &Summary::command, nullptr},
    {QLatin1String("tool"), &Summary::tool, nullptr},
    {QLatin1String("toolpath"), &Summary::toolPath, nullptr},
    {QLatin1String("host"), &Summary::host, nullptr},
    {QLatin1String("user"), &Summary::user, nullptr},
    {QLatin1String("creator"), &Summary::creator, nullptr},
    {QLatin1String("filename"), nullptr, &FileSummary::filename},
    {QLatin1String("filepath"), nullptr, &FileSummary::filepath},
    {QLatin1String("filetype"), nullptr, &FileSummary::filetype},
    {QLatin1String("lastmodified"), nullptr, &FileSummary::lastModified},
    {QLatin1String("filepurpose"), nullptr, &FileSummary::filePurpose},
    {QLatin1String("md5"), nullptr, &FileSummary::uncompressedMD5},
    {QLatin1String("cmd5"), nullptr, &FileSummary::compressedMD5},
};

/// A number of steps, of files or of both, as text.
struct NumberField {
    QLatin1String name;
    QString (*read)(const QueryRecord& record);
};

QString sizeText(const FileSummary* file, int FileSummary::*size)
{
    return file && file->*size != -1 ? QString::number(file->*size) : QString();
}

const NumberField numberFields[] = {
    {QLatin1String("tagid"),
     [](const QueryRecord& record) {
         return QString::number(record.file ? record.file->tagId : record.step->tagId);
     }},
    {QLatin1String("parentid"),
     [](const QueryRecord& record) {
         return record.file ? QString::number(record.step->tagId) : QString();
     }},
    {QLatin1String("filesize"),
     [](const QueryRecord& record) {
         return sizeText(record.file, &FileSummary::uncompressedSize);
     }},
    {QLatin1String("cfilesize"),
     [](const QueryRecord& record) { return sizeText(record.file, &FileSummary::compressedSize); }},
};

struct FlagField {
    QLatin1String name;
    bool (*read)(const QueryRecord& record);
};

bool hasPurpose(const QueryRecord& record, const char* purpose)
{
    return record.file && record.file->filePurpose == QLatin1String(purpose);
}

const FlagField flagFields[] = {
    {QLatin1String("iswfs"), [](const QueryRecord& record) { return !record.file; }},
    {QLatin1String("isfile"), [](const QueryRecord& record) { return record.file != nullptr; }},
    {QLatin1String("embedded"),
     [](const QueryRecord& record) { return record.file && record.file->embedded; }},
    {QLatin1String("compressed"),
     [](const QueryRecord& record) {
         return record.file && !record.file->compressedMethod.isEmpty()
             && record.file->compressedMethod != QLatin1String("none");
     }},
    {QLatin1String("isinfile"),
     [](const QueryRecord& record) { return hasPurpose(record, "InFile"); }},
    {QLatin1String("isoutfile"),
     [](const QueryRecord& record) { return hasPurpose(record, "OutFile"); }},
};

template <typename Fields>
auto findField(const Fields& fields, const QString& name)
{
    const auto found = std::find_if(std::begin(fields), std::end(fields),
                                    [&](const auto& field) { return field.name == name; });
    return found == std::end(fields) ? nullptr : &*found;
}

QString textOf(const TextField& field, const QueryRecord& record)
{
    if (record.file)
        return field.ofFile ? record.file->*(field.ofFile) : QString();
    return field.ofStep ? record.step->*(field.ofStep) : QString();
}

/// A file that does not have the attribute reads as its step.
QString userAttribute(const QueryRecord& record, const QString& key)
{
    if (record.file && record.file->userAttributes.contains(key))
        return record.file->userAttributes.value(key);
    return record.step->userAttributes.value(key);
}

const QHash<QString, QString>& ownAttributes(const QueryRecord& record)
{
    return record.file ? record.file->userAttributes : record.step->userAttributes;
}

/// One line for each user attribute, in the order in which they were read.
QString userAttributeLines(const QueryRecord& record)
{
    const QStringList& names = record.file ? record.file->userAttributeNames
                                           : record.step->userAttributeNames;
    QStringList lines;
    QSet<QString> seen;
    for (const QString& name : names) {
        if (!seen.contains(name))
            lines.append(name + QLatin1Char('=') + ownAttributes(record).value(name));
        seen.insert(name);
    }
    return lines.join(QLatin1Char('\n'));
}

} // namespace

QString QueryRecord::key() const
{
    return file ? QStringLiteral("file:%1:%2").arg(stepIndex).arg(fileIndex)
                : QStringLiteral("wfs:%1").arg(stepIndex);
}

std::vector<QueryRecord> recordsOf(const QList<Summary>& summaries)
{
    std::vector<QueryRecord> records;
    for (int step = 0; step < summaries.size(); ++step) {
        const Summary& summary = summaries.at(step);
        records.push_back({&summary, nullptr, step, -1});
        for (int file = 0; file < summary.files.size(); ++file)
            records.push_back({&summary, &summary.files.at(file), step, file});
    }
    return records;
}

QueryAttribute::QueryAttribute(const QString& name)
{
    const QLatin1String userPrefix("user:");
    if (const TextField* text = findField(textFields, name)) {
        m_value = [text](const QueryRecord& record) { return textOf(*text, record); };
    } else if (const NumberField* number = findField(numberFields, name)) {
        m_value = number->read;
    } else if (const FlagField* flag = findField(flagFields, name)) {
        m_value = [flag](const QueryRecord& record) {
            return flag->read(record) ? QStringLiteral("true") : QStringLiteral("false");
        };
    } else if (name.startsWith(userPrefix)) {
        const QString key = name.mid(userPrefix.size());
        m_value = [key](const QueryRecord& record) { return userAttribute(record, key); };
    } else if (name == QLatin1String("userattrs")) {
        m_value = userAttributeLines;
    } else if (name != QLatin1String("any")) {
        m_value = [](const QueryRecord&) { return QString(); };
    }
}

bool QueryAttribute::anyValue(const QueryRecord& record, const Test& test) const
{
    return m_value ? test(m_value(record)) : anyTextOf(record, test);
}

bool QueryAttribute::anyTextOf(const QueryRecord& record, const Test& test)
{
    const auto holds = [&test](const QString& value) { return !value.isEmpty() && test(value); };
    const auto holdsForText = [&](const TextField& field) { return holds(textOf(field, record)); };
    const auto holdsForNumber = [&](const NumberField& field) { return holds(field.read(record)); };
    const QHash<QString, QString>& attributes = ownAttributes(record);
    return std::any_of(std::begin(textFields), std::end(textFields), holdsForText)
        || std::any_of(std::begin(numberFields), std::end(numberFields), holdsForNumber)
        || std::any_of(attributes.begin(), attributes.end(), holds);
}

} // namespace tresk
