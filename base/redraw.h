#ifndef VESK_BASE_REDRAW_H
#define VESK_BASE_REDRAW_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Requests: the windows are drawn once, when the event loop is idle. */
VESK_API void redraw(int view);
VESK_API void redraw_3d(void);
VESK_API void redraw_orth(void);
VESK_API void redraw_all(void);
VESK_API void request_redisplay(int view); /* nothing for VIEW_NONE */

/* Draws the view now. */
VESK_API void redraw_view(int view);

VESK_END_DECLS

#endif
