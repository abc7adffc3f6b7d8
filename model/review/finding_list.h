// finding_list.h - the open findings of a recording, ranked.
#pragma once
#include "finding.h"

#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

class finding_list {
public:
    void clear();

    // What may be wrong with a unit, by ranks_before(); `dismissed`: how many findings of it were.
    void set(const std::string& unit, std::vector<finding> open, std::size_t dismissed = 0);

    // The list is put in order only then: until it is called, set() is quick for a whole recording.
    void keep_ranked();

    [[nodiscard]] const std::vector<const finding*>& ranked() const noexcept { return _ranked; }
    [[nodiscard]] const std::vector<finding>& all_of(const std::string& unit) const;
    [[nodiscard]] const std::set<std::string>& units_with(finding_kind kind) const;
    [[nodiscard]] std::size_t listed(finding_kind kind) const;
    [[nodiscard]] std::size_t dismissed() const noexcept { return _dismissed; }

private:
    struct entry {
        std::vector<finding> open;
        std::size_t dismissed = 0;
    };

    void enter(const entry& e);
    void leave(const entry& e);

    std::unordered_map<std::string, entry> _entries;
    std::vector<const finding*> _ranked;    // the first of each entry
    std::map<finding_kind, std::set<std::string>> _units;
    std::map<finding_kind, std::size_t> _listed;
    std::size_t _dismissed = 0;
    bool _is_ranked = false;
};
