#include "Data.h"

#include "DocumentWriter.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <random>

using tresktest::DocumentWriter;
using tresktest::FileSpec;
using tresktest::SectionSpec;

namespace treskbench {

namespace {

const int mebibyte = 1024 * 1024;
const int pattern = 32 * mebibyte; // repeats in longer data; far beyond what zlib looks back

int between(std::mt19937& random, int low, int high)
{
    return low + int(random() % unsigned(high - low + 1));
}

void appendLines(QByteArray& bytes, int count, std::mt19937& random)
{
    static const char characters[] = "0123456789 .-/abcdefghijklmnopqrstuvwxyzBTEfTmTjTd%<>[]";
    const int end = int(bytes.size()) + count;
    while (bytes.size() < end) {
        const int length = std::min(between(random, 60, 100), end - int(bytes.size()));
        for (int i = 1; i < length; ++i)
            bytes.append(characters[random() % (sizeof(characters) - 1)]);
        bytes.append('\n');
    }
}

void appendRandom(QByteArray& bytes, int count, std::mt19937& random)
{
    for (int i = 0; i < count; ++i)
        bytes.append(char(random()));
}

void save(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append) || file.write(bytes) != bytes.size())
        qFatal("cannot write benchmark data; is there room in TMPDIR?");
}

/// An element of a summary document around @p content.
QString element(const QString& name, const QString& content)
{
    return QStringLiteral("<%1>%2</%1>\n").arg(name, content);
}

/// The entry of a summary document for an embedded file that is stored plain.
QString fileElement(const QString& purpose, const QString& name, const QByteArray& content)
{
    const QString size = QString::number(content.size());
    QString fields;
    fields += element(QStringLiteral("Filename"), name);
    fields += element(QStringLiteral("Filepath"), QStringLiteral("/data/projects/bridge/run_17"));
    fields += element(QStringLiteral("Filetype"), QStringLiteral("data"));
    fields += element(QStringLiteral("Description"), QStringLiteral("Vibration of the bearing"));
    fields += element(QStringLiteral("Comment"), QString());
    fields += element(QStringLiteral("LastModified"), QStringLiteral("2019-03-12 14:33:05"));
    fields += element(QStringLiteral("GenerateMD5"), QStringLiteral("1"));
    fields += element(QStringLiteral("Embedded"), QStringLiteral("1"));
    fields += element(QStringLiteral("UncompressedSize"), size);
    fields += element(QStringLiteral("UncompressedMD5"),
                      QString::fromLatin1(tresktest::md5Hex(content)));
    fields += element(QStringLiteral("CompressedMethod"), QStringLiteral("none"));
    fields += element(QStringLiteral("CompressedSize"), size);
    fields += element(QStringLiteral("CompressedMD5"), QString());
    fields += element(QStringLiteral("Preview"), QStringLiteral("0"));
    fields += element(QStringLiteral("Thumbnail"), QStringLiteral("0"));
    return element(purpose, fields);
}

/// A summary document around @p files, the entries of its files.
QString summaryAround(const QString& files)
{
    QString fields;
    fields += element(QStringLiteral("Timestamp"), QStringLiteral("2019-03-12 14:33:07"));
    fields += element(QStringLiteral("Title"), QStringLiteral("Spectrum of the front bearing"));
    fields += element(QStringLiteral("Description"), QStringLiteral("Whole run, window of 4096"));
    fields += element(QStringLiteral("Command"),
                      QStringLiteral("spectrum --window 4096 --out run_17.csv run_17.raw"));
    fields += element(QStringLiteral("Tool"), QStringLiteral("spectrum"));
    fields += element(QStringLiteral("ToolPath"), QStringLiteral("/opt/tools/bin"));
    fields += element(QStringLiteral("Host"), QStringLiteral("lab-04"));
    fields += element(QStringLiteral("User"), QStringLiteral("meier"));
    fields += files;
    const QString attribute = element(QStringLiteral("Key"), QStringLiteral("window"))
        + element(QStringLiteral("Value"), QStringLiteral("4096"))
        + element(QStringLiteral("Unit"), QStringLiteral("samples"));
    fields += element(QStringLiteral("UserAttributes"),
                      element(QStringLiteral("Attribute"), attribute));
    return QStringLiteral("<?xml version=\"1.0\"?>\n")
        + element(QStringLiteral("trxchange"), element(QStringLiteral("Workflowstep"), fields));
}

/// @p bytes again and again, @p size bytes in all.
QByteArray repeated(const QByteArray& bytes, int size)
{
    QByteArray all;
    all.reserve(size + int(bytes.size()));
    while (all.size() < size)
        all.append(bytes);
    all.truncate(size);
    return all;
}

} // namespace

int largestMebibytes()
{
    bool ok = false;
    const int size = qEnvironmentVariableIntValue("TRESK_BENCHMARK_MIB", &ok);
    return ok && size > 0 ? std::min(size, 2000) : 1024;
}

int scaled(int count)
{
    return int(std::max<qint64>(1, qint64(count) * largestMebibytes() / 1024));
}

QString dataPath(const QString& name)
{
    static const QTemporaryDir dir;
    return dir.filePath(name);
}

QByteArray hostBytes(int size)
{
    std::mt19937 random(1);
    QByteArray bytes;
    while (bytes.size() < std::min(size, pattern)) {
        appendLines(bytes, between(random, 4096, 65536), random);
        appendRandom(bytes, between(random, 4096, 65536), random);
    }
    return repeated(bytes, size);
}

QByteArray prose(int size)
{
    std::mt19937 random(2);
    std::vector<QByteArray> words;
    for (int i = 0; i < 4000; ++i) {
        QByteArray word;
        for (int n = between(random, 2, 11); n > 0; --n)
            word.append(char('a' + random() % 26));
        words.push_back(word);
    }
    QByteArray bytes;
    while (bytes.size() < std::min(size, pattern)) {
        const double rare = std::generate_canonical<double, 32>(random);
        bytes.append(words[std::size_t(rare * rare * rare * rare * double(words.size()))]);
        bytes.append(random() % 12 == 0 ? '\n' : ' ');
    }
    return repeated(bytes, size);
}

QString writeHostDocument(const QString& name, int mebibytes, bool withHistory)
{
    const QString path = dataPath(name);
    const QByteArray chunk = hostBytes(pattern);
    save(path, "%PDF-1.4\n" + tresktest::headerLine() + '\n');
    for (qint64 left = qint64(mebibytes) * mebibyte; left > 0; left -= chunk.size())
        save(path, chunk.left(int(std::min<qint64>(left, chunk.size()))));
    if (!withHistory)
        return path;

    // Markers store distances only, so a history can be written without what is in front of it.
    DocumentWriter history("\n");
    for (int i = 0; i < 3; ++i) {
        SectionSpec step;
        step.title = QStringLiteral("step %1").arg(i);
        step.files = {FileSpec::plain(QStringLiteral("in.txt"), prose(500)),
                      FileSpec::flate(QStringLiteral("out.txt"), prose(2000))};
        history.writeSection(step);
    }
    save(path, history.bytes());
    return path;
}

QString writeLargeFileDocument(const QString& name, int mebibytes, bool compressed)
{
    const int size = mebibytes * mebibyte;
    const QString file = QStringLiteral("large.bin");
    SectionSpec step;
    step.files = {compressed ? FileSpec::flate(file, prose(size))
                             : FileSpec::plain(file, hostBytes(size))};
    DocumentWriter document;
    document.write("%PDF-1.4\n");
    document.writeHeader();
    document.writeSection(step);
    save(dataPath(name), document.bytes());
    return dataPath(name);
}

QString writeLongHistory(const QString& name, int sections, int filesEach)
{
    DocumentWriter document;
    document.write("%PDF-1.4\n");
    document.writeHeader();
    for (int i = 0; i < sections; ++i) {
        SectionSpec step;
        step.title = QStringLiteral("step %1").arg(i);
        for (int k = 0; k < filesEach; ++k)
            step.files.append(FileSpec::plain(QStringLiteral("%1.txt").arg(k), "content"));
        document.writeSection(step);
    }
    save(dataPath(name), document.bytes());
    return dataPath(name);
}

QString summaryDocument(int files)
{
    QString entries;
    for (int i = 0; i < files; ++i)
        entries += fileElement(QStringLiteral("InFile"), QStringLiteral("run_%1.csv").arg(i),
                               QByteArray::number(i));
    return summaryAround(entries);
}

namespace {

/// Appends steps with two files, a comment and a summary each.
void writeSteps(DocumentWriter& document, int steps, const QString& comment, bool deflated)
{
    const QString summaryName = QStringLiteral("ws_summary.xml");
    for (int i = 0; i < steps; ++i) {
        const QByteArray in = "input " + QByteArray::number(i);
        const QByteArray out = "output " + QByteArray::number(i);
        const QString summary = summaryAround(
            element(QStringLiteral("Comment"), comment)
            + fileElement(QStringLiteral("InFile"), QStringLiteral("in.txt"), in)
            + fileElement(QStringLiteral("OutFile"), QStringLiteral("out.txt"), out));
        SectionSpec step;
        step.title = QStringLiteral("step %1").arg(i);
        step.files = {FileSpec::plain(QStringLiteral("in.txt"), in),
                      FileSpec::plain(QStringLiteral("out.txt"), out),
                      deflated ? FileSpec::flate(summaryName, summary.toUtf8())
                               : FileSpec::plain(summaryName, summary.toUtf8())};
        document.writeSection(step);
    }
}

} // namespace

QString writeSummaryHistory(const QString& name, int steps)
{
    DocumentWriter document;
    document.write("%PDF-1.4\n");
    document.writeHeader();
    writeSteps(document, steps, {}, true);
    save(dataPath(name), document.bytes());
    return dataPath(name);
}

QString writeNestedHistory(const QString& name, int count, int steps)
{
    SectionSpec step;
    QString entries;
    for (int i = 0; i < count; ++i) {
        DocumentWriter embedded;
        embedded.write("%PDF-1.4\n");
        embedded.writeHeader();
        writeSteps(embedded, steps, {}, true);
        const QString file = QStringLiteral("%1.tresk").arg(i);
        step.files.append(FileSpec::flate(file, embedded.bytes()));
        entries += fileElement(QStringLiteral("InFile"), file, embedded.bytes());
    }
    step.files.append(
        FileSpec::flate(QStringLiteral("ws_summary.xml"), summaryAround(entries).toUtf8()));
    DocumentWriter document;
    document.write("%PDF-1.4\n");
    document.writeHeader();
    document.writeSection(step);
    save(dataPath(name), document.bytes());
    return dataPath(name);
}

QString writeFolder(const QString& name, int count)
{
    const QString folder = dataPath(name);
    QDir().mkpath(folder);
    const QByteArray host = hostBytes(mebibyte);
    for (int i = 0; i < count; ++i) {
        DocumentWriter document;
        document.write("%PDF-1.4\n");
        document.writeHeader();
        document.write(host);
        document.endLine();
        writeSteps(document, 5, i == count - 1 ? QStringLiteral("resonance") : QString(), false);
        save(folder + QStringLiteral("/%1.pdf").arg(i, 4, 10, QLatin1Char('0')), document.bytes());
    }
    return folder;
}

} // namespace treskbench
