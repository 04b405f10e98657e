/* A plug-in in plain C against the one public header: the tests load it and call what it adds. */

#include "plugin/vesk.h"

static object_t *import_triangle(const char *filename)
{
    object_t *object = new_object(OBJECT_POLY);
    object_add_new_vertex(object, 0, 0, 0);
    object_add_new_vertex(object, 1, 0, 0);
    object_add_new_vertex(object, 0, 1, 0);
    vesk_object_add_triangle(object, 0, 1, 2);
    object_set_name(object, vesk_filename_get_file(filename));
    return object;
}

/* Changes the selected objects behind the program's back: hangs a node on by hand, frees a vertex
   without telling anybody, leaves the counts wrong. */
static void sample_vandalise(void)
{
    listitem *objects;
    vesk_get_current_selection(0, 0, &objects);
    for (; objects; objects = objects->next) {
        object_t *object = (object_t *)objects->data;
        object->num_surfaces += 7;
        ((vertex *)object->vertices->data)->position.x += 100;
    }
    command_result_append_string("done");
}

__attribute__((no_sanitize("undefined"))) static void sample_fault(void)
{
    volatile int *volatile nowhere = 0;
    *nowhere = 1;
}

int VESKPluginInit(void)
{
    vesk_add_command("sample_vandalise", sample_vandalise);
    vesk_add_command("sample_fault", sample_fault);
    vesk_register_file_importer(".sample", "Sample files", import_triangle, 0);
    return 1;
}

void VESKPluginExit(void) {}

const char *VESKPluginInfo(void) { return "sample plug-in, version 1"; }
const char *VESKPluginAbout(void) { return "Adds a command and an importer for the tests."; }
