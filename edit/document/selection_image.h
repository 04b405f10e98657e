#ifndef VESK_EDIT_DOCUMENT_SELECTION_IMAGE_H
#define VESK_EDIT_DOCUMENT_SELECTION_IMAGE_H

// The selection by identities and places, and back.

#include "edit/document/model_state_internal.h"

#include <unordered_map>

std::shared_ptr<const selection_image>
selection_image_take(const std::vector<tracked_model::tracked_object> &objects);
using objects_by_identity = std::unordered_map<int, object_t *>;
void selection_image_restore(const selection_image &image, const objects_by_identity &objects);

#endif
