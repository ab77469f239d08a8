// Writes the documents of which the tests make pages: make_page_documents TEXTS OUTPUT-DIR
//
// TEXTS is a file of lines, which "texts" and "other texts" carry wherever a document can carry a
// text.

#include <Documents.h>
#include <SummaryXml.h>

#include <QDir>
#include <QFile>
#include <QTextStream>

using namespace tresktest;

namespace {

QString latin(const char* text)
{
    return QString::fromLatin1(text);
}

/// The beginning of a PNG picture: all that tells it from other files.
QByteArray pngHeader()
{
    return QByteArray("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR\0\0\0\x08\0\0\0\x08\x08\x02\0\0\0", 29);
}

/// The beginning of a GIF picture, up to the data of its only frame.
QByteArray gifHeader()
{
    return QByteArray("GIF89a\x08\0\x08\0\0\0\0,\0\0\0\0\x08\0\x08\0\0", 23);
}

/// Files that are pictures by their names or by their first bytes only.
QVector<FileSpec> falsePictures(const QByteArray& text)
{
    const QByteArray page = "<html>" + text + "</html>";
    const QString name = QString::fromUtf8(text); // which pages put into an attribute
    return {
        FileSpec::plain(latin("page.png"), page),
        FileSpec::flate(name + latin(".png"), pngHeader() + page),
        FileSpec::plain(name + latin(".gif"), gifHeader() + page),
        FileSpec::plain(latin("script.svg"),
                        "<svg xmlns=\"http://www.w3.org/2000/svg\">" + text + "</svg>"),
    };
}

constexpr int pictureStep = 11; // whose text ends an attribute unless it is escaped

/// Steps that carry the @p texts, each but its title @p shift texts further on.
QVector<SectionSpec> stepsWith(const QList<QByteArray>& texts, int shift)
{
    QVector<SectionSpec> steps;
    for (int i = 0; i < texts.size(); ++i) {
        const QByteArray& text = texts.at((i + shift) % texts.size());
        QByteArray content = element("Title", texts.at(i));
        for (const char* name :
             {"Timestamp", "Comment", "Command", "ToolPath", "Host", "User", "Creator",
              "TreskRootFile", "PDFTitle", "PDFAuthor", "PDFSubject", "PDFKeywords"})
            content += element(name, text);
        content += element("Tool", texts.at(i)) + element("Description", texts.at(i));
        const QByteArray attributes = element(
            "UserAttributes", attribute(text.constData(), text.constData(), text.constData()));
        QVector<FileSpec> files = {FileSpec::plain(QString::fromUtf8(text), text)};
        if (i == pictureStep)
            files += falsePictures(texts.at(i));
        for (const FileSpec& file : files)
            content += fileElement(i % 2 == 0 ? "InFile" : "OutFile", file, true,
                                   element("Filepath", text) + element("Description", text)
                                       + element("Comment", text) + attributes);
        steps += toldStep(content + attributes, files);
    }
    return steps;
}

/// The same texts in markers, which are all that is told of such a step.
SectionSpec markedStep(const QByteArray& text)
{
    FileSpec file = FileSpec::plain(QString::fromUtf8(text), text);
    file.desc = file.comment = file.filetype = file.filename;
    SectionSpec marked = step(file.filename, {file});
    marked.creator = file.filename;
    return marked;
}

QByteArray documentOfTexts(const QList<QByteArray>& texts, int shift)
{
    QVector<SectionSpec> steps = stepsWith(texts, shift);
    const QByteArray inner = documentWith({markedStep(texts.at(0)), markedStep(texts.at(2))});
    const FileSpec embedded = FileSpec::flate(QString::fromUtf8(texts.at(0) + ".tresk"), inner);
    // Under another step in the other document.
    steps[shift] = toldStep(element("Title", texts.at(shift)) + fileElement("InFile", embedded),
                            {embedded});
    steps += markedStep(texts.at(shift));
    steps += toldStep(element("Title", texts.at(shift) + (shift == 0 ? " first" : " second"))
                      + element("Tool", texts.at(shift + 1)));
    return documentWith(steps);
}

SectionSpec plainStep(const QByteArray& title, const QByteArray& more = QByteArray(),
                      const QVector<FileSpec>& files = {}, const char* purpose = "InFile")
{
    QByteArray content = element("Title", title) + element("User", "ada") + more;
    for (const FileSpec& file : files)
        content += fileElement(purpose, file);
    return toldStep(content, files);
}

/// Two documents with steps of every kind that a comparison tells apart.
QByteArray comparedDocument(bool isSecond)
{
    const auto text = [isSecond](const char* first, const char* second) {
        return QByteArray(isSecond ? second : first);
    };
    const QByteArray unbroken(300, 'w'); // a word that fits no column
    const FileSpec inner = FileSpec::flate(
        latin("inner.tresk"), documentWith({plainStep("Calibrate"), plainStep("Inspect")}));
    const FileSpec table = FileSpec::plain(latin("table.csv"), text("1;2", "1;3"));
    const FileSpec own = FileSpec::plain(QString::fromUtf8(text("old.txt", "new.txt")), "own");
    const QVector<FileSpec> none;
    const QVector<FileSpec> nested = {inner};
    return documentWith({
        plainStep("Measure", element("Timestamp", "2024-03-01 10:00:00")),
        plainStep("Evaluate",
                  element("Timestamp", text("2024-03-02 10:00:00", "2024-03-02 11:30:00"))
                      + element("Command", "evaluate --window " + text("256", "512") + " in.csv")
                      + element("Comment", text("", "checked")),
                  {table, own}, "OutFile"),
        plainStep("Draw", QByteArray(), isSecond ? none : nested),
        plainStep("Print", element("Command", unbroken + text("a", "b")), isSecond ? nested : none),
        plainStep(text("Review by hand", "Send to the customer")),
    });
}

/// @p count steps, some of which are changed, missing or new in the second document.
QByteArray longDocument(int count, bool isSecond)
{
    QVector<SectionSpec> steps;
    for (int i = 0; i < count; ++i) {
        const QByteArray number = QByteArray::number(i);
        const bool isChanged = isSecond && i % 10 == 3;
        if (i % 50 == 49)
            steps += plainStep((isSecond ? "New step " : "Old step ") + number);
        else
            steps += plainStep(
                "Step " + number,
                element("Command", "run --round " + number + (isChanged ? " --again" : "")));
    }
    return documentWith(steps);
}

} // namespace

int main(int argc, char** argv)
{
    QFile lines(QString::fromLocal8Bit(argc == 3 ? argv[1] : ""));
    if (argc != 3 || !lines.open(QIODevice::ReadOnly)) {
        QTextStream(stderr) << "usage: make_page_documents TEXTS OUTPUT-DIR\n";
        return 2;
    }
    const QList<QByteArray> texts = lines.readAll().trimmed().split('\n');
    const struct {
        const char* name;
        QByteArray bytes;
    } documents[] = {
        {"texts.pdf", documentOfTexts(texts, 0)},
        {"other texts.pdf", documentOfTexts(texts, 1)},
        {"before.pdf", comparedDocument(false)},
        {"after.pdf", comparedDocument(true)},
        {"long before.pdf", longDocument(400, false)},
        {"long after.pdf", longDocument(400, true)},
    };
    const QDir output(QString::fromLocal8Bit(argv[2]));
    for (const auto& document : documents) {
        QFile file(output.filePath(latin(document.name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(document.bytes) < 0 || !file.flush()) {
            QTextStream(stderr) << file.fileName() << ": " << file.errorString() << '\n';
            return 1;
        }
    }
    return 0;
}
