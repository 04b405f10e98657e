#ifndef VESK_FILEIO_EXPORT_DXF_H
#define VESK_FILEIO_EXPORT_DXF_H

#include "fileio/export_scene.h"

// Drawings as text, of the entities that every reader knows: 3DFACE, LINE, POLYLINE, POINT. An
// object's layer is the outermost group around it, or itself. Y upwards becomes Z upwards.
extern const export_format dxf_format;

#endif
