/* TGA: colour maps, true colour and grey, plain or in runs, from any corner. */

#include "images.h"

#include <stdlib.h>
#include <string.h>

enum { header_size = 18, most_run = 128 };

typedef struct tga {
    const unsigned char *bytes;
    size_t size;
    int kind; /* 1 colour map, 2 true colour, 3 grey */
    int runs;
    unsigned map_first, map_count, map_bits;
    unsigned width, height, bits, alpha_bits;
    int from_top, from_right;
    size_t map, data;
    int depth; /* of the picture */
} tga_t;

static unsigned u16(const unsigned char *p) { return p[0] | (unsigned)p[1] << 8; }

static int bits_are_known(unsigned bits)
{
    return bits == 15 || bits == 16 || bits == 24 || bits == 32;
}

static int read_header(tga_t *t)
{
    const unsigned char *h = t->bytes;
    if (t->size < header_size || h[1] > 1)
        return 0;
    t->kind = h[2] & ~8;
    t->runs = (h[2] & 8) != 0;
    t->map_first = u16(h + 3);
    t->map_count = h[1] ? u16(h + 5) : 0;
    t->map_bits = h[7];
    t->width = u16(h + 12);
    t->height = u16(h + 14);
    t->bits = h[16];
    t->alpha_bits = h[17] & 15u;
    t->from_right = (h[17] & 0x10) != 0;
    t->from_top = (h[17] & 0x20) != 0;
    t->map = header_size + (size_t)h[0];
    t->data = t->map + t->map_count * ((t->map_bits + 7u) / 8);
    if (t->data > t->size)
        return 0;
    if (t->kind == 1) {
        t->depth = t->map_bits == 32 ? 4 : 3;
        return t->bits == 8 && t->map_count > 0 && bits_are_known(t->map_bits);
    }
    t->depth = t->kind == 3 ? (t->bits == 16 ? 2 : 1) : t->bits == 32 && t->alpha_bits > 0 ? 4 : 3;
    return (t->kind == 2 && bits_are_known(t->bits)) ||
           (t->kind == 3 && (t->bits == 8 || t->bits == 16));
}

/* A colour as the file stores it, `depth` bytes of it. */
static void put_colour(const unsigned char *from, unsigned bits, int depth, unsigned char *to)
{
    if (bits <= 16) {
        const unsigned word = u16(from);
        for (int i = 0; i < 3; ++i)
            to[i] = (unsigned char)(((word >> (10 - 5 * i) & 31u) * 255 + 15) / 31);
        return;
    }
    for (int i = 0; i < 3; ++i)
        to[i] = from[2 - i];
    if (depth == 4)
        to[3] = from[3];
}

static void put_pixel(const tga_t *t, const unsigned char *from, unsigned char *to)
{
    if (t->kind == 3) {
        memcpy(to, from, (size_t)t->depth);
    } else if (t->kind == 2) {
        put_colour(from, t->bits, t->depth, to);
    } else {
        const unsigned index = from[0] - t->map_first;
        if (from[0] >= t->map_first && index < t->map_count)
            put_colour(t->bytes + t->map + index * ((t->map_bits + 7u) / 8), t->map_bits, t->depth,
                       to);
        else
            memset(to, 0, (size_t)t->depth);
    }
}

/* Where the i-th pixel of the file lies in the picture. */
static unsigned char *place(const tga_t *t, unsigned char *data, size_t i)
{
    size_t x = i % t->width;
    size_t y = i / t->width;
    if (t->from_right)
        x = t->width - 1 - x;
    if (t->from_top)
        y = t->height - 1 - y;
    return data + (y * t->width + x) * (size_t)t->depth;
}

static int decode(const tga_t *t, unsigned char *data)
{
    const size_t count = (size_t)t->width * t->height;
    const size_t step = (t->bits + 7u) / 8;
    const unsigned char *p = t->bytes + t->data;
    const unsigned char *end = t->bytes + t->size;
    for (size_t i = 0; i < count;) {
        size_t n = count - i;
        int repeated = 0;
        if (t->runs) {
            if (p == end)
                return 0;
            repeated = (*p & 0x80) != 0;
            const size_t run = (*p++ & 0x7Fu) + 1;
            n = run < n ? run : n;
        }
        if ((size_t)(end - p) / step < (repeated ? 1 : n))
            return 0;
        for (size_t k = 0; k < n; ++k, p += repeated ? 0 : step)
            put_pixel(t, p, place(t, data, i + k));
        p += repeated ? step : 0;
        i += n;
    }
    return 1;
}

VESKImage *load_tga(const char *filename)
{
    tga_t t = {0};
    VESKImage *image = 0;
    unsigned char *bytes = read_file(filename, &t.size);
    if (!bytes)
        return refuse(filename, "can't read the file");
    t.bytes = bytes;
    const int known = read_header(&t);
    if (known)
        image = make_image(filename, t.width, t.height, t.depth,
                           (t.size - t.data) / ((t.bits + 7u) / 8), t.runs ? most_run : 1);
    const int whole = image && decode(&t, image->data);
    free(bytes);
    if (whole)
        return image;
    if (known && !image)
        return 0; /* after a message */
    free_veskimage(image);
    return refuse(filename, "no TGA picture that can be read");
}
