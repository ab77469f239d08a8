#include "Trees.h"

namespace tresktest {

tresk::Workflowstep stepOf(const QString& text)
{
    tresk::Workflowstep step;
    step.title = text.section(QLatin1Char(':'), 0, 0);
    step.tool = text.section(QLatin1Char(':'), 1, 1);
    step.description = text.section(QLatin1Char(':'), 2, 2);
    return step;
}

tresk::WorkflowTree treeOf(const char* text, int firstId)
{
    tresk::WorkflowTree tree;
    for (int i = 0; i < firstId; ++i)
        tree.addTreeNode(-1, {}, QString(), QString());
    tree.clear();

    QString name;
    QList<int> parents{-1};
    int last = -1;
    const auto endName = [&] {
        if (!name.isEmpty())
            last = tree.addTreeNode(parents.last(), stepOf(name), QString(), QString());
        name.clear();
    };
    for (const QChar c : QString::fromUtf8(text)) {
        if (c == QLatin1Char('(') || c == QLatin1Char(',') || c == QLatin1Char(')'))
            endName();
        else
            name += c;
        if (c == QLatin1Char('('))
            parents.append(last);
        else if (c == QLatin1Char(')'))
            parents.removeLast();
    }
    endName();
    return tree;
}

tresk::WorkflowTree flatTree(int count)
{
    tresk::WorkflowTree tree;
    for (int i = 0; i < count; ++i)
        tree.addTreeNode(-1, stepOf(QString::number(i)), QString(), QString());
    return tree;
}

TitleCosts& TitleCosts::set(const char* title1, const char* title2, float cost)
{
    m_costs[{QString::fromUtf8(title1), QString::fromUtf8(title2)}] = cost;
    return *this;
}

float TitleCosts::costs(const tresk::Workflowstep& a, const tresk::Workflowstep& b) const
{
    const auto found = m_costs.find({a.title, b.title});
    return found == m_costs.end() ? m_otherwise : found->second;
}

QStringList debugLines(const MessageCapture& capture)
{
    QStringList lines;
    for (const MessageCapture::Message& message : capture.messages()) {
        const bool isOurs = message.type == QtDebugMsg && message.category == "tresk";
        lines += isOurs ? message.text : QStringLiteral("other: ") + message.text;
    }
    return lines;
}

} // namespace tresktest
