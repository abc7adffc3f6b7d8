#include "ctc_export.h"

#include "error_line.h"
#include "label_tiff.h"
#include "recording_extent.h"
#include "staged_output.h"
#include "track_table.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int most_labels = 65535;

struct pixel_place {
    int z = 0, y = 0, x = 0;

    auto operator<=>(const pixel_place&) const = default;
};

// A unit of the time point being drawn.
struct drawn_unit {
    std::size_t index = 0;    // in the graph
    unit_images images = {};
    std::size_t kept = 0;       // pixels that show it
    std::size_t claimed = 0;    // pixels that others have
    std::size_t outside = 0;
    std::optional<pixel_place> first = {};       // of those that show it
    std::optional<pixel_place> stand_in = {};    // the pixel beside, where none shows it
};

// An outline of the time point, and its unit there.
struct drawn_outline {
    const q_roiimg* image;
    std::size_t unit;
};

// The pixels of all units of one time point. Of outlines that claim a pixel the smallest gets it, so that
// what is read again is drawn the same: what lies in a hole of another is smaller. The last one of equal size
// wins.
class frame_drawing {
public:
    explicit frame_drawing(label_tiff& stack) : _stack(stack) {}

    void start(const export_graph& graph, std::size_t first, std::size_t last)
    {
        _units.clear();
        _outlines.clear();
        for (std::size_t i = first; i < last; ++i) {
            _units.push_back({.index = i, .images = images_of(graph.units[i])});
            for (const auto& image : _units.back().images)
                _outlines.push_back({image.get(), _units.size() - 1});
        }
        std::ranges::stable_sort(_outlines, std::ranges::greater(),
                                 [](const drawn_outline& o) { return o.image->size(); });
        draw([](std::size_t unit) { return static_cast<std::uint16_t>(unit + 1); });
        for (const drawn_outline& o : _outlines)
            count(o);
    }

    [[nodiscard]] std::vector<drawn_unit>& units() noexcept { return _units; }

    // The label of each unit instead of its place among them; 0 for one that cannot be shown.
    void draw_labels(const std::vector<std::uint16_t>& labels)
    {
        draw([&](std::size_t unit) { return labels[unit]; });
        for (std::size_t i = 0; i < _units.size(); ++i)
            if (const auto& p = _units[i].stand_in)
                _stack.set_label(p->x, p->y, p->z, labels[i]);
    }

    void erase() { draw_labels(std::vector<std::uint16_t>(_units.size())); }

    // The free pixel nearest to the centre of the unit's middle outline, in its plane or else in any other.
    [[nodiscard]] std::optional<pixel_place> find_stand_in(const drawn_unit& unit) const
    {
        const q_roiimg& middle = *unit.images[unit.images.size() / 2];
        const pos2d centre = middle.size() > 0 ? middle.centre() : pos2d(middle.x(), middle.y());
        const int own = middle.z();
        const auto here = nearest_free(centre, own);
        for (int other = 0; !here && other < _stack.planes(); ++other)
            if (const auto there = nearest_free(centre, other))
                return there;
        return here;
    }

    void put_stand_in(drawn_unit& unit, std::size_t place)
    {
        unit.stand_in = unit.first = find_stand_in(unit);
        if (unit.first)
            _stack.set_label(unit.first->x, unit.first->y, unit.first->z,
                             static_cast<std::uint16_t>(place + 1));
    }

private:
    // Calls take(x, y, z) for each pixel of the outline that lies in the stack; how many do not.
    template <class Take>
    std::size_t for_pixels(const q_roiimg& image, Take take) const
    {
        std::size_t outside = 0;
        const pixel_box box = image.box();
        const unsigned char* pixel = image.image();
        for (int y = box.top; y <= box.bottom; ++y)
            for (int x = box.left; x <= box.right; ++x, ++pixel) {
                if (!*pixel)
                    continue;
                if (x >= 0 && y >= 0 && x < _stack.width() && y < _stack.height())
                    take(x, y, image.z());
                else
                    ++outside;
            }
        return outside;
    }

    template <class LabelOf>
    void draw(LabelOf label_of)
    {
        for (const drawn_outline& o : _outlines) {
            const std::uint16_t label = label_of(o.unit);
            for_pixels(*o.image, [&](int x, int y, int z) { _stack.set_label(x, y, z, label); });
        }
    }

    void count(const drawn_outline& o)
    {
        drawn_unit& unit = _units[o.unit];
        unit.outside += for_pixels(*o.image, [&](int x, int y, int z) {
            if (_stack.label(x, y, z) != o.unit + 1) {
                ++unit.claimed;
                return;
            }
            ++unit.kept;
            unit.first = std::min(unit.first.value_or(pixel_place{z, y, x}), pixel_place{z, y, x});
        });
    }

    [[nodiscard]] std::optional<pixel_place> nearest_free(pos2d to, int z) const
    {
        std::optional<pixel_place> best;
        double least = 0;
        for (int y = 0; y < _stack.height(); ++y)
            for (int x = 0; x < _stack.width(); ++x) {
                const double distance = (to - pos2d(x, y)).size();
                if (_stack.label(x, y, z) != 0 || (best && distance >= least))
                    continue;
                least = distance;
                best = pixel_place{z, y, x};
            }
        return best;
    }

    label_tiff& _stack;
    std::vector<drawn_unit> _units;
    std::vector<drawn_outline> _outlines;
};

class ctc_writer {
public:
    ctc_writer(const export_request& request, export_graph graph, loss_report& report)
        : _graph(std::move(graph)), _extent(extent_of(request, _graph)), _report(report),
          _track_of(_graph.units.size()), _is_shown(_graph.units.size(), true)
    {
        report_links();
        report_notes(request, notes_kept::none, report);
    }

    outcome write(const std::filesystem::path& folder, const std::string& prefix, const std::string& table,
                  const run_callbacks& callbacks)
    {
        if (_graph.units.empty())
            return refuse("no unit to export");
        if (!label_tiff::is_possible(_extent.width, _extent.height, _extent.planes))
            return refuse("a time point has more pixels than a TIFF file can hold");
        label_tiff stack(_extent.width, _extent.height, _extent.planes);
        std::size_t next = 0;
        for (int t = 0; t < _extent.times; ++t) {
            if (!callbacks.step(t, _extent.times))
                return outcome::stopped;
            const std::size_t first = next;
            while (next < _graph.units.size() && _graph.units[next].t == t)
                ++next;
            if (const outcome drawn = write_frame(stack, first, next, folder / (prefix + number(t) + ".tif"));
                drawn != outcome::done)
                return drawn;
        }
        return write_whole_file(folder / table, track_table_text(_tracks)) ? outcome::done : outcome::refused;
    }

private:
    static outcome refuse(const char* why)
    {
        error_line("Cannot export as ctc: ", why);
        return outcome::refused;
    }

    [[nodiscard]] std::string number(int t) const { return roidb::digit(t, _extent.times >= 1000 ? 4 : 3); }

    void report_links()
    {
        for (const export_unit& unit : _graph.units) {
            for (const std::size_t p : unit.parents)
                if (p != *unit.parent)
                    _report.add("merge", unit.head, "without its parent " + _graph.units[p].head);
            if (unit.parent && unit.t - _graph.units[*unit.parent].t > 1)
                _report.add("gap", unit.head,
                            "a track of its own, its parent " + _graph.units[*unit.parent].head);
            if (unit.kept_children.size() > 2)
                _report.add("many_children", unit.head,
                            std::to_string(unit.kept_children.size()) + ", which some programs do not read");
        }
    }

    outcome write_frame(label_tiff& stack, std::size_t first, std::size_t last,
                        const std::filesystem::path& file)
    {
        if (last - first > most_labels)
            return refuse("more than 65535 units at a time point");
        frame_drawing drawing(stack);
        drawing.start(_graph, first, last);
        for (std::size_t i = 0; i < drawing.units().size(); ++i)
            look_after(drawing, i);
        drawing.draw_labels(labels_of(drawing.units()));
        const bool is_written = write_whole_file(file, stack.bytes());
        drawing.erase();
        if (_tracks.size() > most_labels)
            return refuse("more than 65535 tracks");
        return is_written ? outcome::done : outcome::refused;
    }

    // Tells what the unit lost, and sees to it that it is shown somewhere.
    void look_after(frame_drawing& drawing, std::size_t place)
    {
        drawn_unit& unit = drawing.units()[place];
        const std::string& head = _graph.units[unit.index].head;
        if (unit.claimed > 0)
            _report.add("overlap", head, std::to_string(unit.claimed) + " pixels");
        if (unit.outside > 0)
            _report.add("outside", head, std::to_string(unit.outside) + " pixels");
        if (unit.kept > 0)
            return;
        drawing.put_stand_in(unit, place);
        _is_shown[unit.index] = unit.first.has_value();
        _report.add("hidden", head, unit.first ? "one pixel stands for it" : "left out: no pixel is free");
    }

    // The unit that this one continues or comes from.
    [[nodiscard]] std::optional<std::size_t> shown_parent(std::size_t i) const
    {
        auto parent = _graph.units[i].parent;
        while (parent && !_is_shown[*parent])
            parent = _graph.units[*parent].parent;
        return parent;
    }

    [[nodiscard]] bool begins_track(std::size_t i) const
    {
        const auto parent = shown_parent(i);
        return !parent || _graph.units[*parent].kept_children.size() > 1 ||
               _graph.units[i].t - _graph.units[*parent].t > 1;
    }

    // New tracks are numbered in the order in which their first pixels come: those who read the masks again
    // find the same.
    std::vector<std::uint16_t> labels_of(const std::vector<drawn_unit>& units)
    {
        std::vector<const drawn_unit*> order;
        for (const drawn_unit& unit : units)
            if (unit.first)
                order.push_back(&unit);
        std::ranges::sort(order, {}, [](const drawn_unit* u) { return *u->first; });
        for (const drawn_unit* const unit : order)
            assign_track(unit->index);
        std::vector<std::uint16_t> labels;
        for (const drawn_unit& unit : units)
            labels.push_back(static_cast<std::uint16_t>(unit.first ? _track_of[unit.index] : 0));
        return labels;
    }

    void assign_track(std::size_t i)
    {
        const auto parent = shown_parent(i);
        const int t = _graph.units[i].t;
        if (!begins_track(i)) {
            _track_of[i] = _track_of[*parent];
            _tracks[_track_of[i] - 1].last = t;
            return;
        }
        _tracks.push_back(
            {static_cast<std::uint32_t>(_tracks.size() + 1), t, t, parent ? _track_of[*parent] : 0});
        _track_of[i] = _tracks.back().label;
    }

    export_graph _graph;
    recording_extent _extent;
    loss_report& _report;
    std::vector<std::uint32_t> _track_of;    // label of each unit that was drawn
    std::vector<bool> _is_shown;
    std::vector<track> _tracks;
};

}    // namespace

outcome write_ctc(const export_request& request, const std::filesystem::path& folder,
                  const std::string& prefix, const std::string& table, loss_report& report,
                  const run_callbacks& callbacks)
{
    constexpr double share_of_graph = 0.2;
    auto graph = make_graph(request, false_units::left_out, report, part_of(callbacks, 0, share_of_graph));
    if (!graph)
        return outcome::stopped;
    return ctc_writer(request, std::move(*graph), report)
        .write(folder, prefix, table, part_of(callbacks, share_of_graph, 1));
}
