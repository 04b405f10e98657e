#include "base/file_report.h"
#include "base/messages.h"
#include "model/alloc_internal.h"
#include "model/change_marks.h"
#include "model/palette_internal.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <unordered_map>
#include <unordered_set>

namespace {

constexpr int growth = 20;

struct palette_record {
    material **entries;
    int count;
    int capacity;
    listitem *retired; // entries of an earlier palette: somebody may still hold them
};
palette_record palette;

using hash_table = std::unordered_multimap<std::size_t, int>;
hash_table *table; // of the palette_table that lives, else null

void enter_in_table(int i)
{
    if (table)
        table->emplace(material_hash(palette.entries[i]), i);
}

void grow()
{
    const int capacity = palette.capacity + growth;
    auto **entries = static_cast<material **>(
        myalloc(static_cast<std::uint32_t>(sizeof(material *)) * static_cast<unsigned>(capacity)));
    std::copy_n(palette.entries, palette.count, entries);
    myfree(palette.entries);
    palette.entries = entries;
    palette.capacity = capacity;
    debugf("EXPANDING PALETTE \n");
}

// Null, silently, for an index outside the palette.
material *entry(int i) { return i >= 0 && i < palette.count ? palette.entries[i] : nullptr; }

int find_in_table(const material *mat)
{
    int lowest = -1;
    const auto [begin, end] = table->equal_range(material_hash(mat));
    for (auto at = begin; at != end; ++at) {
        if ((lowest < 0 || at->second < lowest) &&
            material_compare(palette.entries[at->second], mat) != 0)
            lowest = at->second;
    }
    return lowest;
}

bool is_name(const char *text) { return text != nullptr && *text != '\0'; }

// Entries that stood before the import at hand and took the name of an equal material of its file.
struct adoption {
    bool wished;
    int entries; // when the import began
    std::unordered_set<int> taken;
};
adoption &adopted()
{
    static adoption record = {};
    return record;
}

bool adopt_name(int i, const material *mat)
{
    adoption &names = adopted();
    if (table == nullptr || !names.wished || i >= names.entries || !names.taken.insert(i).second)
        return false;
    vesk_material_set_name(palette.entries[i], mat->name);
    palette_mark();
    return true;
}

void set_colour(float *colour, float r, float g, float b)
{
    colour[0] = r;
    colour[1] = g;
    colour[2] = b;
}

} // namespace

palette_table::palette_table()
{
    static hash_table entries;
    entries.clear();
    table = &entries;
    for (int i = 0; i < palette.count; ++i)
        enter_in_table(i);
    adopted().entries = palette.count;
    adopted().taken.clear();
}

void palette_adopts_names(bool wished) { adopted().wished = wished; }

palette_table::~palette_table() { table = nullptr; }

int palette_capacity() { return palette.capacity; }

int vesk_get_num_palette(void) { return palette.count; }

material *vesk_palette_get_material(int i)
{
    if (i > palette.count) {
        console_printf(
            "vesk_palette_get_material failed: entry %d is bigger than palette size (%d)\n", i,
            palette.count);
    }
    return entry(i);
}

int vesk_palette_append_material(material *mat)
{
    if (palette.count == palette.capacity)
        grow();
    const int i = palette.count++;
    palette.entries[i] = mat;
    enter_in_table(i);
    palette_mark();
    tcl_command("add_palette_button #%06x %d", static_cast<unsigned>(index_to_rgb(i)), i);
    return i;
}

int vesk_palette_get_new_material_index(const material *mat)
{
    const int known = find_material(mat);
    if (known < 0)
        return vesk_palette_append_material(new_material_copy(mat));
    if (!is_name(mat->name) || adopt_name(known, mat))
        return known;
    const char *name = palette.entries[known]->name;
    if (is_name(name) && std::strcmp(mat->name, name) != 0)
        file_report_merged(mat->name, name);
    return known;
}

int find_material(const material *mat)
{
    if (table)
        return find_in_table(mat);
    for (int i = 0; i < palette.count; ++i) {
        if (material_compare(palette.entries[i], mat) != 0)
            return i;
    }
    return -1;
}

int new_palette_entry(int i)
{
    const material *source = entry(i);
    return source ? vesk_palette_append_material(new_material_copy(source)) : -1;
}

const char *vesk_material_get_name_index(int i)
{
    const material *mat = entry(i);
    return mat ? mat->name : nullptr;
}

int vesk_material_has_transparency(int i)
{
    const material *mat = entry(i);
    return mat && mat->transparency > 0 ? 1 : 0;
}

int rgb_to_index(long packed)
{
    material wanted = {};
    for (int i = 0; i < 3; ++i) {
        const long byte = (packed >> (16 - 8 * i)) & 0xFF;
        wanted.diffuse[i] = static_cast<float>(static_cast<double>(byte) / 255);
    }
    for (int i = 0; i < palette.count; ++i) {
        if (std::equal(wanted.diffuse, wanted.diffuse + 3, palette.entries[i]->diffuse))
            return i;
    }
    return vesk_palette_append_material(new_material_rgb(packed));
}

long index_to_rgb(int i)
{
    const material *mat = entry(i);
    return mat ? rgb_floatv_to_long(mat->diffuse) : 0;
}

long vesk_material_index_to_rgb(int i) { return index_to_rgb(i); }

void index_to_3f(int i, float *r, float *g, float *b)
{
    const material *mat = entry(i);
    if (!mat)
        return;
    *r = mat->diffuse[0];
    *g = mat->diffuse[1];
    *b = mat->diffuse[2];
}

const char *index_to_string(int i)
{
    static char text[24];
    std::snprintf(text, sizeof text, "#%06lx", static_cast<unsigned long>(index_to_rgb(i)));
    return text;
}

void edit_palette_entry(int i)
{
    const material *mat = entry(i);
    if (!mat)
        return;
    const auto wide = [](float value) { return static_cast<double>(value); };
    const float *d = mat->diffuse;
    const float *a = mat->ambient;
    const float *e = mat->emissive;
    const float *s = mat->specular;
    tcl_command("edit_colour_ui %d %f %f %f   %f %f %f   %f %f %f   %f %f %f   %f %f", i,
                wide(d[0]), wide(d[1]), wide(d[2]), wide(a[0]), wide(a[1]), wide(a[2]), wide(e[0]),
                wide(e[1]), wide(e[2]), wide(s[0]), wide(s[1]), wide(s[2]), wide(mat->shininess),
                wide(mat->transparency));
}

void set_palette_entry(int i, float r, float g, float b, float ambient_r, float ambient_g,
                       float ambient_b, float emissive_r, float emissive_g, float emissive_b,
                       float specular_r, float specular_g, float specular_b, float shininess,
                       float transparency)
{
    material *mat = entry(i);
    if (!mat)
        return;
    set_colour(mat->diffuse, r, g, b);
    set_colour(mat->ambient, ambient_r, ambient_g, ambient_b);
    set_colour(mat->emissive, emissive_r, emissive_g, emissive_b);
    set_colour(mat->specular, specular_r, specular_g, specular_b);
    mat->shininess = shininess;
    mat->transparency = transparency;
    palette_mark();
}

void print_palette(void)
{
    for (int i = 0; i < palette.count; ++i)
        print_material(palette.entries[i]);
}

void create_palette(void)
{
    // clang-format off
    constexpr long colours[] = {
        0x000000, 0xFFFFFF, 0xA04040, 0xFF0000, 0xFF7700,
        0xFFFF00, 0x00FF00, 0x458674, 0xA0C0E0, 0x0000FF,
        0x82004B, 0xEE80EE, 0x444444, 0x888888, 0xCCCCCC,
    };
    // clang-format on
    while (palette.count > 0)
        list_add_item_head(&palette.retired, palette.entries[--palette.count]);
    for (const long colour : colours) {
        material *mat = new_material_rgb(colour);
        char name[24];
        std::snprintf(name, sizeof name, "veskmat%d", palette.count);
        vesk_material_set_name(mat, name);
        vesk_palette_append_material(mat);
    }
}
