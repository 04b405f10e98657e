#ifndef VESK_MODEL_TEXTURES_TEXTURES_H
#define VESK_MODEL_TEXTURES_TEXTURES_H

/* The one table of textures (an object holds an index into it) and the loaders by file suffix.
   Entries are never removed. */

#include "base/types.h"
#include "model/object.h"

VESK_BEGIN_DECLS

typedef struct VESKImage {
    uint16_t width, height; /* pixels */
    uint16_t depth;         /* bytes per pixel, 1 to 4 */
    unsigned char *data;    /* owned, from myalloc; rows from bottom to top */
    uintptr_t draw_word;    /* of the drawing code (the GL texture), 0 when made */
    char *name;             /* full path, owned */
    uintptr_t draw_word2;   /* of the drawing code (whether anything shines through) */
    char *origname;         /* as the caller gave it, owned */
} VESKImage;

typedef VESKImage *(*texture_load_t)(const char *filename);

typedef struct texture_loader {
    char *suffixes; /* ".rgb .rgba" */
    char *description;
    texture_load_t load;
    int built_in;
} texture_loader_t;

/* ---- loaders ---- */

/* Registers a loader in front of the others. Returns the record, or null when out of memory. */
VESK_API texture_loader_t *
vesk_register_texture_loader(const char *suffixes, const char *description, texture_load_t load);
VESK_API void vesk_register_builtin_texture_loaders(void);
/* The loader whose suffixes equal `suffix` (".rgb"), else contain it; or null. */
VESK_API texture_loader_t *vesk_get_texture_loader_by_suffix(const char *suffix);

/* An image record for loaders; `data` passes into the record's hands. */
VESK_API VESKImage *new_veskimage(const char *name);
VESK_API void vesk_image_set_dim(VESKImage *image, int width, int height, int depth);
VESK_API void vesk_image_set_data(VESKImage *image, unsigned char *data);
VESK_API void free_veskimage(VESKImage *image);

/* Loads one image. Failures are reported in a box or on the console; the result is then null. */
VESK_API VESKImage *texture_read(const char *filename, const char *origname);

/* ---- table ---- */

/* Index of the file's texture, loaded when it is not in the table yet; -1 on failure. */
VESK_API int add_new_texture_opt(const char *filename, const char *origname);
/* The same, but a known file is loaded again into its entry. Deliberate: it is then loaded once
   more and appended as a further entry, whose index is returned. */
VESK_API int add_new_texture_reload(const char *filename, const char *origname);
/* Index of the entry of exactly that file name, or -1. */
VESK_API int texture_find_by_name(const char *filename);
/* Entry, its file name, its name as given; null for a bad index (reported on the console). */
VESK_API VESKImage *texture_id_to_image(int id);
VESK_API const char *texture_id_to_name(int id);
VESK_API const char *texture_id_to_origname(int id);
VESK_API int vesk_get_num_textures(void);
/* Hands an image to the drawing code: a texture with its smaller copies is made of it, in whatever
   size the device takes. All windows share it. Returns 1, or 0 without a window or without pixels.
   */
VESK_API int texture_build(VESKImage *image);
/* The same for an image, or for the whole table (again). */
VESK_API void texture_build_for_all_windows(VESKImage *image);
VESK_API void texture_rebuild_all(void);

/* ---- of objects; no undo, no redraw ---- */

/* Finds, loads and sets a texture. A name that leads to none is kept with the object, so that it is
   saved again. Returns 1 when a texture was set. */
VESK_API int search_and_set_texture(object_t *object, const char *model_filename,
                                    const char *texture_name);
/* Loads a file and sets it; returns 1, or 0 (reported on the console). */
VESK_API int object_set_init_texture(object_t *object, const char *filename, const char *origname);
VESK_API void object_texture_set(object_t *object, int id);
VESK_API void object_texture_clear(object_t *object);
/* The name of a texture that was not found when the object was loaded, or null. */
VESK_API const char *object_missing_texture(const object_t *object);
/* The name of an object's texture for a file of another format, which may go elsewhere together
   with it: relative to the file's folder, by way of ".." when it lies beside or above that, and in
   full only when the two share no folder. One that was not found keeps its name. "" without a
   texture. In one buffer that each call overwrites. */
VESK_API const char *object_texture_beside(const object_t *object, const char *filename);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// The property that keeps the name of a texture that was not found.
constexpr const char *missing_texture_property = "missing_texture";
// While one lives (a load), at most one message box about textures is shown; others go to the
// console.
class texture_load_scope {
public:
    texture_load_scope();
    ~texture_load_scope();
    texture_load_scope(const texture_load_scope &) = delete;
    texture_load_scope &operator=(const texture_load_scope &) = delete;

private:
    bool within_another_;
};
// Gives an object the texture of another: picture, repeats and offsets, or the name of one that was
// not found.
void object_copy_texture(object_t *to, const object_t *from);
// The picture on an object, or null.
VESKImage *object_picture(const object_t *object);
// Whether any pixel is not opaque; found once for an image.
bool image_has_alpha(VESKImage *image);
// Of texture_loader_t, the newest first.
const listitem *texture_loaders();
void textures_reset_for_test();
#endif

#endif
