#ifndef VESK_EDIT_DOCUMENT_SELECT_MADE_H
#define VESK_EDIT_DOCUMENT_SELECT_MADE_H

#include "model/object.h"

#include <vector>

// select_surfacelist for many surfaces that an operation made: without a list of them where surfaces
// are what is selected.
void select_made_surfaces(const std::vector<surface_t *> &surfaces);

#endif
