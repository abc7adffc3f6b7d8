// Merging two units of one time point into one, which takes over the links of both.
#include "curation.h"
#include "edit_scope.h"
#include "keygen.h"

#include <iostream>

// The parents and children of a unit, as far as the recording's bounds let it have any.
curation::unit_links curation::links_of(const string& unit, int t)
{
    unit_links links;
    if (t > m_min_time_point)
        links.parents = parents(unit);
    if (t < m_max_time_point)
        links.children = children(unit);
    return links;
}

void curation::release_links(const string& unit, const unit_links& links)
{
    for (const std::string& parent : links.parents)
        release_all(parent, unit);
    for (const std::string& child : links.children)
        release_all(unit, child);
}

void curation::mergeUnits(string a, string b)
{
    std::cout << "mergeUnits: " << a << " " << b << std::endl;
    const bool are_keys = is_roi_key(a) && is_roi_key(b);
    if (are_keys && decode(a).t() != decode(b).t()) {
        std::cout << "Cannot merge units in different time points: " << a << " " << b << std::endl;
        return;
    }
    set<string> members = member(a);
    if (!are_keys || members.empty()) {
        std::cout << "Cannot merge " << a << " and " << b << ": not two units" << std::endl;
        return;
    }
    const EditScope step(*this, "Merge", a, b);
    const int t = decode(a).t();
    const unit_links links_a = links_of(a, t);
    const unit_links links_b = links_of(b, t);
    release_links(a, links_a);
    release_links(b, links_b);

    const std::string head = *members.begin();    // of a's members alone
    members.merge(member(b));
    forget_unit(a);
    forget_unit(b);
    register_unit(head, members);

    for (const unit_links* links : {&links_a, &links_b})
        for (const std::string& parent : links->parents)
            link(parent, head);
    for (const unit_links* links : {&links_a, &links_b})
        for (const std::string& child : links->children)
            link(head, child);
    set_mark(change_kind::elite, a, false);
    set_mark(change_kind::elite, b, false);
    rename_unit(a, head);
    rename_unit(b, head);
}
