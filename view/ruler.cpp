#include "view/ruler.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "base/numbers.h"
#include "base/redraw.h"
#include "edit/measure.h"

#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

// As the fields of the panels show them.
std::string shown(double value)
{
    char text[32];
    snprintf(text, sizeof text, "%.3f", std::fabs(value) < 0.0005 ? 0.0 : value);
    return text;
}

} // namespace

ruler_t &ruler()
{
    static ruler_t laid;
    return laid;
}

std::vector<std::string> ruler_texts(const ruler_t &of)
{
    const std::vector<point3_t> &p = of.points;
    if (p.size() == 3)
        return {shown(corner_degrees(to_vec3d(p[1]), to_vec3d(p[0]), to_vec3d(p[2]))) + " degrees"};
    if (p.size() != 2)
        return {};
    const double x = double{p[1].x} - p[0].x, y = double{p[1].y} - p[0].y,
                 z = double{p[1].z} - p[0].z;
    return {shown(std::sqrt(x * x + y * y + z * z)),
            "dX " + shown(x) + "  dY " + shown(y) + "  dZ " + shown(z)};
}

void command_measure_points(const char *coordinates)
{
    std::vector<float> numbers;
    const char *end = coordinates + std::strlen(coordinates);
    float number = 0;
    while ((coordinates = scan_float(coordinates, end, &number)) != nullptr)
        numbers.push_back(number);
    if (numbers.size() != 0 && numbers.size() != 6 && numbers.size() != 9) {
        display_message("measure - two or three points are needed");
        return;
    }
    ruler() = {};
    for (std::size_t i = 0; i < numbers.size(); i += 3)
        ruler().points.push_back({numbers[i], numbers[i + 1], numbers[i + 2]});
    redraw_all();
    if (numbers.empty())
        return;
    const std::string text = points_measures(ruler().points);
    command_result_set(text.c_str());
    display_message("%s", text.c_str());
}
