// quick_edits.h - corrections in fewer inputs than the window's own modes need.
#pragma once
#include "message_line.h"
#include "places.h"

#include <string>

class QuickEdits {
public:
    QuickEdits(ORVBrowser& window, Places& places, MessageLine& line);

    // Marks the whole unit of a ROI as false positive, or takes the marks back; with all its descendants when
    // asked for. Of a ROI in no unit: what z tracking reaches from it.
    void toggle_unit(const std::string& key, bool with_descendants);

    // Chooses the unit of a ROI.
    void choose(const std::string& key);

    // Removes the one link between the chosen nucleus and the unit of a ROI.
    void unlink(const std::string& key);

    // Links the unit of a ROI and the chosen nucleus, or removes the link that there is.
    void toggle_link(const std::string& key);

    // Exchanges the parents of the unit of a ROI and of the chosen nucleus: where their tracks were swapped.
    void swap_parents(const std::string& key);

    // That the chosen nucleus and the unit of a ROI are one nucleus, not shown for some time points; where
    // that was said already, that they are not.
    void toggle_gap(const std::string& key);

    // The parent, or the larger child, of the chosen nucleus becomes the chosen one, and is shown.
    void step_along_track(bool to_child);

    [[nodiscard]] bool has_chosen() const;
    void say_none_is_chosen();

private:
    [[nodiscard]] std::set<std::string> rois_of(const std::string& key, bool with_descendants);
    [[nodiscard]] bool are_linked(const std::string& a, const std::string& b);
    [[nodiscard]] long pixels_of(const std::string& unit);

    ORVBrowser& _window;
    Places& _places;
    MessageLine& _line;
};
