#ifndef VESK_DRAW_THUMBNAIL_GL_H
#define VESK_DRAW_THUMBNAIL_GL_H

// Adds the command "write_thumbnail", which draws the whole model without a display. Only for
// sessions without a window: what views keep on the graphics device belongs to their contexts.
void register_thumbnail_command();

#endif
