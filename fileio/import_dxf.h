#ifndef VESK_FILEIO_IMPORT_DXF_H
#define VESK_FILEIO_IMPORT_DXF_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* DXF drawings as text: a group for each layer that is used, in it an object of the layer's lines,
   polygons and points, one for each block that was inserted, and texts made of the font's glyphs.
   The drawing's Z axis becomes Y, upwards. Colours are those of entities or of their layers; layers
   that are off are hidden. Kinds of entities that have no counterpart are counted in the report. */
VESK_API object_t *vesk_import_dxf(const char *filename);

VESK_END_DECLS

#endif
