#include "base/messages.h"
#include "model/freed.h"
#include "model/identity_internal.h"

#include <unordered_map>

namespace {

struct identity_record {
    std::unordered_map<const object_t *, int> ids;
    std::unordered_map<int, object_t *> objects;
    int last = 0;
    std::uint64_t changes = 0;
    bool listening = false;
};

identity_record &record()
{
    static identity_record identities;
    return identities;
}

void drop(const object_t *object)
{
    identity_record &identities = record();
    const auto found = identities.ids.find(object);
    if (found == identities.ids.end())
        return;
    ++identities.changes;
    identities.objects.erase(found->second);
    identities.ids.erase(found);
}

void objects_freed(const freed_things &freed)
{
    for (const object_t *object : freed.objects)
        drop(object);
}

void enter(int id, const object_t *object)
{
    identity_record &identities = record();
    if (!identities.listening) {
        identities.listening = true;
        freed_add_listener(objects_freed);
        freed_add_holder([](freed_things &held) {
            for (const auto &[number, known] : record().objects)
                held.objects.push_back(known);
        });
    }
    drop(object);
    ++identities.changes;
    identities.ids[object] = id;
    identities.objects[id] = const_cast<object_t *>(object);
}

} // namespace

int object_identity(const object_t *object)
{
    if (!object)
        return 0;
    const int known = identity_known(object);
    if (known != 0)
        return known;
    enter(++record().last, object);
    return record().last;
}

object_t *object_by_identity(int id)
{
    const auto found = record().objects.find(id);
    if (found != record().objects.end())
        return found->second;
    console_printf("no object with id %d\n", id);
    return nullptr;
}

int identity_known(const object_t *object)
{
    const auto found = record().ids.find(object);
    return found == record().ids.end() ? 0 : found->second;
}

std::uint64_t identity_change_count() { return record().changes; }

void identity_assign(int id, const object_t *object)
{
    const auto found = record().objects.find(id);
    if (found != record().objects.end())
        drop(found->second);
    if (object && id > 0)
        enter(id, object);
}
