// Splitting in the window: when nothing is cut, whatever goes on meanwhile, and the automatic split.
#include "../support/captured_lines.h"
#include "../support/editing.h"
#include "../support/family.h"

#include <QElapsedTimer>
#include <QTimer>

namespace {

using Family = FamilyIn<OpenWindow>;

// Events that pass before it.
constexpr int in_search = 3;
constexpr int in_cut = 61 + 1;    // between the members of D

using disturbance = std::function<void(Family&, const SmallRecording&)>;

disturbance answers(const std::string& answer, const std::string& line = {})
{
    return [=](Family&, const SmallRecording& recording) {
        answer_for_roimaker(recording.folder, answer, line);
    };
}

const std::string box = outline_of_box(22, 8).toStdString();
const char no_outline[] = "Cannot split D: roimaker has made no outline of one half";
const char not_whole[] = "Cannot split D: the outlines that roimaker has made are not those of its halves";
const char closed[] = "Cannot split D: its recording was closed meanwhile";
const char edited[] = "Cannot split D: it was edited meanwhile";

const struct {
    const char *links, *line;
    int events;
    disturbance disturb;
} refusal_table[] = {
    {"AD BD", "Cannot find /no", 0, [](auto&, auto&) { qputenv("ORVBROWSER_ROIMAKER", "/no"); }},
    {"AD BD", no_outline, 0, answers("0")},
    {"AD BD", not_whole, 0, answers("1\\n\\nr 0 0 2301")},
    {"AD BD", not_whole, 0, answers("1\\n\\nr 0 0 " + box.substr(1))},    // not closed
    {"AD BD", not_whole, 0, answers("1\\n\\nr 1 0 " + box)},
    {"AD BD", not_whole, 0, answers("2\\n\\nr 0 0 " + box + "\\n\\nr 2147483647 0")},
    {"AD BD", not_whole, 0,    // only the last half
     answers("0", "echo >>$0.calls; [ $(wc -l <$0.calls) -lt 4 ] && exec " ROIMAKER)},
    {"AD BD", "another ROI stands where one of the halves would start", 0,
     [](auto& w, auto&) {
         put_roi(w, {32, 10, 21, 2});
     }},
    {"AD GD", "Cannot split D: no plane divides it", 0, [](auto&, auto&) {}},
    {"AX BX", "Cannot split X: no plane divides it", 0, [](auto&, auto&) {}},
    {"AD BD", edited, in_search, [](auto& w, auto&) { w.m_roidb->remove(w.at('D')); }},
    {"AD BD", edited, in_cut, [](auto& w, auto&) { w.m_roidb->remove(*w.member(w.at('D')).rbegin()); }},
    {"AD BD", edited, in_search, [](auto& w, auto&) { w.mergeUnits(w.at('D'), w.at('S')); }},
    {"AD BD", edited, in_cut, [](auto& w, auto&) { w.link(w.at('F'), w.at('D')); }},
    {"AD BD", edited, in_cut, [](auto& w, auto&) { w.m_elite_head_roi_set.insert(w.at('D')); }},
    {"AD BD", edited, in_cut, [](auto& w, auto&) { w.pushButton_split_clicked(); }},
    {"AD BD", closed, in_search, [](auto& w, auto& r) { (void)w.openRoiFile(r.file); }},
    {"AD BD", closed, in_cut, [](auto& w, auto& r) { (void)w.openRoiFile(r.file); }},
    {"AD BD", closed, in_cut, [](auto& w, auto&) { w.close_common(); }},
    {"AD BD", closed, in_search, [](auto& w, auto&) { w.close(); }},
    {"AD BD", closed, in_cut, [](auto& w, auto&) { w.close(); }},
};

// All that a split may change.
auto state_of(const WindowProbe& w)
{
    return std::tuple(w.m_roidb ? w.m_roidb->db : decltype(w.m_roidb->db)(), w.m_head_members,
                      w.m_members_head, w.m_linkage_multimap, w.m_elite_head_roi_set, w.m_selected_roi_set);
}

}    // namespace

class TestGuiSplit : public QObject {
    Q_OBJECT
    const SmallRecording recording;

private slots:
    // Nothing changes but what the disturbance has done.
    void whatCannotBeCutStaysAsItWas()
    {
        for (const auto& row : refusal_table) {
            Family w(row.links, "ABG", recording);
            CapturedLines out(std::cout);
            CapturedLines errors(std::cerr);
            auto expected = state_of(w);
            QTimer timer;
            int events = 0;
            timer.callOnTimeout([&] {
                if (events++ != row.events)
                    return;
                timer.stop();
                row.disturb(w, recording);
                expected = state_of(w);
            });
            timer.start(0);
            if (row.events == 0)
                QTRY_COMPARE(events, 1);
            w.pushButton_split_clicked();
            qunsetenv("ORVBROWSER_ROIMAKER");
            const QString lines = w.named((errors.take() + out.take()).join('|'));
            QVERIFY2(lines.contains(row.line) && events == row.events + 1, qPrintable(lines.right(300)));
            QVERIFY2(state_of(w) == expected, qPrintable(lines.right(300)));
            QCOMPARE(w.cursor().shape(), Qt::ArrowCursor);
        }
    }

    // With work for two passes and then none, or with a suspect that stays.
    void theAutomaticSplitGoesOnWithoutHasteUntilItIsSwitchedOff()
    {
        for (const auto& [links, elite, idle_line, links_after] :
             {std::tuple("AD BD AX AX", "AB", "Doubt units: none", "AD BM AX"),
              {"AD BD AX AX", "ABD", "Falsely grouped", "AD BD AX AX"},
              {"AD BD FD", "ABD", "Falsely grouped", "AD BD FD"}}) {
            Family w(links, elite, recording);
            CapturedLines out(std::cout);
            QStringList lines;
            QTimer watch;
            watch.callOnTimeout([&] {
                lines += out.take();
                w.pushButton_auto_split_toggled(lines.filter(idle_line).size() < 3);
            });
            watch.start(1);
            w.pushButton_auto_split_toggled(true);
            QElapsedTimer clock;
            clock.start();
            w.pushButton_split_clicked();
            QVERIFY2(clock.elapsed() >= 2 * 190, "five passes a second");
            QCOMPARE(w.links(), links_after);
        }
    }
};

QTEST_MAIN(TestGuiSplit)
#include "test_gui_split.moc"
