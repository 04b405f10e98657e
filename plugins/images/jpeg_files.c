/* JPEG through libjpeg: grey, colour and, turned into colour, the four inks of printing. */

#include "images.h"

#include <jpeglib.h>
#include <setjmp.h>
#include <stdio.h>
#include <stdlib.h>

enum { most_pixels_a_byte = 2048 }; /* blocks of 64 pixels that hold one value each */

typedef struct errors {
    struct jpeg_error_mgr base;
    jmp_buf out;
} errors_t;

static void leave(j_common_ptr info)
{
    char text[JMSG_LENGTH_MAX];
    info->err->format_message(info, text);
    debugf("images: jpeg: %s\n", text);
    longjmp(((errors_t *)info->err)->out, 1);
}

static void keep_quiet(j_common_ptr info) { (void)info; }

/* Four inks, stored inverted, to RGB, in place at the front of the row. */
static void inks_to_rgb(const unsigned char *inks, unsigned char *rgb, unsigned long width)
{
    for (unsigned long x = 0; x < width; ++x, inks += 4, rgb += 3)
        for (int i = 0; i < 3; ++i)
            rgb[i] = (unsigned char)(inks[i] * inks[3] / 255);
}

/* All that can leave by longjmp; its results stand in the caller's variables. Returns 1, 0 for a file
   that is no picture, or -1 after a message. */
static int decode(struct jpeg_decompress_struct *info, errors_t *errors, const char *filename,
                  const unsigned char *bytes, size_t size, VESKImage **image, unsigned char **row)
{
    if (setjmp(errors->out))
        return 0;
    jpeg_create_decompress(info);
    jpeg_mem_src(info, bytes, size);
    jpeg_read_header(info, TRUE);
    const int inks = info->jpeg_color_space == JCS_CMYK || info->jpeg_color_space == JCS_YCCK;
    const int grey = info->jpeg_color_space == JCS_GRAYSCALE;
    info->out_color_space = inks ? JCS_CMYK : grey ? JCS_GRAYSCALE : JCS_RGB;
    const int depth = grey ? 1 : 3;
    *image = make_image(filename, info->image_width, info->image_height, depth, size,
                        most_pixels_a_byte);
    if (!*image)
        return -1;
    jpeg_start_decompress(info);
    const unsigned long width = info->output_width;
    *row = malloc(width * 4);
    if (!*row)
        return 0;
    while (info->output_scanline < info->output_height) {
        unsigned char *to = (*image)->data + (info->output_height - 1 - info->output_scanline) *
                                                 width * (unsigned long)depth;
        JSAMPROW target = inks ? *row : to;
        jpeg_read_scanlines(info, &target, 1);
        if (inks)
            inks_to_rgb(*row, to, width);
    }
    jpeg_finish_decompress(info);
    return 1;
}

VESKImage *load_jpeg(const char *filename)
{
    struct jpeg_decompress_struct info = {0};
    errors_t errors;
    size_t size = 0;
    VESKImage *image = 0;
    unsigned char *row = 0;
    unsigned char *bytes = read_file(filename, &size);
    if (!bytes)
        return refuse(filename, "can't read the file");
    info.err = jpeg_std_error(&errors.base);
    errors.base.error_exit = leave;
    errors.base.output_message = keep_quiet;
    const int whole = decode(&info, &errors, filename, bytes, size, &image, &row);
    jpeg_destroy_decompress(&info);
    free(row);
    free(bytes);
    if (whole > 0)
        return image;
    free_veskimage(image);
    return whole < 0 ? 0 : refuse(filename, "no JPEG picture that can be read");
}
