#ifndef VESK_MODULES_GLTF_FILE_H
#define VESK_MODULES_GLTF_FILE_H

// A glTF 2.0 file, text or binary, with the bytes that its buffers, views and accessors stand for.
// Nothing in it is trusted: what is missing or of another kind than it should be reads as nothing,
// and numbers that would lie outside their buffer make the file one that cannot be read.

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

using json = nlohmann::json;

// Members of objects, whatever `of` is.
const json &json_member(const json &of, const char *name); // null when there is none
const json &json_extension(const json &of, const char *name);
const json &json_element(const json &of, std::int64_t index);
std::int64_t json_whole(const json &of, const char *name, std::int64_t fallback);
double json_real(const json &of, const char *name, double fallback);
std::string json_string(const json &of, const char *name);
bool json_is_true(const json &of, const char *name);
// Numbers of an array, as many as there are and fit.
void json_reals(const json &of, const char *name, float *out, std::size_t count);

// "data:image/png;base64,..." has its bytes within; false for any other address.
bool data_of_address(const std::string &address, std::string *bytes);

class gltf_file {
public:
    // "", or why it cannot be read. Required extensions must be known.
    std::string open(const std::string &filename);
    [[nodiscard]] bool is_first_version() const; // 1.0, which has another structure
    [[nodiscard]] const json &top() const { return top_; }
    [[nodiscard]] const std::string &name() const { return name_; }
    // Names of extensions that the file has and this reader does not know.
    [[nodiscard]] std::vector<std::string> unknown_extensions(const char *list) const;

    // The bytes of a view; they stay as long as the file. False when it has none.
    bool view(std::int64_t index, std::string_view *bytes, std::size_t *stride = nullptr);
    // `width` numbers for each element of an accessor, as real numbers. False when it cannot be read.
    bool reals(std::int64_t accessor, std::size_t width, std::vector<float> *out);
    // The same of whole numbers, one each.
    bool wholes(std::int64_t accessor, std::vector<std::uint32_t> *out);
    [[nodiscard]] std::size_t count_of(std::int64_t accessor) const;
    [[nodiscard]] std::size_t width_of(std::int64_t accessor) const;

private:
    std::string take_binary(const std::string &bytes, std::string *text);
    bool buffer(std::int64_t index, std::string_view *bytes);
    bool part_of_buffer(const json &about, std::string_view *bytes);
    bool fill(const json &accessor, std::size_t width, std::vector<double> *out);
    bool fill_sparse(const json &accessor, std::size_t width, std::vector<double> *out);
    bool numbers(std::int64_t view_index, std::size_t offset, int component, std::size_t width,
                 std::size_t count, bool normalized, std::vector<double> *out);

    json top_;
    std::string name_;
    std::string binary_; // the second part of a binary file
    bool has_binary_ = false;
    std::map<std::int64_t, std::string> buffers_, unpacked_views_;
};

#endif
