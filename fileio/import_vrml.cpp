#include "fileio/import_vrml.h"

#include "base/atomic_file.h"
#include "base/file_report.h"
#include "base/gzip.h"
#include "fileio/import_vrml2.h"
#include "fileio/vrml1_shapes.h"
#include "fileio/vrml_names.h"
#include "fileio/vrml_tree.h"
#include "model/each.h"
#include "model/lights.h"
#include "model/material_values.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/textures/textures.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <utility>

namespace {

constexpr int most_levels = 1000;      // of nodes in nodes
constexpr int most_repeated = 1 << 16; // nodes read again by USE, which may repeat a USE
constexpr long most_points = 1 << 24;  // of the whole scene

constexpr std::size_t most_unpacked = std::size_t{1} << 30;

// Beside the numbers of a switch's children.
constexpr int no_child = -1;
constexpr int all_children = -3;

// ---- frames ----

vrml_matrix whole_transform(const vrml_fields &fields)
{
    return vrml_whole({fields.numbers("center"), fields.numbers("scaleOrientation"),
                       fields.numbers("scaleFactor"), fields.numbers("rotation"),
                       fields.numbers("translation")});
}

vrml_matrix given_matrix(const vrml_fields &fields)
{
    const std::vector<float> values = fields.numbers("matrix");
    vrml_matrix m = vrml_identity;
    if (values.size() == m.size())
        std::copy(values.begin(), values.end(), m.begin());
    return m;
}

// ---- materials ----

void take_colour(const std::vector<float> &all, std::size_t i, float *to)
{
    if (all.size() < 3)
        return;
    const std::size_t place = std::min(i, all.size() / 3 - 1);
    std::copy_n(all.begin() + static_cast<std::ptrdiff_t>(3 * place), 3, to);
}

float value_at(const std::vector<float> &all, std::size_t i, float fallback)
{
    return all.empty() ? fallback : all[std::min(i, all.size() - 1)];
}

std::vector<int> read_materials(const vrml_fields &fields, std::string_view name)
{
    const std::vector<float> diffuse = fields.numbers("diffuseColor");
    const std::vector<float> ambient = fields.numbers("ambientColor");
    const std::vector<float> specular = fields.numbers("specularColor");
    const std::vector<float> emissive = fields.numbers("emissiveColor");
    const std::vector<float> shininess = fields.numbers("shininess");
    const std::vector<float> transparency = fields.numbers("transparency");
    const std::string text(name);
    std::vector<int> indices;
    const std::size_t count = std::max<std::size_t>({1, diffuse.size() / 3, emissive.size() / 3});
    for (std::size_t i = 0; i < count; ++i) {
        material_values m;
        const float defaults[3][3] = {{0.8f, 0.8f, 0.8f}, {0.2f, 0.2f, 0.2f}, {0, 0, 0}};
        std::copy_n(defaults[0], 3, m.diffuse);
        std::copy_n(defaults[1], 3, m.ambient);
        std::copy_n(defaults[2], 3, m.specular);
        take_colour(diffuse, i, m.diffuse);
        take_colour(ambient, i, m.ambient);
        take_colour(specular, i, m.specular);
        take_colour(emissive, i, m.emissive);
        m.shininess = std::clamp(value_at(shininess, i, 0.2f), 0.0f, 1.0f) * 128;
        m.transparency = value_at(transparency, i, 0);
        if (!text.empty())
            vesk_material_set_name(&m, text.c_str());
        indices.push_back(vesk_palette_get_new_material_index(&m));
    }
    return indices;
}

// ---- nodes ----

// The object that shapes are still added to.
struct open_shape {
    object_t *parent = nullptr;
    std::string name;
    vrml1_mesh mesh;
    vrml_state state; // at its faces
    bool has_faces = false;
};

class reader {
public:
    reader(const std::string &filename, std::string_view text)
        : filename_(filename), size_(static_cast<double>(text.size())), progress_(2 * size_),
          words_(vrml_words(text, progress_))
    {
    }

    // The tree below a new group.
    object_t *run()
    {
        object_t *top = new_group();
        vrml_state state;
        state.materials = std::make_shared<std::vector<int>>(1, import_colour(0.8f, 0.8f, 0.8f));
        while (at_ < words_.size() && !failed_)
            node(top, state);
        close_shape();
        return top;
    }

    void tell() const
    {
        for (const auto &[type, count] : left_out_)
            vesk_report_warning(0, "%d %s have no counterpart here and were left out", count,
                                std::string(type).c_str());
        if (mixed_colours_ > 0)
            vesk_report_warning(
                0, "%d surfaces have corners of several colours; they have the mean now",
                mixed_colours_);
    }

    [[nodiscard]] bool failed() const { return failed_; }
    [[nodiscard]] bool cancelled() const { return progress_.cancelled(); }

private:
    [[nodiscard]] bool is_sign(const char *sign) const
    {
        return at_ < words_.size() && words_[at_].kind == vrml_word::SIGN &&
               words_[at_].text == sign;
    }
    [[nodiscard]] bool is_name(std::size_t at) const
    {
        return at < words_.size() && words_[at].kind == vrml_word::NAME;
    }
    [[nodiscard]] bool is_node(std::size_t at) const
    {
        if (!is_name(at))
            return false;
        const std::string_view word = words_[at].text;
        return word == "DEF" || word == "USE" ||
               (at + 1 < words_.size() && words_[at + 1].text == "{" &&
                words_[at + 1].kind == vrml_word::SIGN);
    }

    // One node at the present place; it may change the state and add objects to `parent`.
    void node(object_t *parent, vrml_state &state)
    {
        std::string_view name;
        if (is_name(at_) && words_[at_].text == "USE") {
            use(parent, state);
            return;
        }
        if (is_name(at_) && words_[at_].text == "DEF" && is_name(at_ + 1)) {
            name = words_[at_ + 1].text;
            at_ += 2;
            named_[name] = at_;
        }
        if (!is_node(at_) || ++levels_ > most_levels ||
            (repeating_ > 0 && ++repeated_ > most_repeated) || !step()) {
            failed_ = true;
            return;
        }
        const std::string_view type = words_[at_].text;
        at_ += 2;
        if (type == "Separator" || type == "WWWAnchor")
            separator(parent, state, name, type == "WWWAnchor");
        else if (type == "Group" || type == "TransformSeparator" || type == "Switch" ||
                 type == "LOD")
            group(parent, state, type);
        else
            leaf(parent, state, type, name);
        --levels_;
    }

    // Reading is the second half of the work; a USE reads again.
    bool step()
    {
        const auto words = static_cast<double>(words_.size());
        return progress_.step(size_ + size_ * static_cast<double>(at_) / words);
    }

    void use(object_t *parent, vrml_state &state)
    {
        ++at_;
        const auto found = is_name(at_) ? named_.find(words_[at_].text) : named_.end();
        ++at_;
        if (found == named_.end()) {
            ++left_out_["USE"];
            return;
        }
        const std::size_t back = at_;
        at_ = found->second;
        ++repeating_;
        node(parent, state);
        --repeating_;
        at_ = back;
    }

    // Its own state and, when it holds or says anything, its own object.
    void separator(object_t *parent, const vrml_state &outer, std::string_view name, bool anchor)
    {
        vrml_state state = outer;
        object_t *own = new_group();
        object_set_name(own, full_name(name).c_str());
        close_shape();
        const std::string_view url = children(own, state, all_children);
        close_shape();
        if (!anchor || url.empty()) {
            own = vrml_joined(own, false);
        } else if (auto *only = only_child(own); only != nullptr && only->url == nullptr) {
            object_remove_child_nocleanup(own, only); // about one object: that object's address
            object_free(std::exchange(own, only));
        }
        if (own == nullptr)
            return;
        if (anchor && !url.empty())
            object_set_url(own, without_escapes(url).c_str());
        object_add_child(parent, own);
    }

    static object_t *only_child(const object_t *object)
    {
        return object->num_children == 1 && *object->name == '\0'
                   ? item_of<object_t>(object->children)
                   : nullptr;
    }

    // Within quotes a backslash stands before quotes and backslashes.
    static std::string without_escapes(std::string_view text)
    {
        std::string out;
        for (std::size_t i = 0; i < text.size(); ++i) {
            i += text[i] == '\\' && i + 1 < text.size() ? 1 : 0;
            out += text[i];
        }
        return out;
    }

    // A name that does not fit as a DEF follows in an Info node.
    [[nodiscard]] std::string full_name(std::string_view name) const
    {
        if (name.empty() || at_ + 3 >= words_.size() || words_[at_].text != "Info" ||
            words_[at_ + 2].text != "string" || words_[at_ + 3].kind != vrml_word::TEXT)
            return std::string(name);
        const std::string full = without_escapes(words_[at_ + 3].text);
        return vrml1_node_name(full) == name ? full : std::string(name);
    }

    void group(object_t *parent, vrml_state &state, std::string_view type)
    {
        const vrml_matrix frame = state.frame;
        children(parent, state,
                 type == "LOD"      ? 0
                 : type == "Switch" ? no_child
                                    : all_children,
                 type == "Switch");
        if (type == "TransformSeparator")
            state.frame = frame;
    }

    // The nodes up to the closing brace; of a switch only the chosen one adds and changes anything.
    // Returns the text of the field "name".
    std::string_view children(object_t *parent, vrml_state &state, int chosen, bool chooses = false)
    {
        std::string_view named;
        for (int number = 0; !failed_;) {
            if (at_ >= words_.size()) {
                failed_ = true;
            } else if (is_sign("}")) {
                ++at_;
                break;
            } else if (!is_node(at_)) {
                const vrml_fields fields = one_field();
                if (chooses && !fields.integers("whichChild").empty())
                    chosen = fields.integers("whichChild").front();
                if (fields.has("name"))
                    named = fields.word("name");
            } else {
                if (chosen == all_children || number == chosen)
                    node(parent, state);
                else
                    read_over(state);
                ++number;
            }
        }
        return named;
    }

    // A node that adds and changes nothing.
    void read_over(vrml_state state)
    {
        close_shape();
        object_t *scratch = new_group();
        node(scratch, state);
        close_shape();
        object_free(scratch);
    }

    // A field name with its values.
    vrml_fields one_field()
    {
        vrml_fields fields(words_);
        read_field(fields);
        return fields;
    }

    void read_field(vrml_fields &fields)
    {
        const std::string_view name = words_[at_++].text;
        const std::size_t begin = at_;
        if (is_sign("[") || is_sign("(")) {
            const char *close = is_sign("[") ? "]" : ")";
            while (at_ < words_.size() && !is_sign(close))
                ++at_;
            at_ = std::min(at_ + 1, words_.size());
        } else if (at_ < words_.size() && words_[at_].kind == vrml_word::NUMBER) {
            while (at_ < words_.size() && words_[at_].kind == vrml_word::NUMBER)
                ++at_;
        } else if (at_ < words_.size() && words_[at_].kind != vrml_word::SIGN) {
            ++at_;
        }
        fields.add(name, {begin, at_});
    }

    void leaf(object_t *parent, vrml_state &state, std::string_view type, std::string_view name)
    {
        vrml_fields fields(words_);
        while (!failed_ && !is_sign("}")) {
            if (at_ >= words_.size()) {
                failed_ = true;
            } else if (is_node(at_)) { // of a type that is not known
                read_over(state);
            } else {
                read_field(fields);
            }
        }
        ++at_;
        if (!failed_ && !set_property(state, type, fields, name))
            add_thing(parent, state, type, fields, name);
    }

    // Nodes that change the state of those after them.
    static bool set_property(vrml_state &state, std::string_view type, const vrml_fields &fields,
                             std::string_view name)
    {
        const auto move = [&](const vrml_matrix &m) { state.frame = vrml_product(m, state.frame); };
        const auto shared = [](auto values) {
            return std::make_shared<const decltype(values)>(std::move(values));
        };
        if (type == "Transform")
            move(whole_transform(fields));
        else if (type == "MatrixTransform")
            move(given_matrix(fields));
        else if (type == "Translation")
            move(vrml_translation(fields.numbers("translation")));
        else if (type == "Rotation")
            move(vrml_rotation(fields.numbers("rotation")));
        else if (type == "Scale")
            move(vrml_scaling(fields.numbers("scaleFactor")));
        else if (type == "Coordinate3")
            state.points = shared(fields.numbers("point"));
        else if (type == "TextureCoordinate2")
            state.uv = shared(fields.numbers("point"));
        else if (type == "Material")
            state.materials = shared(read_materials(fields, name));
        else
            return set_binding(state, type, fields);
        return true;
    }

    static bool set_binding(vrml_state &state, std::string_view type, const vrml_fields &fields)
    {
        const std::string_view value = fields.word("value");
        if (type == "MaterialBinding") {
            state.binding = value.starts_with("PER_VERTEX") ? vrml_state::VERTEX
                            : value.starts_with("PER_")     ? vrml_state::FACE
                                                            : vrml_state::OVERALL;
            state.by_index = value.ends_with("_INDEXED");
        } else if (type == "NormalBinding") {
            state.has_normals = value.starts_with("PER_VERTEX");
        } else if (type == "ShapeHints") {
            state.crease_angle = fields.number("creaseAngle", 0.5f);
            state.clockwise = fields.word("vertexOrdering") == "CLOCKWISE";
            state.solid = fields.word("shapeType") == "SOLID" &&
                          fields.word("vertexOrdering").ends_with("CLOCKWISE");
        } else if (type == "Texture2") {
            state.texture = fields.word("filename");
        } else if (type == "Texture2Transform") {
            const std::vector<float> scale = fields.numbers("scaleFactor");
            const std::vector<float> offset = fields.numbers("translation");
            for (std::size_t i = 0; i < 2; ++i) {
                state.repeat[i] = i < scale.size() ? scale[i] : 1;
                state.offset[i] = i < offset.size() ? offset[i] : 0;
            }
        } else {
            return type == "Normal" || type == "Info" || type == "BackgroundColor";
        }
        return true;
    }

    // Shapes and lights.
    void add_thing(object_t *parent, const vrml_state &state, std::string_view type,
                   const vrml_fields &fields, std::string_view name)
    {
        if (type == "PointLight" || type == "SpotLight" || type == "DirectionalLight") {
            close_shape();
            add_light(parent, state, fields, name);
            return;
        }
        const bool faces = type == "IndexedFaceSet";
        const bool goes_on =
            shape_.has_value() && vrml_has_points(type) && name.empty() && shape_->name.empty() &&
            shape_->parent == parent && shape_->mesh.points == state.points &&
            shape_->mesh.frame == state.frame &&
            (!faces || !shape_->has_faces || shape_->state.texture == state.texture);
        if (!goes_on) {
            close_shape();
            shape_.emplace();
            shape_->parent = parent;
            shape_->name = name;
            shape_->mesh.frame = state.frame;
            if (vrml_has_points(type))
                shape_->mesh.points = state.points;
        }
        if (faces || !vrml_has_points(type)) {
            shape_->has_faces = true;
            shape_->state = state;
        }
        if (!vrml_add_shape(type, fields, state, &shape_->mesh))
            ++left_out_[type];
    }

    // The object of the shapes that followed each other on one list of points.
    void close_shape()
    {
        if (!shape_.has_value())
            return;
        open_shape shape = std::move(*shape_);
        shape_.reset();
        points_ += shape.mesh.mesh.num_points();
        mixed_colours_ += shape.mesh.mixed_colours;
        shape.mesh.mesh.drop_unused_points(shape.mesh.loose);
        if (points_ > most_points)
            failed_ = true;
        if (shape.mesh.mesh.num_points() == 0 || failed_)
            return;
        object_t *object = shape.mesh.mesh.make_object(shape.name);
        const vrml_state &state = shape.state;
        if (shape.has_faces && !state.texture.empty()) {
            search_and_set_texture(object, filename_.c_str(), state.texture.c_str());
            object_set_texture_repeat(object, state.repeat[0], state.repeat[1]);
            object_set_texture_offset(object, state.offset[0], state.offset[1]);
        }
        object_add_child(shape.parent, object);
    }

    static void add_light(object_t *parent, const vrml_state &state, const vrml_fields &fields,
                          std::string_view name)
    {
        std::vector<float> place = fields.numbers("location");
        place.resize(3, place.empty() ? 0.0f : place.back());
        object_t *light = new_light();
        object_set_name(light, std::string(name).c_str());
        light->centre = vrml_place(state.frame, place[0], place[1], place[2]);
        object_add_child(parent, light);
    }

    const std::string &filename_;
    const double size_;
    progress_t progress_;
    const std::vector<vrml_word> words_;
    std::map<std::string_view, std::size_t> named_;
    std::size_t at_ = 0;
    int levels_ = 0;
    int repeating_ = 0; // USE in USE
    int repeated_ = 0;
    long points_ = 0;
    std::optional<open_shape> shape_;
    std::map<std::string_view, int> left_out_;
    int mixed_colours_ = 0;
    bool failed_ = false;
};

} // namespace

object_t *vesk_import_vrml(const char *filename)
{
    const std::string name = filename;
    std::string text;
    if (!read_whole_file(name.c_str(), &text))
        return import_refused(name, strerror(errno));
    if (is_gzip(text)) {
        const std::string packed = std::move(text);
        if (const char *reason = gzip_unpack(packed, most_unpacked, &text); *reason != '\0')
            return import_refused(name, reason);
    }
    if (text.starts_with("#VRML V2.0")) {
        last_file_report().format = "VRML 2.0 files";
        return import_vrml2(name, std::move(text));
    }
    if (!text.starts_with("#VRML V1.0"))
        return import_refused(name, "it begins neither with \"#VRML V2.0\" nor \"#VRML V1.0\"");
    reader file(name, text);
    object_t *top = file.run();
    if (!file.failed() && !file.cancelled() && top->num_children > 0) {
        file.tell();
        return vrml_world(top, import_base_name(name.c_str()).c_str());
    }
    object_free(top);
    if (file.cancelled())
        return import_cancelled();
    return import_refused(name,
                          file.failed() ? "its nodes are damaged" : "there is no geometry in it");
}
