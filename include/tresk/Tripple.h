#ifndef TRESK_TRIPPLE_H
#define TRESK_TRIPPLE_H

namespace tresk {

/// Three values of three types. The name is spelled so on purpose.
template <typename A, typename B, typename C>
struct Tripple {
    Tripple() = default;
    Tripple(const A& a, const B& b, const C& c)
        : first(a)
        , second(b)
        , third(c)
    {
    }

    A first{};
    B second{};
    C third{};
};

} // namespace tresk

#endif
