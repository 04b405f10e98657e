/* PNG through libpng: every colour type, palettes and interlacing; 16 bits are narrowed to 8. */

#include "images.h"

#include <png.h>
#include <setjmp.h>
#include <stdlib.h>
#include <string.h>

enum { most_pixels_a_byte = 8 * 1100 }; /* of one bit each, at the best that the packing can do */

typedef struct source {
    const unsigned char *bytes;
    size_t size, place;
} source_t;

static void take_bytes(png_structp png, png_bytep out, size_t count)
{
    source_t *source = png_get_io_ptr(png);
    if (source->size - source->place < count)
        png_error(png, "the file ends too early");
    memcpy(out, source->bytes + source->place, count);
    source->place += count;
}

static void ignore_warning(png_structp png, png_const_charp text)
{
    (void)png;
    (void)text;
}

static void note_error(png_structp png, png_const_charp text)
{
    debugf("images: png: %s\n", text);
    png_longjmp(png, 1);
}

/* To 8 bits a channel: grey, grey and alpha, RGB or RGBA. */
static void set_transformations(png_structp png, png_infop info)
{
    png_set_expand(png);
    png_set_scale_16(png);
    if (png_get_valid(png, info, PNG_INFO_tRNS))
        png_set_tRNS_to_alpha(png);
}

/* All that can leave by longjmp; its results stand in the caller's variables. Returns 1, 0 for a file
   that is no picture, or -1 after a message. */
static int decode(png_structp png, png_infop info, const char *filename, source_t *source,
                  VESKImage **image, png_bytep **rows)
{
    if (setjmp(png_jmpbuf(png)))
        return 0;
    png_set_read_fn(png, source, take_bytes);
    png_read_info(png, info);
    const unsigned long width = png_get_image_width(png, info);
    const unsigned long height = png_get_image_height(png, info);
    set_transformations(png, info);
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
    const int depth = png_get_channels(png, info);
    if (png_get_rowbytes(png, info) != width * (unsigned long)depth)
        return 0;
    *image = make_image(filename, width, height, depth, source->size, most_pixels_a_byte);
    if (!*image)
        return -1;
    *rows = malloc(height * sizeof **rows);
    if (!*rows)
        return 0;
    for (unsigned long y = 0; y < height; ++y)
        (*rows)[y] = (*image)->data + (height - 1 - y) * width * (unsigned long)depth;
    png_read_image(png, *rows);
    return 1;
}

VESKImage *load_png(const char *filename)
{
    source_t source = {0, 0, 0};
    VESKImage *image = 0;
    png_bytep *rows = 0;
    unsigned char *bytes = read_file(filename, &source.size);
    if (!bytes)
        return refuse(filename, "can't read the file");
    source.bytes = bytes;
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, 0, note_error, ignore_warning);
    png_infop info = png ? png_create_info_struct(png) : 0;
    const int whole = info && decode(png, info, filename, &source, &image, &rows);
    png_destroy_read_struct(&png, &info, 0);
    free(rows);
    free(bytes);
    if (whole > 0)
        return image;
    free_veskimage(image);
    return whole < 0 ? 0 : refuse(filename, "no PNG picture that can be read");
}
