// Undo, redo, saving everything, and what comes back from the journal: whatever was done, in whatever order.
#include "../support/kept_history.h"

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
            Person person(c, seed, file);
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
        ASSERT_EQ(later.work.offers().size(), 1U) << "the undo of what was saved is offered, too";
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
