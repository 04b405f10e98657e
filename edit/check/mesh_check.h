#ifndef VESK_EDIT_CHECK_MESH_CHECK_H
#define VESK_EDIT_CHECK_MESH_CHECK_H

// The model check on one mesh; on any thread.

#include "edit/check/model_check.h"
#include "model/flat_mesh.h"

#include <functional>

// What object_find_problems tells of an object of that mesh, but for what its record tells (the texture);
// the object of each problem is null. `go_on` is asked now and then; once it is false the search ends,
// and its result is worth nothing.
model_findings mesh_find_problems(const flat_ptr &mesh, int most_of_each,
                                  const std::function<bool()> &go_on);

#endif
