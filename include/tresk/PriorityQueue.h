#ifndef TRESK_PRIORITYQUEUE_H
#define TRESK_PRIORITYQUEUE_H

#include <algorithm>
#include <utility>
#include <vector>

namespace tresk {

/// A binary heap of items with whole numbers as priorities, the smallest on top.
///
/// Equal priorities come out in the order of the heap, which is neither that in which they were
/// pushed nor its reverse, but always the same.
template <typename Item>
class PriorityQueue {
public:
    /// An item and its priority.
    using Entry = std::pair<Item, int>;

    /// Whether there is nothing to pop().
    bool isEmpty() const { return m_entries.empty(); }
    /// How many items there are.
    int size() const { return int(m_entries.size()); }

    /// Adds a copy of @p item; in logarithmic time, as is pop().
    void push(const Item& item, int priority)
    {
        m_entries.emplace_back(item, priority);
        std::push_heap(m_entries.begin(), m_entries.end(), m_comesLater);
    }

    /// Removes the entry on top and returns it: the item and its priority. The queue must not be
    /// empty.
    Entry pop()
    {
        std::pop_heap(m_entries.begin(), m_entries.end(), m_comesLater);
        Entry top = std::move(m_entries.back());
        m_entries.pop_back();
        return top;
    }

private:
    struct ComesLater {
        bool operator()(const Entry& a, const Entry& b) const { return a.second > b.second; }
    };

    std::vector<Entry> m_entries;
    ComesLater m_comesLater;
};

} // namespace tresk

#endif
