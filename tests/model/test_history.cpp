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

// The steps of a journal that ends anywhere: those that are whole, and nothing but them.
TEST_F(History, a_torn_journal_gives_the_steps_that_are_whole)
{
    std::vector<state> states;
    {
        CurationProbe c;
        ASSERT_TRUE(c.work.open(file));
        states.push_back(state_of(c));
        for (int t = 0; t < 3; ++t) {
            c.make_units(t, 0);
            states.push_back(state_of(c));
        }
        for (const auto& [key, r] : std::map(c.m_roidb->db)) {
            if (states.size() == 9)
                break;
            c.toggle_elite(key);
            states.push_back(state_of(c));
        }
    }
    const std::string whole = journal();
    std::size_t from = whole.size();
    for (int lines = 0; lines < 9; ++lines)    // the last four steps
        from = whole.rfind('\n', from - 1);
    for (std::size_t size = ++from; size <= whole.size(); ++size) {
        (void)folder.with("demo.journal", whole.substr(0, size));
        const auto lines = std::ranges::count(whole.substr(from, size - from), '\n');
        const std::size_t done = 4 + static_cast<std::size_t>(lines / 2);
        {
            CurationProbe c;
            ASSERT_TRUE(c.work.open(file) && c.work.take_up());
            ASSERT_EQ(c.work.history().position(), done);
            ASSERT_EQ(state_of(c), states[done]);
            c.toggle_elite("after it");
        }
        CurationProbe c;    // what was appended to a torn end can be read
        ASSERT_TRUE(c.work.open(file) && c.work.take_up());
        ASSERT_TRUE(c.isElite("after it") && c.work.history().position() == done + 1);
    }
}

TEST_F(History, steps_are_taken_up_on_their_files_alone)
{
    {
        CurationProbe c;
        ASSERT_TRUE(c.work.open(file));
        EXPECT_FALSE(fs::exists(folder.path("demo.journal"))) << "nothing is edited";
        c.make_units(0, 0);
        CurationProbe second;    // on the same file
        ASSERT_TRUE(second.work.open(file));
        second.make_units(0, 0);
        EXPECT_NE(quiet.err.str().find("another window works on it"), std::string::npos);
        EXPECT_TRUE(second.work.undo());
    }
    const std::string good = journal(), rois = folder.contents("demo.roi");
    const std::size_t line = good.find("\n+unit ");
    const struct {
        std::string journal, rois;
        bool is_offered, is_kept;    // kept: the next edit goes on in it
    } cases[] = {
        {good, rois, true, true},
        {good, rois + "1 1 1 1 2301\n", false, false},
        {std::string(good).replace(8, 6, "1 other"), rois, false, false},
        {std::string(good).replace(line, 3, "\n-u"), rois, true, true},    // a step that cannot be made
        {good + "no event\nSTEP", rois, true, false},
        {"no journal at all", rois, false, false},
    };
    for (const auto& [text, roi_text, is_offered, is_kept] : cases) {
        for (const auto& entry : fs::directory_iterator(folder.path("")))
            if (entry.path().extension() == ".gz")
                fs::remove(entry);
        (void)folder.with("demo.journal", text), (void)folder.with("demo.roi", roi_text);
        CurationProbe c;
        ASSERT_TRUE(c.work.open(file));
        const state before = state_of(c);
        EXPECT_EQ(!c.work.offers().empty(), is_offered) << text.substr(0, 80);
        const bool is_taken_up = c.work.take_up();
        EXPECT_EQ(is_taken_up, !is_offered || text == good || text.ends_with("STEP"));
        EXPECT_TRUE((is_taken_up && is_offered) || state_of(c) == before);
        c.toggle_elite("a branch");
        EXPECT_FALSE(c.work.take_up()) << "edits were made";
        int put_aside = 0;
        for (const auto& entry : fs::directory_iterator(folder.path("")))
            put_aside += entry.path().extension() == ".gz";
        EXPECT_EQ(put_aside, is_kept ? 0 : 1);
    }
}

TEST_F(History, saving_everything_keeps_what_was_there)
{
    (void)folder.with("demo.info", "NAME demo\nSELECT somebody-elses\n");
    const std::string first = folder.contents("demo.roi");
    CurationProbe c;
    ASSERT_TRUE(c.work.open(file));
    EXPECT_TRUE(c.work.save_all()) << "nothing to do";
    const std::string a = c.m_roidb->db.begin()->first;
    c.make_units(0, 0), c.toggle_selected(a), c.forwardTracking(0);
    c.toggle_false_positive(c.m_roidb->db.rbegin()->first), c.drop_false_positives();
    EXPECT_EQ(c.work.unsaved_edits(), 5U);
    ASSERT_TRUE(c.rois().write(file)) << "a dialog saves its own kind alone";
    EXPECT_EQ(c.work.unsaved_edits(), 4U) << "all but what changed ROIs only";
    ASSERT_TRUE(c.work.undo());
    ASSERT_TRUE(c.work.save_all());
    EXPECT_EQ(c.work.unsaved_edits(), 0U);
    ASSERT_TRUE(c.work.undo());
    EXPECT_EQ(c.work.unsaved_edits(), 1U) << "saved, then one undone";
    ASSERT_TRUE(c.work.save_all());
    EXPECT_EQ(folder.contents("demo.roi"), first);
    EXPECT_EQ(folder.contents("demo.info"), "NAME demo\nSELECT " + a + "\n");
    int put_aside = 0;
    for (const auto& entry : fs::directory_iterator(folder.path("")))
        put_aside += entry.path().filename().native().starts_with("demo.info.");
    EXPECT_EQ(put_aside, 1) << "what nobody had read";
    EXPECT_NE(folder.contents("demo.roi~"), first);
    fs::remove(folder.path("demo.fp")), fs::create_symlink("demo.fp", folder.path("demo.fp"));
    c.toggle_false_positive(a), c.toggle_elite(a);
    EXPECT_FALSE(c.work.save_all());
    EXPECT_NE(quiet.err.str().find("demo.fp"), std::string::npos);
    EXPECT_NE(folder.contents("demo.lineage").find("NAME demo"), std::string::npos)
        << "the others are written";
    EXPECT_GT(c.work.unsaved_edits(), 0U);
    CurationProbe unnamed;
    unnamed.open_rois(std::make_unique<roidb_plus>("x"));
    EXPECT_FALSE(unnamed.work.save_all());
}

TEST_F(History, the_oldest_steps_go_first_and_the_count_of_unsaved_ones_stays)
{
    edit_history history(2000);
    const auto step = [](int number) {
        edit_step made("step " + std::to_string(number));
        made.add(change_kind::elite, std::string(100, 'x'));
        return made;
    };
    for (int i = 0; i < 50; ++i)
        history.add(step(i));
    EXPECT_GT(history.first(), 30U);
    EXPECT_EQ(history.state().unsaved_steps(), 50U);
    EXPECT_EQ(history.at(history.first()).title(), "step " + std::to_string(history.first()));
    history.state().saved(all_files);
    history.undone(), history.undone();
    EXPECT_EQ(history.state().unsaved_steps(), 2U);
    history.add(step(50));    // the two that were saved can no longer be done
    EXPECT_EQ(history.state().unsaved_steps(), 3U);
    history.undone();
    EXPECT_EQ(history.state().unsaved_steps(), 2U);
    while (history.can_undo())
        history.undone();
    EXPECT_EQ(history.position(), history.first());
}

// Killed at any moment, the work of until a tenth of a second before is there.
TEST_F(History, a_crash_costs_nothing)
{
    for (int round = 0; round < 10; ++round) {
        fs::remove(folder.path("demo.journal"));
        int pipe_ends[2];
        ASSERT_EQ(pipe(pipe_ends), 0);
        const pid_t child = fork();
        if (child == 0) {
            CurationProbe c;
            (void)c.work.open(file);
            for (std::uint32_t steps = 1;; ++steps) {
                c.toggle_elite("unit-" + std::to_string(steps % 7));
                (void)!write(pipe_ends[1], &steps, sizeof steps);
                usleep(500);
            }
        }
        close(pipe_ends[1]);
        usleep(20000 + 7919 * round);
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        std::uint32_t told = 0;
        for (std::uint32_t steps = 0; read(pipe_ends[0], &steps, sizeof steps) == sizeof steps;)
            told = steps;
        close(pipe_ends[0]);
        CurationProbe c;
        ASSERT_TRUE(c.work.open(file) && c.work.take_up());
        EXPECT_GE(c.work.history().position() + 200, told) << "of 100 ms";
        EXPECT_LE(c.work.history().position(), told + 1);
        EXPECT_GT(c.work.history().position(), 0U);
    }
}

// What a full disk did not take is written once there is room.
TEST_F(History, a_full_disk_delays_the_journal)
{
    signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    {
        CurationProbe c;
        ASSERT_TRUE(c.work.open(file));
        c.toggle_elite("first");
        const rlimit small{200, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
        for (int i = 0; i < 50; ++i)
            c.toggle_elite("unit-" + std::to_string(i));
        (void)c.work.save_all();
        EXPECT_NE(quiet.err.str().find("demo.journal: File too large"), std::string::npos) << quiet.err.str();
        setrlimit(RLIMIT_FSIZE, &before);
        c.toggle_elite("last");
    }
    CurationProbe c;
    ASSERT_TRUE(c.work.open(file) && c.work.take_up());
    EXPECT_TRUE(c.isElite("last") && c.isElite("unit-49") && c.work.history().position() == 52);
}
