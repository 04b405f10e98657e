/* A plug-in with an importer, a command and a menu entry.

   The importer reads ".heights" files: the number of columns and rows, then that many heights, row
   by row from the back. The command "stand_on y" sets the selected objects on a height. */

#include <plugin/vesk.h>
#include <stdio.h>
#include <stdlib.h>

/* Reads a claimed number of heights; the file decides how many there are. */
static float *read_heights(FILE *file, int columns, int rows)
{
    const int count = columns * rows;
    float *xyz = malloc((size_t)count * 3 * sizeof *xyz);
    for (int i = 0; xyz && i < count; ++i) {
        xyz[3 * i] = (float)(i % columns) - (float)(columns - 1) / 2;
        xyz[3 * i + 2] = (float)(i / columns) - (float)(rows - 1) / 2;
        if (fscanf(file, "%f", &xyz[3 * i + 1]) != 1) {
            free(xyz);
            return 0;
        }
    }
    return xyz;
}

/* One quad for each square of the grid, its corners counter-clockwise seen from above. */
static void add_quads(object_t *object, int columns, int rows)
{
    const int count = (columns - 1) * (rows - 1);
    int *offsets = malloc(((size_t)count + 1) * sizeof *offsets);
    int *corners = malloc((size_t)count * 4 * sizeof *corners);
    if (offsets && corners) {
        for (int i = 0; i < count; ++i) {
            const int first = i / (columns - 1) * columns + i % (columns - 1);
            const int quad[4] = {first, first + columns, first + columns + 1, first + 1};
            offsets[i] = 4 * i;
            for (int k = 0; k < 4; ++k)
                corners[4 * i + k] = quad[k];
        }
        offsets[count] = 4 * count;
        vesk_object_add_surfaces_from_arrays(object, count, offsets, corners, 0, 1);
        object_set_surface_shading(object, 1);
    }
    free(offsets);
    free(corners);
}

static object_t *import_heights(const char *filename)
{
    FILE *file = fopen(filename, "r");
    if (!file) {
        windows_message_dialog("can't open file %s for reading", filename);
        return 0;
    }
    int columns = 0, rows = 0;
    float *xyz = 0;
    if (fscanf(file, "%d %d", &columns, &rows) == 2 && columns > 1 && rows > 1 && columns <= 4096 &&
        rows <= 4096)
        xyz = read_heights(file, columns, rows);
    fclose(file);
    if (!xyz) {
        windows_message_dialog("'%s' is no file of heights", filename);
        return 0;
    }
    object_t *object = new_object(OBJECT_POLY);
    object_set_name(object, vesk_filename_get_file(filename));
    vesk_object_add_vertices_from_float_array(object, xyz, columns * rows);
    add_quads(object, columns, rows);
    object_calc_normals_force(object);
    free(xyz);
    return object;
}

/* Moves each selected object, with undo, and answers with how many there were. */
static void stand_on(float y)
{
    listitem *objects = 0;
    int count = 0;
    vesk_get_current_selection(0, 0, &objects);
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
    vesk_register_file_importer(".heights", "Height grids", import_heights, "heights 1.0");
    vesk_add_command_full("stand_on", (vesk_command_func_t)stand_on, 1, "f", "<float y>",
                          "set the selected objects on a height");
    vesk_add_tools_menu_item("Stand on the ground", "vesk stand_on 0",
                             "Sets the selected objects on y = 0.");
    return 1;
}

void VESKPluginExit(void) {}

const char *VESKPluginInfo(void) { return "heights 1.0"; }
const char *VESKPluginAbout(void) { return "Reads height grids and sets objects on the ground."; }
