#include "TableOrder.h"

#include <cstdint>

namespace tresktest {

namespace {

constexpr std::uint32_t primes[] = {17,   37,   67,   131,   257,   521,  1031,
                                    2053, 4099, 8209, 16411, 32771, 65537};

using Buckets = std::vector<std::vector<int>>;

void append(Buckets& buckets, int key)
{
    const auto count = static_cast<std::uint32_t>(buckets.size());
    buckets[static_cast<std::uint32_t>(key) % count].push_back(key);
}

} // namespace

std::vector<int> tableOrder(const std::vector<int>& inserted)
{
    const std::uint32_t* prime = primes;
    Buckets buckets(*prime);
    std::size_t entries = 0;
    for (const int key : inserted) {
        if (entries == buckets.size()) {
            ++prime;
            Buckets larger(*prime);
            for (const std::vector<int>& bucket : buckets) {
                for (const int moved : bucket)
                    append(larger, moved);
            }
            buckets = larger;
        }
        append(buckets, key);
        ++entries;
    }
    std::vector<int> order;
    for (const std::vector<int>& bucket : buckets)
        order.insert(order.end(), bucket.begin(), bucket.end());
    return order;
}

} // namespace tresktest
