#ifndef VESK_VIEW_FIT_H
#define VESK_VIEW_FIT_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Moves of the views that look at the selection's box; without a valid one they do nothing. */

/* Pans orthographic view `view` to the middle of the box, without a redraw. */
VESK_API void goto_selected(int view);

/* All views, the 3D view too. Redraws all. */
VESK_API void goto_selected_all(void);

/* Scales so that the selection fills the orthographic view `view` (with independent_scaling; else
   all of them), or all views; the latter also centres them. The 3D view turns about its middle and
   frames it. */
VESK_API void fit_selected(int view);
VESK_API void fit_selected_all(void);

/* The whole model; which view decides depends on the layout. In spin mode the 3D view frames it,
   too, at the zoom and angles that it has. */
VESK_API void fit_all(void);

/* Command "set_view_3d_selection": the middle of the box becomes what the model turns about, and in
   walk mode the place that the viewer steps back from until the box is in sight. */
VESK_API void set_3d_view_selection(void);

VESK_END_DECLS

#endif
