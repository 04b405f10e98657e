#include "edit/document/element_text.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "base/redraw.h"
#include "edit/document/selection_internal.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/identity.h"
#include "model/owners.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

bool by_object() { return !mode_has_elements(select_mode()); }

struct range_t {
    int first, last;
};

// Reads "5" or "0-5" and goes on behind it; false when there is none.
bool scan_range(const char **p, const char *end, range_t *range)
{
    const char *next =
        *p < end && **p >= '0' && **p <= '9' ? scan_int(*p, end, &range->first) : nullptr;
    if (next == nullptr)
        return false;
    range->last = range->first;
    if (next < end && *next == '-') {
        next = scan_int(next + 1, end, &range->last);
        if (next == nullptr)
            return false;
    }
    *p = next;
    return true;
}

void add_range(object_t *object, const range_t &range, owned_list *found)
{
    const flat_ptr mesh = object_flat(object);
    const bool vertices = mode_has_vertices(select_mode());
    const int count = vertices ? mesh->num_vertices() : mesh->num_surfaces();
    for (int i = std::max(0, range.first); i <= std::min(range.last, count - 1); ++i) {
        const auto place = static_cast<std::size_t>(i);
        if (vertices)
            found->add(mesh->vertex_record(place));
        else
            found->add(mesh->surface_record(place));
    }
}

} // namespace

void change_selection(const listitem *elements, bool on)
{
    if (mode_has_vertices(select_mode()))
        (on ? select_vertices : unselect_vertices)(elements);
    else if (select_mode() == SELECT_SURFACE)
        (on ? select_surfacelist : unselect_surfacelist)(elements);
    else
        (on ? select_objectlist : unselect_objectlist)(elements);
}

std::string places_text(const std::vector<int> &places)
{
    std::string text;
    for (std::size_t i = 0; i < places.size();) {
        std::size_t end = i + 1;
        while (end < places.size() && places[end] == places[end - 1] + 1)
            ++end;
        text += (i == 0 ? "" : ",") + std::to_string(places[i]);
        if (end - i > 1)
            text += "-" + std::to_string(places[end - 1]);
        i = end;
    }
    return text;
}

std::vector<int> places_of_text(const char *text, int count)
{
    std::vector<int> places;
    const char *end = text + std::strlen(text);
    range_t range;
    while (scan_range(&text, end, &range)) {
        for (int i = range.first; i <= std::min(range.last, count - 1); ++i)
            places.push_back(i);
        if (text < end && *text == ',')
            ++text;
    }
    return places;
}

std::string element_text(const listitem *elements)
{
    std::string text;
    if (by_object()) {
        for (const object_t *object : each<object_t>(elements))
            text += " " + std::to_string(object_identity(object));
    } else {
        const std::vector<owned_elements> owners = mode_has_vertices(select_mode())
                                                       ? vertices_by_owner(elements)
                                                       : surfaces_by_owner(elements);
        for (const owned_elements &owned : owners) {
            text += " " + std::to_string(object_identity(owned.object)) + ":" +
                    places_text(owned.indices);
        }
    }
    return text.empty() ? text : text.substr(1);
}

listitem *elements_of_text(const char *text)
{
    owned_list found;
    const char *end = text + std::strlen(text);
    int id = 0;
    while ((text = scan_int(text, end, &id)) != nullptr) {
        object_t *object = object_by_identity(id);
        const bool usable = object != nullptr && object->visible != 0 && object->locked == 0;
        range_t range = {
            0, object == nullptr ? -1 : std::max(object->num_vertices, object->num_surfaces)};
        const bool parts = text < end && *text == ':';
        if (usable && by_object())
            found.add(object);
        else if (usable && !parts)
            add_range(object, range, &found);
        while (text < end && (*text == ':' || *text == ',')) {
            ++text;
            if (!scan_range(&text, end, &range))
                break;
            if (usable && !by_object())
                add_range(object, range, &found);
        }
    }
    return found.release();
}

// ---- commands ----

void command_select_elements(const char *how, const char *text)
{
    const bool remove = std::strcmp(how, "remove") == 0;
    const bool replace = std::strcmp(how, "set") == 0;
    if (!remove && !replace && std::strcmp(how, "add") != 0) {
        display_message("select elements - set, add or remove, not '%s'", how);
        return;
    }
    const owned_list elements(elements_of_text(text));
    if (replace)
        clear_selection();
    if (elements.get() != nullptr)
        change_selection(elements.get(), !remove);
    redraw_all();
    display_status();
}
