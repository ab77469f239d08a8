#ifndef TRESK_TREE_HASHORDER_H
#define TRESK_TREE_HASHORDER_H

#include <QList>

#include <vector>

namespace tresk {

/// The order in which a table of whole numbers is gone through.
///
/// The order decides between equally good results, so it has to be the same in every process,
/// which that of Qt's hashes is not: they are seeded. It is that of a hash without a seed, with
/// chained buckets, whose numbers are primes just above powers of two: the keys of bucket 0, those
/// of bucket 1, and so on, each in the order in which they came there. Keys count as unsigned
/// 32-bit numbers.
class HashOrder {
public:
    HashOrder();

    /// Puts @p key, which is not there yet, into the table.
    void insert(int key);
    /// The keys in order.
    QList<int> keys() const;

private:
    void grow();
    std::vector<int>& bucketOf(int key);

    std::vector<std::vector<int>> m_buckets;
    int m_sizeClass = 0;
    std::size_t m_count = 0;
};

} // namespace tresk

#endif
