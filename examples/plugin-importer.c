/* An importer: ".heights" files hold the number of columns and rows, then that many heights, row by
   row from the back. */

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

int VESKPluginInit(void)
{
    return vesk_register_file_importer(".heights", "Height grids", import_heights, "heights 1.0") !=
           0;
}

void VESKPluginExit(void) {}

const char *VESKPluginInfo(void) { return "heights 1.0"; }
const char *VESKPluginAbout(void) { return "Reads grids of heights as smooth surfaces."; }
