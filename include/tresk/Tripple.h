#ifndef TRESK_TRIPPLE_H
#define TRESK_TRIPPLE_H

namespace tresk {

/// Three values of three types. The name is spelled so on purpose.
template <typename A, typename B, typename C>
struct Tripple {
    /// Values as their types initialise them, numbers as 0.
    Tripple() = default;
    /// Copies of the three.
    Tripple(const A& a, const B& b, const C& c)
        : first(a)
        , second(b)
        , third(c)
    {
    }

    A first{}; ///< of type A
    B second{}; ///< of type B
    C third{}; ///< of type C
};

} // namespace tresk

#endif
