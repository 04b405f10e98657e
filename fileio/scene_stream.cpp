#include "fileio/scene_stream.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

constexpr std::uint32_t magic = 0x31534B56; // "VKS1"; both ends run on the same machine

class encoder {
public:
    std::string bytes;

    void word(std::uint32_t value) { raw(&value, sizeof value); }
    void raw(const void *from, size_t size) { bytes.append(static_cast<const char *>(from), size); }
    template <class T>
    void plain(const T &value)
    {
        raw(&value, sizeof value);
    }
    void text(const std::string &value)
    {
        word(static_cast<std::uint32_t>(value.size()));
        raw(value.data(), value.size());
    }
    template <class T>
    void numbers(const std::vector<T> &values)
    {
        word(static_cast<std::uint32_t>(values.size()));
        raw(values.data(), values.size() * sizeof(T));
    }
    template <class T>
    void records(const std::vector<T> &values)
    {
        word(static_cast<std::uint32_t>(values.size()));
        for (const T &value : values)
            fields(*this, value);
    }
};

class decoder {
public:
    explicit decoder(std::string_view bytes) : rest_(bytes) {}
    [[nodiscard]] bool good() const { return good_; }
    [[nodiscard]] bool at_end() const { return rest_.empty(); }

    std::uint32_t word()
    {
        std::uint32_t value = 0;
        raw(&value, sizeof value);
        return value;
    }
    void raw(void *to, size_t size)
    {
        if (size > rest_.size()) {
            good_ = false;
            rest_ = {};
        }
        if (!good_ || size == 0)
            return;
        std::memcpy(to, rest_.data(), size);
        rest_.remove_prefix(size);
    }
    template <class T>
    void plain(T &value)
    {
        raw(&value, sizeof value);
    }
    void text(std::string &value)
    {
        value.resize(count(1));
        raw(value.data(), value.size());
    }
    template <class T>
    void numbers(std::vector<T> &values)
    {
        values.resize(count(sizeof(T)));
        raw(values.data(), values.size() * sizeof(T));
    }
    template <class T>
    void records(std::vector<T> &values)
    {
        // A record takes at least four bytes, and its numbers take more in memory than here: grown
        // one by one, the records stay close to the size of the bytes.
        const size_t wanted = count(4);
        values.clear();
        for (size_t i = 0; i < wanted && good_; ++i)
            fields(*this, values.emplace_back());
    }

private:
    // How many elements of that size follow; more than the bytes hold are none.
    size_t count(size_t size)
    {
        const size_t wanted = word();
        if (wanted <= rest_.size() / size)
            return wanted;
        good_ = false;
        return 0;
    }

    std::string_view rest_;
    bool good_ = true;
};

// ---- the fields of each record, once for both directions ----

// A record of a type, to be read or to be written.
template <class Given, class Record>
concept either = std::is_same_v<std::remove_const_t<Given>, Record>;

template <class Stream>
void fields(Stream &stream, either<std::string> auto &text)
{
    stream.text(text);
}

template <class Stream>
void fields(Stream &stream, either<plain_image> auto &image)
{
    stream.text(image.name);
    stream.text(image.bytes);
}

template <class Stream>
void fields(Stream &stream, either<plain_material> auto &m)
{
    stream.text(m.name);
    stream.plain(m.diffuse);
    stream.plain(m.ambient);
    stream.plain(m.specular);
    stream.plain(m.emissive);
    stream.plain(m.shininess);
    stream.plain(m.transparency);
    stream.text(m.picture);
    stream.plain(m.repeat);
    stream.plain(m.offset);
}

template <class Stream>
void fields(Stream &stream, either<plain_node> auto &node)
{
    stream.text(node.name);
    stream.plain(node.kind);
    stream.plain(node.parent);
    stream.plain(node.picture);
    stream.plain(node.centre);
    stream.plain(node.rotation);
    stream.numbers(node.points);
    stream.numbers(node.offsets);
    stream.numbers(node.corners);
    stream.numbers(node.uv);
    stream.numbers(node.colours);
    stream.numbers(node.materials);
    stream.numbers(node.flags);
}

template <class Stream>
void fields(Stream &stream, either<plain_scene> auto &scene)
{
    stream.records(scene.materials);
    stream.records(scene.nodes);
    stream.records(scene.images);
    stream.records(scene.warnings);
}

// ---- conditions between the numbers ----

bool all_within(const std::vector<int> &indices, size_t low, size_t count)
{
    for (const int index : indices)
        if (index < 0 || static_cast<size_t>(index) < low || static_cast<size_t>(index) >= count)
            return false;
    return true;
}

bool surfaces_fit(const plain_node &node)
{
    const size_t surfaces = node.flags.size();
    if (node.offsets.size() != surfaces + 1 || node.materials.size() != surfaces ||
        node.offsets.front() != 0 || node.uv.size() != 2 * node.corners.size() ||
        node.points.size() % 3 != 0 ||
        (!node.colours.empty() && node.colours.size() != node.points.size()))
        return false;
    for (size_t i = 0; i < surfaces; ++i)
        if (node.offsets[i + 1] < node.offsets[i])
            return false;
    return static_cast<size_t>(node.offsets.back()) == node.corners.size() &&
           all_within(node.corners, 0, node.points.size() / 3) && all_within(node.flags, 0, 0x40);
}

bool node_fits(const plain_scene &scene, size_t place)
{
    const plain_node &node = scene.nodes[place];
    const int materials = static_cast<int>(scene.materials.size());
    return node.kind >= PLAIN_GROUP && node.kind <= PLAIN_LIGHT && node.parent >= -1 &&
           node.parent < static_cast<int>(place) && node.picture >= -1 &&
           node.picture < materials && surfaces_fit(node) &&
           all_within(node.materials, 0, scene.materials.size());
}

// Texts end at their first zero, as the scene's do.
void cut(std::string &text) { text.resize(std::strlen(text.c_str())); }

// Values that are no numbers, or out of their range, become the nearest usable ones.
void repair(plain_material &m)
{
    cut(m.name);
    cut(m.picture);
    for (float *colour : {m.diffuse, m.ambient, m.specular, m.emissive})
        for (int i = 0; i < 3; ++i)
            colour[i] = std::isfinite(colour[i]) ? std::fmin(std::fmax(colour[i], 0.0f), 1.0f) : 0;
    m.shininess = std::isfinite(m.shininess) ? std::fmin(std::fmax(m.shininess, 0.0f), 128.0f) : 0;
    m.transparency =
        std::isfinite(m.transparency) ? std::fmin(std::fmax(m.transparency, 0.0f), 1.0f) : 0;
    for (int i = 0; i < 2; ++i) {
        m.repeat[i] = std::isfinite(m.repeat[i]) ? m.repeat[i] : 1;
        m.offset[i] = std::isfinite(m.offset[i]) ? m.offset[i] : 0;
    }
}

} // namespace

std::string encode_scene(const plain_scene &scene)
{
    encoder stream;
    stream.word(magic);
    fields(stream, scene);
    return std::move(stream.bytes);
}

bool decode_scene(std::string_view bytes, plain_scene *scene)
{
    decoder stream(bytes);
    if (stream.word() != magic)
        return false;
    fields(stream, *scene);
    if (!stream.good() || !stream.at_end())
        return false;
    for (size_t i = 0; i < scene->nodes.size(); ++i)
        if (!node_fits(*scene, i))
            return false;
    for (plain_material &m : scene->materials)
        repair(m);
    for (plain_node &node : scene->nodes)
        cut(node.name);
    for (plain_image &image : scene->images)
        cut(image.name);
    for (std::string &warning : scene->warnings)
        cut(warning);
    return true;
}
