#include "roidb_plus.h"

#include "error_line.h"
#include "keygen.h"
#include "roi_reader.h"

#include <set>
#include <utility>

namespace {

std::string plane_key(int t, int z) { return keygen(pos4i(0, 0, z, t)); }

// 0 for a key that only somebody else can have put into the map.
int time_point_of(const std::string& key) { return is_decodable(key) ? decode(key).t() : 0; }

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
    roi_file file(filename);
    const bool is_read = file.fault.empty();
    if (is_read || !file.was_opened)
        remove_between(t_from, t_end);
    if (!is_read) {
        error_line(file.fault);
        return false;
    }
    _name = std::move(file.name).value_or(_name);
    for (roi& r : file.rois)
        if (is_between(r.t(), t_from, t_end))
            entry_plus(std::move(r));
    return true;
}

void roidb_plus::remove_between(int t_from, int t_end)
{
    std::set<std::string> removed_rois;
    for (const auto& [key, r] : db)
        if (is_between(r.t(), t_from, t_end))
            removed_rois.insert(key);
    for (const std::string& key : removed_rois)
        remove(key);
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
    for (const std::string plane = plane_key(t, z); iter != tz_xy_db.end() && iter->first == plane;) {
        r = roi(iter->second.x(), iter->second.y(), z, t, {});
        ++iter;
        if (find(r))
            return true;
    }
    return false;
}

roi roidb_plus::find_plus(const std::string& key) const
{
    if (!is_decodable(key))
        return {};
    roi r(decode(key), {});
    find(r);
    return r;
}

void roidb_plus::remove(const std::string& key)
{
    if (is_decodable(key))
        remove(roi(decode(key), {}));
}

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

bool roidb_plus::put_record(roi r)
{
    change_revision();
    const std::string key = keygen(r);
    return db.emplace(key, std::move(r)).second;
}

bool roidb_plus::take_record(const std::string& key)
{
    change_revision();
    return db.erase(key) > 0;
}

// The cursor must not be left on an entry that goes.
void roidb_plus::index_changes()
{
    change_revision();
    tz_iter = tz_xy_db.end();
}

int roidb_plus::t_min() const { return db.empty() ? 0 : time_point_of(db.begin()->first); }

int roidb_plus::t_max() const { return db.empty() ? 0 : time_point_of(db.rbegin()->first); }
