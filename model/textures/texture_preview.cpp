#include "model/textures/texture_preview.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "base/ui_port.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace {

constexpr int checker_side = 8;
constexpr unsigned checker_dark = 0x66;
constexpr unsigned checker_light = 0x99;
constexpr int most_photo_side = 2048;

// Mean colour and opacity of a block of pixels, 0 to 255.
std::array<double, 4> mean_of(const VESKImage &image, int x1, int y1, int x2, int y2)
{
    const size_t depth = image.depth;
    double sum[4] = {};
    double opacity = 0;
    for (int y = y1; y < y2; ++y) {
        const unsigned char *pixel =
            image.data +
            (static_cast<size_t>(image.height - 1 - y) * image.width + static_cast<size_t>(x1)) *
                depth;
        for (int x = x1; x < x2; ++x, pixel += depth) {
            const double alpha = depth % 2 == 0 ? pixel[depth - 1] / 255.0 : 1.0;
            opacity += alpha;
            for (size_t i = 0; i < 3; ++i)
                sum[i] += alpha * pixel[depth >= 3 ? i : 0];
        }
    }
    const double count = static_cast<double>(x2 - x1) * (y2 - y1);
    if (opacity <= 0)
        return {0, 0, 0, 0};
    return {sum[0] / opacity, sum[1] / opacity, sum[2] / opacity, 255 * opacity / count};
}

// The source pixels that target pixel `i` of `n` covers, of `count`.
void covered(int i, int n, int count, int *first, int *last)
{
    *first = static_cast<int>(static_cast<long long>(i) * count / n);
    *last = std::max(*first + 1, static_cast<int>((static_cast<long long>(i) + 1) * count / n));
}

std::string put_photo(const std::string &name, const VESKImage &image, int box_width,
                      int box_height)
{
    int width = 0;
    int height = 0;
    image_fit(image, box_width, box_height, &width, &height);
    const std::vector<unsigned char> rgb = image_scaled(image, width, height);
    return ui_port().photo_put(name.c_str(), width, height, rgb.data()) ? name : std::string();
}

} // namespace

std::vector<unsigned char> image_scaled(const VESKImage &image, int width, int height)
{
    std::vector<unsigned char> rgb;
    rgb.reserve(static_cast<size_t>(width) * static_cast<size_t>(height) * 3);
    for (int y = 0; y < height; ++y) {
        int y1 = 0;
        int y2 = 0;
        covered(y, height, image.height, &y1, &y2);
        for (int x = 0; x < width; ++x) {
            int x1 = 0;
            int x2 = 0;
            covered(x, width, image.width, &x1, &x2);
            const std::array<double, 4> mean = mean_of(image, x1, y1, x2, y2);
            const unsigned behind =
                (x / checker_side + y / checker_side) % 2 == 0 ? checker_light : checker_dark;
            for (size_t i = 0; i < 3; ++i)
                rgb.push_back(static_cast<unsigned char>(
                    std::lround(behind + (mean[i] - behind) * mean[3] / 255)));
        }
    }
    return rgb;
}

void image_fit(const VESKImage &image, int box_width, int box_height, int *width, int *height)
{
    const double scale =
        std::min(static_cast<double>(std::clamp(box_width, 1, most_photo_side)) / image.width,
                 static_cast<double>(std::clamp(box_height, 1, most_photo_side)) / image.height);
    *width = std::max(1, static_cast<int>(image.width * scale + 0.5));
    *height = std::max(1, static_cast<int>(image.height * scale + 0.5));
}

// ---- commands ----

void window_draw_texture(int id, const char *window)
{
    const VESKImage *image = texture_id_to_image(id);
    if (image == nullptr)
        return;
    const std::string path = window;
    int size[2] = {};
    if (!ui_port().widget_size(path.c_str(), size)) {
        debugf("window_draw_texture: there is no window %s\n", path.c_str());
        return;
    }
    const std::string photo = put_photo("vesk_texture_in" + path, *image, size[0], size[1]);
    if (!photo.empty())
        script_call("window_show_photo \"%s\" \"%s\"", path.c_str(), photo.c_str());
}

void command_texture_photo(int id, int size)
{
    const VESKImage *image = texture_id_to_image(id);
    if (image == nullptr)
        return;
    const std::string name =
        "vesk_texture_" + std::to_string(id) + "_" + std::to_string(std::max(1, size));
    command_result_set(put_photo(name, *image, size, size).c_str());
}

void command_picture_photo(const char *file, int size)
{
    const std::string kept = file; // loaders may run scripts
    const size_t dot = kept.rfind('.');
    if (dot == std::string::npos ||
        vesk_get_texture_loader_by_suffix(kept.c_str() + dot) == nullptr)
        return;
    VESKImage *image = texture_read(kept.c_str(), kept.c_str());
    if (image == nullptr)
        return;
    const std::string name = put_photo("vesk_picture", *image, size, size);
    command_result_set("");
    command_result_append_element(std::string_view(name));
    command_result_append_element(static_cast<int>(image->width));
    command_result_append_element(static_cast<int>(image->height));
    command_result_append_element(static_cast<int>(image->depth));
    free_veskimage(image);
}

void command_texture_list()
{
    std::string text;
    for (int id = 0; id < vesk_get_num_textures(); ++id) {
        const VESKImage *image = texture_id_to_image(id);
        text += (id == 0 ? "{" : " {") + list_element(image->origname) + " " +
                list_element(image->name) + " " + std::to_string(image->width) + " " +
                std::to_string(image->height) + " " + std::to_string(image->depth) + "}";
    }
    command_result_set(text.c_str());
}
