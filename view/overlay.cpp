#include "view/overlay.h"

#include "base/redraw.h"
#include "edit/symmetry.h"
#include "view/interaction.h"

#include <utility>

overlay_t &overlay()
{
    static overlay_t shown;
    return shown;
}

namespace {
cut_marks_t marks_of_cut;
}

const cut_marks_t &cut_marks() { return marks_of_cut; }

void show_cut_marks(cut_marks_t marks)
{
    const bool any = !marks.empty() || !marks_of_cut.empty();
    marks_of_cut = std::move(marks);
    if (any)
        redraw_all();
}

void add_mirrored_lines(const object_t *object, cut_marks_t *marks)
{
    if (!symmetry_is_on())
        return;
    const std::size_t count = marks->lines.size();
    for (std::size_t i = 0; i < count; ++i)
        marks->lines.push_back(symmetric_point(object, marks->lines[i]));
}

void show_band(const pointer_event_t &press, const pointer_event_t &event)
{
    overlay_t &shown = overlay();
    shown.band_view = event.view;
    shown.x0 = press.x;
    shown.y0 = press.y;
    shown.x1 = event.x;
    shown.y1 = event.y;
    redraw(event.view);
}
