#ifndef VESK_FILEIO_VESK_PLACE_H
#define VESK_FILEIO_VESK_PLACE_H

// The parts that the readers of both line vocabularies share: the revision, by which they differ,
// the limit on what a small file may cost, and the placing of an object that was read.

#include "model/object.h"

#include <cstddef>
#include <optional>
#include <string_view>

constexpr int vesk_revision = 11; // of files that are written; the older vocabulary ends below it

constexpr std::size_t deepest_nesting = 100000; // of object blocks

// The revision that a text begins with; none when its first word does not begin with "VESK". No
// digits give 0, too many the largest number. `rest` is the place after the word.
std::optional<unsigned> vesk_revision_of(std::string_view text, const char **rest);

// The cost of an object's lines beyond their own length (shapes, scaling): a small file must not
// take minutes. `spend` is false when the allowance is used up.
class load_budget {
public:
    explicit load_budget(std::size_t file_size) : left_(30'000'000 + 40 * file_size) {}
    bool spend(std::size_t elements)
    {
        if (elements > left_)
            return false;
        left_ -= elements;
        return true;
    }

private:
    std::size_t left_;
};

// Places an object read in its parent's frame: turns its vertices by its own rotation and the
// parent's, and moves them to `location` in the parent's frame.
void place_object(object_t *object, point3_t location);

#endif
