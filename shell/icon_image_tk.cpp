#include "shell/icon_image_tk.h"

#include <X11/extensions/Xrender.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <future>
#include <map>
#include <memory>
#include <png.h>
#include <string>
#include <vector>

namespace {

constexpr int largest_size = 8192;

// Alpha in the top byte, colours multiplied by it.
using pixels_t = std::vector<std::uint32_t>;

// Pixels on the way to the server, then a picture there. A worker reads them: icons are asked for while the
// window is built, and drawn later.
struct sheet_t {
    int width = 0;
    int height = 0;
    std::future<pixels_t> pixels; // none: the file is damaged
    Display *display = nullptr;
    Pixmap pixmap = 0;
    Picture picture = 0;

    sheet_t() = default;
    sheet_t(const sheet_t &) = delete;
    sheet_t &operator=(const sheet_t &) = delete;
    ~sheet_t()
    {
        if (display == nullptr)
            return;
        XRenderFreePicture(display, picture);
        XFreePixmap(display, pixmap);
    }
};
using sheet_ref_t = std::shared_ptr<sheet_t>;

// Sheets in use, by file name.
std::map<std::string, std::weak_ptr<sheet_t>> open_sheets;

struct icon_t {
    Tk_ImageMaster master = nullptr;
    Tcl_Interp *interp = nullptr;
    Tcl_Command command = nullptr;
    sheet_ref_t sheet; // null: transparent
    int x = 0, y = 0, width = 0, height = 0;
};

// The drawing resources of one window.
struct instance_t {
    icon_t *icon;
    Tk_Window window;
    XRenderPictFormat *format;
};

std::uint32_t premultiplied(const unsigned char bgra[4])
{
    const auto part = [&](int channel) {
        return static_cast<std::uint32_t>((bgra[channel] * bgra[3] + 127) / 255);
    };
    return static_cast<std::uint32_t>(bgra[3]) << 24 | part(2) << 16 | part(1) << 8 | part(0);
}

pixels_t read_pixels(const std::shared_ptr<png_image> &image)
{
    std::vector<unsigned char> bytes(PNG_IMAGE_SIZE(*image));
    if (png_image_finish_read(image.get(), nullptr, bytes.data(), 0, nullptr) == 0)
        return {};
    pixels_t pixels(bytes.size() / 4);
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = premultiplied(&bytes[4 * i]);
    return pixels;
}

sheet_ref_t read_sheet(const char *file)
{
    const std::shared_ptr<png_image> image(new png_image{}, [](png_image *read) {
        png_image_free(read);
        delete read;
    });
    image->version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(image.get(), file) == 0 || image->width > largest_size ||
        image->height > largest_size)
        return nullptr;
    image->format = PNG_FORMAT_BGRA;
    auto sheet = std::make_shared<sheet_t>();
    sheet->width = static_cast<int>(image->width);
    sheet->height = static_cast<int>(image->height);
    sheet->pixels = std::async(std::launch::async, read_pixels, image);
    return sheet;
}

sheet_ref_t sheet_of(const char *file)
{
    std::weak_ptr<sheet_t> &known = open_sheets[file];
    sheet_ref_t sheet = known.lock();
    if (sheet == nullptr)
        known = sheet = read_sheet(file);
    return sheet;
}

void upload(sheet_t &sheet, Tk_Window window)
{
    pixels_t pixels = sheet.pixels.get();
    pixels.resize(static_cast<size_t>(sheet.width) * sheet.height); // else transparent
    Display *display = Tk_Display(window);
    sheet.display = display;
    sheet.pixmap =
        XCreatePixmap(display, RootWindowOfScreen(Tk_Screen(window)),
                      static_cast<unsigned>(sheet.width), static_cast<unsigned>(sheet.height), 32);
    sheet.picture = XRenderCreatePicture(
        display, sheet.pixmap, XRenderFindStandardFormat(display, PictStandardARGB32), 0, nullptr);
    XImage image = {};
    image.width = sheet.width;
    image.height = sheet.height;
    image.format = ZPixmap;
    image.data = reinterpret_cast<char *>(pixels.data());
    image.byte_order = std::endian::native == std::endian::little ? LSBFirst : MSBFirst;
    image.bitmap_unit = image.bitmap_pad = image.depth = image.bits_per_pixel = 32;
    image.bitmap_bit_order = image.byte_order;
    XInitImage(&image);
    GC gc = XCreateGC(display, sheet.pixmap, 0, nullptr);
    XPutImage(display, sheet.pixmap, gc, &image, 0, 0, 0, 0, static_cast<unsigned>(sheet.width),
              static_cast<unsigned>(sheet.height));
    XFreeGC(display, gc);
}

// ---- the image's own command ----

void show(icon_t &icon, sheet_ref_t sheet, const int (&place)[4])
{
    icon.sheet = std::move(sheet);
    icon.x = place[0];
    icon.y = place[1];
    icon.width = place[2];
    icon.height = place[3];
    Tk_ImageChanged(icon.master, 0, 0, icon.width, icon.height, icon.width, icon.height);
}

bool read_ints(Tcl_Interp *interp, int count, Tcl_Obj *const words[], int *out)
{
    for (int i = 0; i < count; ++i)
        if (Tcl_GetIntFromObj(interp, words[i], &out[i]) != TCL_OK)
            return false;
    return true;
}

int crop_command(icon_t &icon, Tcl_Obj *const words[])
{
    int place[4];
    if (!read_ints(icon.interp, 4, words + 1, place))
        return TCL_ERROR;
    const char *file = Tcl_GetString(words[0]);
    sheet_ref_t sheet = sheet_of(file);
    if (sheet == nullptr || place[0] < 0 || place[1] < 0 || place[2] < 0 || place[3] < 0 ||
        place[0] > sheet->width - place[2] || place[1] > sheet->height - place[3]) {
        Tcl_SetObjResult(icon.interp, Tcl_ObjPrintf("no icon sheet of that size in \"%s\"", file));
        return TCL_ERROR;
    }
    show(icon, std::move(sheet), place);
    return TCL_OK;
}

int blank_command(icon_t &icon, Tcl_Obj *const words[])
{
    int place[4] = {};
    if (!read_ints(icon.interp, 2, words, place + 2))
        return TCL_ERROR;
    show(icon, nullptr, place);
    return TCL_OK;
}

int icon_command(ClientData data, Tcl_Interp *interp, int argc, Tcl_Obj *const argv[])
{
    static constexpr struct {
        const char *name;
        int words;
        const char *usage;
        int (*run)(icon_t &, Tcl_Obj *const words[]);
    } subcommands[] = {
        {"crop", 5, "crop file x y width height", crop_command},
        {"blank", 2, "blank width height", blank_command},
    };
    for (const auto &row : subcommands) {
        if (argc < 2 || std::strcmp(Tcl_GetString(argv[1]), row.name) != 0)
            continue;
        if (argc == row.words + 2)
            return row.run(*static_cast<icon_t *>(data), argv + 2);
        Tcl_WrongNumArgs(interp, 1, argv, row.usage);
        return TCL_ERROR;
    }
    Tcl_WrongNumArgs(interp, 1, argv, "crop|blank ...");
    return TCL_ERROR;
}

void command_gone(ClientData data) { static_cast<icon_t *>(data)->command = nullptr; }

// ---- the image type ----

int create_icon(Tcl_Interp *interp, const char *name, int, Tcl_Obj *const[], const Tk_ImageType *,
                Tk_ImageMaster master, ClientData *out)
{
    auto *icon = new icon_t;
    icon->master = master;
    icon->interp = interp;
    icon->command = Tcl_CreateObjCommand(interp, name, icon_command, icon, command_gone);
    *out = icon;
    return TCL_OK;
}

ClientData get_instance(Tk_Window window, ClientData data)
{
    return new instance_t{static_cast<icon_t *>(data), window,
                          XRenderFindVisualFormat(Tk_Display(window), Tk_Visual(window))};
}

void draw_instance(ClientData data, Display *display, Drawable drawable, int from_x, int from_y,
                   int width, int height, int x, int y)
{
    const auto *instance = static_cast<instance_t *>(data);
    const icon_t &icon = *instance->icon;
    if (icon.sheet == nullptr || instance->format == nullptr)
        return;
    if (icon.sheet->display == nullptr)
        upload(*icon.sheet, instance->window);
    if (icon.sheet->display != display)
        return;
    const Picture target = XRenderCreatePicture(display, drawable, instance->format, 0, nullptr);
    XRenderComposite(display, PictOpOver, icon.sheet->picture, None, target, icon.x + from_x,
                     icon.y + from_y, 0, 0, x, y, static_cast<unsigned>(width),
                     static_cast<unsigned>(height));
    XRenderFreePicture(display, target);
}

void free_instance(ClientData data, Display *) { delete static_cast<instance_t *>(data); }

void delete_icon(ClientData data)
{
    auto *icon = static_cast<icon_t *>(data);
    if (icon->command != nullptr)
        Tcl_DeleteCommandFromToken(icon->interp, icon->command);
    delete icon;
}

} // namespace

void icon_image_install(Tcl_Interp *interp)
{
    int event_base = 0;
    int error_base = 0;
    if (!XRenderQueryExtension(Tk_Display(Tk_MainWindow(interp)), &event_base, &error_base))
        return;
    static Tk_ImageType type = {"vesk_icon",   create_icon,   get_instance,
                                draw_instance, free_instance, delete_icon,
                                nullptr,       nullptr,       nullptr};
    Tk_CreateImageType(&type);
}
