#ifndef VESK_MODEL_ANGLE_H
#define VESK_MODEL_ANGLE_H

// Pi in both precisions, and degrees into radians. For sources: a header that spreads these short
// names would clash with locals.

#include <numbers>

constexpr double pi = std::numbers::pi;
constexpr float pi_f = std::numbers::pi_v<float>;
constexpr double degrees_per_radian = 180 / pi;

// Finite for every finite angle.
constexpr float radians(float degrees)
{
    constexpr float huge = 1e37f;
    return degrees < -huge || degrees > huge ? degrees / 180.0f * pi_f : degrees * pi_f / 180.0f;
}

#endif
