#include "view/view_picture.h"

#include "base/atomic_file.h"
#include "base/current_file.h"
#include "base/filename.h"
#include "base/image_png.h"
#include "base/messages.h"
#include "base/ui_port.h"
#include "view/views.h"

#include <cstdlib>
#include <string>
#include <unistd.h>

namespace {

std::string folder_of_pictures()
{
    const std::string models = vesk_filename_get_path(edited_file().c_str());
    if (!models.empty() && access(models.c_str(), W_OK) == 0)
        return models;
    const char *home = std::getenv("HOME");
    return home != nullptr && *home != '\0' ? home : "/tmp";
}

// "vesk-3d-1.png" or the first number that is free.
std::string new_picture_file()
{
    const std::string folder = folder_of_pictures();
    for (int number = 1;; ++number) {
        const std::string name = "vesk-3d-" + std::to_string(number) + ".png";
        std::string file = vesk_filename_concat_path_file(folder.c_str(), name.c_str());
        if (access(file.c_str(), F_OK) != 0)
            return file;
    }
}

} // namespace

void command_copy_3d_win_to_clipboard()
{
    int size[2] = {};
    std::vector<unsigned char> rgb;
    if (!ui_port().read_pixels(VIEW_XYZ, size, &rgb)) {
        display_message("copy 3D view - there is no 3D view");
        return;
    }
    const std::string png = png_of_rgb(size[0], size[1], rgb.data());
    const std::string name = new_picture_file();
    if (png.empty() || !atomic_file_write(name.c_str(), png)) {
        display_message("copy 3D view - can't write %s", name.c_str());
        return;
    }
    const bool offered = ui_port().clipboard_offer_picture(png);
    display_message("copy 3D view - %s%s", name.c_str(), offered ? "" : " (not on the clipboard)");
}
