#include "edit/snap.h"

#include "app/prefs.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// The multiple of `spacing`; 0 where there is none to take.
double snap_coordinate(float &coordinate, float spacing)
{
    if (!(spacing > 0) || !std::isfinite(coordinate))
        return 0;
    const double g = spacing;
    const double half = coordinate >= 0 ? g / 2 : -g / 2;
    const double multiple = std::trunc((coordinate + half) / g);
    coordinate = static_cast<float>(multiple * g);
    return multiple;
}

} // namespace

int snap_to_grid_float(point3_t *point, float gx, float gy, float gz)
{
    snap_coordinate(point->x, gx);
    snap_coordinate(point->y, gy);
    const double multiple = snap_coordinate(point->z, gz);
    return static_cast<int>(std::clamp<double>(multiple, std::numeric_limits<int>::min(),
                                               std::numeric_limits<int>::max()));
}

void snap_to_grid(point3_t *point)
{
    const auto g = static_cast<float>(prefs.grid);
    if (prefs.gridsnap != 0)
        snap_to_grid_float(point, g, g, g);
}
