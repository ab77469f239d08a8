#include "JsonDocuments.h"

#include "Command.h"
#include "Documents.h"
#include "SummaryXml.h"

namespace tresktest {

namespace {

/// A file whose marker has escapes in each of its texts.
FileSpec escapedFile()
{
    FileSpec file = FileSpec::plain(text("name]"), "content");
    file.filetype = text("type]");
    file.desc = text("description\n");
    file.comment = text("comment\\");
    file.compression = "other\\]";
    return file;
}

SectionSpec escapedStep(const QVector<FileSpec>& files = {})
{
    SectionSpec section = step(text(awkwardText()), files);
    section.creator = text("creator]");
    section.version = text("1.0]");
    return section;
}

/// No summary, a summary that says nothing, and one that says all, without and with texts.
QByteArray oddHistory()
{
    const FileSpec sizeless = FileSpec::plain(text("sizeless"), "x")
                                  .with("filesize", "")
                                  .with("cfilesize", "")
                                  .with("md5file", "");
    const FileSpec other = FileSpec::plain(text("other]"), "other");
    DocumentWriter writer(headerLine() + '\n');
    writer.writeFile(FileSpec::plain(text("stray]"), "stray"));
    writer.writeSection(escapedStep().with("index", "").with("size", ""));
    writer.writeSection(escapedStep({escapedFile(), sizeless}));
    writer.writeSection(step(text("no summary says more"),
                             {summaryWith(element("InFile", "") + element("OutFile", ""))}));
    writer.writeSection(
        step(text("awkward"),
             {other,
              summaryWith(element("Title", awkwardText()) + element("Tool", awkwardText())
                          + fileElement("OutFile", other)
                          + element("InFile", element("Filename", "not there")))})
            .with("index", "2147483647"));
    return writer.bytes();
}

QByteArray failingHistory()
{
    QVector<FileSpec> files;
    for (const DamagedFile& damaged : damagedFiles())
        files += damaged.file;
    files += FileSpec::plain(text("unchecked]"), "x").with("md5file", "");
    files += FileSpec::plain(text("altered"), "x").with("md5file", md5Hex("y"));
    return documentWith(files);
}

QByteArray toldHistory(const QByteArray& told, const QVector<FileSpec>& files)
{
    return documentWith({step(text("first"), files + QVector<FileSpec>{summaryWith(told)})});
}

/// A history in which all files lie in all steps.
QByteArray sharedFiles(int stepCount, int fileCount)
{
    DocumentWriter writer(headerLine() + '\n');
    const int start = writer.position();
    for (int i = 0; i < stepCount; ++i) {
        SectionSpec section = step(QString::number(i));
        section.regionStart = start;
        if (i == 0)
            section.files.fill(FileSpec::plain(text("f"), ""), fileCount);
        writer.writeSection(section);
    }
    return writer.bytes();
}

} // namespace

const char* awkwardText()
{
    return "a \"quoted\" | 'b', c;\td \\n\ne\x1f f\x1e g\x7f \u2028 \U0001f600";
}

void writeOddDocuments(const TestDir& dir)
{
    dir.write(text("odd.pdf"), oddHistory());
    dir.write(text("failing.pdf"), failingHistory());
    dir.write(text("none.pdf"), "%PDF-1.4\nno history\n");
    SectionSpec lost = step(text("lost"));
    lost.gap = QByteArray(20, '\n'); // farther than the neighbourhood that is searched
    lost.with("previousmarker", "12");
    dir.write(text("incomplete.pdf"), documentWith({step(text("first")), lost}));

    const FileSpec kept = FileSpec::plain(text("kept"), "1");
    const FileSpec keptOtherwise = FileSpec::plain(text("kept"), "2");
    const FileSpec out = FileSpec::plain(text("out"), "3");
    const FileSpec unnamed = FileSpec::plain(text("unnamed"), "4");
    dir.write(text("before.pdf"),
              toldHistory(element("Timestamp", "2024-03-05") + element("Title", "t")
                              + element("Tool", "u") + element("Host", "h")
                              + fileElement("InFile", kept) + fileElement("OutFile", out),
                          {kept, out, unnamed}));
    dir.write(text("after.pdf"),
              toldHistory(element("Timestamp", "2024-03-06") + element("Title", "v")
                              + element("Tool", "w") + element("Description", "d")
                              + element("Comment", "c") + element("Command", "l")
                              + element("User", "x") + fileElement("InFile", keptOtherwise)
                              + fileElement("InFile", out),
                          {keptOtherwise, out}));
    dir.write(text("bare.pdf"), documentWith({step(QString(), {unnamed})}));
    dir.write(text("barer.pdf"), documentWith({step(QString())}));
    // Too much to list: a million and more places of files in steps.
    dir.write(text("files.pdf"), sharedFiles(21, 50000));
    dir.write(text("steps.pdf"), sharedFiles(1700, 600));

    dir.write(text("none.args"), "");
    dir.write(text("all.args"),
              "-O a.pdf -J root.pdf -1 cover.pdf -r notes.txt -v # comment\n"
              "-s title 'a b' -s description D -s comment C -s command X -s tool t -s toolpath P\n"
              "-s user U -s host H -U k v -d title T -d author A -d subject S -d keywords K\n"
              "-d producer P -d creator C\n"
              "-i in/f.csv -a filetype t -a description D -a comment C -a md5file f.md5 -u n v\n"
              "-o '\xf0\x9f\x98\x80.png'\n");
    dir.write(text("faulty.args"), "-q -s title a --colour -i '\xf0\x9f\x98\x80");
    dir.write(text("doubtful.args"), "--sync-cwd -q -s title a");
}

} // namespace tresktest
