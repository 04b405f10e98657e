#include "edit/object_properties.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "edit/document/undo_internal.h"
#include "edit/object_flags.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/identity.h"
#include "model/object_internal.h"
#include "model/object_notes.h"
#include "model/object_tree.h"

#include <cstring>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace {

// Null is no text at all.
using value_t = std::optional<std::string>;

value_t value_of(const char *text) { return text == nullptr ? value_t() : value_t(text); }
const char *text_of(const value_t &value) { return value ? value->c_str() : nullptr; }

int flag_of(const value_t &value) { return value && int_of(*value) != 0 ? 1 : 0; }

struct property_t {
    const char *key;
    const char *label; // of the undo record
    bool is_flag;      // of the object and all below it
    value_t (*get)(const object_t *);
    void (*set)(object_t *, const value_t &);
};
const property_t properties[] = {
    {"name", "rename", false, [](const object_t *o) { return value_of(o->name); },
     [](object_t *o, const value_t &v) { object_set_name(o, v ? v->c_str() : ""); }},
    {"url", "set url", false, [](const object_t *o) { return value_of(o->url); },
     [](object_t *o, const value_t &v) { object_set_url(o, text_of(v)); }},
    {"data", "set data", false, [](const object_t *o) { return value_t(object_user_data(o)); },
     [](object_t *o, const value_t &v) { object_set_user_data(o, v.value_or("")); }},
    {"visible", "hide or show", true,
     [](const object_t *o) { return value_t(std::to_string(o->visible)); },
     [](object_t *o, const value_t &v) {
         o->visible = flag_of(v);
         object_mark(o, CHANGED_RECORD);
     }},
    {"locked", "lock or unlock", true,
     [](const object_t *o) { return value_t(std::to_string(o->locked)); },
     [](object_t *o, const value_t &v) {
         o->locked = flag_of(v);
         object_mark(o, CHANGED_RECORD);
     }},
    {"type", "set type", false,
     [](const object_t *o) { return value_t(object_type_word(o->type)); },
     [](object_t *o, const value_t &v) {
         o->type = *v == "group" ? OBJECT_GROUP : OBJECT_POLY;
         object_mark(o, CHANGED_RECORD);
         tree_mark();
     }},
};

// A group has no geometry of its own; lights and the world keep their types.
bool can_be(const object_t *object, const std::string &type)
{
    const bool changes = object->type != OBJECT_LIGHT && object->type != OBJECT_WORLD;
    return changes && (type == "poly" ||
                       (type == "group" && object->num_surfaces == 0 && object->num_vertices == 0));
}

const property_t *property(const char *key)
{
    for (const property_t &row : properties) {
        if (std::strcmp(row.key, key) == 0) {
            return &row;
        }
    }
    return nullptr;
}

std::vector<object_t *> objects_of(const char *ids, bool with_descendants)
{
    std::vector<object_t *> found;
    std::unordered_set<const object_t *> seen;
    const char *end = ids + std::strlen(ids);
    int id = 0;
    while ((ids = scan_int(ids, end, &id)) != nullptr) {
        object_t *top = object_by_identity(id);
        if (top == nullptr) {
            continue;
        }
        for_each_object(top, [&](object_t *object) {
            if ((with_descendants || object == top) && seen.insert(object).second) {
                found.push_back(object);
            }
        });
    }
    return found;
}

} // namespace

void command_objects_set(int, const char *const *words)
{
    const property_t *what = property(words[1]);
    if (what == nullptr) {
        display_message("objects_set - no property named '%s'", words[1]);
        return;
    }
    const value_t value = words[2];
    std::vector<object_t *> differing;
    for (object_t *object : objects_of(words[0], what->is_flag)) {
        const value_t before = what->get(object);
        const bool same =
            what->is_flag ? flag_of(before) == flag_of(value) : before.value_or("") == *value;
        if (!same && (what->key != std::string("type") || can_be(object, *value))) {
            differing.push_back(object);
        }
    }
    if (differing.empty()) {
        return;
    }
    new_undo_state(what->label);
    for (object_t *object : differing) {
        what->set(object, value);
    }
    if (what->is_flag) {
        object_flags_changed();
    } else {
        display_status();
    }
}
