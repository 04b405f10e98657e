// Commands of panels and dialogs: transforms and properties with an undo record.

#include "app/added_commands.h"
#include "app/command_result.h"
#include "app/command_row.h"
#include "app/prefs.h"
#include "edit/object_place.h"
#include "edit/object_properties.h"
#include "edit/panel_transform.h"
#include "model/identity.h"
#include "view/interaction.h"
#include "view/pick.h"
#include "view/views_internal.h"

#include <string>
#include <vector>

namespace {

// What lies under a place of a view: its identity, nothing while a drag runs.
void command_object_at(int view, int x, int y)
{
    if (view < 0 || view >= num_views || interaction_drag() != drag_kind::none) {
        return;
    }
    const std::vector<pick_hit_t> hits =
        pick_at(view, pick_kind::OBJECT, x, y, prefs.pick_pixel_range);
    if (!hits.empty()) {
        command_result_set(std::to_string(object_identity(hits.front().object)).c_str());
    }
}

} // namespace

void register_panel_commands()
{
    const vesk_command_t rows[] = {
        command_row("move_with_undo", move_with_undo, "<float x> <float y> <float z>",
                    "translate the selection, with an undo record"),
        command_row("rotate_with_undo", rotate_with_undo,
                    "<float rx-degs> <float ry-degs> <float rz-degs>",
                    "rotate the selection about its middle, with an undo record"),
        command_row("rotate_about_with_undo", rotate_about_with_undo,
                    "<float rx-degs> <float ry-degs> <float rz-degs> <float x> <float y> <float z>",
                    "rotate the selection about a point, with an undo record"),
        command_row("rotate_axis_angle_with_undo", rotate_axis_angle_with_undo,
                    "<float axis> <float angle>",
                    "rotate the selection about an axis, with an undo record"),
        command_row("mirror_with_undo", mirror_with_undo, "<int axis>",
                    "mirror the selection, with an undo record"),
        command_row("object_at", command_object_at, "<view> <int x> <int y>",
                    "returns the id of the object under a place of a view"),
        command_row("transform_begin", panel_transform_begin, "<string move, rotate or scale>",
                    "begin a transform that follows a number"),
        command_row("transform_about", panel_transform_about, "<float x> <float y> <float z>",
                    "the centre of the transform that rotates"),
        command_row("transform_to", panel_transform_to, "<float x> <float y> <float z>",
                    "how far the transform has come"),
        command_row("transform_end", panel_transform_end, nullptr,
                    "keep the transform, one undo record"),
        command_row("transform_cancel", panel_transform_cancel, nullptr, "take the transform back"),
    };
    command_add_words("objects_place", command_objects_place, 3, 3,
                      "<string object_ids> <int parent_object_id> <int before_object_id>",
                      "make objects children of a parent in front of another, with an undo record");
    command_add_words("objects_set", command_objects_set, 3, 3,
                      "<string object_ids> <string name, url, data, visible or locked> "
                      "<string value>",
                      "set a property of objects, with an undo record");
    for (const vesk_command_t &row : rows)
        command_add_own(row);
}
