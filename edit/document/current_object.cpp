#include "edit/document/current_object.h"

#include "base/messages.h"
#include "edit/document/selection.h"
#include "edit/document/undo_internal.h"
#include "model/object.h"

#include <cstring>
#include <string>

namespace {

struct text_t {
    char *object_t::*field;
    void (*set)(object_t *, const char *);
    const char *label;
};
const text_t name_text = {&object_t::name, object_set_name, "set name"};
const text_t url_text = {&object_t::url, object_set_url, "set url"};
const text_t data_text = {&object_t::data, object_set_userdata, "set data"};

// The same text again leaves no undo: entries hand their text over whenever they lose the focus.
void set_text(object_t *object, const text_t &what, const char *text)
{
    if (object == nullptr)
        return;
    const char *old = object->*what.field;
    if (std::strcmp(old == nullptr ? "" : old, text == nullptr ? "" : text) != 0) {
        const std::string kept = text == nullptr ? "" : text; // the label's display runs scripts
        new_undo_state(what.label);
        what.set(object, kept.c_str());
    }
    display_status();
}

} // namespace

void set_current_object_name(const char *name) { set_text(get_current_object(), name_text, name); }
void set_current_object_url(const char *url) { set_text(get_current_object(), url_text, url); }
void set_current_object_data(const char *data) { set_text(get_current_object(), data_text, data); }

void set_object_name(object_t *object, const char *name) { set_text(object, name_text, name); }
void set_object_url(object_t *object, const char *url) { set_text(object, url_text, url); }
void set_object_data(object_t *object, const char *data) { set_text(object, data_text, data); }
