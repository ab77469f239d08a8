#include "tree/HashOrder.h"

#include <algorithm>
#include <iterator>

namespace tresk {

namespace {

/// The numbers of buckets: the smallest primes above the powers of two from 2^4 on, as distances
/// from these.
constexpr int primeDistances[] = {1, 5,  3, 3,  1,  9, 7,  5,  3,  17, 27, 3,  1, 29,
                                  3, 21, 7, 17, 15, 9, 43, 35, 15, 29, 3,  11, 3};

std::size_t bucketCount(int sizeClass)
{
    return (std::size_t(16) << sizeClass) + std::size_t(primeDistances[sizeClass]);
}

} // namespace

HashOrder::HashOrder()
    : m_buckets(bucketCount(0))
{
}

void HashOrder::insert(int key)
{
    if (m_count == m_buckets.size() && m_sizeClass + 1 < int(std::size(primeDistances)))
        grow();
    bucketOf(key).push_back(key);
    ++m_count;
}

QList<int> HashOrder::keys() const
{
    QList<int> all;
    all.reserve(int(m_count));
    for (const std::vector<int>& bucket : m_buckets)
        std::copy(bucket.begin(), bucket.end(), std::back_inserter(all));
    return all;
}

void HashOrder::grow()
{
    const QList<int> inOrder = keys();
    m_buckets.assign(bucketCount(++m_sizeClass), {});
    for (const int key : inOrder)
        bucketOf(key).push_back(key);
}

std::vector<int>& HashOrder::bucketOf(int key)
{
    return m_buckets[unsigned(key) % m_buckets.size()];
}

} // namespace tresk
