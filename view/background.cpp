#include "view/background.h"

#include "view/views_internal.h"

#include <utility>

namespace {

background_t backgrounds[3];
constexpr double plain_scale = 100.0; // one pixel of the image is one of the window

} // namespace

background_t &view_background(int view) { return backgrounds[view]; }

void view_background_set(int view, VESKImage *image)
{
    VESKImage *former = std::exchange(backgrounds[view].image, image);
    if (former != nullptr && image != nullptr)
        std::swap(former->draw_word, image->draw_word);
    free_veskimage(former);
    texture_build(image);
}

bool view_background_rectangle(int view, double out[4])
{
    const background_t &background = backgrounds[view];
    if (background.image == nullptr)
        return false;
    const VESKView &record = *vesk_get_view(view);
    const view_axes_t &axes = view_axes[view];
    const double scale = record.scale / plain_scale;
    const double x = static_cast<double>(record.centre[axes.horizontal]) +
                     record.pan[axes.horizontal] - background.x * scale;
    const double y = static_cast<double>(record.centre[axes.vertical]) + record.pan[axes.vertical] +
                     background.y * scale;
    const double half_width = background.image->width * background.zoom * scale / 2;
    const double half_height = background.image->height * background.zoom * scale / 2;
    out[0] = x - half_width;
    out[1] = y - half_height;
    out[2] = x + half_width;
    out[3] = y + half_height;
    return true;
}

void backgrounds_reset_for_test()
{
    for (background_t &background : backgrounds) {
        free_veskimage(background.image);
        background = {};
    }
}
