#include "edit/document/select_made.h"

#include "edit/document/selection_internal.h"
#include "model/each.h"
#include "model/record_maker.h"

void select_made_surfaces(const std::vector<surface_t *> &surfaces)
{
    if (select_mode() != SELECT_SURFACE) {
        select_surfacelist(owned_list(make_nodes(surfaces).first).get());
        return;
    }
    selection_add_surfaces(surfaces);
    find_bounding_box();
    selection_changed("select_surfacelist");
}
