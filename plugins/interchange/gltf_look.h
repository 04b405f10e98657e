// Materials of the program in the terms of glTF and back, the one place for both directions. Colours
// of the program are those of the screen, glTF's are linear light.
//
// The width of a highlight: the lobe of Blinn and Phong's (n.h)^n is as wide as that of a
// microfacet surface of the width alpha with alpha^2 = 2 / (n + 2) (Walter et al., "Microfacet
// Models for Refraction through Rough Surfaces", 2007, section 5.2, by the Beckmann distribution's
// slope), and glTF's roughness is the root of alpha.
//
// The strength of a highlight: glTF's plain surface reflects 4 of 100 at a right angle; that stands
// for the program's specular grey of 0.5, its default, so that plain materials need no extension.
#ifndef INTERCHANGE_GLTF_LOOK_H
#define INTERCHANGE_GLTF_LOOK_H

#include <algorithm>
#include <cmath>

namespace gltf_look {

constexpr float most_shininess = 128;
constexpr float plain_specular = 0.5f;     // glTF's colour factor 1
constexpr float plain_reflectance = 0.04f; // of that factor

// Seven digits: what was written comes back as the same number.
inline float rounded(double value) { return static_cast<float>(std::round(value * 1e6) / 1e6); }

inline float roughness_of(float shininess)
{
    const double n = static_cast<double>(std::min(std::max(shininess, 0.0f), most_shininess));
    return static_cast<float>(std::sqrt(std::sqrt(2 / (n + 2))));
}

inline float shininess_of(float roughness)
{
    const double alpha = static_cast<double>(roughness) * static_cast<double>(roughness);
    const double n = alpha > 0 ? 2 / (alpha * alpha) - 2 : static_cast<double>(most_shininess);
    const double kept = std::min(std::max(n, 0.0), static_cast<double>(most_shininess));
    return static_cast<float>(std::round(kept * 1e4) / 1e4);
}

// 0 to 1 each; the curve of sRGB (IEC 61966-2-1).
inline float linear_of(float shown)
{
    const double c = std::min(std::max(static_cast<double>(shown), 0.0), 1.0);
    return static_cast<float>(c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4));
}

inline float shown_of(float linear)
{
    const double c = std::min(std::max(static_cast<double>(linear), 0.0), 1.0);
    return rounded(c <= 0.0031308 ? c * 12.92 : 1.055 * std::pow(c, 1 / 2.4) - 0.055);
}

} // namespace gltf_look

#endif
