// Undo, redo, the journal and what it brings back: whatever was done, in whatever order.
#include "../support/curation_probe.h"
#include "../support/temp_folder.h"
#include "demo_files.h"
#include "demo_random.h"
#include "keygen.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

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
    Person(CurationProbe& c, std::uint64_t seed) : _c(c), _random(seed) { _states.push_back(state_of(c)); }

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
            return (void)_c.restore_rois(_c.work.history().position() % 2 ? file() : "missing", 3);
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
            EXPECT_TRUE(_c.rois().write(file()));    // as "Save ROIs" does
    }

    [[nodiscard]] std::string file() const { return _file; }

    CurationProbe& _c;
    demo_random _random;
    std::vector<state> _states;

public:
    std::string _file;
};

}    // namespace

TEST_F(History, every_state_comes_back_in_this_run_and_from_the_journal)
{
    for (std::uint64_t seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        for (const auto& entry : fs::directory_iterator(folder.path("")))
            if (entry.path().filename().native().starts_with("demo.") && entry.path().extension() != ".truth")
                fs::remove(entry);
        (void)write_recording(make_recording({"demo", seed, 5, 12, 12, 150, 150, 0.05, 0.05, 0.25}),
                              folder.path(""));
        std::vector<state> states;
        std::size_t position = 0, unsaved = 0;
        {
            CurationProbe c;
            ASSERT_TRUE(c.work.open(file));
            Person person(c, seed);
            person._file = file;
            for (int i = 0; i < 120 && !HasFailure(); ++i) {
                person.act();
                if (i % 40 == 39)
                    person.walk_through();
            }
            states = person.states();
            position = c.work.history().position();
            unsaved = c.work.unsaved_edits();
            ASSERT_EQ(state_of(c), states[position]);
        }
        CurationProbe later;
        ASSERT_TRUE(later.work.open(file));
        ASSERT_EQ(later.work.offers().size(), unsaved > 0 ? 1U : 0U);
        if (unsaved == 0)
            continue;
        EXPECT_EQ(later.work.offers().front().edits, unsaved);
        ASSERT_TRUE(later.work.take_up()) << quiet.err.str();
        EXPECT_EQ(later.work.unsaved_edits(), unsaved);
        ASSERT_EQ(later.work.history().position(), position);
        ASSERT_EQ(state_of(later), states[position]);
        while (later.work.undo())
            ASSERT_EQ(state_of(later), states[later.work.history().position()]);
        while (later.work.redo())
            ASSERT_EQ(state_of(later), states[later.work.history().position()]);
    }
}
