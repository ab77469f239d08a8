#ifndef TRESK_FUZZ_NESTEDDOCUMENTS_H
#define TRESK_FUZZ_NESTEDDOCUMENTS_H

#include <QByteArray>
#include <QString>

namespace tresktest {
struct FileSpec;
struct SectionSpec;
} // namespace tresktest

namespace tresk_fuzz {

class ByteSource;

/// A document and the tree of its steps, as tresktest::textOf() writes it, unless it is damaged.
struct NestedDocument {
    QByteArray bytes;
    QString tree;
};

/// Makes a document of few steps, with few documents in it, and damages it, as a source chooses.
class NestedDocuments {
public:
    explicit NestedDocuments(ByteSource& source);

    NestedDocument make() { return document(0); }
    bool areDamaged() const { return m_areDamaged; }

private:
    NestedDocument document(int level);
    tresktest::SectionSpec step(int level, QString& tree);
    QByteArray listedFile(int level, tresktest::SectionSpec& section, QString& tree);
    tresktest::FileSpec documentFile(int level, const QString& suffix, QString& tree);
    void damage(QByteArray& bytes);

    ByteSource& m_source;
    int m_damagesLeft;
    bool m_areDamaged = false;
    int m_documents = 0; ///< made so far
};

} // namespace tresk_fuzz

#endif
