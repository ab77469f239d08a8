#ifndef TRESK_SUMMARY_LIKEFILES_H
#define TRESK_SUMMARY_LIKEFILES_H

#include <tresk/Summary.h>
#include <tresk/TreskParser.h>

#include <QHash>
#include <QList>
#include <QString>

#include <array>
#include <memory>
#include <optional>
#include <vector>

namespace tresk {

/// Embedded files of one name, checksum and size, to be given away one by one.
///
/// They may be very many, and each may be asked for with other words. So they are sorted by each
/// set of the other fields in turn, as far as this is needed, which takes time nearly linear in
/// their number where looking at each of them each time would take the square of it.
class LikeFiles {
public:
    /// Adds the file at that place in a list. Files come in the order of the list, and all
    /// before the first is taken.
    void add(int place) { m_places.push_back(place); }

    /// Takes out the file that differs least from @p file, of several the last; returns its place
    /// in @p files, the list. Nothing where none is left.
    std::optional<int> takeNearest(const QList<FileTag>& files, const FileSummary& file);

private:
    static constexpr std::size_t fieldCount = 6;
    static constexpr std::size_t setCount = std::size_t(1) << fieldCount;
    using Numbers = std::array<int, fieldCount>; ///< of the texts of a file; -1 for an unknown one

    /// The files, by the fields of a set.
    struct Sorting {
        std::vector<int> order; ///< files, those that agree in the order of the list
        std::vector<int> left; ///< for each of order, where before or at it one may be left; or -1
    };

    struct Sorted {
        std::vector<Numbers> numbers; ///< of the files at m_places
        std::array<QHash<QString, int>, fieldCount> numberOf;
        std::vector<bool> taken;
        std::array<Sorting, setCount> sortings; ///< by set; empty until it is needed
    };

    std::optional<int> takeFromFew(const QList<FileTag>& files, const FileSummary& file);
    void number(const QList<FileTag>& files);
    int lastLeft(unsigned fields, const Numbers& wanted);
    Sorting sorting(unsigned fields) const;

    std::vector<int> m_places;
    /// What takes more than a few files; made when it is needed, since most are the only one.
    std::shared_ptr<Sorted> m_sorted;
};

} // namespace tresk

#endif
