#include "ReportPage.h"

#include "ContentReader.h"
#include "Document.h"
#include "HistoryTree.h"
#include "Picture.h"
#include "StepFields.h"
#include "StepFiles.h"
#include "Summaries.h"
#include "Text.h"

namespace tresk::cli {

namespace {

constexpr int largestPicture = 2 * 1024 * 1024;
constexpr qint64 mostPictureBytes = 32 * 1024 * 1024; // in all

QString stepAnchor(int id)
{
    return QStringLiteral("step-%1").arg(id);
}

void writeFields(HtmlWriter& html, const QList<NamedValue>& fields)
{
    for (const NamedValue& field : fields) {
        html.element("dt", QLatin1String(field.name));
        html.element("dd", field.value);
    }
}

/// The content of an embedded file that is no larger than a picture may be; empty for others, and
/// where it is damaged.
QByteArray smallContent(Document& document, const FileTag& file)
{
    if (file.filesize <= 0 || file.filesize > largestPicture)
        return {};
    ContentReader reader(document, file);
    QByteArray content;
    for (QByteArray piece = reader.next(); !piece.isEmpty(); piece = reader.next()) {
        content += piece;
        if (content.size() > largestPicture)
            return {};
    }
    return reader.error().isEmpty() ? content : QByteArray();
}

} // namespace

ReportPage::ReportPage(HtmlWriter& html, Document& document, const StepFiles& stepFiles,
                       const Summaries& summaries, const HistoryTree& history,
                       const CheckResults& checks)
    : m_html(html)
    , m_document(document)
    , m_stepFiles(stepFiles)
    , m_summaries(summaries)
    , m_history(history)
    , m_checks(checks)
    , m_pictureBytesLeft(mostPictureBytes)
{
}

void ReportPage::write()
{
    m_html.begin(QStringLiteral("History of ") + m_document.name());
    m_html.element("a", QStringLiteral("Skip to the steps"),
                   {{"class", QStringLiteral("skip")}, {"href", QStringLiteral("#steps")}});
    writeHeader();
    m_html.open("main");
    m_html.tools(QStringLiteral("Search the steps"));
    writeTimeline();
    m_html.element("h2", QStringLiteral("Tree"));
    writeBranch(m_document.name(), m_history.tree().children(-1), true);
    writeSteps();
    writeFilesWithoutStep();
    m_html.end();
}

void ReportPage::writeHeader()
{
    m_html.open("header");
    m_html.element("h1", m_document.name());
    m_html.element("p",
                   QStringLiteral("%1, %2, %3")
                       .arg(counted(m_stepFiles.steps().size(), QStringLiteral("step")),
                            counted(m_stepFiles.files().size(), QStringLiteral("embedded file")),
                            humanSize(m_document.size())),
                   {{"class", QStringLiteral("facts")}});
    writeState();
    m_html.close();
}

void ReportPage::writeState()
{
    const auto failed = m_checks.steps.size() + m_checks.files.size();
    if (failed == 0) {
        m_html.element("p", QStringLiteral("\u2713 All checksums are right."),
                       {{"class", QStringLiteral("right")}});
    } else {
        m_html.element(
            "p",
            QStringLiteral("\u2717 %1 of %2 checks failed: see the steps and files below.")
                .arg(QString::number(failed), QString::number(m_checks.checked)),
            {{"class", QStringLiteral("wrong")}});
    }
    m_html.element("p",
                   QStringLiteral("Checksums show damage by accident. They do not show who wrote "
                                  "this history, nor that it is true."),
                   {{"class", QStringLiteral("soft")}});
}

void ReportPage::writeTimeline()
{
    m_html.element("h2", QStringLiteral("Timeline"));
    m_html.open("ol", {{"class", QStringLiteral("timeline")}});
    for (const SectionTag& step : m_stepFiles.steps()) {
        const Summary& summary = m_summaries.of(step);
        m_html.open("li", {{"data-item", QString()}});
        m_html.element("time",
                       summary.timestamp.isEmpty() ? QStringLiteral("at an unknown time")
                                                   : summary.timestamp);
        m_html.element("a", titleOf(step, summary),
                       {{"href", QLatin1Char('#') + stepAnchor(step.id)}});
        const QString who = userAndHost(summary);
        m_html.open("div", {{"class", QStringLiteral("soft")}});
        const bool areBoth = !summary.tool.isEmpty() && !who.isEmpty();
        m_html.text(summary.tool + (areBoth ? QStringLiteral(", ") : QString()) + who);
        m_html.close();
        m_html.close();
    }
    m_html.close();
}

void ReportPage::writeTree(int parent)
{
    const QList<Branch> branches = branchesOf(m_history.tree(), parent);
    for (const Branch& branch : branches)
        writeBranch(branch.document, branch.steps, false);
}

/// The steps of one document, each with the documents that it embeds under it.
void ReportPage::writeBranch(const QString& document, const QList<int>& steps, bool isTop)
{
    m_html.open("details", {{"open", QString()}});
    m_html.element("summary", document);
    m_html.open("ul");
    for (const int id : steps) {
        const Workflowstep& step = *m_history.tree().workflowStep(id);
        m_html.open("li");
        // Only steps of the document itself have an entry of their own below.
        if (isTop && step.tagId >= 0) {
            m_html.element("a", titleOf(step),
                           {{"href", QLatin1Char('#') + stepAnchor(step.tagId)}});
        } else {
            m_html.text(titleOf(step));
        }
        m_html.element("span", circumstancesOf(step), {{"class", QStringLiteral("soft")}});
        writeTree(id);
        m_html.close();
    }
    m_html.close();
    m_html.close();
}

void ReportPage::writeSteps()
{
    m_html.element("h2", QStringLiteral("Steps"), {{"id", QStringLiteral("steps")}});
    for (const SectionTag& step : m_stepFiles.steps())
        writeStep(step);
}

void ReportPage::writeStep(const SectionTag& step)
{
    const Summary& summary = m_summaries.of(step);
    m_html.open("article", {{"id", stepAnchor(step.id)}, {"data-item", QString()}});
    m_html.open("details", {{"open", QString()}});
    m_html.open("summary");
    m_html.element("h3", QStringLiteral("Step %1: ").arg(step.id) + titleOf(step, summary));
    m_html.close();
    m_html.open("div", {{"class", QStringLiteral("body")}});
    writeFault(m_checks.steps.value(step.id));
    m_html.open("dl");
    writeFields(m_html, summaryFields(summary));
    writeAttributes(summary);
    m_html.close();
    writeFiles(m_summaries.filesOf(step));
    m_html.close();
    m_html.close();
    m_html.close();
}

void ReportPage::writeFilesWithoutStep()
{
    const QList<FileSummary> files = m_summaries.filesWithoutStep();
    if (files.isEmpty())
        return;
    m_html.element("h2", QStringLiteral("Files that lie in no step"));
    m_html.open("article", {{"data-item", QString()}});
    m_html.open("div", {{"class", QStringLiteral("body")}});
    writeFiles(files);
    m_html.close();
    m_html.close();
}

void ReportPage::writeFiles(const QList<FileSummary>& files)
{
    for (const FileSummary& file : files)
        writeFile(file);
}

void ReportPage::writeFile(const FileSummary& file)
{
    const QString purpose = isInput(file) ? QStringLiteral("Input: ")
        : isOutput(file)                  ? QStringLiteral("Output: ")
                                          : QStringLiteral("File: ");
    m_html.open("details");
    m_html.open("summary");
    m_html.text(purpose + nameOf(file));
    m_html.close();
    if (file.tagId >= 0)
        writeFault(m_checks.files.value(file.tagId));
    m_html.open("dl");
    writeFields(m_html, fileFields(file));
    writeAttributes(file);
    m_html.close();
    m_html.close();
    writePicture(file);
}

/// The file itself, if it is embedded and a picture that can be shown.
void ReportPage::writePicture(const FileSummary& file)
{
    if (file.tagId < 0 || m_pictureBytesLeft <= 0)
        return;
    const QByteArray content = smallContent(m_document, *m_document.parser().getFile(file.tagId));
    const QByteArray type = pictureType(content);
    if (type.isEmpty() || content.size() > m_pictureBytesLeft)
        return;
    m_pictureBytesLeft -= content.size();
    m_html.open("figure");
    m_html.single("img",
                  {{"src", QLatin1String("data:" + type + ";base64," + content.toBase64())},
                   {"alt", nameOf(file)},
                   {"loading", QStringLiteral("lazy")}});
    m_html.element("figcaption", nameOf(file));
    m_html.close();
}

void ReportPage::writeFault(const Fault& fault)
{
    if (!fault.isNone()) {
        m_html.element("p", QStringLiteral("\u2717 Check failed: ") + fault.text,
                       {{"class", QStringLiteral("wrong")}});
    }
}

/// In a list of fields that is open.
template <typename Record>
void ReportPage::writeAttributes(const Record& record)
{
    const QList<Attribute> attributes = attributesOf(record);
    for (const Attribute& attribute : attributes) {
        m_html.element("dt", nameText(attribute), {{"class", QStringLiteral("attribute")}});
        m_html.element("dd", valueText(attribute));
    }
}

} // namespace tresk::cli
