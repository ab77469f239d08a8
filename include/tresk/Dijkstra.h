#ifndef TRESK_DIJKSTRA_H
#define TRESK_DIJKSTRA_H

#include <tresk/Export.h>
#include <tresk/PriorityQueue.h>

#include <QList>
#include <QSharedPointer>

#include <limits>

namespace tresk {

/// Writes the debug lines of a search that has come to a goal with @p expanded items popped.
TRESK_EXPORT void reportGoal(int expanded);

/// Best-first search. A @p PathType has `expand(queue)`, which pushes its successors,
/// `reachedGoal()` and `printMe()`.
template <typename PathType>
class Dijkstra {
public:
    /// Paths are shared: each may be in the queue and in a result.
    using PathPointer = QSharedPointer<PathType>;

    /// The first @p n paths that reach the goal from @p start, best first; fewer if there are no
    /// more, and at least one if there is any. What is still open then stays in the queue. Gives
    /// up when there are more than @p mostOpen paths, open or found.
    QList<PathPointer> findPaths(const PathPointer& start, int n,
                                 int mostOpen = std::numeric_limits<int>::max())
    {
        QList<PathPointer> found;
        m_queue.push(start, 0);
        int expanded = 0;
        while (!m_queue.isEmpty()) {
            m_gaveUp = m_queue.size() > mostOpen - int(found.size());
            if (m_gaveUp)
                break;
            ++expanded;
            const PathPointer path = m_queue.pop().first;
            if (!path->reachedGoal()) {
                path->expand(m_queue);
                continue;
            }
            reportGoal(expanded);
            path->printMe();
            found.append(path);
            if (found.size() >= n)
                break;
        }
        return found;
    }

    /// Whether the last search gave up before it had found all that it was asked for.
    bool gaveUp() const { return m_gaveUp; }

private:
    PriorityQueue<PathPointer> m_queue;
    bool m_gaveUp = false;
};

} // namespace tresk

#endif
