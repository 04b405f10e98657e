#include "fileio/import_vrml2.h"

#include "base/atomic_file.h"
#include "base/file_report.h"
#include "base/filename.h"
#include "base/gzip.h"
#include "fileio/vrml2_shapes.h"
#include "fileio/vrml_names.h"
#include "fileio/vrml_tree.h"
#include "model/each.h"
#include "model/lights.h"
#include "model/object_tree.h"
#include "model/textures/textures.h"
#include "model/vertex_colours.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <filesystem>
#include <optional>
#include <utility>

namespace {

constexpr int most_inlines = 8;               // in each other
constexpr std::size_t most_inlined = 1 << 28; // characters of all of them
constexpr int most_walked = 1000;             // nodes in nodes, also by way of PROTO and Inline

bool is_one_of(std::string_view word, std::initializer_list<std::string_view> words)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

// ---- looks ----

void take_colour(const vrml2_fields &from, const char *field, float *to)
{
    const std::vector<float> rgb = from.numbers(field);
    if (rgb.size() >= 3)
        std::copy_n(rgb.begin(), 3, to);
}

void take_material(const vrml2_fields &from, vrml2_look *look)
{
    material &m = look->colours;
    look->lit = !from.none();
    std::fill_n(m.diffuse, 3, from.none() ? 1.0f : 0.8f);
    std::fill_n(m.specular, 3, 0.0f);
    std::fill_n(m.emissive, 3, 0.0f);
    if (from.none()) {
        std::fill_n(m.ambient, 3, 0.2f);
        m.shininess = 0;
        return;
    }
    take_colour(from, "diffuseColor", m.diffuse);
    take_colour(from, "specularColor", m.specular);
    take_colour(from, "emissiveColor", m.emissive);
    const float share = from.number("ambientIntensity", 0.2f);
    for (int i = 0; i < 3; ++i)
        m.ambient[i] = share * m.diffuse[i];
    // The format's value is at most 1; larger ones were written as they are here.
    const float shininess = from.number("shininess", 0.2f);
    m.shininess = std::clamp(shininess > 1 ? shininess : shininess * 128, 0.0f, 128.0f);
    m.transparency = std::clamp(from.number("transparency", 0), 0.0f, 1.0f);
    look->name = from.name();
}

// Coordinates are moved, moved to the centre, turned, scaled, and moved back.
std::array<double, 6> texture_frame(const vrml2_fields &from)
{
    const auto pair = [&from](const char *field, float fallback) {
        std::vector<float> both = from.numbers(field);
        both.resize(2, fallback);
        return both;
    };
    const std::vector<float> c = pair("center", 0);
    const std::vector<float> s = pair("scale", 1);
    const std::vector<float> t = pair("translation", 0);
    const double angle = from.number("rotation", 0);
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    const double x = static_cast<double>(t[0]) + c[0];
    const double y = static_cast<double>(t[1]) + c[1];
    return {s[0] * cosine, -s[0] * sine,  s[0] * (cosine * x - sine * y) - c[0],
            s[1] * sine,   s[1] * cosine, s[1] * (sine * x + cosine * y) - c[1]};
}

// ---- the tree ----

class converter {
public:
    // Reads a file's nodes below an object. "" or why not.
    std::string file(const std::string &name, std::string text, const vrml_matrix &frame,
                     object_t *parent)
    {
        vrml2_file &own = files_.emplace_back();
        own.text = std::move(text);
        budget_.grow(own.text.size());
        progress_t progress(static_cast<double>(own.text.size()));
        const std::string reason = vrml2_parse(&own, progress);
        cancelled_ = cancelled_ || progress.cancelled();
        if (!reason.empty() || cancelled_)
            return reason;
        routes_ += own.routes;
        unknown_uses_ += own.unknown_uses;
        const std::string outer = std::exchange(filename_, name);
        walk(nodes(own.top), frame, parent);
        if (shapes_ == 0) // a world of PROTOs alone shows each of them
            for (const auto &[proto_name, proto] : own.library)
                group_of(nodes(proto->body), frame, std::string(proto_name), "", nullptr, parent);
        filename_ = outer;
        if (budget_.failed)
            return "its nodes repeat each other beyond what can be held";
        return too_deep_ ? "its nodes lie in more than 1000 others" : "";
    }

    [[nodiscard]] bool cancelled() const { return cancelled_; }

    void tell() const
    {
        for (const auto &[what, count] : budget_.left_out_counts)
            vesk_report_warning(0, "%d %s have no counterpart here and were left out", count,
                                what.c_str());
        if (routes_ > 0)
            vesk_report_warning(0, "%d ROUTE have no counterpart here and were left out", routes_);
        if (unknown_uses_ > 0)
            vesk_report_warning(0, "%d USE name a node that is not there", unknown_uses_);
        if (not_shown_ > 0)
            vesk_report_warning(0, "%d children of Switch and LOD that are not shown were left out",
                                not_shown_);
        if (mixed_colours_ > 0)
            vesk_report_warning(
                0, "%d corners have another colour than their point elsewhere; the last is taken",
                mixed_colours_);
    }

private:
    using field_list = std::vector<vrml2_fields>;

    field_list nodes(const std::vector<const vrml2_node *> &from)
    {
        field_list all;
        for (const vrml2_node *node : from)
            if (vrml2_fields fields(node, nullptr, &budget_); !fields.none())
                all.push_back(fields);
        return all;
    }

    // The shapes that follow each other as one object, as far as they came.
    struct open_shape {
        vrml2_mesh mesh;
        vrml2_look look; // of its faces
        std::string name;
        bool is_named = false; // by the file, not by a comment
        bool has_faces = false;
    };

    void walk(const field_list &children, const vrml_matrix &frame, object_t *parent)
    {
        if (++level_ > most_walked)
            too_deep_ = true;
        std::optional<open_shape> open;
        for (const vrml2_fields &child : children) {
            if (too_deep_ || budget_.failed)
                break;
            if (child.type() == "Shape") {
                shape(child, frame, &open, parent);
                continue;
            }
            close(&open, frame, parent);
            node(child, frame, parent);
        }
        close(&open, frame, parent);
        --level_;
    }

    void node(const vrml2_fields &from, const vrml_matrix &frame, object_t *parent)
    {
        const std::string_view type = from.type();
        if (type == "Transform")
            transform(from, frame, parent);
        else if (is_one_of(type, {"Group", "Collision", "Billboard"}))
            group_of(from.children("children"), frame, name_of(from), "", nullptr, parent);
        else if (type == "Anchor")
            anchor(from, frame, parent);
        else if (type == "Switch" || type == "LOD")
            chosen(from, type, frame, parent);
        else if (type == "Inline")
            inlined(from, frame, parent);
        else if (is_one_of(type, {"PointLight", "SpotLight", "DirectionalLight"}))
            light(from, frame, parent);
        else if (type != "WorldInfo")
            budget_.left_out(type);
    }

    // The name that does not fit as a DEF stands in a WorldInfo, the first of the children.
    static std::string name_of(const vrml2_fields &from)
    {
        const vrml2_fields first = from.name().empty() ? vrml2_fields() : from.child("children");
        const std::vector<std::string> title =
            first.type() == "WorldInfo" ? first.texts("title") : std::vector<std::string>();
        if (!title.empty() && vrml2_node_name(title[0]) == from.name())
            return title[0];
        return std::string(from.name());
    }

    object_t *group_of(const field_list &children, const vrml_matrix &frame,
                       const std::string &name, const std::string &url,
                       const std::vector<float> *centre, object_t *parent)
    {
        object_t *group = new_group();
        object_set_name(group, name.c_str());
        if (!url.empty())
            object_set_url(group, url.c_str());
        if (centre != nullptr)
            vrml_set_frame(group, frame, *centre);
        walk(children, frame, group);
        group = vrml_joined(group, centre != nullptr);
        if (group != nullptr)
            object_add_child(parent, group);
        return group;
    }

    void transform(const vrml2_fields &from, const vrml_matrix &outer, object_t *parent)
    {
        const vrml_transform fields = {from.numbers("center"), from.numbers("scaleOrientation"),
                                       from.numbers("scale"), from.numbers("rotation"),
                                       from.numbers("translation")};
        std::string name = name_of(from);
        if (name.empty())
            name = from.node()->told;
        group_of(from.children("children"), vrml_product(vrml_whole(fields), outer), name, "",
                 &fields.centre, parent);
    }

    // About one object it is that object's address.
    void anchor(const vrml2_fields &from, const vrml_matrix &frame, object_t *parent)
    {
        const std::vector<std::string> urls = from.texts("url");
        const std::string url = urls.empty() ? "" : urls[0];
        const field_list children = from.children("children");
        object_t *holder = new_group();
        walk(children, frame, holder);
        object_t *only = holder->num_children == 1 ? item_of<object_t>(holder->children) : nullptr;
        const bool takes =
            only != nullptr && (only->url == nullptr || *only->url == '\0') && from.name().empty();
        object_set_url(takes ? only : holder, url.c_str());
        if (!takes)
            object_set_name(holder, std::string(from.name()).c_str());
        if (object_t *joined = takes ? unwrapped(holder, only) : vrml_joined(holder, false))
            object_add_child(parent, joined);
    }

    static object_t *unwrapped(object_t *holder, object_t *only)
    {
        object_remove_child_nocleanup(holder, only);
        object_free(holder);
        return only;
    }

    void chosen(const vrml2_fields &from, std::string_view type, const vrml_matrix &frame,
                object_t *parent)
    {
        const char *field = type == "LOD" ? "level" : "choice";
        const field_list all = from.children(from.has(field) ? field : "children");
        const std::vector<int> which = from.integers("whichChoice");
        const int number = type == "LOD" ? 0 : which.empty() ? -1 : which[0];
        field_list one;
        if (number >= 0 && static_cast<std::size_t>(number) < all.size())
            one.push_back(all[static_cast<std::size_t>(number)]);
        not_shown_ += static_cast<int>(all.size() - one.size());
        group_of(one, frame, std::string(from.name()), "", nullptr, parent);
    }

    void light(const vrml2_fields &from, const vrml_matrix &frame, object_t *parent)
    {
        std::vector<float> place = from.numbers("location");
        place.resize(3, 0);
        object_t *made = new_light();
        object_set_name(made, std::string(from.name()).c_str());
        made->centre = vrml_place(frame, place[0], place[1], place[2]);
        object_add_child(parent, made);
    }

    // ---- other files ----

    void inlined(const vrml2_fields &from, const vrml_matrix &frame, object_t *parent)
    {
        for (const std::string &url : from.texts("url")) {
            std::string text;
            if (inlines_ >= most_inlines || !read_beside(url, &text))
                continue;
            object_t *group = new_group();
            const std::string_view name = from.name();
            object_set_name(group, name.empty() ? import_base_name(url.c_str()).c_str()
                                                : std::string(name).c_str());
            ++inlines_;
            const std::string reason = file(read_name_, std::move(text), frame, group);
            --inlines_;
            if (!reason.empty())
                vesk_report_warning(0, "%s: %s", url.c_str(), reason.c_str());
            if (object_t *joined = vrml_joined(group, false))
                object_add_child(parent, joined);
            return;
        }
        budget_.left_out("Inline");
    }

    // Files in the world's own folder and below it.
    bool read_beside(const std::string &url, std::string *text)
    {
        namespace fs = std::filesystem;
        std::error_code error;
        const fs::path folder =
            fs::weakly_canonical(fs::absolute(fs::path(filename_), error).parent_path(), error);
        const fs::path file = fs::weakly_canonical(folder / fs::path(url), error);
        const auto [end, ignored] =
            std::mismatch(folder.begin(), folder.end(), file.begin(), file.end());
        if (error || end != folder.end() || !fs::is_regular_file(file, error) ||
            fs::file_size(file, error) > most_inlined || !read_whole_file(file.c_str(), text))
            return false;
        if (is_gzip(*text)) {
            const std::string packed = std::move(*text);
            if (*gzip_unpack(packed, most_inlined, text) != '\0')
                return false;
        }
        read_name_ = file;
        inlined_ += text->size();
        return text->starts_with("#VRML V2.0") && inlined_ <= most_inlined;
    }

    // ---- shapes ----

    vrml2_look look_of(const vrml2_fields &shape)
    {
        vrml2_look look;
        const vrml2_fields appearance = shape.child("appearance");
        take_material(appearance.child("material"), &look);
        const vrml2_fields picture = appearance.child("texture");
        if (picture.type() == "ImageTexture") {
            const std::vector<std::string> urls = picture.texts("url");
            look.picture = urls.empty() ? "" : urls[0];
        } else if (!picture.none()) {
            budget_.left_out(picture.type());
        }
        if (const vrml2_fields placed = appearance.child("textureTransform"); !placed.none())
            look.placed = texture_frame(placed);
        return look;
    }

    void shape(const vrml2_fields &from, const vrml_matrix &frame, std::optional<open_shape> *open,
               object_t *parent)
    {
        const vrml2_fields geometry = from.child("geometry");
        if (geometry.none())
            return;
        ++shapes_;
        const vrml2_look look = look_of(from);
        std::string name(from.name());
        if (name.empty())
            name = from.node()->told;
        const std::string_view coordinates = vrml2_coordinates(geometry);
        const bool faces = !vrml2_only_lines(geometry.type());
        const bool goes_on =
            open->has_value() && name.empty() && !(*open)->is_named && !coordinates.empty() &&
            (*open)->mesh.coordinates == coordinates &&
            (!faces || !(*open)->has_faces ||
             ((*open)->look.picture == look.picture && (*open)->look.placed == look.placed));
        if (!goes_on) {
            close(open, frame, parent);
            open->emplace();
            (*open)->name = name;
            (*open)->is_named = !from.name().empty();
            (*open)->mesh.coordinates = coordinates;
        }
        if (faces || !goes_on)
            (*open)->look = look;
        (*open)->has_faces = (*open)->has_faces || faces;
        vrml2_look written = look;
        if (keeps_placing(look))
            written.placed = vrml2_look().placed; // the object has it
        if (!vrml2_add_shape(geometry, written, frame, &budget_, &(*open)->mesh))
            budget_.left_out(geometry.type());
    }

    // Whether the texture's placing is one of repeats and offsets, which an object has.
    static bool keeps_placing(const vrml2_look &look)
    {
        return !look.picture.empty() && look.placed[1] == 0 && look.placed[3] == 0;
    }

    void close(std::optional<open_shape> *open, const vrml_matrix &frame, object_t *parent)
    {
        if (!open->has_value())
            return;
        open_shape shape = std::move(**open);
        open->reset();
        mixed_colours_ += shape.mesh.mixed_colours;
        const std::vector<bool> kept = shape.mesh.mesh.drop_unused_points(shape.mesh.loose);
        if (shape.mesh.mesh.num_points() == 0 || budget_.failed)
            return;
        object_t *object = shape.mesh.mesh.make_object(shape.name);
        set_colours(object, shape.mesh.colours, kept);
        vrml_set_frame(object, frame, {});
        const vrml2_look &look = shape.look;
        if (shape.has_faces && !look.picture.empty()) {
            search_and_set_texture(object, filename_.c_str(), look.picture.c_str());
            if (keeps_placing(look)) {
                object_set_texture_repeat(object, static_cast<float>(look.placed[0]),
                                          static_cast<float>(look.placed[4]));
                object_set_texture_offset(object, static_cast<float>(look.placed[2]),
                                          static_cast<float>(look.placed[5]));
            }
        }
        object_add_child(parent, object);
    }

    static void set_colours(object_t *object, const std::vector<unsigned char> &colours,
                            const std::vector<bool> &kept)
    {
        if (colours.empty())
            return;
        std::vector<unsigned char> of_kept;
        for (std::size_t i = 0; i < kept.size(); ++i)
            for (std::size_t k = 0; kept[i] && k < 3; ++k)
                of_kept.push_back(3 * i + k < colours.size() ? colours[3 * i + k] : 255);
        vesk_object_set_vertex_colours(object, of_kept.data());
    }

    vrml2_account budget_;
    std::deque<vrml2_file> files_;
    std::string filename_; // of the nodes at hand
    std::string read_name_;
    std::size_t inlined_ = 0;
    int inlines_ = 0, level_ = 0, shapes_ = 0;
    int routes_ = 0, unknown_uses_ = 0, not_shown_ = 0, mixed_colours_ = 0;
    bool cancelled_ = false, too_deep_ = false;
};

} // namespace

object_t *import_vrml2(const std::string &filename, std::string text)
{
    converter world;
    object_t *top = new_group();
    const std::string reason = world.file(filename, std::move(text), vrml_identity, top);
    if (reason.empty() && !world.cancelled() && top->num_children > 0) {
        world.tell();
        return vrml_world(top, import_base_name(filename.c_str()).c_str());
    }
    object_free(top);
    if (world.cancelled())
        return import_cancelled();
    return import_refused(filename, reason.empty() ? "there is no geometry in it" : reason.c_str());
}
