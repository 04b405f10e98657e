#include "edit/uv/uv_measured.h"

#include "base/job_queue.h"
#include "edit/uv/uv_editor.h"

#include <functional>
#include <utility>

namespace {

template <class T>
struct measure_job_t : queued_job_t {
    std::vector<flat_ptr> flats;
    std::function<std::vector<T>(const uv_mesh &)> measure;
    std::vector<T> values;

    void run() { values = measure(uv_mesh_of_flats(flats)); }
};

template <class T>
class kept_t {
public:
    // Of the present coordinates, as `measure` gives them.
    const std::vector<T> *values(double aspect, uv_patience patience,
                                 std::vector<T> (*measure)(const uv_mesh &, double))
    {
        const uv_state &state = uv_editor();
        if (geometry_ != state.geometry_version || aspect_ != aspect) {
            forget();
            geometry_ = state.geometry_version;
            aspect_ = aspect;
        }
        const bool alone = patience == uv_patience::none ||
                           state.mesh.num_surfaces() < least_uv_measure_job ||
                           (job_ != nullptr && job_->failed);
        if (!known_ && alone)
            keep(measure(state.mesh, aspect));
        else if (!known_ && job_ == nullptr)
            start(state.mesh, [=](const uv_mesh &mesh) { return measure(mesh, aspect); });
        else if (!known_ && job_->ended)
            keep(std::move(job_->values));
        return known_ ? &values_ : nullptr;
    }

    [[nodiscard]] bool waits() const { return job_ != nullptr; }

    void forget()
    {
        keep({});
        known_ = false;
    }

private:
    void start(const uv_mesh &mesh, std::function<std::vector<T>(const uv_mesh &)> measure)
    {
        static job_queue<measure_job_t<T>> queue;
        job_ = std::make_shared<measure_job_t<T>>();
        for (const uv_part &part : mesh.parts)
            job_->flats.push_back(part.flat);
        job_->measure = std::move(measure);
        queue.add(job_);
    }

    void keep(std::vector<T> values)
    {
        values_ = std::move(values);
        known_ = true;
        if (job_ != nullptr)
            job_->cancelled = true;
        job_ = nullptr;
    }

    bool known_ = false;
    unsigned geometry_ = ~0u;
    double aspect_ = 0;
    std::vector<T> values_;
    std::shared_ptr<measure_job_t<T>> job_; // for them
};

struct measured_t {
    kept_t<uv_stretch> stretch;
    kept_t<char> overlaps;
};
measured_t &measured()
{
    static auto *const record = new measured_t; // its arrays are not freed at exit
    return *record;
}

} // namespace

const std::vector<uv_stretch> *uv_stretch_now(uv_patience patience)
{
    return measured().stretch.values(uv_picture_size().aspect(), patience, uv_measure_stretch);
}

const std::vector<char> *uv_overlaps_now(uv_patience patience)
{
    return measured().overlaps.values(
        0, patience, [](const uv_mesh &mesh, double) { return uv_find_overlaps(mesh); });
}

bool uv_measures() { return measured().stretch.waits() || measured().overlaps.waits(); }

void uv_measured_forget()
{
    measured().stretch.forget();
    measured().overlaps.forget();
}
