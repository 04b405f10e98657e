#include "edit/resize.h"

#include "edit/document/selection.h"
#include "edit/transform.h"
#include "model/vector.h"

namespace {

float factor(float old_min, float old_max, float new_min, float new_max)
{
    const float extent = old_max - old_min;
    return extent == 0 ? 1.0f : (new_max - new_min) / extent;
}

} // namespace

void resize_selection(const point3_t *old_min, const point3_t *old_max, const point3_t *new_min,
                      const point3_t *new_max)
{
    const point3_t to_origin = {-old_min->x, -old_min->y, -old_min->z};
    const point3_t factors = {factor(old_min->x, old_max->x, new_min->x, new_max->x),
                              factor(old_min->y, old_max->y, new_min->y, new_max->y),
                              factor(old_min->z, old_max->z, new_min->z, new_max->z)};
    const point3_t to_place = *new_min;
    translate_multiply_selected(&to_origin, &factors, &to_place);
    selected_calc_normals();
    find_bounding_box();
}
