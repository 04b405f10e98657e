#ifndef VESK_VIEW_TOOL_TRANSFORM_H
#define VESK_VIEW_TOOL_TRANSFORM_H

#include "edit/extrude.h"
#include "view/tool.h"

// Selecting by clicks and rubber bands, and the left button's drags of the selection: moving,
// rotating, extruding, resizing by handles. X, Y, Z lock an axis or free it again, digits open the
// number field. The model is changed by one undo record at the release; a cancelled drag leaves the
// very bits as they were.
extern const tool_t transform_tool;

// A load has selected what came: until that is clicked or changed, drags over it are the view's (a
// rubber band in the flat views); its handles work.
void note_loaded_selection();

// How the tool "extrude" closes what it makes; at start automatic.
void set_extrusion_sides(extrude_sides sides);

#endif
