#include "ReaderModel.h"

#include <QDebug>

#include <string>

using tresk::FileSummary;
using tresk::Summary;
using tresk::Workflowstep;

namespace tresktest {

namespace {

class ScannerModel {
public:
    explicit ScannerModel(const QString& text)
        : m_copy(text.toStdU16String())
    {
        readElement();
    }

    bool isValid() const { return m_valid; }
    bool is(const char* name) const { return m_name == QLatin1String(name); }
    QString name() const { return m_name; }
    QString content() const { return m_content; }
    void next() { readElement(); }

private:
    using Position = std::u16string::size_type;
    static constexpr Position none = std::u16string::npos;
    static constexpr char16_t terminator = 0;

    Position find(const QString& what, Position from) const
    {
        return m_copy.find(what.toStdU16String(), from);
    }

    void end()
    {
        m_valid = false;
        m_name = QString();
        m_content = QString();
    }

    void readElement()
    {
        m_name = QString();
        m_content = QString();
        if (!m_valid)
            return;
        Position close = none;
        for (;;) {
            const Position open = find(QStringLiteral("<"), m_position);
            if (open == none)
                return end();
            m_position = open + 1;
            close = find(QStringLiteral(">"), m_position);
            if (close == none)
                return end();
            const char16_t mark = m_copy.at(m_position);
            if (mark != u'?' && mark != u'!')
                break;
            const QString closing = mark == u'?' ? QStringLiteral("?>") : QStringLiteral("-->");
            const Position found = find(closing, m_position + 1);
            if (found == none || found == 0)
                return end();
            m_position = found + 1;
        }

        const Position nameStart = m_position;
        Position nameLength = close - nameStart;
        m_position = close + 1;
        if (m_copy.at(nameStart) == u'/')
            return end();
        m_copy.at(close) = terminator;
        if (m_copy.at(close - 1) == u'/') {
            m_copy.at(close - 1) = terminator;
            --nameLength;
            m_name = taken(nameStart, nameLength);
            m_content = QString::fromLatin1("");
            return;
        }
        m_name = taken(nameStart, nameLength);
        readContent();
    }

    void readContent()
    {
        const QString closingTag = QStringLiteral("</%1>").arg(m_name);
        const QString openingTag = QStringLiteral("<%1>").arg(m_name);
        const Position contentStart = m_position;
        Position contentEnd = none;
        int depth = 1;
        do {
            const Position opening = find(openingTag, m_position);
            const Position closing = find(closingTag, m_position);
            if (opening == none && closing == none)
                return end();
            if (closing == none || (opening != none && opening < closing)) {
                ++depth;
                m_position = opening + static_cast<Position>(openingTag.size());
            } else {
                --depth;
                m_position = closing + static_cast<Position>(closingTag.size());
                contentEnd = closing;
            }
        } while (depth >= 1);
        m_content = taken(contentStart, contentEnd - contentStart);
        m_copy.at(contentEnd) = terminator;
    }

    /// A part of the text; not null, even if it is empty.
    QString taken(Position start, Position length) const
    {
        QString text = QString::fromLatin1("");
        for (Position i = start; i < start + length; ++i)
            text += QChar(m_copy.at(i));
        return text;
    }

    std::u16string m_copy;
    Position m_position = 0;
    QString m_name;
    QString m_content;
    bool m_valid = true;
};

bool flag(const QString& content)
{
    bool isNumber = false;
    const int number = content.toInt(&isNumber, 10);
    return isNumber && number != 0;
}

int number(const QString& content)
{
    bool isNumber = false;
    const int number = content.toInt(&isNumber, 10);
    return isNumber ? number : -1;
}

QString inQuotes(const QString& text)
{
    QString result;
    QDebug(&result).nospace() << text;
    return result;
}

} // namespace

Summary ReaderModel::readSummary(const QString& text)
{
    ScannerModel scanner(text);
    while (scanner.isValid()) {
        if (scanner.is("trxchange"))
            return parseSummary(scanner.content());
        scanner.next();
    }
    return Summary();
}

Summary ReaderModel::parseSummary(const QString& content)
{
    Summary summary;
    for (ScannerModel scanner(content); scanner.isValid(); scanner.next()) {
        if (scanner.is("Workflowstep"))
            static_cast<Workflowstep&>(summary) = parseWorkflowstep(scanner.content());
        else if (scanner.is("MD5Signature"))
            summary.md5Signature = scanner.content();
    }
    summary.fromXml = true;
    return summary;
}

Workflowstep ReaderModel::parseWorkflowstep(const QString& content)
{
    Workflowstep step;
    for (ScannerModel scanner(content); scanner.isValid(); scanner.next()) {
        const QString text = scanner.content();
        if (scanner.is("TreskRootFile")) {
            step.treskRootFile = text;
        } else if (scanner.is("Timestamp")) {
            step.timestamp = text;
        } else if (scanner.is("Title")) {
            step.title = text;
        } else if (scanner.is("Description")) {
            step.description = text;
        } else if (scanner.is("Comment")) {
            step.comment = text;
        } else if (scanner.is("Command")) {
            step.command = text;
        } else if (scanner.is("Tool")) {
            step.tool = text;
        } else if (scanner.is("ToolPath")) {
            step.toolPath = text;
        } else if (scanner.is("Host")) {
            step.host = text;
        } else if (scanner.is("User")) {
            step.user = text;
        } else if (scanner.is("Creator")) {
            step.creator = text;
        } else if (scanner.is("PDFTitle")) {
            step.pdfTitle = text;
        } else if (scanner.is("PDFAuthor")) {
            step.pdfAuthor = text;
        } else if (scanner.is("PDFSubject")) {
            step.pdfSubject = text;
        } else if (scanner.is("PDFKeywords")) {
            step.pdfKeywords = text;
        } else if (scanner.is("PDFProducer")) {
            step.pdfProducer = text;
        } else if (scanner.is("PDFCreator")) {
            step.pdfCreator = text;
        } else if (scanner.is("InFile") || scanner.is("OutFile")) {
            FileSummary file = parseFile(text);
            file.filePurpose = scanner.name();
            step.files.append(file);
        } else if (scanner.is("UserAttributes")) {
            const UserAttributes attributes = parseUserAttributes(text);
            step.userAttributes = attributes.values;
            step.userAttributeNames = attributes.names;
            step.userAttributeUnits = attributes.units;
        } else {
            unknown("unknown tag (parseWorkflowstep):", scanner.name(), text);
        }
    }
    step.tagId = -1;
    return step;
}

FileSummary ReaderModel::parseFile(const QString& content)
{
    FileSummary file;
    for (ScannerModel scanner(content); scanner.isValid(); scanner.next()) {
        const QString text = scanner.content();
        if (scanner.is("Filename")) {
            file.filename = text;
        } else if (scanner.is("Filepath")) {
            file.filepath = text;
        } else if (scanner.is("Filetype")) {
            file.filetype = text;
        } else if (scanner.is("Description")) {
            file.description = text;
        } else if (scanner.is("Comment")) {
            file.comment = text;
        } else if (scanner.is("LastModified")) {
            file.lastModified = text;
        } else if (scanner.is("GenerateMD5")) {
            file.generateMD5 = flag(text);
        } else if (scanner.is("Embedded")) {
            file.embedded = flag(text);
        } else if (scanner.is("UncompressedSize")) {
            file.uncompressedSize = number(text);
        } else if (scanner.is("UncompressedMD5")) {
            file.uncompressedMD5 = text;
        } else if (scanner.is("CompressedMethod")) {
            file.compressedMethod = text;
        } else if (scanner.is("CompressedSize")) {
            file.compressedSize = number(text);
        } else if (scanner.is("CompressedMD5")) {
            file.compressedMD5 = text;
        } else if (scanner.is("Preview")) {
            file.preview = flag(text);
        } else if (scanner.is("PreviewWS")) {
            file.previewWS = flag(text);
        } else if (scanner.is("Thumbnail")) {
            file.thumbnail = flag(text);
        } else if (scanner.is("ThumbnailOnly")) {
            file.thumbnailOnly = flag(text);
        } else if (scanner.is("UserAttributes")) {
            const UserAttributes attributes = parseUserAttributes(text);
            file.userAttributes = attributes.values;
            file.userAttributeNames = attributes.names;
            file.userAttributeUnits = attributes.units;
        } else {
            unknown("unknown tag (ParseFile):", scanner.name(), text);
        }
    }
    file.tagId = -1;
    return file;
}

ReaderModel::UserAttributes ReaderModel::parseUserAttributes(const QString& content)
{
    UserAttributes attributes;
    for (ScannerModel scanner(content); scanner.isValid(); scanner.next()) {
        if (!scanner.is("Attribute")) {
            unknown("unknown tag (parseUserAttributes):", scanner.name(), scanner.content());
            continue;
        }
        QString key;
        QString value;
        QString unit;
        parseAttribute(scanner.content(), key, value, unit);
        attributes.values.insert(key, value);
        if (!unit.isNull())
            attributes.units.insert(key, unit);
        attributes.names.append(key);
    }
    return attributes;
}

void ReaderModel::parseAttribute(const QString& content, QString& key, QString& value,
                                 QString& unit)
{
    for (ScannerModel scanner(content); scanner.isValid(); scanner.next()) {
        if (scanner.is("Key"))
            key = scanner.content();
        else if (scanner.is("Value"))
            value = scanner.content();
        else if (scanner.is("Unit"))
            unit = scanner.content();
        else
            unknown("unknown tag (parseAttribute):", scanner.name(), scanner.content());
    }
}

void ReaderModel::unknown(const char* message, const QString& name, const QString& content)
{
    m_debugLines +=
        QStringLiteral("%1 %2 : %3").arg(QLatin1String(message), inQuotes(name), inQuotes(content));
}

} // namespace tresktest
