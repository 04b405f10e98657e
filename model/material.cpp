#include "model/material.h"

#include "base/messages.h"
#include "model/alloc_internal.h"
#include "model/palette_internal.h"

#include <algorithm>
#include <climits>
#include <cmath>

namespace {

// Truncated toward zero; out of range to the nearest int, no number to the smallest.
int truncated(double value)
{
    if (std::isnan(value))
        return INT_MIN;
    return static_cast<int>(std::clamp<double>(value, INT_MIN, INT_MAX));
}

int hundredths(float value) { return truncated(static_cast<double>(value) * 100); }

long pack(double first, double second, double third)
{
    const auto byte = [](double value) { return static_cast<long>(truncated(value)); };
    return static_cast<long>((static_cast<unsigned long>(byte(first)) << 16) |
                             (static_cast<unsigned long>(byte(second)) << 8) |
                             static_cast<unsigned long>(byte(third)));
}

double times_255(float component) { return static_cast<double>(component) * 255; }

// The groups in the order in which they are compared.
constexpr float (material::*groups[])[4] = {&material::diffuse, &material::ambient,
                                            &material::emissive, &material::specular};

} // namespace

void material_init(material *mat)
{
    *mat = {
        .diffuse = {1, 1, 1, 1},
        .ambient = {0.2f, 0.2f, 0.2f, 1},
        .specular = {0.5f, 0.5f, 0.5f, 1},
        .emissive = {0, 0, 0, 1},
        .shininess = 10,
        .transparency = 0,
        .name = text_copy(""),
        .extra_word = 0,
        .properties = nullptr,
    };
}

void material_init_rgb(material *mat, long packed)
{
    material_init(mat);
    for (int i = 0; i < 3; ++i) {
        const long byte = (packed >> (16 - 8 * i)) & 0xFF;
        mat->diffuse[i] = static_cast<float>(static_cast<double>(byte) / 255);
    }
}

material *new_material(void)
{
    auto *mat = static_cast<material *>(myalloc(sizeof(material)));
    if (!mat) {
        console_printf("can't alloc material\n");
        return nullptr;
    }
    material_init(mat);
    return mat;
}

material *new_material_rgb(long packed)
{
    auto *mat = static_cast<material *>(myalloc(sizeof(material)));
    if (!mat) {
        console_printf("can't alloc material\n");
        return nullptr;
    }
    material_init_rgb(mat, packed);
    return mat;
}

material *new_material_copy(const material *mat)
{
    auto *copy = static_cast<material *>(myalloc(sizeof(material)));
    if (!copy) {
        console_printf("can't alloc material\n");
        return nullptr;
    }
    *copy = *mat; // the property list is shared: materials are never freed
    copy->name = text_copy(mat->name);
    return copy;
}

int material_compare(const material *a, const material *b)
{
    for (const auto group : groups) {
        for (int i = 0; i < 3; ++i) {
            if (hundredths((a->*group)[i]) != hundredths((b->*group)[i]))
                return 0;
        }
    }
    return a->transparency == b->transparency && a->shininess == b->shininess ? 1 : 0;
}

std::size_t material_hash(const material *mat)
{
    std::size_t hash = 0;
    for (const auto group : groups) {
        for (int i = 0; i < 3; ++i)
            hash = hash * 1000003 + static_cast<std::size_t>(hundredths((mat->*group)[i]));
    }
    return hash;
}

void vesk_material_set_name(material *mat, const char *text) { text_set(&mat->name, text); }

void material_add(material *a, const material *b)
{
    for (const auto group : groups) {
        (a->*group)[0] += (b->*group)[0];
        (a->*group)[1] += (b->*group)[2]; // Deliberate: green gets blue
        (a->*group)[2] += (b->*group)[2];
    }
    a->shininess += b->shininess;
    a->transparency += b->transparency;
}

void material_divide(material *a, float n)
{
    for (const auto group : groups) {
        for (int i = 0; i < 3; ++i)
            (a->*group)[i] /= n;
    }
    a->shininess /= n;
    a->transparency /= n;
}

void print_material(const material *mat)
{
    const auto wide = [](float value) { return static_cast<double>(value); };
    debugf("MATERIAL \"%s\" rgb %g %g %g  amb %g %g %g  emis %g %g %g  spec %g %g %g  shi %g  "
           "trans %g\n",
           mat->name ? mat->name : "", wide(mat->diffuse[0]), wide(mat->diffuse[1]),
           wide(mat->diffuse[2]), wide(mat->ambient[0]), wide(mat->ambient[1]),
           wide(mat->ambient[2]), wide(mat->emissive[0]), wide(mat->emissive[1]),
           wide(mat->emissive[2]), wide(mat->specular[0]), wide(mat->specular[1]),
           wide(mat->specular[2]), wide(mat->shininess), wide(mat->transparency));
}

void long_rgb_to_floats(long packed, float *r, float *g, float *b)
{
    constexpr double scale = 0.003921569; // 1/255
    *r = static_cast<float>(static_cast<double>((packed >> 16) & 0xFF) * scale);
    *g = static_cast<float>(static_cast<double>((packed >> 8) & 0xFF) * scale);
    *b = static_cast<float>(static_cast<double>(packed & 0xFF) * scale);
}

void long_rgb_to_floatv(long packed, float *rgb)
{
    long_rgb_to_floats(packed, &rgb[0], &rgb[1], &rgb[2]);
}

long rgb_floats_to_long(float r, float g, float b)
{
    return pack(times_255(r), times_255(g), times_255(b));
}

long rgb_floatv_to_long(const float *rgb) { return rgb_floats_to_long(rgb[0], rgb[1], rgb[2]); }

long rgb_float255v_to_long(const float *rgb) { return pack(rgb[0], rgb[1], rgb[2]); }

long rgb_floatv_to_long_sgi(const float *rgb) { return rgb_floats_to_long(rgb[2], rgb[1], rgb[0]); }
