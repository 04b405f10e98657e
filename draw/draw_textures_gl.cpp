#include "draw/draw_textures_gl.h"

#include "base/prefs.h"
#include "draw/draw_device_gl.h"
#include "view/background.h"

#include <GL/glu.h>

namespace {

GLenum format_of(const VESKImage &image)
{
    constexpr GLenum formats[4] = {GL_LUMINANCE, GL_LUMINANCE_ALPHA, GL_RGB, GL_RGBA};
    return formats[image.depth - 1];
}

GLuint name_of(const VESKImage &image) { return static_cast<GLuint>(image.draw_word); }

bool fits_the_device(const VESKImage &image)
{
    GLint most = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &most);
    return image.width <= most && image.height <= most;
}

// Devices with programs take any size; the others, and images that are too large, get a scaled copy.
void upload_pixels(const VESKImage &image)
{
    const GLenum format = format_of(image);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    if (device_caps().programs && fits_the_device(image)) {
        glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), image.width, image.height, 0,
                     format, GL_UNSIGNED_BYTE, image.data);
        glGenerateMipmap(GL_TEXTURE_2D);
    } else {
        gluBuild2DMipmaps(GL_TEXTURE_2D, static_cast<GLint>(format), image.width, image.height,
                          format, GL_UNSIGNED_BYTE, image.data);
    }
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
}

void draw_as_texture(VESKImage *image, const double r[4])
{
    if (!texture_bind(image))
        return;
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0);
    glVertex2d(r[0], r[3]);
    glTexCoord2f(1, 0);
    glVertex2d(r[2], r[3]);
    glTexCoord2f(1, 1);
    glVertex2d(r[2], r[1]);
    glTexCoord2f(0, 1);
    glVertex2d(r[0], r[1]);
    glEnd();
    texture_unbind();
}

// A raster position outside the window is refused: it is set inside and moved from there.
void draw_as_pixels(const VESKImage &image, const double r[4], int height)
{
    glRasterPos2d(0, height);
    glBitmap(0, 0, 0, 0, static_cast<GLfloat>(r[0]), static_cast<GLfloat>(height - r[3]), nullptr);
    glPixelZoom(static_cast<GLfloat>((r[2] - r[0]) / image.width),
                static_cast<GLfloat>((r[3] - r[1]) / image.height));
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glDrawPixels(image.width, image.height, format_of(image), GL_UNSIGNED_BYTE, image.data);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glPixelZoom(1, 1);
}

} // namespace

bool texture_upload_gl(VESKImage *image)
{
    if (image->data == nullptr || image->width == 0 || image->height == 0 || image->depth < 1 ||
        image->depth > 4)
        return false;
    GLuint name = name_of(*image);
    if (name == 0)
        glGenTextures(1, &name);
    image->draw_word = name;
    glBindTexture(GL_TEXTURE_2D, name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    upload_pixels(*image);
    glBindTexture(GL_TEXTURE_2D, 0);
    return true;
}

void texture_release_gl(VESKImage *image)
{
    const GLuint name = name_of(*image);
    if (name != 0)
        glDeleteTextures(1, &name);
    image->draw_word = 0;
}

bool texture_bind(VESKImage *image)
{
    if (image == nullptr || (image->draw_word == 0 && !texture_upload_gl(image))) {
        texture_unbind();
        return false;
    }
    glBindTexture(GL_TEXTURE_2D, name_of(*image));
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glEnable(GL_TEXTURE_2D);
    return true;
}

void texture_unbind()
{
    glDisable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, 0);
}

void texture_set_placement(float repeat_x, float repeat_y, float offset_x, float offset_y)
{
    glMatrixMode(GL_TEXTURE);
    glLoadIdentity();
    glTranslatef(offset_x, offset_y, 0);
    glScalef(repeat_x, repeat_y, 1);
    glMatrixMode(GL_MODELVIEW);
}

void texture_reset_placement()
{
    glMatrixMode(GL_TEXTURE);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
}

void draw_background_image(int view, int height)
{
    double r[4];
    if (!view_background_rectangle(view, r))
        return;
    VESKImage *image = view_background(view).image;
    if (prefs.use_textures_for_background_images != 0)
        draw_as_texture(image, r);
    else
        draw_as_pixels(*image, r, height);
}
