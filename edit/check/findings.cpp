#include "edit/check/findings.h"

#include "base/ui_calls.h"
#include "base/ui_port.h"
#include "base/worker.h"
#include "edit/check/mesh_check.h"
#include "model/change_marks_internal.h"
#include "model/each.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <iterator>
#include <memory>
#include <system_error>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

// Vertices and corners that are looked at in less time than anybody notices.
constexpr std::size_t at_once = 50'000;

// The arrays that findings are made from. An array that was freed is the same as no other.
class mesh_key {
public:
    explicit mesh_key(const flat_mesh &mesh)
        : positions_(mesh.positions), face_normals_(mesh.face_normals), surfaces_(mesh.surfaces),
          corner_offsets_(mesh.corner_offsets), corners_(mesh.corners)
    {
    }
    [[nodiscard]] bool is_of(const flat_mesh &mesh) const
    {
        return same(positions_, mesh.positions) && same(face_normals_, mesh.face_normals) &&
               same(surfaces_, mesh.surfaces) && same(corner_offsets_, mesh.corner_offsets) &&
               same(corners_, mesh.corners);
    }

private:
    using array_t = std::weak_ptr<const void>;
    template <class T>
    static bool same(const array_t &a, const flat_array<T> &b)
    {
        return !a.owner_before(b) && !b.owner_before(a);
    }
    array_t positions_, face_normals_, surfaces_, corner_offsets_, corners_;
};

struct kept_findings {
    mesh_key key;
    unsigned asked_in; // the sweep before which somebody asked for them last; 0 for nobody
    model_findings findings;
};

using findings_by_object = std::unordered_map<const object_t *, kept_findings>;

// Objects that the worker goes through. It enters the findings of one after the other and counts
// them; who reads them waits for its end. Of a hundred thousand objects the main thread makes no record
// but what the worker needs.
struct job_t {
    struct item_t {
        object_t *object; // no business of the worker's but as a key
        flat_ptr mesh;
    };
    std::vector<item_t> items;
    findings_by_object found; // of those that are done
    std::atomic<std::size_t> done = 0;
    std::atomic<bool> given_up = false;
    std::atomic<bool> ended = false;
    worker_t worker; // last, so that it is waited for first
};

struct record_t {
    findings_by_object kept;
    std::unique_ptr<job_t> job;
    unsigned sweep = 1;
    std::size_t asked = 0; // how many of the kept were asked for before this sweep
    // The objects in the order of the last look at all of them, and what is kept of each. Who looks at them again
    // finds most in this order, which is quicker than to look each of them up.
    std::vector<std::pair<const object_t *, kept_findings *>> order;
    std::size_t next = 0; // in `order`
};
record_t &record()
{
    static auto *const findings = new record_t;
    return *findings;
}

void keep(const object_t *object, const flat_mesh &mesh, model_findings &&findings)
{
    record().kept.insert_or_assign(object, kept_findings{mesh_key(mesh), 0, std::move(findings)});
}

kept_findings *entry_of(const object_t *object)
{
    record_t &all = record();
    for (std::size_t i = all.next; i < std::min(all.next + 2, all.order.size());
         ++i) { // one may be gone
        if (all.order[i].first == object) {
            all.next = i + 1;
            return all.order[i].second;
        }
    }
    const auto found = all.kept.find(object);
    return found != all.kept.end() ? &found->second : nullptr;
}

// Null for none that hold any more.
kept_findings *known(object_t *object)
{
    kept_findings *const entry = entry_of(object);
    return entry != nullptr && entry->key.is_of(*object_flat(object)) ? entry : nullptr;
}

// Waits for the worker and keeps what it has found, whatever has become of the objects: what is gone or
// was changed has other arrays now. Throws what it has thrown.
void take_job()
{
    const std::unique_ptr<job_t> job = std::move(record().job);
    if (!job)
        return;
    std::exception_ptr failure;
    try {
        job->worker.join();
    } catch (...) {
        failure = std::current_exception();
    }
    record().order.clear();
    // What was found last holds.
    findings_by_object &kept = record().kept;
    if (job->found.size() < kept.size() / 2) {
        for (const auto &[object, findings] : job->found)
            kept.erase(object);
        kept.merge(job->found);
    } else {
        job->found.merge(kept);
        kept.swap(job->found);
    }
    if (failure)
        std::rethrow_exception(failure);
}

void work_on(job_t &job)
{
    const auto go_on = [&job] { return !job.given_up; };
    for (const job_t::item_t &item : job.items) {
        model_findings findings = mesh_find_problems(item.mesh, problems_shown, go_on);
        if (job.given_up)
            return;
        job.found.emplace(item.object, kept_findings{mesh_key(*item.mesh), 0, std::move(findings)});
        ++job.done;
    }
}

// On the main thread, some time after the end of a job: somebody may have taken it already.
void tell_end() { tcl_command("model_check_ended"); }

// False when there is no thread to be had.
bool start_job(std::unique_ptr<job_t> job)
{
    const auto wake = ui_port().wake;
    job_t &own = *job;
    try {
        own.worker = worker_t(
            [&own] {
                work_in_background();
                work_on(own);
            },
            [&own, wake] {
                own.ended = true;
                wake(tell_end);
            });
    } catch (const std::system_error &) {
        return false;
    }
    record().job = std::move(job);
    return true;
}

} // namespace

const model_findings &findings_of(object_t *object)
{
    kept_findings *found = known(object);
    if (found == nullptr && record().job) {
        model_check_follow();
        take_job();
        found = known(object);
    }
    if (found == nullptr) {
        const flat_ptr mesh = object_flat(object);
        keep(object, *mesh, mesh_find_problems(mesh, problems_shown, [] { return true; }));
        found = &record().kept.at(object);
    }
    if (std::exchange(found->asked_in, record().sweep) != record().sweep)
        ++record().asked;
    return found->findings;
}

void findings_sweep()
{
    record_t &all = record();
    if (all.asked < all.kept.size()) {
        constexpr int most = 20000; // those of others go at the next sweeps
        int left = most;
        all.order.clear();
        std::erase_if(all.kept, [&](const auto &entry) {
            return entry.second.asked_in != all.sweep && --left >= 0;
        });
    }
    ++all.sweep;
    all.asked = 0;
    all.next = 0;
}

bool model_check_begin(object_t *top)
{
    if (record().job && record().job->ended)
        take_job();
    if (record().job) {
        model_check_follow();
        return false;
    }
    auto job = std::make_unique<job_t>();
    std::size_t size = 0;
    record().next = 0;
    std::vector<std::pair<const object_t *, kept_findings *>> order;
    order.reserve(record().order.size());
    for_each_object(top, [&](object_t *object) {
        if (kept_findings *const entry = known(object); entry != nullptr) {
            order.emplace_back(object, entry);
            return;
        }
        job->items.push_back({object, object_flat(object)});
        size += job->items.back().mesh->positions->size() + job->items.back().mesh->corners->size();
    });
    record().order = std::move(order);
    record().next = 0;
    return size <= at_once || !start_job(std::move(job));
}

void model_check_follow()
{
    job_t *const job = record().job.get();
    if (job == nullptr || job->ended)
        return;
    const std::size_t at = job->done;
    if (at == job->items.size())
        return;
    const job_t::item_t &item = job->items[at];
    if (!state_is_alive(item.object) || !mesh_key(*item.mesh).is_of(*object_flat(item.object)))
        job->given_up = true;
}

void model_check_end()
{
    if (record().job)
        record().job->given_up = true;
    try {
        take_job();
    } catch (...) {
        // Nobody wants it any more.
    }
}
