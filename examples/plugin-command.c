/* A command: "vesk stand_on y" sets the selected objects on a height. */

#include <plugin/vesk.h>

/* Moves each selected object, with undo, and answers with how many there were. */
static void stand_on(float y)
{
    listitem *objects = 0;
    int count = 0;
    vesk_get_current_selection(0, 0, &objects);
    if (!objects) {
        display_message("stand on - nothing selected");
        return;
    }
    new_undo(UNDO_POSITIONS, "stand on");
    set_undo_vertex_positions(0, objects);
    for (; objects; objects = objects->next, ++count) {
        object_t *object = (object_t *)objects->data;
        const point3_t lowest = find_object_min(object);
        const point3_t offset = {0, y - lowest.y, 0};
        translate_object(object, &offset);
    }
    find_bounding_box();
    redraw_all();
    display_status();
    display_message("%d objects stand on %g", count, (double)y);
    command_result_append_int(count);
}

int VESKPluginInit(void)
{
    vesk_add_command_full("stand_on", (vesk_command_func_t)stand_on, 1, "f", "<float y>",
                          "set the selected objects on a height");
    return 1;
}

void VESKPluginExit(void) {}

const char *VESKPluginInfo(void) { return "stand_on 1.0"; }
const char *VESKPluginAbout(void) { return "Sets objects on a height."; }
