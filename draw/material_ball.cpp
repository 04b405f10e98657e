#include "draw/material_ball.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double radius_share = 0.42;
constexpr int checker_cells = 8;
constexpr double checker_dark = 0.275;
constexpr double checker_light = 0.314;
constexpr double key_share = 0.5;
constexpr double headlight_share = 0.42;
constexpr double ambient_share = 0.5;
constexpr double shine_share = 0.8;

std::uint8_t byte_of(double share)
{
    return static_cast<std::uint8_t>(std::clamp(share, 0.0, 1.0) * 255);
}

// The light that falls on a point of the unit sphere: how much, and how much of it glances off.
struct light_t {
    double diffuse = 0;
    double shine = 0;
};

light_t light_at(double x, double y, double z, double shininess)
{
    // Key light from (-0.8, 0.55, 0.9); half way between it and the viewer lies the glance.
    const double key = std::max(0.0, -0.604 * x + 0.415 * y + 0.680 * z);
    const double half = std::max(0.0, -0.330 * x + 0.227 * y + 0.917 * z);
    return {key_share * key + headlight_share * z,
            shine_share * std::pow(half, std::max(1.0, shininess))};
}

void put_ball(std::uint8_t *pixel, const light_t &light, double ground, const double values[])
{
    const double cover = 1 - values[12];
    for (int channel = 0; channel < 3; ++channel) {
        const double sum = values[6 + channel] + ambient_share * values[3 + channel] +
                           light.diffuse * values[channel] + light.shine * values[9 + channel];
        pixel[channel] = byte_of(cover * std::min(1.0, sum) + (1 - cover) * ground);
    }
}

void put_ground(std::uint8_t *pixel, double ground)
{
    pixel[0] = pixel[1] = byte_of(ground);
    pixel[2] = static_cast<std::uint8_t>(pixel[0] + 3);
}

} // namespace

std::vector<std::uint8_t> material_ball(int size, const double values[ball_num_values])
{
    std::vector<std::uint8_t> pixels(static_cast<size_t>(size) * static_cast<size_t>(size) * 3);
    std::uint8_t *pixel = pixels.data();
    const double radius = radius_share * size;
    for (int row = 0; row < size; ++row) {
        for (int column = 0; column < size; ++column, pixel += 3) {
            const int cell = column * checker_cells / size + row * checker_cells / size;
            const double ground = cell % 2 != 0 ? checker_light : checker_dark;
            const double x = (column + 0.5 - size / 2.0) / radius;
            const double y = (size / 2.0 - row - 0.5) / radius;
            const double rest = 1 - x * x - y * y;
            if (rest > 0)
                put_ball(pixel, light_at(x, y, std::sqrt(rest), values[13]), ground, values);
            else
                put_ground(pixel, ground);
        }
    }
    return pixels;
}
