#ifndef VESK_FILEIO_VESK_READER_INTERNAL_H
#define VESK_FILEIO_VESK_READER_INTERNAL_H

#include "base/types.h"
#include "fileio/vesk_reader.h"

#include <optional>
#include <string_view>

constexpr int vesk_revision = 11;

// The revision in a file's first word; none when it does not begin with "VESK". No digits give 0,
// too many the largest number.
std::optional<unsigned> vesk_revision_of(std::string_view word);

// The box about a file of a later revision.
void tell_newer_version(const char *filename);
// The box about a file of another kind.
void tell_not_valid(const char *filename);

// The complaints of the load that is running.
void complaints_clear();
void complain(const char *format, ...) VESK_PRINTF(1, 2);
// "Done." and, when there were complaints, how many.
void tell_load_done();

// What an object's lines may cost beyond their own length (shapes, scaling): a small file must not
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
