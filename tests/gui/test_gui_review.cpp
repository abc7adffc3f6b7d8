// The page "Review": from finding to finding, decisions by one key each, and the walks.
#include "../support/captured_lines.h"
#include "../support/paged_window.h"
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
        s.w.press(Qt::Key_K);
        const CapturedLines out(std::cout);
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
