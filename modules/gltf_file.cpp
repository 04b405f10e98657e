#include "modules/gltf_file.h"

#include "modules/assimp_materials.h"
#include "modules/gltf_compressed.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <fstream>
#include <sys/stat.h>

namespace {

enum { BYTE = 5120, UBYTE = 5121, SHORT = 5122, USHORT = 5123, UINT = 5125, REAL = 5126 };

// Those whose meaning this reader knows, and those that change nothing it reads.
const char *const known_extensions[] = {
    "EXT_meshopt_compression",
    "FB_ngon_encoding",
    "KHR_draco_mesh_compression",
    "KHR_lights_punctual",
    "KHR_materials_emissive_strength",
    "KHR_materials_ior",
    "KHR_materials_pbrSpecularGlossiness",
    "KHR_materials_specular",
    "KHR_materials_unlit",
    "KHR_mesh_quantization",
    "KHR_texture_transform",
    "KHR_xmp_json_ld",
};

std::size_t size_of(std::int64_t component)
{
    switch (component) {
    case BYTE:
    case UBYTE:
        return 1;
    case SHORT:
    case USHORT:
        return 2;
    case UINT:
    case REAL:
        return 4;
    default:
        return 0;
    }
}

template <class N>
double number_at(const char *p, bool normalized)
{
    N value;
    std::memcpy(&value, p, sizeof value);
    const auto number = static_cast<double>(value);
    if (!normalized)
        return number;
    return std::max(number / static_cast<double>(std::numeric_limits<N>::max()), -1.0);
}

double number_of(const char *p, int component, bool normalized)
{
    switch (component) {
    case BYTE:
        return number_at<std::int8_t>(p, normalized);
    case UBYTE:
        return number_at<std::uint8_t>(p, normalized);
    case SHORT:
        return number_at<std::int16_t>(p, normalized);
    case USHORT:
        return number_at<std::uint16_t>(p, normalized);
    case UINT:
        return number_at<std::uint32_t>(p, normalized);
    default:
        return number_at<float>(p, false);
    }
}

// Only a file: a device or a pipe might never end.
bool read_bytes(const std::string &name, std::string *bytes)
{
    struct stat about = {};
    if (stat(name.c_str(), &about) != 0 || !S_ISREG(about.st_mode))
        return false;
    std::ifstream file(name, std::ios::binary);
    bytes->resize(static_cast<std::size_t>(about.st_size));
    file.read(bytes->data(), about.st_size);
    return file.gcount() == about.st_size;
}

std::uint32_t word_at(const std::string &bytes, std::size_t at)
{
    std::uint32_t word = 0;
    std::memcpy(&word, &bytes[at], sizeof word);
    return word;
}

// A count, an offset or the like: never below zero, never beyond what memory can hold.
std::size_t size_in(const json &of, const char *name)
{
    const std::int64_t value = json_whole(of, name, 0);
    return static_cast<std::size_t>(
        std::clamp(value, std::int64_t{0}, std::int64_t{1} << 40)); // bytes
}

} // namespace

const json &json_member(const json &of, const char *name)
{
    static const json none;
    if (!of.is_object())
        return none;
    const auto found = of.find(name);
    return found == of.end() ? none : *found;
}

const json &json_extension(const json &of, const char *name)
{
    return json_member(json_member(of, "extensions"), name);
}

const json &json_element(const json &of, std::int64_t index)
{
    static const json none;
    const bool there = of.is_array() && index >= 0 && static_cast<std::uint64_t>(index) < of.size();
    return there ? of[static_cast<std::size_t>(index)] : none;
}

std::int64_t json_whole(const json &of, const char *name, std::int64_t fallback)
{
    const double value = json_real(of, name, std::nan(""));
    return std::isfinite(value) && std::fabs(value) < 1e15 ? static_cast<std::int64_t>(value)
                                                           : fallback;
}

double json_real(const json &of, const char *name, double fallback)
{
    const json &value = json_member(of, name);
    return value.is_number() ? value.get<double>() : fallback;
}

std::string json_string(const json &of, const char *name)
{
    const json &value = json_member(of, name);
    return value.is_string() ? value.get<std::string>() : "";
}

bool json_is_true(const json &of, const char *name)
{
    const json &value = json_member(of, name);
    return value.is_boolean() && value.get<bool>();
}

void json_reals(const json &of, const char *name, float *out, std::size_t count)
{
    const json &values = json_member(of, name);
    for (std::size_t i = 0; values.is_array() && i < std::min(count, values.size()); ++i)
        if (values[i].is_number())
            out[i] = static_cast<float>(values[i].get<double>());
}

bool data_of_address(const std::string &address, std::string *bytes)
{
    if (address.compare(0, 5, "data:") != 0)
        return false;
    const std::size_t comma = std::min(address.find(','), address.size());
    std::array<int, 256> values;
    values.fill(-1);
    const char *letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (int i = 0; i < 64; ++i)
        values[static_cast<unsigned char>(letters[i])] = i;
    bytes->reserve((address.size() - comma) / 4 * 3);
    unsigned bits = 0;
    int count = 0;
    for (std::size_t i = comma + 1; i < address.size(); ++i) {
        const int value = values[static_cast<unsigned char>(address[i])];
        if (value < 0)
            continue; // the filling at the end
        bits = bits << 6 | static_cast<unsigned>(value);
        count += 6;
        if (count >= 8) {
            count -= 8;
            *bytes += static_cast<char>(bits >> count & 0xFF);
        }
    }
    return true;
}

std::string gltf_file::open(const std::string &filename)
{
    name_ = filename;
    std::string bytes;
    if (!read_bytes(filename, &bytes))
        return "it cannot be read";
    std::string text;
    if (bytes.compare(0, 4, "glTF") == 0) {
        if (bytes.size() >= 8 && word_at(bytes, 4) == 1)
            return top_["asset"]["version"] = "1.0", ""; // its text stands elsewhere
        if (std::string reason = take_binary(bytes, &text); !reason.empty())
            return reason;
    } else {
        text = std::move(bytes);
    }
    top_ = json::parse(text, nullptr, false);
    if (!top_.is_object())
        return "it is no glTF: its text is damaged, or another";
    const std::string version = json_string(json_member(top_, "asset"), "version");
    if (version.compare(0, 2, "2.") != 0 && version.compare(0, 2, "1.") != 0)
        return "it is no glTF: it does not say its version";
    const std::vector<std::string> unknown = unknown_extensions("extensionsRequired");
    if (!unknown.empty() && !is_first_version())
        return "it needs the extension " + unknown.front() + ", which is not known here";
    return "";
}

bool gltf_file::is_first_version() const
{
    return json_string(json_member(top_, "asset"), "version").compare(0, 2, "1.") == 0;
}

std::string gltf_file::take_binary(const std::string &bytes, std::string *text)
{
    for (std::size_t at = 12; at + 8 <= bytes.size();) {
        const std::size_t length = word_at(bytes, at);
        const std::string kind = bytes.substr(at + 4, 4);
        at += 8;
        if (length > bytes.size() - at)
            return "it ends too early";
        if (kind == "JSON" && text->empty())
            *text = bytes.substr(at, length);
        else if (kind == std::string("BIN\0", 4) && !has_binary_) {
            binary_ = bytes.substr(at, length);
            has_binary_ = true;
        }
        at += length;
    }
    return text->empty() ? "it ends too early" : "";
}

std::vector<std::string> gltf_file::unknown_extensions(const char *list) const
{
    std::vector<std::string> unknown;
    const json &names = json_member(top_, list);
    for (std::size_t i = 0; names.is_array() && i < names.size(); ++i) {
        const std::string name = names[i].is_string() ? names[i].get<std::string>() : "";
        if (std::find(std::begin(known_extensions), std::end(known_extensions), name) ==
            std::end(known_extensions))
            unknown.push_back(name);
    }
    return unknown;
}

bool gltf_file::buffer(std::int64_t index, std::string_view *bytes)
{
    const json &about = json_element(json_member(top_, "buffers"), index);
    const std::string address = json_string(about, "uri");
    if (address.empty()) {
        *bytes = binary_;
        return index == 0 && has_binary_;
    }
    const auto known = buffers_.find(index);
    if (known == buffers_.end()) {
        std::string &read = buffers_[index];
        const std::size_t folder = name_.rfind('/') + 1; // 0 without one
        if (!data_of_address(address, &read) &&
            !read_bytes(name_.substr(0, folder) + address, &read) &&
            !read_bytes(name_.substr(0, folder) + without_escapes(address), &read))
            read.clear();
    }
    *bytes = buffers_[index];
    return !bytes->empty();
}

bool gltf_file::part_of_buffer(const json &about, std::string_view *bytes)
{
    const std::size_t offset = size_in(about, "byteOffset");
    const std::size_t length = size_in(about, "byteLength");
    if (!buffer(json_whole(about, "buffer", -1), bytes) || offset > bytes->size() ||
        length > bytes->size() - offset)
        return false;
    *bytes = bytes->substr(offset, length);
    return true;
}

bool gltf_file::view(std::int64_t index, std::string_view *bytes, std::size_t *stride)
{
    const json &about = json_element(json_member(top_, "bufferViews"), index);
    if (!about.is_object())
        return false;
    const json &packed = json_extension(about, "EXT_meshopt_compression");
    if (stride != nullptr)
        *stride = size_in(packed.is_object() ? packed : about, "byteStride");
    if (!packed.is_object())
        return part_of_buffer(about, bytes);
    if (unpacked_views_.count(index) == 0) {
        std::string_view source;
        meshopt_view form;
        form.count = size_in(packed, "count");
        form.stride = size_in(packed, "byteStride");
        form.mode = json_string(packed, "mode");
        form.filter = json_string(packed, "filter");
        if (!part_of_buffer(packed, &source) ||
            !unpack_meshopt(source, form, &unpacked_views_[index]))
            return false;
    }
    *bytes = unpacked_views_[index];
    return !bytes->empty();
}

std::size_t gltf_file::count_of(std::int64_t accessor) const
{
    return size_in(json_element(json_member(top_, "accessors"), accessor), "count");
}

std::size_t gltf_file::width_of(std::int64_t accessor) const
{
    const std::string type =
        json_string(json_element(json_member(top_, "accessors"), accessor), "type");
    return type == "SCALAR" ? 1 : type == "VEC2" ? 2 : type == "VEC3" ? 3 : type == "VEC4" ? 4 : 0;
}

bool gltf_file::numbers(std::int64_t view_index, std::size_t offset, int component,
                        std::size_t width, std::size_t count, bool normalized,
                        std::vector<double> *out)
{
    std::string_view bytes;
    std::size_t stride = 0;
    const std::size_t size = size_of(component);
    if (!view(view_index, &bytes, &stride) || size == 0)
        return false;
    stride = stride == 0 ? size * width : stride;
    constexpr std::size_t widest = 65536;
    if (stride < size * width || stride > widest || offset > bytes.size() || count > bytes.size() ||
        (count > 0 && (count - 1) * stride + size * width > bytes.size() - offset))
        return false;
    out->clear();
    out->reserve(count * width);
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t k = 0; k < width; ++k)
            out->push_back(
                number_of(&bytes[offset + i * stride + k * size], component, normalized));
    return true;
}

bool gltf_file::fill(const json &accessor, std::size_t width, std::vector<double> *out)
{
    const std::size_t count = size_in(accessor, "count");
    const auto component = static_cast<int>(json_whole(accessor, "componentType", 0));
    const bool sparse = json_member(accessor, "sparse").is_object();
    if (const std::int64_t place = json_whole(accessor, "bufferView", -1); place >= 0) {
        if (!numbers(place, size_in(accessor, "byteOffset"), component, width, count,
                     json_is_true(accessor, "normalized"), out))
            return false;
    } else {
        constexpr std::size_t most = std::size_t{1} << 26; // without bytes of their own
        if (!sparse || count > most)
            return false;
        out->assign(count * width, 0.0);
    }
    return !sparse || fill_sparse(accessor, width, out);
}

// Some elements have other values than those of the view.
bool gltf_file::fill_sparse(const json &accessor, std::size_t width, std::vector<double> *out)
{
    const json &sparse = json_member(accessor, "sparse");
    const json &places = json_member(sparse, "indices");
    const json &others = json_member(sparse, "values");
    const std::size_t count = size_in(sparse, "count");
    std::vector<double> at;
    std::vector<double> values;
    if (!numbers(json_whole(places, "bufferView", -1), size_in(places, "byteOffset"),
                 static_cast<int>(json_whole(places, "componentType", 0)), 1, count, false, &at) ||
        !numbers(json_whole(others, "bufferView", -1), size_in(others, "byteOffset"),
                 static_cast<int>(json_whole(accessor, "componentType", 0)), width, count,
                 json_is_true(accessor, "normalized"), &values))
        return false;
    const std::size_t elements = out->size() / width;
    for (std::size_t i = 0; i < count; ++i) {
        if (!(at[i] >= 0) || at[i] >= static_cast<double>(elements))
            return false;
        std::copy_n(&values[i * width], width, &(*out)[static_cast<std::size_t>(at[i]) * width]);
    }
    return true;
}

bool gltf_file::reals(std::int64_t accessor, std::size_t width, std::vector<float> *out)
{
    std::vector<double> values;
    if (width_of(accessor) != width ||
        !fill(json_element(json_member(top_, "accessors"), accessor), width, &values))
        return false;
    out->clear();
    out->reserve(values.size());
    for (const double value : values)
        out->push_back(static_cast<float>(value));
    return true;
}

bool gltf_file::wholes(std::int64_t accessor, std::vector<std::uint32_t> *out)
{
    std::vector<double> values;
    if (width_of(accessor) != 1 ||
        !fill(json_element(json_member(top_, "accessors"), accessor), 1, &values))
        return false;
    out->clear();
    out->reserve(values.size());
    for (const double value : values)
        out->push_back(value >= 0 && value <= 0xFFFFFFFFu ? static_cast<std::uint32_t>(value)
                                                          : 0xFFFFFFFFu);
    return true;
}
