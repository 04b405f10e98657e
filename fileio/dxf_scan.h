#ifndef VESK_FILEIO_DXF_SCAN_H
#define VESK_FILEIO_DXF_SCAN_H

// A DXF drawing as its file has it: pairs of a code and a value, each on a line of its own, in
// records that begin with code 0; and what layers and blocks it names.

#include "model/vec3d.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// One record: views into the text, which must outlive it.
class dxf_record {
public:
    struct pair_t {
        int code;
        std::string_view value;
    };
    std::string_view type;
    std::vector<pair_t> pairs;

    // Of the first pair of that code.
    [[nodiscard]] std::string_view text(int code) const;
    [[nodiscard]] double number(int code, double fallback = 0) const;
    [[nodiscard]] int whole(int code, int fallback = 0) const;
    [[nodiscard]] bool has(int code) const;
    // Of codes code, code + 10 and code + 20; what is left out is 0.
    [[nodiscard]] vec3d point(int code) const;
    // Where the entity's plane faces: the Z axis where nothing is said.
    [[nodiscard]] vec3d extrusion() const;
};

// The points of a record whose parts have the codes code, code + 10 and code + 20.
std::vector<vec3d> dxf_points(const dxf_record &record, int code);

double dxf_number(std::string_view value); // 0 for none, also for infinite ones
int dxf_whole(std::string_view value);

struct dxf_rgb {
    std::uint8_t r, g, b;
    bool operator==(const dxf_rgb &) const = default;
};
// Of a code 420: the parts one after the other in a whole number.
dxf_rgb dxf_true_colour(const dxf_record &record);
// Of the format's table of 255 colours, which follows a rule but for its ends: 24 hues in five
// brightnesses, each full and half saturated.
dxf_rgb dxf_table_colour(int index);
// The entry that comes nearest.
int dxf_nearest_colour(const dxf_rgb &colour);

struct dxf_layer {
    dxf_rgb colour = {255, 255, 255};
    bool hidden = false; // off or frozen
};

struct dxf_block {
    vec3d base;
    std::vector<dxf_record> records;
};

struct dxf_drawing {
    std::unordered_map<std::string_view, dxf_layer> layers;
    std::unordered_map<std::string_view, dxf_block> blocks;
    std::vector<dxf_record> entities;
    int units = 0;         // $INSUNITS: 0 says nothing
    bool complete = false; // the file's end was reached in good order
};

// Never fails: what is not understood is left out.
dxf_drawing dxf_read(std::string_view text);

// The name of a unit ("millimetres"); "" for none and for unknown ones.
const char *dxf_unit_name(int units);

// A name or a text as UTF-8: "\U+2205" is the letter of that number, bytes that are no UTF-8 are
// Latin-1.
std::string dxf_decoded(std::string_view value);

#endif
