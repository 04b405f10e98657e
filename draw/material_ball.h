#ifndef VESK_DRAW_MATERIAL_BALL_H
#define VESK_DRAW_MATERIAL_BALL_H

#include <cstdint>
#include <vector>

// Diffuse, ambient, emissive and specular r g b (0 to 1), transparency (0 to 1), shininess.
constexpr int ball_num_values = 14;

// A picture of size x size pixels, three bytes each, row by row from the top: a sphere of that
// material, lit by a key light and a headlight, over a checker so that transparency shows.
std::vector<std::uint8_t> material_ball(int size, const double values[ball_num_values]);

#endif
