#include "NestedDocuments.h"

#include "../tests/summary/SummaryXml.h"
#include "ByteSource.h"
#include "Histories.h"

using tresktest::element;
using tresktest::FileElement;
using tresktest::FileSpec;
using tresktest::SectionSpec;

namespace tresk_fuzz {

namespace {

constexpr int deepestLevel = 3;
constexpr int mostDocuments = 8;
constexpr int mostDamages = 4;

const QString suffix = QStringLiteral(".tresk");

} // namespace

NestedDocuments::NestedDocuments(ByteSource& source)
    : m_source(source)
    , m_damagesLeft(source.below(mostDamages + 1))
{
}

NestedDocument NestedDocuments::document(int level)
{
    ++m_documents;
    tresktest::DocumentWriter writer("%PDF-1.4\n");
    writer.writeHeader();
    QStringList steps;
    const bool hasStray = m_source.below(5) == 4;
    if (hasStray) {
        QString tree;
        writer.writeFile(documentFile(level, suffix, tree)); // markers do not say to follow it
    }
    for (int left = m_source.below(3); left >= 0; --left) {
        QString tree;
        writer.writeSection(step(level, tree));
        steps.prepend(tree);
    }
    if (hasStray)
        steps.prepend(QStringLiteral("<unmatched files>"));
    NestedDocument made{writer.bytes(), steps.join(QLatin1Char(' '))};
    // Those that are embedded as well: their checksums are right then.
    while (m_damagesLeft > 0 && (level == 0 || m_source.flag()))
        damage(made.bytes);
    return made;
}

SectionSpec NestedDocuments::step(int level, QString& tree)
{
    SectionSpec section;
    const QString title(QLatin1Char("abc"[m_source.below(3)]));
    QByteArray content = element("Title", title.toLatin1());
    QStringList below;
    for (int files = m_source.below(4); files > 0; --files) {
        QString embedded;
        content += listedFile(level, section, embedded);
        if (!embedded.isEmpty())
            below += embedded;
    }
    if (m_source.below(5) == 4) {
        // What is known from markers only is not followed.
        section.title = title;
        tree = title;
        return section;
    }
    section = tresktest::stepThatSays(content, section.files);
    tree = title;
    if (!below.isEmpty())
        tree += QLatin1Char('(') + below.join(QLatin1Char(' ')) + QLatin1Char(')');
    return section;
}

/// Adds a file to @p section and to @p tree what it adds to that; returns what the summary says.
QByteArray NestedDocuments::listedFile(int level, SectionSpec& section, QString& tree)
{
    QString notFollowed;
    switch (m_source.below(8)) {
    case 0: {
        const FileSpec file = FileSpec::plain(QStringLiteral("text") + suffix, "no document\n");
        section.files += file;
        return FileElement(file).xml();
    }
    case 1:
        section.files += documentFile(level, suffix.toUpper(), notFollowed);
        return FileElement(section.files.last()).xml();
    case 2:
        section.files += documentFile(level, suffix, notFollowed);
        return FileElement(section.files.last()).with("Embedded", "0").xml();
    case 3: // another name is another file
        section.files += documentFile(level, suffix, notFollowed);
        return FileElement(section.files.last()).with("Filename", "other.tresk").xml();
    case 4: // not there
        return FileElement(documentFile(level, suffix, notFollowed)).xml();
    case 5:
        section.files += documentFile(level, suffix, tree);
        return FileElement(section.files.last(), "OutFile").xml();
    default:
        section.files += documentFile(level, suffix, tree);
        return FileElement(section.files.last()).xml();
    }
}

/// A document one level deeper, or an empty file where there are enough.
FileSpec NestedDocuments::documentFile(int level, const QString& ending, QString& tree)
{
    const QString name = QString::number(m_documents) + QLatin1Char('-') + QString::number(level)
        + ending;
    if (level == deepestLevel || m_documents == mostDocuments)
        return FileSpec::plain(name, QByteArray());
    const NestedDocument inner = document(level + 1);
    tree = inner.tree;
    return m_source.flag() ? FileSpec::plain(name, inner.bytes)
                           : FileSpec::flate(name, inner.bytes);
}

void NestedDocuments::damage(QByteArray& bytes)
{
    --m_damagesLeft;
    m_areDamaged = true;
    const int kind = m_source.below(4);
    const int position = m_source.below(int(bytes.size()));
    const int size = 1 + m_source.below(16);
    if (kind == 0)
        bytes[position] = char(m_source.byte());
    else if (kind == 1)
        bytes.remove(position, size);
    else if (kind == 2)
        bytes.insert(position, m_source.bytes(size));
    else
        bytes.insert(m_source.below(int(bytes.size())), bytes.mid(position, size * size));
}

} // namespace tresk_fuzz
