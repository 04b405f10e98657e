#include "edit/current_object.h"

#include "app/messages.h"
#include "edit/selection.h"
#include "model/object.h"

namespace {

void set_text(void (*setter)(object_t *, const char *), const char *text)
{
    object_t *object = get_current_object();
    if (object == nullptr)
        return;
    setter(object, text);
    display_status();
}

} // namespace

void set_current_object_name(const char *name) { set_text(object_set_name, name); }
void set_current_object_url(const char *url) { set_text(object_set_url, url); }
void set_current_object_data(const char *data) { set_text(object_set_userdata, data); }
