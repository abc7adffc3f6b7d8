// Tracking through time and across the focal planes, and what may happen in the middle of it.
#include "../support/captured_lines.h"
#include "../support/editing.h"
#include "../support/scripted_dialogs.h"

#include <QTimer>

#include <algorithm>

namespace {

std::string square(int t) { return keygen({10, 5, 20, t}); }    // one at each time point of the recording
std::string point(int t) { return keygen({30, 25, 20, t}); }
std::string column(int z, int t) { return keygen({40, 10, z, t}); }

// No run goes on any more: the cursor, the buttons and the marks say so.
bool is_at_rest(const WindowProbe& w)
{
    const bool is_open = w.m_roidb != nullptr;
    const auto is_known = [&w](auto& key) {
        return w.m_removed_roi_set.contains(key) || w.m_roidb->db.contains(key);
    };
    return w.cursor().shape() == Qt::ArrowCursor && w.m_auto == w.pushButton_auto->isChecked() &&
           w.pushButton_forward_tracking->isEnabled() == is_open && w.pushButton_z->isEnabled() == is_open &&
           (!is_open || (!w.m_auto && std::ranges::all_of(w.m_fwd_roi_set, is_known)));
}

void drop_the_column(WindowProbe& w)
{
    for (int z = 19; z < 23; ++z)
        w.m_removed_roi_set.merge(keys({column(z, w.m_time_point - 1), column(z, w.m_time_point)}));
    w.pushButton_drop_false_positive->click();
}

}    // namespace

class TestGuiTracking : public QObject {
    Q_OBJECT
    const SmallRecording other{"other", 2, 3}, recording;

private slots:
    void oneSharedPixelIsEnoughAndARemovedRoiBlocks()
    {
        for (const int step : {1, -1}) {
            OpenWindow w(recording);
            const int t = 2 + step;
            const std::string start = put_roi(w, {40, 10, 20, 2}), twin = put_roi(w, {38, 9, 20, 2});
            const std::string above = put_roi(w, {43, 10, 19, 2}), next = put_roi(w, {43, 13, 20, t});
            const std::string below = put_roi(w, {46, 16, 21, t}), behind = put_roi(w, {46, 16, 22, t});
            put_roi(w, {39, 14, 20, t});    // touches, but shares nothing
            put_roi(w, {40, 10, 22, t});    // on a plane that is not reached
            const std::tuple<keys, keys, keys> cases[] = {
                {{start}, {}, {start, twin, above, next, below, behind}},
                {{start}, {below}, {start, twin, above, next}},
                {{start}, {next}, {start, twin, above}},
                {{start}, {start}, {}},
                {{square(2), point(2)}, {}, {square(2), point(2), square(t), point(t)}}};
            for (const auto& [selected, removed, reached] : cases) {
                w.m_fwd_roi_set = w.m_bwd_roi_set = {};
                w.m_selected_roi_set = selected, w.m_removed_roi_set = removed;
                w.setCurrentTimePoint(2);
                (step > 0 ? w.pushButton_forward_tracking : w.pushButton_backward_tracking)->click();
                QCOMPARE(step > 0 ? w.m_fwd_roi_set : w.m_bwd_roi_set, reached);
                QVERIFY(w.m_time_point == t && w.m_selected_roi_set == selected && is_at_rest(w));
            }
        }
    }

    void throughZMoreThanHalfOfTheLargerMustBeShared()
    {
        const int cases[][3] = {{24, 8, 0}, {23, 8, 1}, {22, 4, 0}, {22, 5, 1}, {15, 16, 0}, {15, 15, 1}};
        for (const auto& [x, width, joined] : cases)    // beside 8 pixels from x = 20
            for (const int step : {1, -1}) {
                OpenWindow w(recording);
                keys expected = {put_roi(w, {20, 30, 20, 0}, 8, 1), square(1)};
                w.m_selected_roi_set = expected;
                for (const int planes : {1, 2})
                    if (put_roi(w, {x, 30, 20 + planes * step, 0}, width, 1); joined)
                        expected.insert(keygen({x, 30, 20 + planes * step, 0}));
                QTest::keyClick(&w, Qt::Key_Z);
                QCOMPARE(w.m_selected_roi_set, expected);
                QVERIFY(w.m_fwd_roi_set.empty() && w.m_time_point == 0 && is_at_rest(w));
            }
    }

    void autoRunsToTheEndAndNoFurther()
    {
        OpenWindow w(recording);
        w.m_make_units = true;    // of what is reached
        w.m_unit_roi_head = {10, 5, 20, 0, ""}, w.m_members_head = {{square(1), "kept"}};
        w.m_selected_roi_set = {square(0)};
        w.pushButton_auto->click();
        w.pushButton_forward_tracking->click();
        const keys all = {square(0), square(1), square(2), square(3), square(4)};
        QCOMPARE(w.m_fwd_roi_set, all);
        QVERIFY(w.member(square(0)) == all && w.head(square(2)) == square(0) && w.head(square(1)) == "kept");
        QVERIFY(w.m_time_point == 4 && is_at_rest(w));
        QCOMPARE(w.pictures_since_last_asked(), 4 + 4);    // where each step goes, and what it found
        w.m_selected_roi_set = {square(4)};
        w.pushButton_auto->click();
        w.pushButton_backward_tracking->click();
        QVERIFY(w.m_bwd_roi_set == all && w.m_time_point == 0 && is_at_rest(w));
    }

    void theDepthOfTheDataIsNotThatOfTheStack()
    {
        OpenWindow w(recording);
        for (int z = 0; z < 1000; ++z)
            put_roi(w, {40, 10, z, 1});
        w.m_selected_roi_set = {put_roi(w, {40, 10, 20, 0})};
        std::set<std::uintptr_t> frames;    // while events are processed
        QTimer watch;
        watch.callOnTimeout(
            [&] { frames.insert(reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0))); });
        watch.start(0);
        w.forwardTracking(0);
        QVERIFY(w.m_fwd_roi_set.size() == 1001 && *frames.rbegin() - *frames.begin() < 1000);
    }

    void aRunStandsWhateverAPersonDoesMeanwhile()
    {
        constexpr int stopped = -1;    // somewhere before the end
        const std::tuple<const char*, void (*)(WindowProbe&), int, bool> cases[] = {
            // ends at, reaches the end
            {"select", [](WindowProbe& w) { click(w, 30, 25); }, 4, true},
            {"Z", [](WindowProbe& w) { QTest::keyClick(&w, Qt::Key_Z); }, 4, true},
            {"Drop FP", drop_the_column, 4, true},
            {"Reset", [](WindowProbe& w) { w.pushButton_reset->click(); }, 4, false},
            {"Stop", [](WindowProbe& w) { w.pushButton_stop->click(); }, stopped, false},
            {"Read ROIs", [](WindowProbe& w) { w.pushButton_read_roifile->click(); }, 2, false},
            {"close", [](WindowProbe& w) { w.close_common(); }, 0, false},
            {"close the window", [](WindowProbe& w) { w.close(); }, stopped, false},
            {"Exit", [](WindowProbe& w) { w.pushButton_exit->click(); }, stopped, false}};
        const CapturedLines lines(std::cout), errors(std::cerr);    // the other's images are elsewhere
        for (const auto& [what, action, ends_at, reaches_end] : cases)
            for (const int nth : {1, 7, 25, 60}) {    // candidate of the run
                OpenWindow w(recording);
                for (int i = 0; i < 5 * 4; ++i)
                    put_roi(w, {40, 10, 19 + i % 4, i / 4});
                w.m_selected_roi_set = {square(0), column(20, 0)};
                w.pushButton_auto->click();
                const ScriptedDialogs user({other.path("file.roi")});
                QTimer disturbance;
                disturbance.callOnTimeout([&, act = action, passes = 0]() mutable {
                    if (++passes == nth)
                        disturbance.stop(), act(w);
                });
                disturbance.start(0);
                QTimer::singleShot(0, [&w] {
                    w.pushButton_forward_tracking->click();
                    QCoreApplication::exit();
                });
                QCoreApplication::exec();
                QCoreApplication::processEvents();    // also those that ask the program to quit
                QVERIFY2(ends_at == stopped ? w.m_time_point < 4 : w.m_time_point == ends_at, what);
                QVERIFY2(!disturbance.isActive() && is_at_rest(w), what);
                QVERIFY2(w.isVisible() || nth > 1 || w.m_fwd_roi_set.empty(), "at once");
                QVERIFY2(!reaches_end || w.m_fwd_roi_set.contains(square(4)), what);
                QVERIFY2(ends_at != 2 || (w.m_dataset == "other" && w.m_fwd_roi_set.empty()), what);
            }
    }

    void zEndsWithItsRecording()
    {
        for (int nth = 1; nth < 12; ++nth) {    // look for events
            OpenWindow w(recording);
            for (int z = 19; z < 23; ++z)
                put_roi(w, {40, 10, z, 0});
            w.m_selected_roi_set = {column(20, 0)};
            QTimer user;
            user.callOnTimeout([&, looks = 0]() mutable {
                if (++looks == nth)
                    w.close_common();
            });
            user.start(0);
            w.do_zTracking();
            QVERIFY(is_at_rest(w) && (nth > 6 || !w.m_roidb));
        }
    }

    void aKeyHeldDownDoesNotKeepStopOut()
    {
        for (const Qt::Key key : {Qt::Key_Z, Qt::Key_Right, Qt::Key_M}) {
            OpenWindow w(recording);
            w.m_selected_roi_set = {square(0)};
            w.pushButton_auto->click();
            for (int i = 0; i < 20; ++i)
                QCoreApplication::postEvent(&w, new QKeyEvent(QEvent::KeyPress, key, Qt::NoModifier));
            QMetaObject::invokeMethod(&w, &WindowProbe::pushButton_stop_clicked, Qt::QueuedConnection);
            w.pushButton_forward_tracking->click();
            QVERIFY(w.m_time_point == 1 && w.m_fwd_roi_set == keys({square(0), square(1)}) && is_at_rest(w));
        }
    }
};

QTEST_MAIN(TestGuiTracking)
#include "test_gui_tracking.moc"
