#include "DamageDocuments.h"

#include "DocumentWriter.h"
#include "SummaryXml.h"
#include "TestFiles.h"

#include <QDir>

namespace tresktest {

namespace {

const QByteArray host("%PDF-1.4\n1 0 obj<</Type/Catalog>>endobj\n");
const QByteArray trailer("startxref\n9\n%%EOF\n");
const QByteArray text("line one\nline two\nline two again\n");

DocumentWriter begun()
{
    DocumentWriter doc(host);
    doc.writeHeader();
    doc.write(trailer);
    return doc;
}

SectionSpec step(const char* title, const QVector<FileSpec>& files)
{
    SectionSpec section;
    section.title = QString::fromUtf8(title);
    section.files = files;
    return section;
}

FileSpec plain(const char* name, const QByteArray& content)
{
    return FileSpec::plain(QString::fromUtf8(name), content);
}

FileSpec flate(const char* name, const QByteArray& content)
{
    return FileSpec::flate(QString::fromUtf8(name), content);
}

QByteArray attribute(const QByteArray& key, const QByteArray& value, const QByteArray& unit)
{
    return element("Attribute",
                   element("Key", key) + element("Value", value) + element("Unit", unit));
}

QByteArray plainFiles()
{
    DocumentWriter doc = begun();
    doc.writeSection(
        step("plain", {plain("a.txt", text), plain("b.bin", QByteArray("\0\n%<", 4))}));
    doc.write(trailer);
    return doc.bytes();
}

QByteArray compressedFiles()
{
    DocumentWriter doc = begun();
    FileSpec moreStored = flate("b.bin", text);
    moreStored.stored = deflated(text) + "behind the stream";
    doc.writeSection(step("flate", {flate("a.txt", text + text + text), moreStored}));
    return doc.bytes();
}

/// Sections and files without some or all of their checksums, and other compressions.
QByteArray unchecked()
{
    DocumentWriter doc = begun();
    doc.writeSection(step("no checksum",
                          {plain("a.txt", text).with("md5file", ""),
                           flate("b.txt", text).with("md5file", "").with("md5cfile", "")})
                         .with("md5section", ""));
    const FileSpec storedOnly =
        flate("c.txt", text).with("md5cfile", "").with("md5file", md5Hex(deflated(text)));
    doc.writeSection(step("",
                          {flate("c.txt", text).with("md5cfile", ""), storedOnly,
                           plain("d.gz", text).with("compression", "gzip")}));
    return doc.bytes();
}

/// Several steps, and chains that are only found by looking around.
QByteArray manySteps()
{
    DocumentWriter doc = begun();
    for (int i = 0; i < 4; ++i) {
        SectionSpec section = step("step", {plain("in", "in " + QByteArray::number(i))});
        section.previousShift = i == 2 ? 5 : 0;
        doc.writeSection(section);
        doc.write(i % 2 == 0 ? trailer : QByteArray("%%EOF\n"));
    }
    return doc.bytes();
}

QByteArray summaryOf(const QByteArray& title, const QVector<FileSpec>& files)
{
    QByteArray content = element("Title", title) + element("Tool", "mill")
        + element("Timestamp", "2024-02-08 16:21:30") + element("User", "asato") + '\n';
    for (const FileSpec& file : files)
        content += FileElement(file).xml() + '\n';
    content += "<!-- remark -->"
        + element("UserAttributes", attribute("load", "2400", "N") + attribute("rig", "7", ""));
    return summaryXml(content);
}

/// Steps with summaries, stored both ways.
QByteArray summaries()
{
    DocumentWriter doc = begun();
    const FileSpec settings = plain("trial.ini", "load=2400\n");
    const FileSpec results = flate("run.csv", "1,2\n3,4\n");
    doc.writeSection(
        step("run", {settings, results, summaryFile(summaryOf("Run", {settings, results}))}));
    doc.writeSection(step("rest", {flate("ws_summary.xml", summaryOf("Rest & more", {}))}));
    return doc.bytes();
}

QByteArray innerDocument(const QByteArray& title)
{
    DocumentWriter doc("%PDF-1.4\n");
    doc.writeHeader();
    doc.writeSection(step("inner", {summaryFile(summaryXml(element("Title", title)))}));
    return doc.bytes();
}

/// Documents in a document; the markers of the one that is stored plain stand in the outer one.
QByteArray nested()
{
    DocumentWriter doc = begun();
    const QVector<FileSpec> files = {plain("plain.tresk", innerDocument("Plain")),
                                     flate("flate.tresk", innerDocument("Flate"))};
    doc.writeSection(step(
        "outer", files + QVector<FileSpec>{flate("ws_summary.xml", summaryOf("Outer", files))}));
    return doc.bytes();
}

QByteArray names()
{
    DocumentWriter doc = begun();
    FileSpec file = plain("\u00e4\u6587\U0001f600 [x] \\ ].txt", text);
    file.desc = QStringLiteral("two\nlines");
    file.comment = QStringLiteral("\\]");
    file.filetype = QStringLiteral("\u6587");
    doc.writeSection(step("[md5section:] \\ ]\n\u6587", {file, plain("../../etc", "up")}));
    doc.writeSection(step("\U0001f600", {plain("", "no name"), plain("C:\\a", "drive")}));
    return doc.bytes();
}

/// Files in no section or in several, regions that overlap, markers that do not begin their line.
QByteArray looseFiles()
{
    DocumentWriter doc = begun();
    FileSpec spaced = plain("spaced", text);
    spaced.gap = "% remark\n";
    spaced.afterMarker = " more on the line";
    spaced.trailing = "some\nmore\n";
    doc.writeFile(spaced);
    const int firstRegion = doc.position();
    SectionSpec first = step("first", {plain("a", text)});
    first.filesBehind = {flate("behind", text)};
    first.trailing = "% end\n";
    doc.writeSection(first);
    doc.writeFile(plain("lone", "lone").with("blocksize", "1"));
    SectionSpec second = step("second", {spaced});
    second.beforeMarker = "%%EOF";
    second.afterMarker = "more";
    second.regionStart = firstRegion;
    doc.writeSection(second);
    doc.write(trailer);
    return doc.bytes();
}

/// Lines that end with CR LF, some of them long.
QByteArray otherLines()
{
    DocumentWriter doc("%PDF-1.4\r\n%" + QByteArray(300, '\xe2') + "\r\n");
    doc.setTerminator("\r\n");
    doc.writeHeader();
    FileSpec file = plain("long", QByteArray(700, 'x') + "\r\n\r\n\n\r");
    file.comment = QString(200, QLatin1Char('c'));
    doc.writeSection(step("crlf", {file, flate("flate", text)}));
    doc.write("%%EOF\r\n");
    return doc.bytes();
}

/// Nothing, stored in several ways, up to the very end of the document.
QByteArray emptyFiles()
{
    DocumentWriter doc = begun();
    doc.writeSection(
        step("", {plain("a", ""), flate("b", ""), plain("c", "").with("filesize", "")}));
    doc.writeSection(step("", {}));
    FileSpec last = plain("last", "");
    last.trailing = QByteArray();
    doc.writeFile(last);
    return doc.bytes();
}

QVector<DamageDocument> madeDocuments()
{
    return {
        {QStringLiteral("plain"), plainFiles()},    {QStringLiteral("flate"), compressedFiles()},
        {QStringLiteral("unchecked"), unchecked()}, {QStringLiteral("steps"), manySteps()},
        {QStringLiteral("summaries"), summaries()}, {QStringLiteral("nested"), nested()},
        {QStringLiteral("names"), names()},         {QStringLiteral("loose"), looseFiles()},
        {QStringLiteral("lines"), otherLines()},    {QStringLiteral("empty"), emptyFiles()},
    };
}

} // namespace

QVector<DamageDocument> damageDocuments()
{
    QVector<DamageDocument> documents = madeDocuments();
    const QDir samples(QStringLiteral(TRESK_SAMPLES_DIR));
    const QFileInfoList files = samples.entryInfoList({QStringLiteral("*.pdf")}, QDir::Files,
                                                      QDir::Name);
    for (const QFileInfo& file : files) {
        if (file.size() <= largestDamageDocument)
            documents.append({file.fileName(), readFile(file.filePath())});
    }
    return documents;
}

} // namespace tresktest
