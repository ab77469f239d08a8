#include "ArgumentText.h"

#include "Fields.h"
#include "Table.h"
#include "Text.h"

namespace tresk::cli {

namespace {

QString switchesOf(const ArgFile& options)
{
    QStringList switches;
    const auto add = [&switches](bool isOn, const char* name) {
        if (isOn)
            switches += QLatin1String(name);
    };
    add(options.verbosity() == ArgFile::Quiet, "quiet");
    add(options.verbosity() == ArgFile::Verbose, "verbose");
    add(options.pretend(), "pretend");
    add(options.debugMode(), "debug");
    add(options.showHelp(), "help");
    add(options.showVersion(), "version");
    return switches.join(QStringLiteral(", "));
}

/// Writes what ArgFile holds in sections, each under a heading that is left out if the section
/// is empty.
class OptionsPrinter {
public:
    OptionsPrinter(Output& output, const Style& style)
        : m_output(output)
        , m_style(style)
    {
    }

    void print(const ArgFile& options)
    {
        printRun(options);
        printStep(options);
        printPdf(options);
        for (int i = 0; i < options.numFiles() && m_output.error() == 0; ++i)
            printFile(options.getConstFile(i));
        begin("command line");
        printCommandLine(options.toCommandline(false));
    }

private:
    void begin(const char* heading) { m_heading = heading; }

    void writeHeading()
    {
        if (m_heading)
            m_output.write(m_style.title(QLatin1String(m_heading)) + QLatin1Char('\n'));
        m_heading = nullptr;
    }

    void write(const char* label, const QString& value)
    {
        if (value.isEmpty())
            return;
        writeHeading();
        Fields(m_output, m_style, 2, 13).write(label, printable(value));
    }

    void writeAttributes(const UserAttributes& attributes, int indent)
    {
        QStringList names = attributes.userAttributeKeys();
        names.removeDuplicates();
        if (names.isEmpty())
            return;
        writeHeading();
        const QString blanks(indent, QLatin1Char(' '));
        m_output.write(blanks + m_style.label(QStringLiteral("attributes:")) + QLatin1Char('\n'));
        for (const QString& name : names) {
            m_output.write(blanks + QStringLiteral("  ")
                           + (name.isEmpty() ? QStringLiteral("<no name>") : printable(name))
                           + QStringLiteral(" = ") + printable(attributes.userAttribute(name))
                           + QLatin1Char('\n'));
        }
    }

    void printRun(const ArgFile& options)
    {
        begin("run");
        for (int i = 0; i < options.numOutputTreskfiles(); ++i) {
            writeHeading();
            Fields(m_output, m_style, 2, 13).write("output", printable(options.outputTreskfile(i)));
        }
        if (!options.rootfile().isEmpty()) {
            const QString remark = options.rootIsOptional() ? QStringLiteral(" (may be missing)")
                                                            : QString();
            write("root file", options.rootfile() + remark);
        }
        write("first page", options.firstpage());
        write("read-me", options.readme());
        write("switches", switchesOf(options));
    }

    void printStep(const ArgFile& options)
    {
        begin("step");
        write("title", options.title());
        write("description", options.description());
        write("comment", options.comment());
        write("command", options.command());
        write("tool", options.tool());
        write("tool path", options.toolpath());
        write("user", options.user());
        write("host", options.host());
        writeAttributes(options, 2);
    }

    void printPdf(const ArgFile& options)
    {
        begin("PDF");
        write("title", options.pdfTitle());
        write("author", options.pdfAuthor());
        write("subject", options.pdfSubject());
        write("keywords", options.pdfKeywords());
        write("producer", options.pdfProducer());
        write("creator", options.pdfCreator());
    }

    void printFile(const WSFile& file)
    {
        m_output.write(
            m_style.title(file.inputFile() ? QStringLiteral("in  ") : QStringLiteral("out "))
            + printable(file.filename()) + QLatin1Char('\n'));
        begin(nullptr);
        write("type", file.filetype());
        write("description", file.description());
        write("comment", file.comment());
        write("md5 file", file.md5File());
        write("flags", changedFlags(file).join(QStringLiteral(", ")));
        writeAttributes(file, 2);
    }

    void printCommandLine(const QString& line)
    {
        writeHeading();
        m_output.write(QByteArray("  "));
        const QStringView words = QStringView(line).trimmed();
        forPrintable(words, [this](const QString& piece) { m_output.write(piece); });
        m_output.write(QByteArray(words.isEmpty() ? "-\n" : "\n"));
    }

    Output& m_output;
    const Style& m_style;
    const char* m_heading = nullptr; ///< still to be written
};

/// A token as it is written and, if that is something else, what it stands for.
QString textOf(const ArgfileToken& token)
{
    const QString text = quoted(token.originalText());
    const bool isSame = token.isSeparator() || token.str() == token.originalText();
    return isSame ? text : text + QStringLiteral(" = ") + quoted(token.str());
}

QStringList rowOf(const ArgfileToken& token, const QString& text)
{
    return {QString::number(token.position()), QString::number(token.originalLength()),
            kindOf(token), text};
}

} // namespace

QString kindOf(const ArgfileToken& token)
{
    const QChar first = token.originalText().at(0);
    if (token.isSeparator())
        return first == QLatin1Char('#') ? QStringLiteral("comment") : QStringLiteral("space");
    const bool isString = first == QLatin1Char('\'') || first == QLatin1Char('"');
    return isString ? QStringLiteral("string") : QStringLiteral("word");
}

QStringList changedFlags(const WSFile& file)
{
    const WSFile defaults;
    QStringList flags;
    const auto add = [&](bool (WSFile::*isOn)() const, const char* name) {
        if ((file.*isOn)() != (defaults.*isOn)())
            flags += QLatin1String((file.*isOn)() ? "" : "no-") + QLatin1String(name);
    };
    add(&WSFile::optional, "optional");
    add(&WSFile::compress, "compress");
    add(&WSFile::embed, "embed");
    add(&WSFile::autoMD5, "automd5");
    add(&WSFile::previewWS, "previewws");
    add(&WSFile::preview, "preview");
    add(&WSFile::thumbnail, "thumbnail");
    add(&WSFile::thumbnailOnly, "thumbnailonly");
    return flags;
}

void writeOptions(Output& output, const Style& style, const ArgFile& options)
{
    OptionsPrinter(output, style).print(options);
}

void writeTokens(Output& output, const Style& style, const QList<ArgfileToken>& tokens)
{
    Table table({{QStringLiteral("POSITION"), Table::Right},
                 {QStringLiteral("LENGTH"), Table::Right},
                 {QStringLiteral("KIND"), Table::Left},
                 {QStringLiteral("TEXT"), Table::Left}});
    table.makeRoomFor(table.titles());
    for (const ArgfileToken& token : tokens)
        table.makeRoomFor(rowOf(token, QString()));
    // In parts, since there may be millions.
    const int rows = 1000;
    for (int i = 0; i < tokens.size() && output.error() == 0; ++i) {
        table.addRow(rowOf(tokens[i], textOf(tokens[i])));
        if ((i + 1) % rows == 0 || i + 1 == tokens.size()) {
            table.writeTo(output, style, i < rows);
            table.clear();
        }
    }
}

} // namespace tresk::cli
