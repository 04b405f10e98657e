#include "fileio/import_assimp.h"

#include "base/prefs.h"
#include "fileio/foreign_scene.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/normals.h"

namespace {

void turn(point3_t &p) { p = {p.x, -p.z, p.y}; }

// Each row is where an axis of the object points to.
void turn_rows(float *matrix)
{
    for (int row = 0; row < 9; row += 3) {
        const float y = matrix[row + 1];
        matrix[row + 1] = -matrix[row + 2];
        matrix[row + 2] = y;
    }
}

// From Y upwards back to the axes of the file.
void turn_to_z_up(object_t *top)
{
    for_each_object(top, [](object_t *object) {
        for (vertex *point : each<vertex>(object->vertices))
            turn(point->position);
        turn(object->centre);
        turn_rows(object->rotation);
        object_mark(object, CHANGED_POSITIONS | CHANGED_NORMALS);
    });
    object_calc_normals_force(top);
}

} // namespace

object_t *vesk_import_3ds(const char *filename)
{
    object_t *object = vesk_assimp_import(filename, "3ds");
    if (object != nullptr && prefs.swap_3ds_yz == 0)
        turn_to_z_up(object);
    return object;
}

object_t *vesk_import_md2(const char *filename) { return vesk_assimp_import(filename, "md2"); }
