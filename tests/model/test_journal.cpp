// What a journal brings back that is torn, foreign, or was being written when the program died.
#include "../support/kept_history.h"
#include "edit_scope.h"
#include "lineage_file.h"
#include "long_run.h"

#include <csignal>
#include <functional>
#include <optional>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

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

namespace {

// Works without an end, all of it in one long step if wanted, and tells after each edit how many there were.
[[noreturn]] void work_until_killed(const std::string& file, std::uint64_t seed, bool in_one_step, int pipe)
{
    CurationProbe c;
    (void)c.work.open(file);
    Person person(c, seed, file);
    std::optional<EditScope> step;
    if (in_one_step)
        step.emplace(c, "A long step");
    LongRun run(c);
    for (std::uint32_t edits = 1;; ++edits) {
        person.edit_anything();
        (void)run.process_events();
        (void)!write(pipe, &edits, sizeof edits);
    }
}

// What the process told last before it was killed: so many microseconds after its journal was there.
std::uint32_t edits_until_killed(const std::function<void(int)>& work, const std::function<bool()>& has_begun,
                                 unsigned after)
{
    int pipe_ends[2];
    EXPECT_EQ(pipe(pipe_ends), 0);
    const pid_t child = fork();
    if (child == 0)
        work(pipe_ends[1]);
    close(pipe_ends[1]);
    while (!has_begun())
        usleep(1000);
    usleep(after);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    std::uint32_t told = 0;
    for (std::uint32_t edits; read(pipe_ends[0], &edits, sizeof edits) == sizeof edits;)
        told = edits;
    close(pipe_ends[0]);
    return told;
}

}    // namespace

// Killed at any moment: what comes back is a state that there was; of a long step, what it had done so far.
TEST_F(History, a_crash_leaves_a_state_that_there_was)
{
    const std::string same = folder.path("same.roi");
    fs::copy_file(file, same);
    for (std::uint64_t round = 0; round < 6; ++round) {
        fs::remove(folder.path("demo.journal")), fs::remove(folder.path("same.journal"));
        const bool in_one_step = round % 2 == 1;
        const std::uint32_t edits = edits_until_killed(
            [&](int pipe) { work_until_killed(file, round, in_one_step, pipe); },
            [&] { return journal().find("\n+") != std::string::npos; }, 39190 * static_cast<unsigned>(round));
        CurationProbe c, again;
        ASSERT_TRUE(c.work.open(file) && c.work.take_up() && again.work.open(same));
        const state left = state_of(c);
        const state fresh = state_of(again);
        Person person(again, round, same);
        bool is_found = in_one_step;    // it may have been in the middle of an edit
        for (std::uint32_t steps = 0; steps <= edits + 1 && !is_found; ++steps) {
            is_found = state_of(again) == left;
            person.edit_anything();
        }
        EXPECT_TRUE(is_found) << "round " << round << ", " << edits << " edits";
        EXPECT_TRUE(!in_one_step || c.work.history().position() == 1);
        while (c.work.undo())
            ;
        EXPECT_EQ(state_of(c), fresh);
        while (c.work.redo())
            ;
        EXPECT_TRUE(!in_one_step || state_of(c) == left);
    }
}

// Parts of a step that was not complete are a step; one that amounts to nothing is none.
TEST_F(History, a_long_step_is_kept_while_it_goes_on)
{
    const auto noted = [this](const char* word) { return journal().find(word) != std::string::npos; };
    const auto go_on_until_noted = [&](CurationProbe& c, int parts) {
        LongRun run(c);
        for (int unit = 0; std::ranges::count(journal(), 'P') < parts; ++unit)
            c.set_elite({"unit-" + std::to_string(unit)}, true), (void)run.process_events();
    };
    keys elite;
    {
        CurationProbe c;
        ASSERT_TRUE(c.work.open(file));
        {
            const EditScope step(c, "Nothing in the end");
            go_on_until_noted(c, 1);
            c.set_elite(keys(c.elite()), false);
        }
        EXPECT_EQ(c.work.history().position(), 0U);
        const EditScope step(c, "A long step");
        go_on_until_noted(c, 3);
        elite = c.elite();
        fs::copy_file(folder.path("demo.journal"), folder.path("torn.journal"));
    }
    EXPECT_TRUE(noted("\nNOTHING ")) << journal();
    for (const char* name : {"demo", "torn"}) {
        const std::string copy = folder.path(std::string(name) + ".roi");
        if (!fs::exists(copy))
            fs::copy_file(file, copy);
        CurationProbe c;
        ASSERT_TRUE(c.work.open(copy) && c.work.take_up());
        EXPECT_EQ(c.work.history().position(), 1U);
        EXPECT_EQ(c.work.history().next_to_undo().title(), "A long step");
        ASSERT_TRUE(c.work.undo());
        EXPECT_TRUE(c.elite().empty());
        ASSERT_TRUE(c.work.redo());
        EXPECT_TRUE(std::ranges::includes(elite, c.elite()) && !c.elite().empty());
        EXPECT_TRUE(name == std::string("torn") || c.elite() == elite);
    }
}

// Whichever files were saved before the program ended, and whatever was done to them since.
TEST_F(History, what_the_files_lack_is_taken_up)
{
    using files = const std::function<void(CurationProbe&)>;
    const auto drop_one = [](CurationProbe& c) {
        c.make_units(0, {}), c.make_units(1, {});
        c.toggle_false_positive(c.m_head_members.begin()->second), c.drop_false_positives();
    };
    const auto save_lineage = [this](CurationProbe& c) {
        ASSERT_TRUE(write_lineage(folder.path("demo.lineage"), c.dataset(), c.current_lineage()));
    };
    const auto save_all = [](CurationProbe& c) { ASSERT_TRUE(c.work.save_all()); };
    const auto save_rois = [this](CurationProbe& c) { ASSERT_TRUE(c.rois().write(file)); };
    const struct {
        const char* what;
        files work, after;    // after it: while the program does not run
        std::size_t unsaved;
    } cases[] = {
        {"a lineage of ROIs that are dropped later",
         [&](auto& c) { c.make_units(0, {}), save_lineage(c), drop_one(c), save_rois(c); },
         {},
         3},
        {"a lineage whose ROIs are not saved", [&](auto& c) { drop_one(c), save_lineage(c); }, {}, 2},
        {"all is saved, tracking too",
         [&](auto& c) { drop_one(c), c.forwardTracking(0), save_all(c); },
         {},
         0},
        {"an older ROI file put back", [&](auto& c) { drop_one(c), save_all(c), c.toggle_elite("x"); },
         [&](CurationProbe&) { fs::copy_file(file + ".orig", file, fs::copy_options::overwrite_existing); },
         2},
        {"a save before the first edit", [&](auto& c) { save_rois(c), drop_one(c); }, {}, 4},
        {"a nucleus is chosen on the way",
         [&](auto& c) { drop_one(c), save_all(c), c.choose(c.links().empty() ? "x" : ""); },
         {},
         0},
    };
    const std::string fresh = folder.contents("demo.roi");
    for (const auto& [what, work, after, unsaved] : cases) {
        for (const auto& entry : fs::directory_iterator(folder.path("")))
            if (entry.path().filename().native().starts_with("demo."))
                fs::remove(entry);
        (void)folder.with("demo.roi", "demo " + fresh.substr(fresh.find('\n')));    // as "write" would not
        std::optional<state> left;
        {
            CurationProbe c;
            ASSERT_TRUE(c.work.open(file));
            work(c);
            left = state_of(c);
        }
        CurationProbe c;
        if (after)
            after(c);
        ASSERT_TRUE(c.work.open(file)) << what;
        ASSERT_EQ(c.work.offers().size(), 1U) << what;
        EXPECT_EQ(c.work.offers().front().edits, unsaved) << what;
        ASSERT_TRUE(c.work.take_up()) << what << quiet.err.str();
        EXPECT_EQ(state_of(c), *left) << what;
    }
}

// Whatever links lead to the recording: it has one journal and one lock, and what is saved is known to be.
TEST_F(History, links_to_the_folder_make_no_second_recording)
{
    fs::create_directory_symlink(folder.path(""), folder.path("link"));
    CurationProbe c, other;
    ASSERT_TRUE(c.work.open(folder.path("link/demo.roi")));
    c.make_units(0, {});
    ASSERT_TRUE(c.work.save_all());
    EXPECT_EQ(c.work.unsaved_edits(), 0U);
    c.make_units(1, {});
    ASSERT_TRUE(c.work.save_all());
    EXPECT_EQ(quiet.err.str().find("put aside"), std::string::npos) << quiet.err.str();
    ASSERT_TRUE(other.work.open(file));
    EXPECT_TRUE(other.work.offers().empty()) << "the first goes on with it";
    other.make_units(2, {});
    EXPECT_NE(quiet.err.str().find("another window works on it"), std::string::npos);
}

// A journal that cannot be read stays as it is.
TEST_F(History, a_journal_that_cannot_be_read_is_left_alone)
{
    fs::create_directory(folder.path("demo.journal"));
    CurationProbe c;
    ASSERT_TRUE(c.work.open(file));
    c.make_units(0, {});
    EXPECT_TRUE(c.work.save_all() && fs::is_directory(folder.path("demo.journal")));
    const std::string lines = quiet.err.str();
    EXPECT_TRUE(lines.find("demo.journal cannot be read") != std::string::npos &&
                std::ranges::count(lines, '\n') == 1)
        << lines;
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
