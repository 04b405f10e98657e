/* Texture files that photographs and painting programs come in: PNG, JPEG and TGA. */

#include "images.h"

#include <stdio.h>
#include <stdlib.h>

unsigned char *read_file(const char *filename, size_t *size)
{
    FILE *file = fopen(filename, "rb");
    if (!file)
        return 0;
    unsigned char *bytes = 0;
    const long length = fseek(file, 0, SEEK_END) == 0 ? ftell(file) : -1;
    if (length >= 0 && (bytes = malloc((size_t)length + 1)) != 0) {
        rewind(file);
        *size = fread(bytes, 1, (size_t)length, file);
    }
    fclose(file);
    return bytes;
}

VESKImage *refuse(const char *filename, const char *reason)
{
    debugf("images: %s: %s\n", filename, reason);
    display_message("%s: %s", vesk_filename_get_file(filename), reason);
    return 0;
}

VESKImage *make_image(const char *filename, unsigned long width, unsigned long height, int depth,
                      size_t bytes, size_t most_ratio)
{
    const unsigned long most_side = 65535;
    const unsigned long most_pixels = 1ul << 27;
    if (width == 0 || height == 0 || width > most_side || height > most_side ||
        width * height > most_pixels)
        return refuse(filename, "the picture is too large");
    if (width * height / most_ratio > bytes)
        return refuse(filename, "the file is too short for the picture that it promises");
    VESKImage *image = new_veskimage(filename);
    unsigned char *data = myalloc((uint32_t)(width * height * (unsigned long)depth));
    if (!image || !data) {
        free_veskimage(image);
        myfree(data);
        return refuse(filename, "out of memory");
    }
    vesk_image_set_dim(image, (int)width, (int)height, depth);
    vesk_image_set_data(image, data);
    return image;
}

int VESKPluginInit(void)
{
    vesk_register_texture_loader(".tga", "Targa files", load_tga);
    vesk_register_texture_loader(".jpg .jpeg", "JPEG files", load_jpeg);
    vesk_register_texture_loader(".png", "PNG files", load_png);
    return 1;
}

void VESKPluginExit(void) {}

const char *VESKPluginInfo(void) { return "images 1.0: PNG, JPEG and TGA textures"; }

const char *VESKPluginAbout(void)
{
    return "Reads textures from PNG, JPEG and TGA files. Transparency is kept; 16-bit pictures "
           "become 8-bit ones.";
}
