#include "ReportPage.h"

#include "CheckResults.h"
#include "Document.h"
#include "HistoryTree.h"
#include "StepFiles.h"
#include "Summaries.h"
#include "Text.h"

#include <utility>

namespace tresk::cli {

namespace {

/// Which nodes of the tree are steps of the document itself, and where links to them lead. In
/// front of the steps there is a node for the files that lie in none.
QHash<int, QString> anchorsOfSteps(const HistoryTree& history, const StepFiles& stepFiles)
{
    const QList<int> nodes = history.tree().children(-1);
    const QList<SectionTag>& steps = stepFiles.steps();
    const auto others = nodes.size() - steps.size();
    QHash<int, QString> anchors;
    for (int i = 0; i < nodes.size(); ++i) {
        anchors.insert(nodes[i],
                       i < others ? QStringLiteral("without-step")
                                  : StepArticles::anchorOf(steps[int(i - others)]));
    }
    return anchors;
}

QString documentAnchor(const Branch& branch)
{
    return QStringLiteral("document-%1").arg(branch.steps.first());
}

QString linkTo(const QString& anchor)
{
    return QLatin1Char('#') + anchor;
}

} // namespace

ReportPage::ReportPage(HtmlWriter& html, const ReportSources& sources, std::function<bool()> goesOn)
    : m_html(html)
    , m_sources(sources)
    , m_articles(html, sources.document, sources.summaries, sources.checks)
    , m_goesOn(std::move(goesOn))
    , m_anchors(anchorsOfSteps(sources.history, sources.stepFiles))
{
}

void ReportPage::write()
{
    m_html.begin(QStringLiteral("History of ") + m_sources.document.name());
    m_html.element("a", QStringLiteral("Skip to the steps"),
                   {{"class", QStringLiteral("skip")}, {"href", QStringLiteral("#steps")}});
    writeHeader();
    m_html.open("main");
    m_html.tools(QStringLiteral("Search the steps"));
    writeTimeline();
    writeTree();
    writeSteps();
    writeEmbeddedDocuments();
    m_html.end();
}

void ReportPage::writeHeader()
{
    m_html.open("header");
    m_html.element("h1", m_sources.document.name());
    m_html.element(
        "p",
        QStringLiteral("%1, %2, %3")
            .arg(counted(m_sources.stepFiles.steps().size(), QStringLiteral("step")),
                 counted(m_sources.stepFiles.files().size(), QStringLiteral("embedded file")),
                 humanSize(m_sources.document.size())),
        {{"class", QStringLiteral("soft")}});
    writeState();
    writeProblems();
    m_html.close();
}

void ReportPage::writeState()
{
    const CheckResults& checks = m_sources.checks;
    if (checks.failed() == 0) {
        m_html.element("p",
                       QStringLiteral("\u2713 All checksums are right: %1 checked.")
                           .arg(counted(checks.checked(), QStringLiteral("item"))),
                       {{"class", QStringLiteral("right")}});
    } else {
        m_html.element(
            "p",
            QStringLiteral("\u2717 %1. See the steps and files below.").arg(checks.failureText()),
            {{"class", QStringLiteral("wrong")}});
    }
    m_html.element("p",
                   QStringLiteral("Checksums show damage by accident. They do not show who wrote "
                                  "this history, nor that it is true."),
                   {{"class", QStringLiteral("soft")}});
}

/// What the page lacks.
void ReportPage::writeProblems()
{
    const QStringList& problems = m_sources.history.problems();
    if (problems.isEmpty())
        return;
    openSection(QStringLiteral("problems"), QStringLiteral("This is not the whole history"));
    m_html.open("ul", {{"class", QStringLiteral("wrong")}});
    for (const QString& problem : problems)
        m_html.element("li", problem);
    m_html.close();
    m_html.close();
}

void ReportPage::writeTimeline()
{
    openSection(QStringLiteral("timeline"), QStringLiteral("Timeline"));
    m_html.open("ol", {{"class", QStringLiteral("timeline")}});
    for (const SectionTag& step : m_sources.stepFiles.steps()) {
        if (!m_goesOn())
            break;
        const Summary& summary = m_sources.summaries.of(step);
        const QString anchor = StepArticles::anchorOf(step);
        m_html.open("li", {{"data-of", anchor}});
        m_html.element(
            "div", summary.timestamp.isEmpty() ? QStringLiteral("time unknown") : summary.timestamp,
            {{"class", QStringLiteral("soft")}});
        m_html.element("a", titleOf(step, summary), {{"href", linkTo(anchor)}});
        m_html.text(QStringLiteral(" "));
        const QString who = userAndHost(summary);
        const bool areBoth = !summary.tool.isEmpty() && !who.isEmpty();
        m_html.element("div", summary.tool + (areBoth ? QStringLiteral(", ") : QString()) + who,
                       {{"class", QStringLiteral("soft")}});
        m_html.close();
    }
    m_html.close();
    m_html.close();
}

void ReportPage::writeTree()
{
    openSection(QStringLiteral("tree"), QStringLiteral("Tree"));
    m_html.open("div", {{"class", QStringLiteral("tree scroll")}});
    writeTreeSteps(m_sources.history.tree().children(-1));
    m_html.close();
    m_html.close();
}

/// Steps of one document, each with the documents that it embeds under it. Two elements a level,
/// since browsers nest some hundreds only.
void ReportPage::writeTreeSteps(const QList<int>& steps)
{
    const WorkflowTree& tree = m_sources.history.tree();
    m_html.open("ul");
    for (const int id : steps) {
        if (!m_goesOn())
            break;
        const Workflowstep& step = *tree.workflowStep(id);
        const QString anchor = anchorOf(id);
        m_html.open("li", {{"data-of", anchor}});
        m_html.element("a", titleOf(step), {{"href", linkTo(anchor)}});
        m_html.element("span", circumstancesOf(step), {{"class", QStringLiteral("soft")}});
        m_html.text(QStringLiteral(" "));
        const QList<Branch> branches = branchesOf(tree, id);
        for (const Branch& branch : branches) {
            m_html.open("div");
            m_html.text(QStringLiteral("embeds "));
            m_html.element("a", branch.document, {{"href", linkTo(documentAnchor(branch))}});
            m_html.close();
            writeTreeSteps(branch.steps);
        }
        m_html.close();
    }
    m_html.close();
}

void ReportPage::writeSteps()
{
    openSection(QStringLiteral("steps"), QStringLiteral("Steps"));
    for (const SectionTag& step : m_sources.stepFiles.steps()) {
        if (!m_goesOn())
            break;
        m_articles.write(step);
    }
    m_articles.writeFilesWithoutStep();
    m_html.close();
}

void ReportPage::writeEmbeddedDocuments()
{
    const WorkflowTree& tree = m_sources.history.tree();
    const QList<int> steps = tree.children(-1);
    if (tree.nodeIds().size() == steps.size())
        return;
    openSection(QStringLiteral("embedded"), QStringLiteral("Steps of embedded documents"));
    writeEmbeddedDocuments(steps);
    m_html.close();
}

/// The documents that hang under @p steps, and those under their steps.
void ReportPage::writeEmbeddedDocuments(const QList<int>& steps)
{
    for (const int step : steps) {
        const QList<Branch> branches = branchesOf(m_sources.history.tree(), step);
        for (const Branch& branch : branches) {
            if (!m_goesOn())
                return;
            writeEmbeddedDocument(branch, step);
            writeEmbeddedDocuments(branch.steps);
        }
    }
}

/// The document that hangs under @p step.
void ReportPage::writeEmbeddedDocument(const Branch& branch, int step)
{
    const WorkflowTree& tree = m_sources.history.tree();
    const QString anchor = documentAnchor(branch);
    m_html.open("section",
                {{"id", anchor},
                 {"aria-labelledby", anchor + QStringLiteral("-heading")},
                 {"data-group", QString()}});
    m_html.element("h3", branch.document, {{"id", anchor + QStringLiteral("-heading")}});
    m_html.open("p", {{"class", QStringLiteral("soft")}});
    m_html.text(QStringLiteral("Embedded in the step "));
    m_html.element("a", titleOf(*tree.workflowStep(step)), {{"href", linkTo(anchorOf(step))}});
    m_html.text(QStringLiteral(" of ") + tree.treskfile(step));
    m_html.close();
    for (const int id : branch.steps) {
        if (!m_goesOn())
            break;
        m_articles.write(id, *tree.workflowStep(id));
    }
    m_html.close();
}

void ReportPage::openSection(const QString& id, const QString& heading)
{
    const QString headingId = id + QStringLiteral("-heading");
    m_html.open("section", {{"id", id}, {"aria-labelledby", headingId}, {"data-group", QString()}});
    m_html.element("h2", heading, {{"id", headingId}});
}

QString ReportPage::anchorOf(int node) const
{
    const auto found = m_anchors.constFind(node);
    return found == m_anchors.constEnd() ? StepArticles::anchorOf(node) : *found;
}

} // namespace tresk::cli
