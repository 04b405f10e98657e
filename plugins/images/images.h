/* The functions that the readers of this plug-in share. */
#ifndef IMAGES_IMAGES_H
#define IMAGES_IMAGES_H

#include <plugin/vesk.h>
#include <stddef.h>

/* The bytes of a file, from malloc; null when it cannot be read. */
unsigned char *read_file(const char *filename, size_t *size);

/* An image record with room for its pixels, when the size can be held and the file's `bytes` can
   stand for it at no more than `most_ratio` pixels a byte; else null after a message. */
VESKImage *make_image(const char *filename, unsigned long width, unsigned long height, int depth,
                      size_t bytes, size_t most_ratio);

/* The message why a file gives no picture; returns null. */
VESKImage *refuse(const char *filename, const char *reason);

VESKImage *load_png(const char *filename);
VESKImage *load_jpeg(const char *filename);
VESKImage *load_tga(const char *filename);

#endif
