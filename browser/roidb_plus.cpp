#include "roidb_plus.h"

#include "keygen.h"
#include "roi_reader.h"

#include <set>
#include <utility>

namespace {

std::string plane_key(int t, int z) { return keygen(pos4i(0, 0, z, t)); }

bool is_between(int t, int first, int last) { return first <= t && t <= last; }

}    // namespace

roidb_plus::roidb_plus(std::string name) : roidb(std::move(name)), tz_iter(tz_xy_db.end())
{
    change_revision();
}

void roidb_plus::change_revision() noexcept
{
    static unsigned long last = 0;
    _revision = ++last;
}

void roidb_plus::entry_plus(roi r)
{
    change_revision();
    // Files are in key order: with the end as hint their entries go there without a search.
    tz_xy_db.emplace_hint(tz_xy_db.end(), plane_key(r.t(), r.z()), pos2i(r.x(), r.y()));
    entry(std::move(r));
}

bool roidb_plus::read_plus(const std::string& filename)
{
    return read_roi_file(filename, _name, [this](roi r) { entry_plus(std::move(r)); });
}

bool roidb_plus::replace_plus(const std::string& filename, int t_from, int t_end)
{
    std::set<std::string> removed_rois;
    for (const auto& [key, r] : db)
        if (is_between(r.t(), t_from, t_end))
            removed_rois.insert(key);
    for (const std::string& key : removed_rois)
        remove(key);
    return read_roi_file(filename, _name, [=, this](roi r) {
        if (is_between(r.t(), t_from, t_end))
            entry_plus(std::move(r));
    });
}

void roidb_plus::seek(int t, int z, int pos)
{
    if (pos == 0)
        tz_iter = tz_xy_db.lower_bound(plane_key(t, z));
}

void roidb_plus::seek_iter(int t, int z, int pos, cursor& iter)
{
    seek(t, z, pos);
    if (pos == 0)
        iter = tz_iter;
}

bool roidb_plus::find_plus(int t, int z, roi& r) { return find_plus_iter(t, z, r, tz_iter); }

bool roidb_plus::find_plus_iter(int t, int z, roi& r, cursor& iter)
{
    if (iter == tz_xy_db.end() || iter->first != plane_key(t, z))
        return false;
    r = roi(iter->second.x(), iter->second.y(), z, t, {});
    ++iter;
    return find(r);
}

roi roidb_plus::find_plus(const std::string& key) const
{
    roi r(decode(key), {});
    find(r);
    return r;
}

void roidb_plus::remove(const std::string& key) { remove(roi(decode(key), {})); }

void roidb_plus::remove(const roi& r)
{
    change_revision();
    db.erase(keygen(r));
    auto [entry, end] = tz_xy_db.equal_range(plane_key(r.t(), r.z()));
    while (entry != end && !(entry->second == pos2i(r.x(), r.y())))
        ++entry;
    if (entry == end)
        return;
    // The cursor must not be left on the entry that goes.
    if (tz_iter == entry)
        ++tz_iter;
    tz_xy_db.erase(entry);
}

int roidb_plus::t_min() const { return db.empty() ? 0 : decode(db.begin()->first).t(); }

int roidb_plus::t_max() const { return db.empty() ? 0 : decode(db.rbegin()->first).t(); }
