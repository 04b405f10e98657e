#ifndef VESK_FILEIO_DXF_TEXT_H
#define VESK_FILEIO_DXF_TEXT_H

// The texts of a DXF drawing, made of the glyphs of the font.

#include "fileio/dxf_scan.h"
#include "model/object.h"

// What a TEXT, ATTRIB or MTEXT says, without its codes; lines are parted by line feeds.
std::string dxf_plain_text(const dxf_record &record);

// Height of the font's capitals; 1 where there is no font.
float dxf_capital_height();

// A text as an object in its own plane: its place is the origin, letters are as high as it says, not
// yet turned. Null where there is no font or no letter.
object_t *dxf_make_text(const dxf_record &record, float capital_height);

#endif
