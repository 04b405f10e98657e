#include "edit/transform_undo.h"

#include "edit/resize.h"
#include "edit/transform.h"
#include "model/matrix.h"

namespace {

// Each takes its record off.

void reverse_move(undo_record &record)
{
    const point3_t back = {-record.vector.x, -record.vector.y, -record.vector.z};
    undo_on_saved_selection(record, [&] {
        translate_all_selected(&back);
        selected_calc_normals();
    });
    undo_drop_newest();
}

void reverse_scale(undo_record &record)
{
    const point3_t factors = record.vector;
    undo_on_saved_selection(record, [&] { scale_selection(factors.x, factors.y, factors.z); });
    undo_drop_newest();
}

void reverse_resize(undo_record &record)
{
    undo_on_saved_selection(record, [&] {
        resize_selection(&record.new_box[0], &record.new_box[1], &record.old_box[0],
                         &record.old_box[1]);
    });
    undo_drop_newest();
}

void reverse_rotation(undo_record &record)
{
    constexpr float pi = 3.1415927f;
    const float angle = -record.degrees * pi / 180.0f;
    undo_on_saved_selection(record, [&] {
        if (record.kind == UNDO_ROTATE_AXIS) {
            set_global_matrix_angle_axis(&record.vector, angle);
        } else { // the signs of rotate_selected
            set_global_matrix_rotate(record.view == VIEW_ZY ? angle : 0.0f,
                                     record.view == VIEW_XZ ? -angle : 0.0f,
                                     record.view == VIEW_XY ? -angle : 0.0f);
        }
        rotate_selected_with_global_matrix(record.has_centre ? &record.centre : nullptr);
        selected_calc_normals();
    });
    undo_drop_newest();
}

// clang-format off
const undo_kind kinds[] = {
    {UNDO_MOVE,        true, false, reverse_move},
    {UNDO_RESIZE,      true, false, reverse_resize},
    {UNDO_ROTATE,      true, false, reverse_rotation},
    {UNDO_SCALE,       true, false, reverse_scale},
    {UNDO_ROTATE_AXIS, true, false, reverse_rotation},
};
// clang-format on

} // namespace

std::span<const undo_kind> transform_undo_kinds() { return kinds; }
