// kept_history.h - a small recording in a folder of its own, and a person who does whatever can be done to
// it.
#pragma once
#include "curation_probe.h"
#include "demo_files.h"
#include "demo_random.h"
#include "keygen.h"
#include "temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <sstream>

namespace fs = std::filesystem;

using keys = std::set<std::string>;
using state = decltype(state_of(std::declval<const CurationProbe&>()));

// What is printed meanwhile is kept here.
struct Quiet {
    std::ostringstream out, err;
    std::streambuf* const cout = std::cout.rdbuf(out.rdbuf());
    std::streambuf* const cerr = std::cerr.rdbuf(err.rdbuf());
    ~Quiet() { std::cout.rdbuf(cout), std::cerr.rdbuf(cerr); }
};

// A small embryo in a folder of its own, where journals, locks and copies go too.
struct History : testing::Test {
    temp_folder folder;
    std::string file = folder.path("demo.roi");
    Quiet quiet;

    History()
    {
        for (const char* name : {"XDG_RUNTIME_DIR", "XDG_STATE_HOME"})
            setenv(name, folder.path("").c_str(), 1);
        (void)write_recording(make_recording({"demo", 3, 5, 12, 12, 150, 150, 0.05, 0.05, 0.25}),
                              folder.path(""));
    }

    [[nodiscard]] std::string journal() const { return folder.contents("demo.journal"); }
};

// Does things to a curation that a person could do, and remembers each state.
class Person {
public:
    Person(CurationProbe& c, std::uint64_t seed, std::string roi_file)
        : _c(c), _file(std::move(roi_file)), _random(seed)
    {
        _states.push_back(state_of(c));
    }

    void edit_anything() { edit(_random.below(16)); }

    void act()
    {
        const std::size_t position = _c.work.history().position();
        const int what = _random.below(20);
        if (what < 16) {
            edit(what);
            if (_c.work.history().position() == position) {
                EXPECT_EQ(state_of(_c), _states[position]) << "what changes nothing is no step " << what;
                return;
            }
            EXPECT_EQ(_c.work.history().position(), position + 1) << "one step " << what;
            _states.resize(position + 1);
            _states.push_back(state_of(_c));
        } else if (what < 19) {
            (void)(_random.chance(0.6) ? _c.work.undo() : _c.work.redo());
        } else if (_random.chance(0.3)) {
            save();
        }
    }

    // Where the line of steps stands, every state on it is the one that was.
    void walk_through()
    {
        while (_c.work.undo())
            EXPECT_EQ(state_of(_c), _states[_c.work.history().position()]);
        while (_c.work.redo())
            EXPECT_EQ(state_of(_c), _states[_c.work.history().position()]);
    }

    [[nodiscard]] const std::vector<state>& states() const { return _states; }

private:
    template <class Keys>
    std::string any_of(const Keys& from)
    {
        if (from.empty())
            return "N/A";
        auto entry = std::next(from.begin(), _random.below(static_cast<int>(from.size())));
        if constexpr (requires { entry->first; })
            return entry->first;
        else
            return *entry;
    }

    void edit(int what)
    {
        const std::string roi = any_of(_c.m_roidb->db), a = any_of(_c.m_head_members),
                          b = any_of(_c.m_head_members);
        const int t = _random.below(6);
        switch (what) {
        case 0:
            return _c.toggle_selected(roi);
        case 1:
            return _c.toggle_false_positive(roi);
        case 2:
            return _c.toggle_elite(a);
        case 3:
            return _c.make_units(t, _random.chance(0.5) ? 0 : 0.4);
        case 4:
            return _c.makeLinkage(t);    // a second time doubles links
        case 5:
            return _c.link(a, b);
        case 6:
            return _c.release_parents(a);
        case 7:
            return _c.mergeUnits(a,
                                 _random.chance(0.2) ? a : any_of(_c.units(a == "N/A" ? 0 : decode(a).t())));
        case 8:
            return (void)_c.split_first_suspect(), _c.search_doubt_units();
        case 9:
            return _c.forwardTracking(t);
        case 10:
            return _random.chance(0.3) ? _c.drop_false_positives() : _c.zTracking(t);
        case 11:
            return _random.chance(0.2) ? _c.reset() : _c.backwardTracking(t);
        case 12:
            return _random.chance(0.2) ? (void)_c.clean_up() : _c.select_all(t);
        case 13:
            return (void)_c.restore_rois(_random.chance(0.5) ? _file : "missing", 3);
        case 14:
            return _random.chance(0.2) ? _c.replace_lineage(_c.current_lineage()) : _c.drop_links_into(t);
        default:
            return _c.choose(a), _c.add_selected({roi, "no-key", "%"});
        }
    }

    void save()
    {
        if (_random.chance(0.5))
            EXPECT_TRUE(_c.work.save_all());
        else
            EXPECT_TRUE(_c.rois().write(_file));    // as "Save ROIs" does
    }

    CurationProbe& _c;
    std::string _file;
    demo_random _random;
    std::vector<state> _states;
};
