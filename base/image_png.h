#ifndef VESK_BASE_IMAGE_PNG_H
#define VESK_BASE_IMAGE_PNG_H

#include <string>

// The bytes of a PNG file of rows of RGB from the top; "" on failure.
std::string png_of_rgb(int width, int height, const unsigned char *rgb);

#endif
