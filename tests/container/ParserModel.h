#ifndef TRESK_TESTS_PARSERMODEL_H
#define TRESK_TESTS_PARSERMODEL_H

#include "IteratorModel.h"

#include <tresk/TreskParser.h>

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QRegularExpression>
#include <QString>

#include <optional>

namespace tresktest {

/// A parser of documents in memory, written as plainly as the behaviour can be described: line
/// by line, with regular expressions on decoded lines. The real parser is compared with it.
class ParserModel {
public:
    explicit ParserModel(tresk::ParseMode mode);

    bool open(const QByteArray& bytes);

    QList<tresk::SectionTag> sections() const { return m_sections; }
    QList<tresk::FileTag> files() const { return m_files; }
    QList<tresk::FileTag> filesInSection(const tresk::SectionTag& section) const;
    QList<tresk::FileTag> sectionlessFiles() const;

    /// The content of a file; nothing where its compression is unknown or its size wrong.
    std::optional<QByteArray> content(const tresk::FileTag& file) const;
    QPair<QString, QString> checksums(const tresk::FileTag& file) const;

private:
    bool headerFound();
    std::optional<tresk::SectionTag> findLastSection();
    std::optional<tresk::SectionTag> findPrevSection(const tresk::SectionTag& section);
    void readSections();
    void findFiles();
    std::optional<tresk::SectionTag> parseSection(const QString& line) const;
    std::optional<tresk::FileTag> parseFile(const QString& line) const;
    QByteArray validationTag(const QString& md5) const;
    QByteArray stored(const tresk::FileTag& file) const;

    IteratorModel m_iterator;
    tresk::ParseMode m_mode;
    QRegularExpression m_sectionPattern;
    QRegularExpression m_filePattern;
    QList<tresk::SectionTag> m_sections;
    QList<tresk::FileTag> m_files;
};

} // namespace tresktest

#endif
