#include "container/ByteSearch.h"

#include <algorithm>
#include <cstring>

namespace tresk {

namespace {

constexpr std::size_t npos = std::string_view::npos;

std::size_t indexIn(std::string_view bytes, const void* found)
{
    return found != nullptr ? std::size_t(static_cast<const char*>(found) - bytes.data()) : npos;
}

} // namespace

std::size_t findLineFeed(std::string_view bytes, std::size_t from)
{
    return bytes.find('\n', from);
}

std::size_t findLastLineFeed(std::string_view bytes)
{
    // memrchr and memmem look at many bytes at a time; string_view's searches do not.
    return bytes.empty() ? npos : indexIn(bytes, ::memrchr(bytes.data(), '\n', bytes.size()));
}

std::size_t findText(std::string_view bytes, std::string_view text)
{
    if (bytes.empty())
        return npos;
    return indexIn(bytes, ::memmem(bytes.data(), bytes.size(), text.data(), text.size()));
}

std::size_t findLastText(std::string_view bytes, std::string_view text)
{
    // Chunks from the end, each of them searched forwards and four times as long as the
    // one behind it: never much more is looked at than lies behind the occurrence.
    std::size_t end = bytes.size();
    for (std::size_t length = 64; end >= text.size(); length *= 4) {
        const std::size_t begin = end - std::min(end, std::max(length, text.size()));
        std::size_t last = npos;
        std::size_t from = begin;
        for (;;) {
            const std::size_t hit = findText(bytes.substr(from, end - from), text);
            if (hit == npos)
                break;
            last = from + hit;
            from = last + 1;
        }
        if (last != npos || begin == 0)
            return last;
        end = begin + text.size() - 1; // an occurrence may reach into the next chunk
    }
    return npos;
}

} // namespace tresk
