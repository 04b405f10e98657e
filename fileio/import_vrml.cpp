#include "fileio/import_vrml.h"

#include "base/atomic_file.h"
#include "base/messages.h"
#include "fileio/vrml1_shapes.h"
#include "model/lights.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/textures/textures.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>

namespace {

constexpr int most_levels = 200;       // of nodes in nodes
constexpr int most_repeated = 1 << 16; // nodes read again by USE, which may repeat a USE
constexpr long most_points = 1 << 24;  // of the whole scene

// Beside the numbers of a switch's children.
constexpr int no_child = -1;
constexpr int all_children = -3;

// ---- frames ----

vrml_matrix translation(const std::vector<float> &v)
{
    vrml_matrix m = vrml_identity;
    for (std::size_t i = 0; i < 3 && i < v.size(); ++i)
        m[12 + i] = v[i];
    return m;
}

vrml_matrix scaling(const std::vector<float> &v)
{
    vrml_matrix m = vrml_identity;
    for (std::size_t i = 0; i < 3 && i < v.size(); ++i)
        m[5 * i] = v[i];
    return m;
}

// About an axis x y z by an angle, counter-clockwise seen from its tip (Rodrigues, for row
// vectors).
vrml_matrix rotation(const std::vector<float> &v)
{
    vrml_matrix m = vrml_identity;
    if (v.size() < 4)
        return m;
    const double length = std::hypot(static_cast<double>(v[0]), v[1], v[2]);
    if (!(length > 0))
        return m;
    const double x = v[0] / length;
    const double y = v[1] / length;
    const double z = v[2] / length;
    const double c = std::cos(v[3]);
    const double s = std::sin(v[3]);
    const double t = 1 - c;
    m[0] = t * x * x + c;
    m[1] = t * x * y + s * z;
    m[2] = t * x * z - s * y;
    m[4] = t * x * y - s * z;
    m[5] = t * y * y + c;
    m[6] = t * y * z + s * x;
    m[8] = t * x * z + s * y;
    m[9] = t * y * z - s * x;
    m[10] = t * z * z + c;
    return m;
}

vrml_matrix inverse_rotation(std::vector<float> v)
{
    if (v.size() > 3)
        v[3] = -v[3];
    return rotation(v);
}

// Scaled about a turned frame, turned, moved; all about a centre.
vrml_matrix whole_transform(const vrml_fields &fields)
{
    std::vector<float> centre = fields.numbers("center");
    const vrml_matrix to = translation(centre);
    for (float &value : centre)
        value = -value;
    const std::vector<float> turn = fields.numbers("scaleOrientation");
    vrml_matrix m = vrml_product(translation(centre), inverse_rotation(turn));
    m = vrml_product(m, scaling(fields.numbers("scaleFactor")));
    m = vrml_product(m, rotation(turn));
    m = vrml_product(m, rotation(fields.numbers("rotation")));
    m = vrml_product(m, to);
    return vrml_product(m, translation(fields.numbers("translation")));
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
    std::string text(name);
    std::vector<int> indices;
    const std::size_t count = std::max<std::size_t>({1, diffuse.size() / 3, emissive.size() / 3});
    for (std::size_t i = 0; i < count; ++i) {
        material m;
        material_init(&m);
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
            m.name = text.data(); // the palette keeps a copy
        indices.push_back(vesk_palette_get_new_material_index(&m));
    }
    return indices;
}

// ---- nodes ----

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
        object_set_name(top, import_base_name(filename_.c_str()).c_str());
        vrml_state state;
        state.materials = std::make_shared<std::vector<int>>(1, import_colour(0.8f, 0.8f, 0.8f));
        while (at_ < words_.size() && !failed_)
            node(top, state);
        if (left_out_ > 0 && !cancelled())
            display_message("%d nodes of %s have no counterpart here and were left out", left_out_,
                            filename_.c_str());
        return top;
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
            separator(parent, state, name);
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
            ++left_out_;
            return;
        }
        const std::size_t back = at_;
        at_ = found->second;
        ++repeating_;
        node(parent, state);
        --repeating_;
        at_ = back;
    }

    // Its own state and, when it holds anything, its own group.
    void separator(object_t *parent, const vrml_state &outer, std::string_view name)
    {
        vrml_state state = outer;
        object_t *own = new_group();
        object_set_name(own, std::string(name).c_str());
        children(own, state, all_children);
        if (own->num_children == 1 && name.empty()) {
            auto *only = reinterpret_cast<object_t *>(own->children->data);
            object_remove_child_nocleanup(own, only);
            object_free(own);
            own = only;
        }
        if (own->type == OBJECT_GROUP && own->num_children == 0)
            object_free(own);
        else
            object_add_child(parent, own);
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
    void children(object_t *parent, vrml_state &state, int chosen, bool chooses = false)
    {
        for (int number = 0; !failed_;) {
            if (at_ >= words_.size()) {
                failed_ = true;
            } else if (is_sign("}")) {
                ++at_;
                return;
            } else if (!is_node(at_)) {
                const vrml_fields fields = one_field();
                if (chooses && fields.has("whichChild"))
                    chosen = static_cast<int>(fields.number("whichChild", -1));
            } else {
                if (chosen == all_children || number == chosen)
                    node(parent, state);
                else
                    read_over(state);
                ++number;
            }
        }
    }

    // A node that adds and changes nothing.
    void read_over(vrml_state state)
    {
        object_t *scratch = new_group();
        node(scratch, state);
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
            move(translation(fields.numbers("translation")));
        else if (type == "Rotation")
            move(rotation(fields.numbers("rotation")));
        else if (type == "Scale")
            move(scaling(fields.numbers("scaleFactor")));
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
            state.by_face = value.starts_with("PER_FACE");
            state.by_index = value.ends_with("_INDEXED");
        } else if (type == "NormalBinding") {
            state.has_normals = value.starts_with("PER_VERTEX");
        } else if (type == "ShapeHints") {
            state.crease_angle = fields.number("creaseAngle", state.crease_angle);
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
        import_mesh mesh;
        if (type == "PointLight" || type == "SpotLight" || type == "DirectionalLight") {
            add_light(parent, state, fields);
        } else if (!vrml_add_shape(type, fields, state, mesh)) {
            ++left_out_;
        } else if (!mesh.empty()) {
            points_ += mesh.num_points();
            failed_ = points_ > most_points;
            object_t *object = mesh.make_object(std::string(name));
            if (!state.texture.empty()) {
                search_and_set_texture(object, filename_.c_str(), state.texture.c_str());
                object_set_texture_repeat(object, state.repeat[0], state.repeat[1]);
                object_set_texture_offset(object, state.offset[0], state.offset[1]);
            }
            object_add_child(parent, object);
        }
    }

    static void add_light(object_t *parent, const vrml_state &state, const vrml_fields &fields)
    {
        std::vector<float> place = fields.numbers("location");
        place.resize(3, place.empty() ? 0.0f : place.back());
        object_t *light = new_light();
        light->centre = vrml_place(state, place[0], place[1], place[2]);
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
    int left_out_ = 0;
    bool failed_ = false;
};

} // namespace

object_t *vesk_import_vrml(const char *filename)
{
    const std::string name = filename;
    std::string text;
    if (!read_whole_file(name.c_str(), &text))
        return import_refused(name, strerror(errno));
    if (text.starts_with("#VRML V2.0"))
        return import_refused(name, "it is VRML 2.0; only VRML 1.0 can be read");
    if (!text.starts_with("#VRML V1.0"))
        return import_refused(name, "it does not begin with \"#VRML V1.0\"");
    reader file(name, text);
    object_t *top = file.run();
    if (!file.failed() && !file.cancelled() && top->num_children > 0)
        return top;
    object_free(top);
    if (file.cancelled())
        return import_cancelled();
    return import_refused(name,
                          file.failed() ? "its nodes are damaged" : "there is no geometry in it");
}
