#ifndef VESK_MODEL_PALETTE_INTERNAL_H
#define VESK_MODEL_PALETTE_INTERNAL_H

#include "model/palette.h"

#include <cstddef>
#include <string>

// Equal for materials that material_compare finds equal.
std::size_t material_hash(const material *mat);

// While one lives, looking for an equal entry goes through a table of hashes, so that a file of
// many materials is no quadratic work. No foreign code may change entries meanwhile.
class palette_table {
public:
    palette_table();
    ~palette_table();
    palette_table(const palette_table &) = delete;
    palette_table &operator=(const palette_table &) = delete;
};

// A name as the MATERIAL line of a model file can carry it, which is one line of at most 254 bytes
// and escapes nothing: quotes become apostrophes, backslashes slashes, control characters blanks,
// and what is longer than 64 bytes is cut between two characters. "" for null.
std::string material_name_for_files(const char *name);

// Whether the first material of a file that equals an entry from before gives it its name. For
// conversions, where nothing else uses the palette.
void palette_adopts_names(bool wished);

// Takes back the entries from `count` on: those of an import that failed.
void palette_take_back(int count);

int palette_capacity();

#endif
