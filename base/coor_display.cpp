#include "base/coor_display.h"

#include "base/messages.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <string>

namespace {

VESK_PRINTF(1, 2) std::string text_of(const char *format, ...)
{
    char buffer[256];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    return buffer;
}

// What rounds to zero has no sign.
double shown(double value) { return std::fabs(value) < 0.005 ? 0.0 : value; }

std::string point_text(const point3_t *p)
{
    return text_of("X%3.2f Y%3.2f Z%3.2f", shown(p->x), shown(p->y), shown(p->z));
}

std::string size_text(double w, double h, double d)
{
    return text_of("W %3.2f H %3.2f D %3.2f", shown(w), shown(h), shown(d));
}

std::string box_size_text(const point3_t *a, const point3_t *b)
{
    return size_text(std::fabs(static_cast<double>(a->x - b->x)),
                     std::fabs(static_cast<double>(a->y - b->y)),
                     std::fabs(static_cast<double>(a->z - b->z)));
}

void show(const std::string &coordinates, const std::string &size)
{
    display_coor_data(coordinates.c_str(), size.c_str());
}

} // namespace

void display_coor_data(const char *coordinates, const char *size)
{
    tcl_set_string("coors", coordinates);
    tcl_set_string("size", size);
}

void show_coors(const point3_t *point) { show(point_text(point), " "); }

void show_coors_and_point(const point3_t *point, const point3_t *vector)
{
    show(point_text(point) + text_of("V X %.2f  Y %.2f  Z %.2f", shown(vector->x), shown(vector->y),
                                     shown(vector->z)),
         " ");
}

void show_coors_and_bb(const point3_t *point, const point3_t *a, const point3_t *b)
{
    const double w = static_cast<double>(a->x - b->x);
    const double h = static_cast<double>(a->y - b->y);
    const double d = static_cast<double>(a->z - b->z);
    const bool no_size = w == 0 && h == 0 && d == 0;
    show(point_text(point), no_size ? point_text(b) : size_text(w, h, d));
}

void show_coors_and_dim(const point3_t *point, const point3_t *a, const point3_t *b)
{
    show(point_text(point), box_size_text(a, b));
}

void show_size(const point3_t *a, const point3_t *b) { show(" ", box_size_text(a, b)); }

void show_coors_and_len(const point3_t *point, const point3_t *p, const point3_t *q)
{
    const double length =
        std::hypot(static_cast<double>(p->x - q->x), static_cast<double>(p->y - q->y),
                   static_cast<double>(p->z - q->z));
    show(point_text(point), text_of("Distance: %.3f", length));
}

void show_angle(float degrees) { show(text_of("%.1f degrees", static_cast<double>(degrees)), ""); }
