#include "view/shown_elements.h"

#include "base/prefs.h"
#include "edit/document/selection_internal.h"

bool view_shows_edges(int view)
{
    if (view != VIEW_XYZ)
        return prefs.show_surfaces != 0;
    const int mode = select_mode();
    return prefs.show_surfaces_3d != 0 ||
           (prefs.show_mode_elements_3d != 0 && (mode == SELECT_SURFACE || mode == SELECT_EDGE));
}

bool view_shows_vertices(int view)
{
    if (view != VIEW_XYZ)
        return prefs.show_vertices != 0;
    return prefs.show_vertices_3d != 0 ||
           (prefs.show_mode_elements_3d != 0 && select_mode() == SELECT_VERTEX);
}
