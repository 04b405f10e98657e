#ifndef VESK_TESTS_FILEIO_FOREIGN_FILES_H
#define VESK_TESTS_FILEIO_FOREIGN_FILES_H

// Small files of other formats, byte by byte as their descriptions say: two triangles of the square
// (0,0,0) (2,0,0) (2,1,0) (0,1,0), or what the format is about.

#include <string>

std::string make_3ds();           // Z upwards; material "paint" (orange) with the picture wood.bmp
std::string make_3ds_with_keys(); // three triangles in a tree, see the test
std::string make_dxf();           // a 3DFACE of four corners and a LINE
std::string make_lwo();           // one polygon of four corners, surface "paint"
std::string make_lwob();          // the same in the older format, with the picture wood.bmp
std::string make_lws(
    const std::string &
        object_file); // that object at x = 10 below a null object that turns it by 90 degrees and doubles it
std::string make_md2();   // two triangles, one frame
std::string make_bsp();   // a polygon of shader "walls/brick", a patch of "curves/arch"
std::string make_vrml1(); // see the test
std::string make_vrml2(); // see the test

#endif
