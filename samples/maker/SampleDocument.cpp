#include "SampleDocument.h"

#include "SummaryXml.h"

#include <PdfHost.h>
#include <TestFiles.h>

#include <QFileInfo>
#include <QHash>
#include <QStringList>

namespace samples {

namespace {

const QString creator = "make_samples"_s;

QByteArray hostOf(const Workshop& workshop, const QString& name)
{
    QString error;
    const auto pdf = tresktest::pdfWithHeader(workshop.file(name + ".pdf"_s), &error);
    if (!pdf)
        qFatal("%s.pdf: %s", qPrintable(name), qPrintable(error));
    return *pdf;
}

/// Reads lines such as "Title:   Report".
PdfInfo parseInfo(const QByteArray& text)
{
    QHash<QString, QString> entries;
    const QStringList lines = QString::fromUtf8(text).split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        const auto colon = line.indexOf(QLatin1Char(':'));
        entries.insert(line.left(colon), line.mid(colon + 1).trimmed());
    }
    const auto entry = [&](const char* key) { return entries.value(QLatin1String(key)); };
    return {entry("Title"),    entry("Author"),   entry("Subject"),
            entry("Keywords"), entry("Producer"), entry("Creator")};
}

QString filetypeOf(const QString& name)
{
    static const QHash<QString, QString> types{
        {"csv"_s, "text/csv"_s},          {"fodt"_s, "application/vnd.oasis.opendocument.text"_s},
        {"ini"_s, "text/plain"_s},        {"pdf"_s, "application/pdf"_s},
        {"png"_s, "image/png"_s},         {"ps"_s, "application/postscript"_s},
        {"py"_s, "text/x-python"_s},      {"svg"_s, "image/svg+xml"_s},
        {"tex"_s, "application/x-tex"_s}, {"tresk"_s, "application/pdf"_s},
        {"txt"_s, "text/plain"_s},        {"xml"_s, "text/xml"_s}};
    return types.value(QFileInfo(name).suffix(), "application/octet-stream"_s);
}

tresktest::FileSpec specOf(const StepFile& file, int level)
{
    tresktest::FileSpec spec = tresktest::FileSpec::plain(file.name, file.content);
    spec.filetype = file.filetype;
    spec.desc = file.description;
    spec.comment = file.comment;
    if (file.storage == Storage::Compressed) {
        spec.compression = "flate";
        spec.stored = tresktest::deflated(file.content, level);
    }
    return spec;
}

StoredFile storedFile(const tresktest::FileSpec& spec)
{
    StoredFile stored;
    stored.name = QString::fromUtf8(tresktest::escaped(spec.filename));
    stored.stored = spec.stored.value_or(spec.content);
    if (spec.stored)
        stored.md5Stored = tresktest::md5Hex(stored.stored);
    return stored;
}

StepFile summaryFile(const QByteArray& xml)
{
    StepFile file;
    file.name = "ws_summary.xml"_s;
    file.content = xml;
    file.storage = Storage::Compressed;
    file.filetype = filetypeOf(file.name);
    file.description = "Summary of the step"_s;
    return file;
}

} // namespace

QByteArray Workshop::file(const QString& name) const
{
    return tresktest::readFile(base.filePath(name));
}

StepFile Workshop::stepFile(const QString& name, Purpose purpose, Storage storage) const
{
    StepFile step;
    step.name = QFileInfo(name).fileName();
    step.content = file(name);
    step.purpose = purpose;
    step.storage = storage;
    step.filetype = filetypeOf(name);
    return step;
}

SampleDocument::SampleDocument(const Workshop& workshop, const QString& name)
    : m_level(workshop.level)
    , m_info(parseInfo(workshop.file(name + ".info"_s)))
    , m_writer(hostOf(workshop, name))
{
    m_tail = tresktest::pdfTail(m_writer.bytes());
    m_writer.endLine();
}

tresktest::WrittenSection SampleDocument::addStep(const Step& step)
{
    tresktest::SectionSpec section;
    section.creator = creator;
    section.title = step.title;
    QVector<StoredFile> stored;
    for (const StepFile& file : step.files) {
        if (file.storage == Storage::NotEmbedded)
            continue;
        section.files.append(specOf(file, m_level));
        stored.append(storedFile(section.files.constLast()));
    }
    const QByteArray xml = summaryXml(step, creator, m_info, stored);
    section.files.append(specOf(summaryFile(xml), m_level));
    return m_writer.writeSection(section);
}

QByteArray SampleDocument::finish() const
{
    return m_writer.bytes() + m_tail;
}

} // namespace samples
