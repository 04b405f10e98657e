// Pictures as the files that model files may hold.
#ifndef INTERCHANGE_PICTURE_FILE_H
#define INTERCHANGE_PICTURE_FILE_H

#include <plugin/vesk.h>
#include <string>

struct picture_file {
    std::string bytes; // "" when there is no picture
    bool jpeg = false; // else PNG
};

// The file of a texture: as it is when it is PNG or JPEG, else a PNG of its pixels.
picture_file picture_file_of(int texture);

// The same with the bytes of its own file in whatever format; "" when that cannot be read.
std::string picture_bytes_of(int texture);

#endif
