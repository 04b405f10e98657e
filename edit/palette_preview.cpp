#include "edit/palette_preview.h"

#include "edit/document/step.h"
#include "model/palette.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace {

struct preview_t {
    std::unique_ptr<step_t> step; // holds the history while it is there
    int entry = 0;
    palette_values before = {};
};
preview_t &running()
{
    static preview_t preview;
    return preview;
}

palette_values values_of(const material *m)
{
    palette_values values = {};
    auto next = values.begin();
    for (const float *colour : {m->diffuse, m->ambient, m->emissive, m->specular})
        next = std::copy(colour, colour + 3, next);
    *next++ = m->shininess;
    *next = m->transparency;
    return values;
}

void set_values(int entry, const palette_values &v)
{
    set_palette_entry(entry, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], v[10],
                      v[11], v[12], v[13]);
}

} // namespace

void palette_preview(int entry, const palette_values &values)
{
    if (entry < 0 || entry >= vesk_get_num_palette())
        return;
    if (running().step != nullptr && running().entry != entry)
        palette_preview_end();
    if (running().step == nullptr)
        running() = {std::make_unique<step_t>(step_t::of::drag), entry,
                     values_of(vesk_palette_get_material(entry))};
    set_values(entry, values);
}

void palette_preview_end()
{
    const preview_t ended = std::exchange(running(), {});
    if (ended.step != nullptr && ended.entry < vesk_get_num_palette())
        set_values(ended.entry, ended.before);
}
