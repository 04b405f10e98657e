/* Works on the records directly and goes on within the same command, as plug-ins may: what the program
   knows of the model is out of date each time. */

#include "plugin/vesk.h"

static object_t *chosen(void)
{
    listitem *objects;
    vesk_get_current_selection(0, 0, &objects);
    return objects ? (object_t *)objects->data : 0;
}

static void write(object_t *object, const char *folder, const char *name)
{
    write_vesk_object(vesk_filename_concat_path_file(folder, name), object);
}

/* Writes the selected object after each of some changes. */
static void direct_writes(const char *folder)
{
    object_t *object = chosen();
    vertex *corner = (vertex *)object->vertices->data;
    surface_t *surface = (surface_t *)object->surfaces->data;
    write(object, folder, "0.vesk");
    vertex_set_point(corner, 7, 8, 9);
    write(object, folder, "1.vesk");
    surface_set_col(surface, 3);
    vesk_surface_set_flags(surface, 0x11);
    write(object, folder, "2.vesk");
    surface_add_vertex(surface, corner, 0.5f, 0.5f);
    write(object, folder, "3.vesk");
    set_global_matrix_rotate(1, 0, 0);
    rotate_pointlist_3d(object->vertices);
    write(object, folder, "4.vesk");
}

/* x of the first vertex in the mesh arrays, before and after it was moved. */
static void direct_arrays(void)
{
    object_t *object = chosen();
    const float before = vesk_object_get_mesh_arrays(object).positions[0].x;
    ((vertex *)object->vertices->data)->position.x = 21;
    command_result_appendf("%g %g", (double)before,
                           (double)vesk_object_get_mesh_arrays(object).positions[0].x);
}

/* Two undo records with a change behind each. */
static void direct_undos(void)
{
    vertex *corner = (vertex *)chosen()->vertices->data;
    new_undo(UNDO_WORLD, "first");
    set_undo_all();
    corner->position.x = 10;
    new_undo(UNDO_WORLD, "second");
    set_undo_all();
    corner->position.x = 20;
}

/* Moves a corner and lets the program subdivide. */
static void direct_loop(void)
{
    const char *const words[] = {"surface_loop_subdivision", "0.5"};
    object_t *object = chosen();
    vesk_object_get_mesh_arrays(object);
    vertex_set_point((vertex *)object->vertices->data, 100, 0, 0);
    do_command(2, words);
    vertex_set_point((vertex *)object->vertices->data, 200, 0, 0);
    vesk_object_get_mesh_arrays(object);
}

static object_t *new_triangle(void)
{
    object_t *object = new_object(OBJECT_POLY);
    object_add_new_vertex(object, 0, 0, 0);
    object_add_new_vertex(object, 1, 0, 0);
    object_add_new_vertex(object, 0, 1, 0);
    vesk_object_add_triangle(object, 0, 1, 2);
    return object;
}

static object_t *import_world(const char *filename)
{
    (void)filename;
    object_add_child(vesk_get_world(), new_triangle());
    return vesk_get_world();
}
static object_t *import_linked(const char *filename)
{
    object_t *object = new_triangle();
    (void)filename;
    object_add_child(vesk_get_world(), object);
    return object;
}
static object_t *import_child(const char *filename)
{
    object_t *group = new_object(OBJECT_GROUP);
    object_t *object = new_triangle();
    (void)filename;
    object_add_child(group, object);
    return object;
}
static object_t *import_freed(const char *filename)
{
    object_t *object = new_triangle();
    (void)filename;
    object_free(object);
    return object;
}

static void my_measure(void) { command_result_set("mine"); }
static void my_create(int count, const char *const *words)
{
    command_result_appendf("%d words, %s", count, words[0]);
}
static vesk_command_func_t original;
static void direct_replace(void)
{
    original = find_command("create")->func;
    command_result_append_int(
        vesk_replace_command_function("create", (vesk_command_func_t)my_create));
}
static void direct_restore(void) { vesk_replace_command_function("create", original); }

static void direct_callback(const char *tag, void *user_data)
{
    (void)tag;
    (void)user_data;
    object_t *object = chosen();
    if (object)
        ((vertex *)object->vertices->data)->position.z += 1;
}
static void direct_listen(void) { vesk_add_selection_changed_callback(direct_callback, 0); }

int VESKPluginInit(void)
{
    vesk_add_command_full("direct_writes", (vesk_command_func_t)direct_writes, 1, "s", 0, 0);
    vesk_add_command("direct_arrays", direct_arrays);
    vesk_add_command("direct_undos", direct_undos);
    vesk_add_command("direct_loop", direct_loop);
    vesk_add_command("direct_replace", direct_replace);
    vesk_add_command("direct_restore", direct_restore);
    vesk_add_command("direct_listen", direct_listen);
    vesk_add_command("measure", my_measure);
    vesk_register_file_importer(".world", "The world itself", import_world, 0);
    vesk_register_file_importer(".linked", "Linked already", import_linked, 0);
    vesk_register_file_importer(".child", "A part of a tree", import_child, 0);
    vesk_register_file_importer(".freed", "Freed already", import_freed, 0);
    return 1;
}

void VESKPluginExit(void) {}
