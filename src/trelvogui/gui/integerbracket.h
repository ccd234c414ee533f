#pragma once
// One free range of screen-handler ids.

#include <cstdint>

namespace GUI {

/// `first` is the next id this range hands out, `last` the last one (inclusive). Compared by equality
/// only, so [0, 4294967295] is written with last = -1.
struct IntegerBracket {
    int32_t first = 0;
    int32_t last = 0;
    bool operator==(const IntegerBracket& o) const { return first == o.first && last == o.last; }
};

} // namespace GUI
