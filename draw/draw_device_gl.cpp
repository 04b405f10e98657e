#include "draw/draw_device_gl.h"

#include "base/messages.h"
#include "base/ui_port.h"
#include "model/angle.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <string_view>

namespace {

constexpr int wanted_samples = 4;
constexpr int neutral_grey = 0x555555;

struct frame_buffer_t {
    GLuint frame = 0;
    GLuint colour = 0, depth = 0;
    int width = 0, height = 0;
    bool broken = false;
};

struct device_t {
    device_caps_t caps;
    std::map<int, GLuint> programs; // by purpose
    frame_buffer_t frames[texture_coords_view + 1];
    bool into_frame_buffer = false;
};
device_t device;

// ---- programs ----

constexpr const char *vertex_source = R"(
INTERPOLATION out vec3 normal;
out vec3 position;
void main()
{
    vec4 eye = gl_ModelViewMatrix * gl_Vertex;
    position = eye.xyz;
    normal = gl_NormalMatrix * gl_Normal;
#ifdef TEXTURED
    gl_TexCoord[0] = gl_TextureMatrix[0] * gl_MultiTexCoord0;
#endif
    gl_Position = gl_ProjectionMatrix * eye;
}
)";

constexpr const char *fragment_source = R"(
INTERPOLATION in vec3 normal;
in vec3 position;
uniform float dim;
uniform vec3 neutral;
uniform float perspective;
#ifdef TEXTURED
uniform sampler2D picture;
#endif
void main()
{
    vec3 n = normalize(gl_FrontFacing ? normal : -normal);
    vec3 viewer = perspective > 0.5 ? normalize(-position) : vec3(0.0, 0.0, 1.0);
    vec3 sum = gl_FrontLightModelProduct.sceneColor.rgb;
    vec3 shine = vec3(0.0);
    for (int i = 0; i < LIGHTS; ++i) {
        vec4 from = gl_LightSource[i].position;
        vec3 light = normalize(from.xyz - position * from.w);
        float facing = dot(n, light);
        if (facing > 0.0) {
            sum += gl_FrontLightProduct[i].diffuse.rgb * facing;
            float glance = dot(n, normalize(light + viewer));
            if (glance > 0.0)
                shine += gl_FrontLightProduct[i].specular.rgb *
                         pow(glance, gl_FrontMaterial.shininess);
        }
    }
    float alpha = gl_FrontMaterial.diffuse.a;
#ifdef TEXTURED
    vec4 texel = texture2D(picture, gl_TexCoord[0].st);
    sum *= texel.rgb;
    alpha *= texel.a;
    if (alpha < 0.004)
        discard;
#endif
    vec3 lit = sum + shine * (1.0 - dim);
    gl_FragColor = vec4(mix(lit, neutral, dim), alpha);
}
)";

GLuint compile(GLenum kind, const std::string &source)
{
    const GLuint shader = glCreateShader(kind);
    const char *text = source.c_str();
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    GLint ok = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &ok);
    if (ok == 0) {
        char log[1024] = "";
        glGetShaderInfoLog(shader, sizeof log, nullptr, log);
        debugf("shader: %s\n", log);
        glDeleteShader(shader);
        return 0;
    }
    return shader;
}

GLuint make_program(const lit_options_t &options)
{
    const std::string head = std::string("#version 130\n#define LIGHTS ") +
                             std::to_string(options.num_lights) + "\n#define INTERPOLATION " +
                             (options.smooth ? "smooth" : "flat") + "\n" +
                             (options.textured ? "#define TEXTURED\n" : "");
    const GLuint vertex = compile(GL_VERTEX_SHADER, head + vertex_source);
    const GLuint fragment = compile(GL_FRAGMENT_SHADER, head + fragment_source);
    if (vertex == 0 || fragment == 0)
        return 0;
    const GLuint program = glCreateProgram();
    glAttachShader(program, vertex);
    glAttachShader(program, fragment);
    glLinkProgram(program);
    glDeleteShader(vertex);
    glDeleteShader(fragment);
    GLint ok = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &ok);
    if (ok != 0)
        return program;
    glDeleteProgram(program);
    return 0;
}

// ---- frames with several samples a pixel ----

void free_frame_buffer(frame_buffer_t &frame)
{
    if (frame.frame == 0)
        return;
    glDeleteFramebuffers(1, &frame.frame);
    glDeleteRenderbuffers(1, &frame.colour);
    glDeleteRenderbuffers(1, &frame.depth);
    frame.frame = frame.colour = frame.depth = 0;
}

bool make_frame_buffer(frame_buffer_t &frame, int width, int height)
{
    if (frame.frame != 0 && frame.width == width && frame.height == height)
        return true;
    free_frame_buffer(frame);
    frame.width = width;
    frame.height = height;
    glGenRenderbuffers(1, &frame.colour);
    glBindRenderbuffer(GL_RENDERBUFFER, frame.colour);
    glRenderbufferStorageMultisample(GL_RENDERBUFFER, device.caps.samples, GL_RGBA8, width, height);
    glGenRenderbuffers(1, &frame.depth);
    glBindRenderbuffer(GL_RENDERBUFFER, frame.depth);
    glRenderbufferStorageMultisample(GL_RENDERBUFFER, device.caps.samples, GL_DEPTH_COMPONENT24,
                                     width, height);
    glGenFramebuffers(1, &frame.frame);
    glBindFramebuffer(GL_FRAMEBUFFER, frame.frame);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, frame.colour);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, frame.depth);
    const bool complete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    if (!complete) {
        free_frame_buffer(frame);
        frame.broken = true;
    }
    return complete;
}

bool draws_on_processor()
{
    const auto *renderer = reinterpret_cast<const char *>(glGetString(GL_RENDERER));
    return renderer != nullptr && std::string_view(renderer).starts_with("llvmpipe");
}

bool has_extension(std::string_view name)
{
    const auto *words = reinterpret_cast<const char *>(glGetString(GL_EXTENSIONS));
    std::istringstream rest(words != nullptr ? words : "");
    return std::find(std::istream_iterator<std::string>(rest), {}, name) !=
           std::istream_iterator<std::string>();
}

void look_up_caps(device_caps_t &caps)
{
    const auto *text = reinterpret_cast<const char *>(glGetString(GL_VERSION));
    if (text == nullptr)
        return;
    caps.known = true;
    int major = 1;
    int minor = 1;
    std::sscanf(text, "%d.%d", &major, &minor);
    const int version = major * 10 + minor;
    caps.buffers = version >= 15;
    caps.own_memory = caps.buffers && draws_on_processor() && has_extension("GL_AMD_pinned_memory");
    caps.programs = version >= 30;
    if (version >= 30) {
        GLint most = 0;
        glGetIntegerv(GL_MAX_SAMPLES, &most);
        caps.samples = std::min<int>(most, wanted_samples);
        if (caps.samples < 2)
            caps.samples = 0;
    }
    debugf("OpenGL %s, buffers %d, programs %d, samples %d\n", text, caps.buffers ? 1 : 0,
           caps.programs ? 1 : 0, caps.samples);
}

void reset_state()
{
    glDisable(GL_LIGHTING);
    glDisable(GL_CULL_FACE);
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_POLYGON_OFFSET_FILL);
    glDisable(GL_LINE_SMOOTH);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glDepthMask(GL_TRUE);
    glDepthRange(0, 1);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_NORMALIZE);
}

void enter_frame(const frame_buffer_t &frame, int width, int height, bool smoothing)
{
    if (device.into_frame_buffer)
        glBindFramebuffer(GL_FRAMEBUFFER, frame.frame);
    glViewport(0, 0, width, height);
    reset_state();
    if (smoothing && !device.into_frame_buffer)
        glEnable(GL_LINE_SMOOTH);
}

void leave_frame()
{
    use_no_program();
    reset_state();
}

} // namespace

const device_caps_t &device_caps()
{
    if (!device.caps.known)
        look_up_caps(device.caps);
    return device.caps;
}

void device_limit(bool programs, bool buffers, bool multisampling)
{
    device_caps();
    device.caps.programs = device.caps.programs && programs;
    device.caps.buffers = device.caps.buffers && buffers;
    if (!multisampling)
        device.caps.samples = 0;
}

colour_t colour_of(int rgb, float alpha)
{
    return {static_cast<float>((rgb >> 16) & 0xFF) / 255.0f,
            static_cast<float>((rgb >> 8) & 0xFF) / 255.0f, static_cast<float>(rgb & 0xFF) / 255.0f,
            alpha};
}

void frame_begin(int view, int width, int height, const colour_t &background, bool smoothing)
{
    const device_caps_t &caps = device_caps();
    frame_buffer_t &frame = device.frames[view];
    device.into_frame_buffer = smoothing && caps.samples > 0 && !frame.broken && width > 0 &&
                               height > 0 && make_frame_buffer(frame, width, height);
    enter_frame(frame, width, height, smoothing);
    glClearColor(background.r, background.g, background.b, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void frame_pause()
{
    leave_frame();
    if (device.into_frame_buffer)
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
    device.into_frame_buffer = false;
}

void frame_resume(int view, int width, int height, bool smoothing)
{
    const frame_buffer_t &frame = device.frames[view];
    device.into_frame_buffer =
        smoothing && device_caps().samples > 0 && frame.frame != 0 && !frame.broken;
    enter_frame(frame, width, height, smoothing);
}

void frame_end(int view)
{
    leave_frame();
    if (device.into_frame_buffer) {
        const frame_buffer_t &frame = device.frames[view];
        glBindFramebuffer(GL_READ_FRAMEBUFFER, frame.frame);
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
        glBlitFramebuffer(0, 0, frame.width, frame.height, 0, 0, frame.width, frame.height,
                          GL_COLOR_BUFFER_BIT, GL_NEAREST);
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
    }
    device.into_frame_buffer = false;
    glDisable(GL_DEPTH_TEST);
}

void frame_forget(int view)
{
    free_frame_buffer(device.frames[view]);
    device.frames[view] = {};
}

double seconds_until_drawn()
{
    glFinish();
    return ui_port().now_seconds();
}

void use_pixel_projection(int width, int height)
{
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, width, height, 0, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
}

void use_lit_program(const lit_options_t &options)
{
    glShadeModel(options.smooth ? GL_SMOOTH : GL_FLAT);
    if (!device_caps().programs)
        return;
    const int key = options.num_lights * 4 + (options.smooth ? 1 : 0) + (options.textured ? 2 : 0);
    const auto found = device.programs.find(key);
    const GLuint program = found != device.programs.end()
                               ? found->second
                               : device.programs.emplace(key, make_program(options)).first->second;
    if (program == 0) {
        device.caps.programs = false;
        return;
    }
    glUseProgram(program);
    const colour_t neutral = colour_of(neutral_grey);
    glUniform1f(glGetUniformLocation(program, "dim"), options.dim);
    glUniform3f(glGetUniformLocation(program, "neutral"), neutral.r, neutral.g, neutral.b);
    glUniform1f(glGetUniformLocation(program, "perspective"), options.perspective ? 1.0f : 0.0f);
}

void use_no_program()
{
    if (device_caps().programs)
        glUseProgram(0);
}

// ---- small arrays ----

void draw_array(GLenum mode, const std::vector<vertex2_t> &points, const colour_t &colour)
{
    if (points.empty())
        return;
    set_colour(colour);
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(2, GL_FLOAT, 0, points.data());
    glDrawArrays(mode, 0, static_cast<GLsizei>(points.size()));
    glDisableClientState(GL_VERTEX_ARRAY);
}

void draw_coloured(GLenum mode, const std::vector<coloured_vertex_t> &points)
{
    if (points.empty())
        return;
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(coloured_vertex_t), &points[0].x);
    glColorPointer(4, GL_UNSIGNED_BYTE, sizeof(coloured_vertex_t), points[0].rgba);
    glDrawArrays(mode, 0, static_cast<GLsizei>(points.size()));
    glDisableClientState(GL_COLOR_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
}

void add_quad(std::vector<vertex2_t> &out, float x1, float y1, float x2, float y2)
{
    out.insert(out.end(), {{x1, y1}, {x2, y1}, {x2, y2}, {x1, y2}});
}

void add_frame(std::vector<vertex2_t> &out, float x1, float y1, float x2, float y2, float width)
{
    add_quad(out, x1, y1, x2, y1 + width);
    add_quad(out, x1, y2 - width, x2, y2);
    add_quad(out, x1, y1 + width, x1 + width, y2 - width);
    add_quad(out, x2 - width, y1 + width, x2, y2 - width);
}

namespace {

coloured_vertex_t soft_vertex(float x, float y, const colour_t &c, float alpha)
{
    const auto byte = [](float value) {
        return static_cast<std::uint8_t>(std::clamp(value, 0.0f, 1.0f) * 255.0f + 0.5f);
    };
    return {x, y, 0, {byte(c.r), byte(c.g), byte(c.b), byte(alpha)}};
}

// A ring between two radii whose opacity goes from one value to another.
void add_ring(std::vector<coloured_vertex_t> &out, float x, float y, float r1, float r2,
              const colour_t &c, float alpha1, float alpha2)
{
    constexpr int pieces = 40;
    for (int i = 0; i < pieces; ++i) {
        const float a = 2 * pi_f * static_cast<float>(i) / pieces;
        const float b = 2 * pi_f * static_cast<float>(i + 1) / pieces;
        out.push_back(soft_vertex(x + r1 * std::cos(a), y + r1 * std::sin(a), c, alpha1));
        out.push_back(soft_vertex(x + r2 * std::cos(a), y + r2 * std::sin(a), c, alpha2));
        out.push_back(soft_vertex(x + r2 * std::cos(b), y + r2 * std::sin(b), c, alpha2));
        out.push_back(soft_vertex(x + r1 * std::cos(b), y + r1 * std::sin(b), c, alpha1));
    }
}

} // namespace

void draw_disc(float x, float y, float radius, float inner_radius, const colour_t &colour)
{
    std::vector<coloured_vertex_t> points;
    const float inner = inner_radius > 0 ? inner_radius + 0.5f : 0.0f;
    add_ring(points, x, y, inner, radius - 0.5f, colour, colour.a, colour.a);
    add_ring(points, x, y, radius - 0.5f, radius + 0.5f, colour, colour.a, 0);
    if (inner_radius > 0)
        add_ring(points, x, y, inner_radius - 0.5f, inner, colour, 0, colour.a);
    glShadeModel(GL_SMOOTH);
    draw_coloured(GL_QUADS, points);
}

void draw_soft_line(float x1, float y1, float x2, float y2, float width, const colour_t &colour)
{
    const float length = std::hypot(x2 - x1, y2 - y1);
    if (!(length > 0))
        return;
    const float nx = -(y2 - y1) / length;
    const float ny = (x2 - x1) / length;
    const float core = std::max(width / 2 - 0.5f, 0.0f);
    const float edge = width / 2 + 0.5f;
    const float offsets[4] = {-edge, -core, core, edge};
    const float alphas[4] = {0, colour.a, colour.a, 0};
    std::vector<coloured_vertex_t> points;
    for (int i = 0; i < 3; ++i) {
        const float a = offsets[i];
        const float b = offsets[i + 1];
        points.push_back(soft_vertex(x1 + nx * a, y1 + ny * a, colour, alphas[i]));
        points.push_back(soft_vertex(x2 + nx * a, y2 + ny * a, colour, alphas[i]));
        points.push_back(soft_vertex(x2 + nx * b, y2 + ny * b, colour, alphas[i + 1]));
        points.push_back(soft_vertex(x1 + nx * b, y1 + ny * b, colour, alphas[i + 1]));
    }
    glShadeModel(GL_SMOOTH);
    draw_coloured(GL_QUADS, points);
}

void draw_set_line_width(float width) { glLineWidth(std::max(width, 1.0f)); }
