#include "StepArticles.h"

#include "Attributes.h"
#include "CheckResults.h"
#include "Document.h"
#include "HistoryTree.h"
#include "StepFields.h"
#include "Summaries.h"
#include "Text.h"

namespace tresk::cli {

namespace {

QString purposeHeading(const FileSummary& file)
{
    if (isInput(file))
        return QStringLiteral("Input");
    return isOutput(file) ? QStringLiteral("Output") : QStringLiteral("Other");
}

void writeField(HtmlWriter& html, const QString& name, const QString& value)
{
    html.element("dt", name);
    html.element("dd", value);
}

/// In a list of fields that is open.
void writeNamedValues(HtmlWriter& html, const QList<NamedValue>& values)
{
    for (const NamedValue& value : values)
        writeField(html, QLatin1String(value.name), value.value);
}

/// Likewise. User attributes are set apart, since they may be called as the fields are.
template <typename Record>
void writeAttributes(HtmlWriter& html, const Record& record)
{
    const QList<Attribute> attributes = attributesOf(record);
    for (const Attribute& attribute : attributes) {
        html.open("dt");
        html.element("span", QStringLiteral("attribute "), {{"class", QStringLiteral("mark")}});
        html.text(nameText(attribute));
        html.close();
        html.element("dd", valueText(attribute));
    }
}

} // namespace

StepArticles::StepArticles(HtmlWriter& html, Document& document, const Summaries& summaries,
                           const CheckResults& checks)
    : m_html(html)
    , m_document(document)
    , m_summaries(summaries)
    , m_checks(checks)
    , m_pictures(document)
{
}

QString StepArticles::anchorOf(const SectionTag& step)
{
    return QStringLiteral("step-%1").arg(step.id);
}

QString StepArticles::anchorOf(int id)
{
    return QStringLiteral("node-%1").arg(id);
}

void StepArticles::write(const SectionTag& step)
{
    const Summary& summary = m_summaries.of(step);
    const QList<FileSummary> files = m_summaries.filesOf(step);
    open(anchorOf(step), "h3", QStringLiteral("Step %1: ").arg(step.id) + titleOf(step, summary));
    m_html.open("dl");
    m_html.element("dt", QStringLiteral("checksum"));
    writeCheck("dd", m_checks.ofStep(step.id));
    writeFields(summary);
    m_html.close();
    if (m_summaries.isUnreadable(step)) {
        m_html.element("p", QStringLiteral("\u2717 The summary of this step cannot be read."),
                       {{"class", QStringLiteral("wrong")}});
    }
    writePictures(files);
    writeFiles(files, true);
    close();
}

void StepArticles::write(int id, const Workflowstep& step)
{
    open(anchorOf(id), "h4", titleOf(step));
    Summary summary;
    static_cast<Workflowstep&>(summary) = step;
    summary.fromXml = true; // or not: that is not known here, and not to be told
    m_html.open("dl");
    writeFields(summary);
    m_html.close();
    writeFiles(step.files, false);
    close();
}

void StepArticles::writeFilesWithoutStep()
{
    const QList<FileSummary> files = m_summaries.filesWithoutStep();
    if (files.isEmpty())
        return;
    open(QStringLiteral("without-step"), "h3", QStringLiteral("Files that lie in no step"));
    writePictures(files);
    writeFiles(files, true);
    close();
}

void StepArticles::open(const QString& anchor, const char* heading, const QString& title)
{
    m_html.open("article", {{"id", anchor}, {"data-item", QString()}});
    m_html.open("details", {{"open", QString()}});
    m_html.open("summary");
    m_html.element(heading, title);
    m_html.close();
    m_html.open("div", {{"class", QStringLiteral("body")}});
}

void StepArticles::close()
{
    m_html.close();
    m_html.close();
    m_html.close();
}

/// In a list of fields that is open.
void StepArticles::writeFields(const Summary& summary)
{
    writeNamedValues(m_html, summaryFields(summary));
    writeAttributes(m_html, summary);
}

void StepArticles::writePictures(const QList<FileSummary>& files)
{
    for (const FileSummary& file : files) {
        if (file.tagId >= 0)
            writePicture(file);
    }
}

void StepArticles::writePicture(const FileSummary& file)
{
    const EmbeddedPicture picture = m_pictures.take(*m_document.parser().getFile(file.tagId));
    if (picture.type.isEmpty())
        return;
    if (picture.content.isEmpty()) {
        m_html.element(
            "p",
            QStringLiteral("The picture %1 is not shown: %2.").arg(nameOf(file), picture.omission),
            {{"class", QStringLiteral("soft")}});
        return;
    }
    m_html.open("figure");
    m_html.single(
        "img",
        {{"src", QLatin1String("data:" + picture.type + ";base64," + picture.content.toBase64())},
         {"alt", QStringLiteral("Embedded picture ") + nameOf(file)}});
    m_html.element("figcaption", nameOf(file));
    m_html.close();
}

void StepArticles::writeFiles(const QList<FileSummary>& files, bool areChecked)
{
    if (files.isEmpty())
        return;
    m_html.open("div", {{"class", QStringLiteral("scroll")}});
    m_html.open("table");
    m_html.element("caption", counted(files.size(), QStringLiteral("file")));
    m_html.open("thead");
    m_html.open("tr");
    for (const char* heading : {"Purpose", "File", "Size"})
        m_html.element("th", QLatin1String(heading), {{"scope", QStringLiteral("col")}});
    if (areChecked)
        m_html.element("th", QStringLiteral("Check"), {{"scope", QStringLiteral("col")}});
    m_html.close();
    m_html.close();
    m_html.open("tbody");
    for (const FileSummary& file : files)
        writeFile(file, areChecked);
    m_html.close();
    m_html.close();
    m_html.close();
}

void StepArticles::writeFile(const FileSummary& file, bool isChecked)
{
    m_html.open("tr");
    m_html.element("td", purposeHeading(file));
    m_html.open("th", {{"scope", QStringLiteral("row")}});
    m_html.text(nameOf(file));
    m_html.open("details", {{"class", QStringLiteral("more")}, {"open", QString()}});
    m_html.element("summary", QStringLiteral("Details"));
    m_html.open("dl");
    writeNamedValues(m_html, fileFields(file));
    writeAttributes(m_html, file);
    m_html.close();
    m_html.close();
    m_html.close();
    m_html.element("td", humanSize(file.uncompressedSize), {{"class", QStringLiteral("number")}});
    if (isChecked && file.tagId >= 0)
        writeCheck("td", m_checks.ofFile(file.tagId));
    else if (isChecked)
        m_html.element("td", QStringLiteral("not embedded"));
    m_html.close();
}

/// Says what became of a check, in an element of that name.
void StepArticles::writeCheck(const char* element, const Fault& fault)
{
    if (fault.isNone()) {
        m_html.element(element, QStringLiteral("\u2713 right"),
                       {{"class", QStringLiteral("right")}});
    } else {
        m_html.element(element, QStringLiteral("\u2717 failed: ") + fault.text,
                       {{"class", QStringLiteral("wrong")}});
    }
}

} // namespace tresk::cli
