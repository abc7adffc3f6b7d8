// Merging two units of one time point into one, which takes over the links of both.
#include "keygen.h"
#include "orvbrowser.h"

#include <iostream>

// The parents and children of a unit, as far as the recording's bounds let it have any.
ORVBrowser::unit_links ORVBrowser::links_of(const string& unit, int t)
{
    unit_links links;
    if (t > m_min_time_point)
        links.parents = parents(unit);
    if (t < m_max_time_point)
        links.children = children(unit);
    return links;
}

void ORVBrowser::release_links(const string& unit, const unit_links& links)
{
    for (const std::string& parent : links.parents)
        release_all(parent, unit);
    for (const std::string& child : links.children)
        release_all(unit, child);
}

void ORVBrowser::mergeUnits(string a, string b)
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
    m_elite_head_roi_set.erase(a);
    m_elite_head_roi_set.erase(b);
    move_choice(a, head);
    move_choice(b, head);
    ++m_edits;
}
