#include "edit/transform_undo.h"

#include "edit/resize.h"
#include "edit/transform.h"
#include "model/angle.h"
#include "model/matrix.h"

namespace {

// Each takes its record off.

void reverse_move(undo_record &record)
{
    const point3_t &way = std::get<undo_vector>(record.data).vector;
    const point3_t back = {-way.x, -way.y, -way.z};
    undo_on_saved_selection(record, [&] {
        translate_all_selected(&back);
        selected_calc_normals();
    });
    undo_drop_newest();
}

void reverse_scale(undo_record &record)
{
    const point3_t factors = std::get<undo_vector>(record.data).vector;
    undo_on_saved_selection(record, [&] { scale_selection(factors.x, factors.y, factors.z); });
    undo_drop_newest();
}

void reverse_resize(undo_record &record)
{
    const auto &[before, after] = std::get<undo_resize>(record.data);
    const point3_t from[] = {after[0], after[1]}, to[] = {before[0], before[1]};
    undo_on_saved_selection(record, [&] { resize_selection(&from[0], &from[1], &to[0], &to[1]); });
    undo_drop_newest();
}

void reverse_rotation(undo_record &record)
{
    const undo_turn turn = std::get<undo_turn>(record.data);
    float m[9];
    if (record.kind == UNDO_ROTATE_AXIS)
        matrix_set_rotate_angle_axis(m, &turn.axis, radians(-turn.degrees));
    else
        matrix_set_turn_in_view(m, turn.view, -turn.degrees);
    undo_on_saved_selection(record, [&] {
        selection_rotate(m, turn.has_centre ? &turn.centre : nullptr);
        selected_calc_normals();
    });
    undo_drop_newest();
}

// clang-format off
const undo_kind kinds[] = {
    {UNDO_MOVE,        undo_data_of<undo_vector>, true, false, reverse_move},
    {UNDO_RESIZE,      undo_data_of<undo_resize>, true, false, reverse_resize},
    {UNDO_ROTATE,      undo_data_of<undo_turn>, true, false, reverse_rotation},
    {UNDO_SCALE,       undo_data_of<undo_vector>, true, false, reverse_scale},
    {UNDO_ROTATE_AXIS, undo_data_of<undo_turn>, true, false, reverse_rotation},
};
// clang-format on

} // namespace

std::span<const undo_kind> transform_undo_kinds() { return kinds; }
