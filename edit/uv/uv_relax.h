#ifndef VESK_EDIT_UV_UV_RELAX_H
#define VESK_EDIT_UV_UV_RELAX_H

#include "edit/uv/uv_islands.h"

// Lets an island take the shapes that its surfaces have in the model, as far as they fit together:
// "as rigid as possible" in alternating steps (Liu, Zhang, Xu, Gotsman and Gortler 2008). Each step
// turns every triangle to where its picture lies, then places all points by sparse least squares, those of
// large islands nearly (edit/uv/multigrid.h); the sum of squares never grows. The island keeps its middle, its direction and its area.
//   free      corners that may move; the others stay
//   surfaces  those of the island
// Returns false, and leaves `at` alone, when the island has no area in the picture or in the model.
bool uv_relax(const uv_mesh &mesh, const uv_islands &islands, const std::vector<char> &free,
              const std::vector<int> &surfaces, int steps, double aspect, std::vector<flat_uv> &at);

// For tests: with more unknowns an island is not factorised; returns what it was.
int uv_relax_set_most_factorised(int most);

// The chosen islands; in corner mode only the chosen corners move.
void command_uv_relax(int steps);

#endif
