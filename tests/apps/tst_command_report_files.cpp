#include "Command.h"
#include "Documents.h"
#include "HtmlPage.h"

#include <ByteOrder.h>
#include <TestFiles.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtTest>

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

Q_DECLARE_METATYPE(tresktest::FileSpec)

using namespace tresktest;

/// The pictures on the pages of `tresk report`, and where the pages go.
class TestCommandReportFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void picturesAreShown_data();
    void picturesAreShown();
    void allElseIsNotShown_data();
    void allElseIsNotShown();
    void picturesOutOfBounds_data();
    void picturesOutOfBounds();
    void picturesInAll_data();
    void picturesInAll();
    void pictureOfSeveralSteps();
    void fileOrStandardOutput();
    void fileIsReplaced();
    void linkStays();
    void linkToNothingYet();
    void standardOutputByName();
    void documentIsNotWrittenOver_data();
    void documentIsNotWrittenOver();
    void devicesAndPipes();
    void nameThatIsNotUtf8();
    void fileThatCannotBeWritten_data();
    void fileThatCannotBeWritten();
    void noRoom();
    void noHistoryNoFile_data();
    void noHistoryNoFile();
    void signalLeavesNothing();

private:
    Outcome report(const QStringList& options) const;
    HtmlPage pageWith(const QVector<FileSpec>& files) const;
    QString path(const char* name) const { return m_dir.path(text(name)); }

    TestDir m_dir;
};

namespace {

QByteArray png(quint32 width, quint32 height, int bytesBehind = 20)
{
    return "\x89PNG\r\n\x1a\n" + bigEndian(quint32(13)) + "IHDR" + bigEndian(width)
        + bigEndian(height) + QByteArray(bytesBehind, '\0');
}

/// With @p before, an application's segment, in front of the frame's.
QByteArray jpeg(quint16 width, quint16 height, const QByteArray& before = "abc")
{
    return "\xff\xd8\xff\xe1" + bigEndian(quint16(before.size() + 2)) + before
        + QByteArray("\xff\xc2\x00\x11\x08", 5) + bigEndian(height) + bigEndian(width)
        + QByteArray(12, '\1');
}

/// A JPEG of 65500 by 65500 pixels, with a marker in front of its frame. Whoever takes the next two
/// bytes for the length of a segment comes to a frame of one pixel.
QByteArray disguisedJpeg(const QByteArray& marker)
{
    const QByteArray frame = jpeg(65500, 65500).mid(9);
    const int length = qFromBigEndian<quint16>((marker + frame).constData() + 2);
    QByteArray content = "\xff\xd8" + marker + frame;
    content += QByteArray(4 + length - int(content.size()), '\xff');
    return content + jpeg(1, 1).mid(9);
}

QByteArray gif(quint16 width, quint16 height, quint16 frameWidth, quint16 frameHeight)
{
    return "GIF89a" + littleEndian(width) + littleEndian(height) + QByteArray("\x80\0\0", 3)
        + QByteArray(6, 'c') + QByteArray("\x21\xfe\x03,,,\x02,,\0", 10) + ','
        + littleEndian(quint16(0)) + littleEndian(quint16(0)) + littleEndian(frameWidth)
        + littleEndian(frameHeight) + QByteArray("\0\2\0;", 4);
}

QByteArray webp(const char* chunk, const QByteArray& content)
{
    return "RIFF" + littleEndian(quint32(content.size() + 12)) + "WEBP" + chunk
        + littleEndian(quint32(content.size())) + content;
}

QByteArray lossyWebp(quint16 width, quint16 height)
{
    return webp("VP8 ",
                QByteArray("\0\0\0\x9d\x01\x2a", 6) + littleEndian(width) + littleEndian(height)
                    + QByteArray(10, '\0'));
}

QByteArray losslessWebp(quint32 width, quint32 height)
{
    return webp("VP8L",
                '\x2f' + littleEndian(quint32((width - 1) | (height - 1) << 14))
                    + QByteArray(10, '\0'));
}

QByteArray extendedWebp(quint32 width, quint32 height)
{
    return webp("VP8X",
                QByteArray(4, '\0') + littleEndian(width - 1).left(3)
                    + littleEndian(height - 1).left(3) + QByteArray(10, '\0'));
}

FileSpec picture(const QByteArray& content)
{
    return FileSpec::plain(text("picture"), content);
}

} // namespace

Outcome TestCommandReportFiles::report(const QStringList& options) const
{
    return Command(text("report some.pdf").split(QLatin1Char(' ')) + options)
        .inDirectory(m_dir.path(QString()))
        .run();
}

HtmlPage TestCommandReportFiles::pageWith(const QVector<FileSpec>& files) const
{
    m_dir.write(text("some.pdf"), documentWith(files));
    return HtmlPage(report({}).output);
}

void TestCommandReportFiles::picturesAreShown_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("type");
    QTest::newRow("PNG") << png(64, 48) << text("png");
    QTest::newRow("PNG as large as can be") << png(8000, 5000) << text("png");
    QTest::newRow("JPEG") << jpeg(64, 48) << text("jpeg");
    QTest::newRow("JPEG with a long segment")
        << jpeg(64, 48, QByteArray(65000, 'x')) << text("jpeg");
    QTest::newRow("GIF") << gif(64, 48, 64, 48) << text("gif");
    QTest::newRow("WebP") << lossyWebp(64, 48) << text("webp");
    QTest::newRow("WebP, scaled") << lossyWebp(64 | 0x4000, 48 | 0xC000) << text("webp");
    QTest::newRow("WebP without loss") << losslessWebp(16384, 2000) << text("webp");
    QTest::newRow("extended WebP") << extendedWebp(5000, 8000) << text("webp");
}

/// Whatever it is called, and whether it is compressed.
void TestCommandReportFiles::picturesAreShown()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, type);
    for (const FileSpec& file :
         {FileSpec::plain(text("a \"<b>\".html"), content), FileSpec::flate(text("x"), content)}) {
        const HtmlPage page = pageWith({FileSpec::plain(text("other"), "abc"), file});
        QCOMPARE(page.error(), QString());
        const QVector<HtmlElement> images = page.named("img");
        QCOMPARE(images.size(), 1);
        QCOMPARE(images[0].attributes.value(text("src")),
                 text("data:image/%1;base64,").arg(type) + QString::fromLatin1(content.toBase64()));
        QCOMPARE(images[0].attributes.value(text("alt")),
                 text("Embedded picture ") + file.filename);
        QCOMPARE(page.texts("figcaption"), QStringList{file.filename});
    }
}

void TestCommandReportFiles::allElseIsNotShown_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("HTML") << QByteArray("<!DOCTYPE html><script>alert(1)</script>");
    QTest::newRow("SVG") << QByteArray(
        "<svg xmlns='http://www.w3.org/2000/svg' onload='alert(1)'/>");
    QTest::newRow("SVG behind XML") << QByteArray("<?xml version='1.0'?><svg/>");
    QTest::newRow("PDF") << QByteArray("%PDF-1.4\n%EOF\n12345678901234567890");
    QTest::newRow("BMP") << QByteArray("BM") + QByteArray(60, '\1');
    QTest::newRow("ICO") << QByteArray("\0\0\1\0\1\0", 6) + QByteArray(60, '\1');
    QTest::newRow("TIFF") << QByteArray("II*\0", 4) + QByteArray(60, '\1');
    QTest::newRow("AVIF") << QByteArray("\0\0\0\x20"
                                        "ftypavif",
                                        12)
            + QByteArray(60, '\1');
    QTest::newRow("PNG behind something") << ' ' + png(1, 1);
    QTest::newRow("another RIFF") << QByteArray("RIFF\x30\0\0\0WAVEfmt ", 16)
            + QByteArray(60, '\1');
}

void TestCommandReportFiles::allElseIsNotShown()
{
    QFETCH(QByteArray, content);
    FileSpec file = FileSpec::plain(text("thumbnail.png"), content);
    file.filetype = text("image/png");
    const HtmlPage page = pageWith({file});
    QCOMPARE(page.error(), QString());
    QCOMPARE(page.named("img").size(), 0);
    QVERIFY(!page.text().contains(text("is not shown")));
    QVERIFY(page.withId(text("step-0")).text.contains(text("thumbnail.png")));
}

void TestCommandReportFiles::picturesOutOfBounds_data()
{
    QTest::addColumn<FileSpec>("file");
    QTest::addColumn<QString>("reason");
    const QString pixels = text("it has more than 40 million pixels");
    const QString damaged = text("it is damaged");
    QTest::newRow("PNG") << picture(png(8001, 5000)) << pixels;
    QTest::newRow("huge PNG") << picture(png(0xFFFFFFFF, 0xFFFFFFFF)) << pixels;
    QTest::newRow("wide PNG") << picture(png(0x7FFFFFFF, 1)) << pixels;
    QTest::newRow("flat PNG") << picture(png(0, 5)) << damaged;
    QTest::newRow("PNG without header") << picture("\x89PNG\r\n\x1a\n") << damaged;
    QTest::newRow("PNG with another header")
        << picture(png(9, 9).replace("IHDR", "IDAT")) << damaged;
    QTest::newRow("JPEG") << picture(jpeg(65500, 65500)) << pixels;
    QTest::newRow("JPEG cut off") << picture(jpeg(64, 48).left(14)) << damaged;
    QTest::newRow("JPEG without frame") << picture(jpeg(64, 48).replace('\xc2', '\xc4')) << damaged;
    QTest::newRow("JPEG with a fill byte") << picture(disguisedJpeg("\xff")) << pixels;
    QTest::newRow("JPEG with a marker for restarting")
        << picture(disguisedJpeg("\xff\xd0")) << damaged;
    QTest::newRow("GIF") << picture(gif(65500, 65500, 1, 1)) << pixels;
    QTest::newRow("GIF with a huge frame") << picture(gif(1, 1, 65500, 65500)) << pixels;
    QTest::newRow("GIF without a frame") << picture(gif(5, 5, 5, 5).left(25)) << damaged;
    QTest::newRow("GIF cut off") << picture(QByteArray("GIF87a\1\0\1\0", 10)) << damaged;
    QTest::newRow("WebP without loss") << picture(losslessWebp(16384, 16384)) << pixels;
    QTest::newRow("extended WebP") << picture(extendedWebp(0x1000000, 0x1000000)) << pixels;
    QTest::newRow("WebP") << picture(lossyWebp(16383, 16383)) << pixels;
    QTest::newRow("WebP of an unknown kind")
        << picture(webp("VP9 ", QByteArray(30, '\1'))) << damaged;
    QTest::newRow("large file") << picture(png(9, 9, 4 * 1024 * 1024 - 23))
                                << text("it has more than 4.0 MiB");
    FileSpec broken = FileSpec::flate(text("picture"), png(9, 9) + noise(200000));
    broken.stored = deflated(broken.content).left(100000);
    QTest::newRow("broken stream") << broken << text("its compressed stream breaks off");
    FileSpec longer = FileSpec::flate(text("picture"), png(9, 9) + noise(200000));
    longer.with("filesize", "150000");
    QTest::newRow("longer than it says")
        << longer << text("its content is longer than the 150000 bytes that its marker says");
}

void TestCommandReportFiles::picturesOutOfBounds()
{
    QFETCH(FileSpec, file);
    QFETCH(QString, reason);
    const HtmlPage page = pageWith({file, FileSpec::plain(text("small"), png(1, 1))});
    QCOMPARE(page.error(), QString());
    QVERIFY2(page.texts("p").contains(text("The picture picture is not shown: %1.").arg(reason)),
             qPrintable(page.texts("p").join(QLatin1Char('\n'))));
    QCOMPARE(page.texts("figcaption"), QStringList{text("small")});
}

void TestCommandReportFiles::picturesInAll_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("shown");
    QTest::addColumn<QString>("limit");
    QTest::newRow("pixels") << png(8000, 5000) << 5 << text("200 million pixels");
    QTest::newRow("bytes") << png(9, 9, 4 * 1024 * 1024 - 24) << 8 << text("32.0 MiB");
}

void TestCommandReportFiles::picturesInAll()
{
    QFETCH(QByteArray, content);
    QFETCH(int, shown);
    QFETCH(QString, limit);
    QVector<FileSpec> files(shown + 1, FileSpec::flate(text("picture"), content));
    files += FileSpec::plain(text("other"), "abc");
    m_dir.write(text("some.pdf"), documentWith(files));
    // Too much to be taken apart, or to go through a pipe, in a short time.
    QCOMPARE(report({text("-o"), text("page.html")}).exitCode, 0);
    const QByteArray page = readFile(path("page.html"));
    QVERIFY(QFile::remove(path("page.html")));
    QCOMPARE(page.count("<img "), shown);
    QCOMPARE(page.count(" is not shown: "), 1);
    const QString reason = text("the pictures on this page have no more than %1 in all").arg(limit);
    QVERIFY(page.contains(" is not shown: " + reason.toUtf8() + ".</p>"));
}

void TestCommandReportFiles::pictureOfSeveralSteps()
{
    SectionSpec second = step(text("second"));
    second.regionStart = 20; // so that it has the files of the first as well
    m_dir.write(text("some.pdf"),
                documentWith({step(text("first"), {picture(png(5, 5))}), second}));
    const HtmlPage page(report({}).output);
    QCOMPARE(page.error(), QString());
    QCOMPARE(page.named("img").size(), 1);
    for (const char* id : {"step-0", "step-1"})
        QVERIFY(page.textsIn(text(id), "th").filter(text("picture")).size() == 1);
}

void TestCommandReportFiles::fileOrStandardOutput()
{
    m_dir.write(text("some.pdf"), documentWith({step(text("one"))}));
    const QByteArray page = report({}).output;
    QVERIFY(page.endsWith("</html>\n"));
    const QStringList before = entriesOf(m_dir.path(QString()));
    for (const char* option : {"-onew.html", "--output=new.html", "-o./new.html"}) {
        const Outcome outcome = report({text(option)});
        QCOMPARE(outcome.output, QByteArray());
        QCOMPARE(outcome.errors, QByteArray());
        QCOMPARE(outcome.exitCode, 0);
        QCOMPARE(readFile(path("new.html")), page);
        QVERIFY(QFile::remove(path("new.html")));
        QCOMPARE(entriesOf(m_dir.path(QString())), before);
    }
    QCOMPARE(report({text("-o"), text("-")}).output, page);
    QCOMPARE(entriesOf(m_dir.path(QString())), before);
}

void TestCommandReportFiles::fileIsReplaced()
{
    m_dir.write(text("some.pdf"), documentWith({step(text("one"))}));
    const QString old = m_dir.write(text("old.html"), QByteArray(1000000, 'x'));
    const auto permissions = QFile::ReadOwner | QFile::WriteOwner;
    QVERIFY(QFile::setPermissions(old, permissions));
    QVERIFY(QFile::link(old, path("other name")));
    QCOMPARE(report({text("-o"), text("old.html")}).exitCode, 0);
    QCOMPARE(readFile(old), report({}).output);
    QCOMPARE(QFile::permissions(old) & ~(QFile::ReadUser | QFile::WriteUser), permissions);
    QVERIFY(QFile::remove(path("other name")));
}

void TestCommandReportFiles::linkStays()
{
    m_dir.write(text("some.pdf"), documentWith({step(text("one"))}));
    QVERIFY(QDir().mkpath(path("folder")));
    m_dir.write(text("folder/page.html"), "old");
    QVERIFY(QFile::link(text("folder/page.html"), path("link.html")));
    QCOMPARE(report({text("-o"), text("link.html")}).exitCode, 0);
    QVERIFY(QFileInfo(path("link.html")).isSymLink());
    QCOMPARE(readFile(path("folder/page.html")), report({}).output);
    QCOMPARE(entriesOf(path("folder")), QStringList{text("page.html")});
}

void TestCommandReportFiles::linkToNothingYet()
{
    m_dir.write(text("some.pdf"), documentWith({step(text("one"))}));
    QVERIFY(QDir().mkpath(path("folder")));
    QVERIFY(QFile::link(text("folder/second"), path("first")));
    QVERIFY(QFile::link(path("folder/new.html"), path("folder/second")));
    QCOMPARE(report({text("-o"), text("first")}).exitCode, 0);
    QVERIFY(QFileInfo(path("first")).isSymLink());
    QVERIFY(QFileInfo(path("folder/second")).isSymLink());
    QCOMPARE(readFile(path("folder/new.html")), report({}).output);
    QDir(path("folder")).removeRecursively();
    QFile::remove(path("first"));
}

void TestCommandReportFiles::standardOutputByName()
{
    m_dir.write(text("some.pdf"), documentWith({step(text("one"))}));
    const QByteArray page = report({}).output;
    m_dir.write(text("all.html"), "before\n");
    const Outcome outcome = Command({text("report"), text("some.pdf"), text("-o/dev/stdout")})
                                .inDirectory(m_dir.path(QString()))
                                .inShell(text("{ \"$@\" && echo behind; } >>all.html"))
                                .run();
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(readFile(path("all.html")), "before\n" + page + "behind\n");
}

void TestCommandReportFiles::documentIsNotWrittenOver_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("same path") << text("some.pdf");
    QTest::newRow("another path") << text("./folder/../some.pdf");
    QTest::newRow("symbolic link") << text("symbolic");
    QTest::newRow("hard link") << text("hard");
}

void TestCommandReportFiles::documentIsNotWrittenOver()
{
    QFETCH(QString, file);
    const QByteArray document = documentWith({step(text("one"))});
    m_dir.write(text("some.pdf"), document);
    QDir().mkpath(path("folder"));
    QFile::link(text("some.pdf"), path("symbolic"));
    QFile::remove(path("hard"));
    QCOMPARE(link(QFile::encodeName(path("some.pdf")).constData(),
                  QFile::encodeName(path("hard")).constData()),
             0);
    const QStringList before = entriesOf(m_dir.path(QString()));
    const Outcome outcome = report({text("-o"), file});
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(outcome.errors,
             "tresk: " + file.toUtf8() + ": is the document itself, which is not written over\n");
    QCOMPARE(readFile(path("some.pdf")), document);
    QCOMPARE(entriesOf(m_dir.path(QString())), before);
}

void TestCommandReportFiles::devicesAndPipes()
{
    m_dir.write(text("some.pdf"), documentWith({step(text("one"))}));
    QCOMPARE(report({text("-o"), text("/dev/null")}).exitCode, 0);
    QVERIFY(!QFileInfo(text("/dev/null")).isFile());
    const QByteArray page = runTresk({text("report"), path("some.pdf")}).output;
    const Outcome piped = Command({text("report"), path("some.pdf"), text("-o/dev/fd/3")})
                              .inShell(text("\"$@\" 3>&1 | cat"))
                              .run();
    QCOMPARE(piped.output, page);
    const QString pipe = m_dir.makePipe(text("pipe"));
    const Outcome named = Command({text("report"), path("some.pdf"), text("-o"), pipe})
                              .with(text("PIPE"), pipe)
                              .inShell(text("cat \"$PIPE\" & \"$@\"; wait"))
                              .run();
    QCOMPARE(named.output, page);
    QVERIFY(QFile::remove(pipe));
}

void TestCommandReportFiles::nameThatIsNotUtf8()
{
    m_dir.write(text("some.pdf"), documentWith({step(text("one"))}));
    const Outcome outcome =
        Command({text("report"), text("some.pdf")})
            .inDirectory(m_dir.path(QString()))
            .inShell(text("name=$(printf 'a\\377.html'); \"$@\" -o \"$name\" && cat \"$name\"; "
                          "rm \"$name\""))
            .run();
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.output, report({}).output);
}

void TestCommandReportFiles::fileThatCannotBeWritten_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("no folder") << text("missing/page.html")
                               << QByteArray("No such file or directory");
    QTest::newRow("under a file") << text("some.pdf/page.html") << QByteArray("Not a directory");
    QTest::newRow("folder") << text("folder") << QByteArray("Is a directory");
    QTest::newRow("new folder") << text("new/") << QByteArray("Is a directory");
    QTest::newRow("long name") << QString(300, QLatin1Char('x'))
                               << QByteArray("File name too long");
    QTest::newRow("full device") << text("/dev/full") << QByteArray("No space left on device");
}

void TestCommandReportFiles::fileThatCannotBeWritten()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, reason);
    m_dir.write(text("some.pdf"), documentWith({step(text("one"))}));
    QDir().mkpath(path("folder"));
    const QStringList before = entriesOf(m_dir.path(QString()));
    const Outcome outcome = report({text("-o"), file});
    const QByteArray name = file.isEmpty() ? QByteArray("''") : file.toUtf8();
    QCOMPARE(outcome.errors, "tresk: " + name + ": cannot be written: " + reason + "\n");
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(entriesOf(m_dir.path(QString())), before);
    QVERIFY(!QFileInfo(text("/dev/full")).isFile());
}

void TestCommandReportFiles::noRoom()
{
    m_dir.write(text("some.pdf"), documentWith(QVector<FileSpec>{picture(png(9, 9, 2000000))}));
    m_dir.write(text("old.html"), "old");
    const QStringList before = entriesOf(m_dir.path(QString()));
    const Outcome outcome = Command(text("report some.pdf -o old.html").split(QLatin1Char(' ')))
                                .inDirectory(m_dir.path(QString()))
                                .inShell(text("ulimit -f 1000; exec \"$@\""))
                                .run();
    QCOMPARE(outcome.errors, QByteArray("tresk: old.html: cannot be written: File too large\n"));
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(readFile(path("old.html")), QByteArray("old"));
    QCOMPARE(entriesOf(m_dir.path(QString())), before);

    const Outcome full =
        Command({text("report"), path("some.pdf")}).inShell(text("exec \"$@\" >/dev/full")).run();
    QCOMPARE(full.errors, QByteArray("tresk: standard output: No space left on device\n"));
    QCOMPARE(full.exitCode, 2);
}

void TestCommandReportFiles::noHistoryNoFile_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("no history") << QByteArray("%PDF-1.4\n") << QByteArray("has no history");
    QTest::newRow("empty") << QByteArray() << QByteArray("is empty");
    DocumentWriter writer("%PDF-1.4\n");
    writer.writeHeader();
    writer.endLine();
    writer.writeFile(FileSpec::plain(text("f"), "abc"));
    QTest::newRow("no step") << writer.bytes() << QByteArray("has no history: no step is left");
}

void TestCommandReportFiles::noHistoryNoFile()
{
    QFETCH(QByteArray, document);
    QFETCH(QByteArray, message);
    m_dir.write(text("some.pdf"), document);
    m_dir.write(text("old.html"), "old");
    const QStringList before = entriesOf(m_dir.path(QString()));
    for (const char* file : {"new.html", "old.html", "-"}) {
        const Outcome outcome = report({text("-o"), text(file)});
        QVERIFY2(outcome.errors.startsWith("tresk: some.pdf: " + message),
                 outcome.errors.constData());
        QCOMPARE(outcome.errors.count('\n'), 1);
        QCOMPARE(outcome.output, QByteArray());
        QCOMPARE(outcome.exitCode, 2);
        QCOMPARE(entriesOf(m_dir.path(QString())), before);
    }
    QCOMPARE(readFile(path("old.html")), QByteArray("old"));
}

void TestCommandReportFiles::signalLeavesNothing()
{
    const QString large = writeWithHole(m_dir, text("large.pdf"), 1000 * 1024 * 1024,
                                        {FileSpec::plain(text("first"), "x")});
    m_dir.write(text("old.html"), "old");
    const QStringList before = entriesOf(m_dir.path(QString()));
    const auto interrupt = [](qint64 process) {
        waitUntilRead(process, 5 * 1024 * 1024);
        kill(static_cast<pid_t>(process), SIGINT);
    };
    const Outcome outcome =
        Command({text("report"), large, text("-o"), path("old.html")}).runWhile(interrupt);
    QCOMPARE(outcome.exitCode, 128 + SIGINT);
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(readFile(path("old.html")), QByteArray("old"));
    QCOMPARE(entriesOf(m_dir.path(QString())), before);
}

QTEST_GUILESS_MAIN(TestCommandReportFiles)
#include "tst_command_report_files.moc"
