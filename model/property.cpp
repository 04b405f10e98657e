#include "model/property.h"

#include "model/alloc_internal.h"
#include "model/change_marks.h"
#include "model/each.h"

#include <cstring>

vesk_prop_t *vesk_new_prop(const char *name, const char *kind, const char *value)
{
    auto *prop = static_cast<vesk_prop_t *>(myalloc(sizeof(vesk_prop_t)));
    if (prop)
        *prop = {text_copy(name), text_copy(kind), text_copy(value)};
    return prop;
}

void vesk_prop_free(vesk_prop_t *prop)
{
    text_set(&prop->name, nullptr);
    text_set(&prop->kind, nullptr);
    text_set(&prop->value, nullptr);
}

vesk_prop_t *vesk_proplist_get_prop(const listitem *list, const char *name)
{
    for (vesk_prop_t *prop : each<vesk_prop_t>(list)) {
        if (prop->name && std::strcmp(prop->name, name) == 0)
            return prop;
    }
    return nullptr;
}

const char *vesk_proplist_get_value(const listitem *list, const char *name)
{
    const vesk_prop_t *prop = vesk_proplist_get_prop(list, name);
    return prop ? prop->value : nullptr;
}

int vesk_proplist_set_value(listitem **list, const char *name, const char *kind, const char *value)
{
    vesk_prop_t *prop = vesk_proplist_get_prop(*list, name);
    if (prop) {
        text_set(&prop->value, value);
        return 1;
    }
    list_add_item(list, vesk_new_prop(name, kind, value));
    return 0;
}

listitem *vesk_proplist_duplicate(const listitem *list)
{
    owned_list copy;
    for (const vesk_prop_t *prop : each<vesk_prop_t>(list))
        copy.add(vesk_new_prop(prop->name, prop->kind, prop->value));
    return copy.release();
}

void proplist_free(listitem **list)
{
    for (vesk_prop_t *prop : each<vesk_prop_t>(*list))
        vesk_prop_free(prop);
    list_free_all(list);
}

int proplist_remove(listitem **list, const char *name)
{
    vesk_prop_t *prop = vesk_proplist_get_prop(*list, name);
    if (!prop)
        return 0;
    list_remove_item(list, prop);
    vesk_prop_free(prop);
    myfree(prop);
    return 1;
}

int vesk_material_set_prop_value(material *mat, const char *name, const char *kind,
                                 const char *value)
{
    return vesk_proplist_set_value(&mat->properties, name, kind, value);
}

const char *vesk_material_get_prop_value(const material *mat, const char *name)
{
    return vesk_proplist_get_value(mat->properties, name);
}

int vesk_material_get_num_prop(const material *mat) { return list_count(mat->properties); }

vesk_prop_t *vesk_material_get_prop_at(const material *mat, int i)
{
    return static_cast<vesk_prop_t *>(list_get_item(mat->properties, i));
}

int vesk_object_set_prop_value(object_t *object, const char *name, const char *kind,
                               const char *value)
{
    object_mark(object, CHANGED_RECORD);
    return vesk_proplist_set_value(&object->properties, name, kind, value);
}

const char *vesk_object_get_prop_value(const object_t *object, const char *name)
{
    return vesk_proplist_get_value(object->properties, name);
}
