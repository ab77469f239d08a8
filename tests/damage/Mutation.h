#ifndef TRESK_TESTS_MUTATION_H
#define TRESK_TESTS_MUTATION_H

#include <QByteArray>
#include <QString>

#include <optional>

namespace tresktest {

/// One small damage to a document at one place, and whether sizes and checksums are made to fit
/// afterwards, so that the damage gets past them.
class Mutation {
public:
    /// How many there are for a document of @p size bytes. For each byte: the document ends in
    /// front of it, each of its bits is flipped, and it becomes 00, LF, CR, "-", "9" and FF; all
    /// that without and with repair.
    static int count(int size);
    /// That of the number @p index, from 0. Those of the same place follow each other.
    static Mutation numbered(int index);
    /// That of the name @p name; none if it is no name of a mutation.
    static std::optional<Mutation> named(const QString& name);

    /// "cut@PLACE", "bitN@PLACE" or "byteHH@PLACE", and "+repair" behind it.
    QString name() const;
    int place() const { return m_place; }
    bool cuts() const { return m_kind == 0; }
    bool repairs() const { return m_repairs; }

    /// @p document with the damage, not repaired. Places outside the document change nothing.
    QByteArray applied(const QByteArray& document) const;

private:
    Mutation(int place, int kind, bool repairs);

    int m_place;
    int m_kind; ///< 0: cut, 1 to 8: bit flipped, from 9 on: byte set
    bool m_repairs;
};

} // namespace tresktest

#endif
