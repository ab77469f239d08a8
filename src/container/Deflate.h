#ifndef TRESK_CONTAINER_DEFLATE_H
#define TRESK_CONTAINER_DEFLATE_H

#include <QtGlobal>

namespace tresk {

/// Of inflated to stored bytes: what the format reaches at most.
constexpr qint64 largestRatio = 1032;

} // namespace tresk

#endif
