// roidb_plus.h - the ROIs of the open recording, indexed by time point and focal plane.
//
// Every ROI in `db` has one entry in the index `tz_xy_db`, as long as ROIs come in
// through entry_plus() and the readers and leave through remove(). A plane is walked by seek() and
// then find_plus() until it returns false; a walk inside a walk brings a cursor of its own.
#pragma once
#include "ORV_roidb.h"

#include <map>
#include <string>

class roidb_plus : public roidb {
public:
    using cursor = std::multimap<std::string, pos2i>::iterator;

    explicit roidb_plus(std::string name);
    roidb_plus(const roidb_plus&) = delete;    // the cursor belongs to its index
    roidb_plus& operator=(const roidb_plus&) = delete;

    void entry_plus(roi r);

    // Adds the records of an ROI file, up to the first that does not parse, and takes over its name.
    // False, nothing changed, and one line on standard error when it cannot be opened ("roidb: Cannot
    // open " and its name) or not be read to its end.
    bool read_plus(const std::string& filename);

    // Replaces the ROIs of time points t_from to t_end, both included, by those of the file. False after
    // the line of read_plus(): the range is empty when the file cannot be opened, and as it was when the
    // file cannot be read to its end.
    bool replace_plus(const std::string& filename, int t_from, int t_end);

    // With pos 0, sets the cursor to the first index entry that is not before plane (t, z).
    void seek(int t, int z, int pos);
    void seek_iter(int t, int z, int pos, cursor& iter);

    // The next ROI of plane (t, z), with its outline. False at the end of the plane. Index entries whose
    // ROI is gone are passed over.
    bool find_plus(int t, int z, roi& r);
    bool find_plus_iter(int t, int z, roi& r, cursor& iter);

    // The record of an ROI key; one with the key's position and an empty outline when it is absent. For
    // what decode() cannot read, an empty record.
    [[nodiscard]] roi find_plus(const std::string& key) const;

    // Takes one ROI out of the map, and one entry of its position out of the index. What decode() cannot
    // read names none.
    void remove(const std::string& key);
    void remove(const roi& r);

    // ---- For whoever brings back what was there before: records and index entries, each by themselves
    bool put_record(roi r);                      // false, and nothing changed, when its key is taken
    bool take_record(const std::string& key);    // false when there is none
    void index_changes();                        // to be called before the index is changed from outside

    // The first and the last time point; 0 when there is no ROI.
    [[nodiscard]] int t_min() const;
    [[nodiscard]] int t_max() const;

    // Changes whenever ROIs are added or removed: cursors taken before may then be invalid. No two
    // databases have the same.
    [[nodiscard]] unsigned long revision() const noexcept { return _revision; }

    std::multimap<std::string, pos2i> tz_xy_db;    // plane key, with x = y = 0, to the x and y of its ROIs
    cursor tz_iter;

private:
    void change_revision() noexcept;
    void remove_between(int t_from, int t_end);

    unsigned long _revision = 0;
};
