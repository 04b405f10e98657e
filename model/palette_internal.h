#ifndef VESK_MODEL_PALETTE_INTERNAL_H
#define VESK_MODEL_PALETTE_INTERNAL_H

#include "model/palette.h"

#include <cstddef>

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

// Whether the first material of a file that equals an entry from before gives it its name. For
// conversions, where nothing else uses the palette.
void palette_adopts_names(bool wished);

int palette_capacity();

#endif
