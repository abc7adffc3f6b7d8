// The page "Review": from finding to finding, decisions by one key each, and the walks.
#include "../support/captured_lines.h"
#include "../support/paged_window.h"
#include "lineage_page.h"
#include "review_page.h"

namespace {

// A row of three nuclei over three time points; the middle one loses its track on the way, and at time point
// 1 the left one is one outline with a neighbour of before and after.
struct Row {
    SmallRecording recording{"tiny", 0, 2};
    PagedWindow w{recording};
    ReviewPage* page = w.findChild<ReviewPage*>();
    std::string ends;

    Row()
    {
        w.m_roidb = std::make_unique<roidb_plus>("tiny");
        for (int t = 0; t < 3; ++t)
            for (const int x : {100, 140}) {
                std::vector<std::string> members;
                for (int z = 18; z < 24; ++z)
                    members.push_back(put_roi(w, {x, 50, z, t}, 20, 20));
                put_unit(w, members);
            }
        for (int t = 1; t < 3; ++t)
            w.link(unit(100, t - 1), unit(100, t));
        w.link(unit(140, 0), unit(140, 1));
        ends = unit(140, 1);
        w.tabWidget_control_panel->setCurrentWidget(page);
    }

    [[nodiscard]] static std::string unit(int x, int t) { return keygen({x, 50, 18, t}); }

    // Keys wait for the list, which is made in slices.
    void wait_for_list()
    {
        page->next_finding->click();
        QTRY_VERIFY(ReviewWalk::of(w)->is_made());
        QTRY_VERIFY(page->remaining->text().contains("reviewed"));
    }
};

}    // namespace

class TestGuiReview : public QObject {
    Q_OBJECT

private slots:
    void aFindingIsShownAcceptedAndTakenBack()
    {
        Row s;
        s.wait_for_list();
        QVERIFY2(s.page->remaining->text().startsWith("2 open of 2, 0 %"),
                 qPrintable(s.page->remaining->text()));
        s.w.press(Qt::Key_N);
        QVERIFY(ReviewWalk::of(s.w)->current());
        QTRY_VERIFY(!s.page->finding->toolTip().isEmpty() && s.page->accept->isEnabled());
        QCOMPARE(s.w.marks().ringed(), ReviewWalk::of(s.w)->current()->unit);
        QCOMPARE(s.w.chosen(), ReviewWalk::of(s.w)->current()->unit);
        const auto before = s.w.links();
        s.w.press(Qt::Key_Return);
        QCOMPARE(s.w.links().size(), before.size() + 1);
        QCOMPARE(s.w.parents(s.unit(140, 2)), keys{s.ends});
        QTRY_VERIFY(s.page->remaining->text().startsWith("Nothing left"));
        s.w.press(Qt::Key_N);
        QCOMPARE(s.w.said(), "Nothing left");
        s.w.undo();
        QCOMPARE(s.w.links(), before);
        QTRY_VERIFY(s.page->remaining->text().startsWith("2 open"));
        s.w.press(Qt::Key_N);
        s.w.link_by_hand(s.ends, s.unit(140, 2));
        QVERIFY(!ReviewWalk::of(s.w)->current());
        s.w.undo();
        QTRY_VERIFY(s.page->remaining->text().startsWith("2 open"));
        s.w.press(Qt::Key_N);    // what is on view may go: it has no place to be drawn at
        s.w.set_false_positives(s.w.member(s.unit(140, 2)), true);
        s.w.pushButton_drop_false_positive_clicked();
        (void)s.w.seen();
        s.w.press(Qt::Key_Return);
        QVERIFY(!ReviewWalk::of(s.w)->current());
    }

    void whatIsNoErrorIsNotListedAgain()
    {
        Row s;
        s.wait_for_list();
        for (int left = 2; left > 0; --left) {
            QTRY_VERIFY(s.page->remaining->text().startsWith(QString::number(left)));
            s.w.press(Qt::Key_N);
            s.w.press(Qt::Key_I);
        }
        QTRY_VERIFY(s.page->remaining->text().startsWith("Nothing left"));
        QCOMPARE(s.w.notes().size(), 2U);
        s.page->dead_end->click();
        QVERIFY(s.w.said().endsWith("none"));
    }

    void walksGoFromTheOneOnViewToTheNextAndAround()
    {
        Row s;
        const std::string other = s.unit(100, 0);
        s.w.release_child(other, s.unit(100, 1));
        s.wait_for_list();
        for (const std::string& unit : {other, s.ends, other}) {
            s.page->dead_end->click();
            QCOMPARE(s.w.marks().ringed(), unit);
            QCOMPARE(s.w.time_point(), decode(unit).t());
        }
    }

    void aCutIsShownMovedAndMade()
    {
        Row s;
        ReviewWalk* const walk = ReviewWalk::of(s.w);
        s.w.choose(s.unit(100, 0));
        s.w.press(Qt::Key_K);
        QVERIFY(walk->current() && walk->parting());
        const auto moved = [&] { return walk->parting()->where.offset; };
        s.w.press(Qt::Key_Period), s.w.press(Qt::Key_Period), s.w.press(Qt::Key_Comma);
        QCOMPARE(moved(), 1.0);
        s.w.press(Qt::Key_Escape);
        QVERIFY(!walk->current() && s.w.units(0).size() == 2);
        const CapturedLines out(std::cout);
        s.w.press(Qt::Key_K);
        const auto rois = [&] { return walk->parting() ? walk->parting()->rois.size() : 0; };
        const std::size_t before = rois();
        s.w.mergeUnits(s.unit(100, 0), s.unit(140, 0));    // the preview is of both
        QTRY_COMPARE(rois(), 2 * before);
        s.w.undo();
        QTRY_COMPARE(rois(), before);
        s.w.choose(s.unit(140, 0));
        s.w.press(Qt::Key_Escape);
        s.w.press(Qt::Key_K);
        s.w.mergeUnits(s.unit(100, 0), s.unit(140, 0));
        QVERIFY(!walk->current());    // its unit is gone
        s.w.undo();
        s.w.choose(s.unit(100, 0));
        s.w.press(Qt::Key_K);
        s.w.press(Qt::Key_Return);
        QCOMPARE(s.w.units(0).size(), 3U);
        s.w.undo();
        QCOMPARE(s.w.units(0).size(), 2U);
    }

    void theWorkListFollowsAndLeads()
    {
        Row s;
        s.wait_for_list();
        s.page->work_list->click();
        auto* const list = s.w.findChild<WorkList*>("workList");
        QVERIFY(list && QTest::qWaitForWindowExposed(list));
        auto* const table = list->findChild<QTableView*>();
        QTRY_COMPARE(table->model()->rowCount(), 2);
        ReviewWalk::of(s.w)->go_to(1);
        QCOMPARE(table->currentIndex().row(), 1);
        s.page->filter->setCurrentIndex(1 + static_cast<int>(finding_kind::dead_end));
        QTRY_COMPARE(table->model()->rowCount(), 1);
        emit table->clicked(table->model()->index(0, 0));
        QCOMPARE(s.w.chosen(), s.ends);
    }

    void whatIsListedCanBeChosen()
    {
        Row s;
        s.wait_for_list();
        ReviewWalk* const walk = ReviewWalk::of(s.w);
        const auto type = [&](const char* text) {
            s.page->times->setFocus();
            s.page->times->clear();
            QTest::keyClicks(s.page->times, text);
            QTest::keyClick(s.page->times, Qt::Key_Return);
        };
        for (const auto& [text, left] : {std::pair("1", 1U), {"2-", 1}, {"0-2", 2}, {"-0", 0}, {"", 2}}) {
            type(text);
            QVERIFY2(walk->listed().size() == left && s.page->times->text() == text, text);
        }
        type("2-1");
        QVERIFY(s.w.said().contains("3-7") && walk->listed().size() == 2);
        s.w.choose(s.unit(100, 0));
        s.page->lineage->click();
        QVERIFY(walk->listed().empty());
        QTRY_VERIFY(s.page->remaining->toolTip().contains("Nothing left, 0 % of this lineage's 3"));
        s.w.press(Qt::Key_N);
        QVERIFY(s.w.said().contains("2 others"));
        s.page->lineage->click();
        QCOMPARE(walk->listed().size(), 2U);
    }

    void aGapSettlesBothItsEnds()
    {
        Row s;
        s.w.release_child(s.unit(140, 0), s.ends);
        s.w.set_false_positives(s.w.member(s.ends), true);
        s.wait_for_list();
        const auto say_gap = [&s](int t) {
            s.w.choose(s.unit(140, 0));
            s.w.press(Qt::Key_J);
            s.w.setCurrentTimePoint(t);
            s.w.click_with(0, {145, 55});
        };
        say_gap(1);
        QVERIFY(s.w.said().startsWith("There is no gap") && s.w.notes().empty());
        say_gap(2);
        QVERIFY(s.w.notes().contains("GAP " + s.unit(140, 0) + ' ' + s.unit(140, 2)));
        QVERIFY2(s.w.said().contains("seen again"), qPrintable(s.w.said()));
        QTRY_VERIFY(ReviewWalk::of(s.w)->listed().empty());
        say_gap(2);
        QTRY_COMPARE(ReviewWalk::of(s.w)->listed().size(), 2U);
    }

    void whatIsOnViewIsSplitFirstAndTheRestByItself()
    {
        Row s;
        auto* const lineage = s.w.findChild<LineagePage*>();
        for (int t = 1; t < 3; ++t)
            s.w.link(s.unit(140, t - 1), s.unit(100, t));
        s.w.choose(s.unit(100, 2));
        s.w.setCurrentTimePoint(2);
        const CapturedLines out(std::cout);
        lineage->split->click();
        QVERIFY(s.w.units(1).size() == 1 && s.w.units(0).size() == 2);
        s.w.undo();
        s.w.choose(s.unit(100, 0));    // which is not doubtful; what comes first is false
        s.w.set_false_positives(s.w.member(s.unit(100, 1)), true);
        lineage->split->click();
        QVERIFY(s.w.units(1).size() == 1 && s.w.units(0).size() == 2);
        s.w.undo();
        s.w.undo();
        lineage->auto_split->click();
        QCOMPARE(s.w.said(), "No unit of time point 0 is elite: all of them are taken for right");
        QTRY_VERIFY(!lineage->auto_split->isChecked() && !s.w.is_busy());
        QTRY_VERIFY2(s.w.said().contains("2 merged, 0 left. No unit of time point 0 is elite"),
                     qPrintable(s.w.said()));
    }

    void aReviewedNucleusIsCountedAndSaved()
    {
        Row s;
        s.wait_for_list();
        s.w.choose(s.unit(100, 1));
        s.w.press(Qt::Key_V);
        QVERIFY(s.w.notes().contains("REVIEWED " + s.unit(100, 1)));
        QTRY_VERIFY(s.page->remaining->text().contains("16 % of nuclei"));
        s.w.press(Qt::Key_V);
        QVERIFY(s.w.notes().empty());
    }
};

QTEST_MAIN(TestGuiReview)
#include "test_gui_review.moc"
