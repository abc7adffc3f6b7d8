// Splitting: what is done with a suspect, what a cut leaves behind, and when nothing is cut.
#include "../support/captured_lines.h"
#include "../support/editing.h"
#include "ORV_outline.h"
#include "cutting_plane.h"

#include <QElapsedTimer>
#include <QTimer>

#include <numeric>
#include <random>
#include <sys/stat.h>

namespace {

QString outline_of_box(int width, int height)
{
    return QString(height, '2') + QString(width, '3') + QString(height, '0') + QString(width, '1');
}

// Units of two planes named by letters. D spans A and B of the time point before it, and C and E of the
// one after it, as W does. G is around the centre of A. M is where the right half of D starts when it is cut.
const struct {
    char letter;
    int t, x, y = 10, width = 8, height = 8;
} family[] = {{'K', 0, 10},       {'L', 0, 20},           {'A', 1, 11},         {'B', 1, 25},
              {'F', 1, 40},       {'G', 1, 12, 11, 6, 6}, {'D', 2, 11, 10, 22}, {'S', 2, 40},
              {'T', 2, 18, 30},   {'X', 2, 50, 1, 1, 1},  {'C', 3, 11},         {'E', 3, 25},
              {'W', 3, 11, 9, 22}};

class Family : public OpenWindow {
public:
    explicit Family(const SmallRecording& recording, const QString& links = {}, const QString& elite = {})
        : OpenWindow(recording), _keys{{'M', keygen({32, 10, 20, 2})}}
    {
        for (const auto& [letter, t, x, y, width, height] : family) {
            std::vector<std::string> members{put_roi(*this, {x, y, 20, t}, width, height)};
            if (letter != 'X')    // a single pixel
                members.push_back(put_roi(*this, {x, y, 21, t}, width, height));
            _keys[letter] = put_unit(*this, members);
        }
        for (const QString& pair : links.split(' ', Qt::SkipEmptyParts))
            m_linkage_multimap.emplace(at(pair[1].toLatin1()), at(pair[0].toLatin1()));
        for (const QChar letter : elite)
            m_elite_head_roi_set.insert(at(letter.toLatin1()));
    }

    [[nodiscard]] const std::string& at(char letter) const { return _keys.at(letter); }

    // "AD BD": A is a parent of D, and so is B.
    [[nodiscard]] QString links() const
    {
        QStringList pairs;
        for (const auto& [child, parent] : m_linkage_multimap)
            pairs << named(QString::fromStdString(parent + child));
        return pairs.join(' ');
    }

    // With letters for keys.
    [[nodiscard]] QString named(QString text) const
    {
        for (const auto& [letter, key] : _keys)
            text.replace(QString::fromStdString(key), QChar(letter));
        return text;
    }

private:
    std::map<char, std::string> _keys;
};

// Nothing names what is not there.
bool is_consistent(WindowProbe& w)
{
    bool good = !broken_state_rule(w) && w.cursor().shape() == Qt::ArrowCursor;
    for (const auto* marks : {&w.m_selected_roi_set, &w.m_removed_roi_set, &w.m_mouse_over_roi_set,
                              &w.m_lineage_mode_roi_set, &w.m_split_parents})
        for (const std::string& key : *marks)
            good = good && w.m_roidb->db.contains(key);
    return good;
}

// The search for a cutting plane in its plainest form: looks at every pixel afresh for each plane.
// REQUIRES: some plane with this normal divides the unit
pos3d literal_search(WindowProbe& w, const std::string& doubt, pos3d E_normal, pos3d E_pos, int width)
{
    const pos3d nom = E_normal / E_normal.size();
    unsigned int min_size = 65535;
    pos3d min_pos = E_pos;
    for (int step = -width; step <= width; ++step) {
        QCoreApplication::processEvents();
        const pos3d point = E_pos + nom * step;
        bool plus = false;
        bool minus = false;
        unsigned int s = 0;
        for (const std::string& key : w.member(doubt)) {
            const q_roiimg* const qrimg = w.m_q_roiimgdb->qrimg(w.m_roidb->find_plus(key));
            const pos2i corner = qrimg->top_left();
            for (int j = 0; j < qrimg->height(); ++j)
                for (int i = 0; i < qrimg->width(); ++i) {
                    if (qrimg->value(i, j) == 0)
                        continue;
                    const double z = qrimg->z() * (100.0 / 21.0);
                    const double next_z = (qrimg->z() + 1) * (100.0 / 21.0);
                    const double cos1 = inner_product(pos3d(corner.x() + i, corner.y() + j, z) - point, nom);
                    const double cos2 =
                        inner_product(pos3d(corner.x() + i, corner.y() + j, next_z) - point, nom);
                    s += cos1 * cos2 < 0;
                    (cos1 < 0 ? minus : plus) = true;
                }
        }
        std::cout << "s=" << s << " (" << point << ")" << std::endl;
        if (s < min_size && plus && minus) {
            min_size = s;
            min_pos = point;
        }
    }
    const bool found = min_size < 65535;
    return found ? min_pos : literal_search(w, doubt, E_normal, (E_pos + w.E_g(doubt)) / 2, width);
}

const QString merged = "Merge units: A B|mergeUnits: A B";
const QString one_child = "Falsely grouped unit: D|p1(A): sisters: D|p2(B): sisters: D";
const QString case_3 = one_child + "|split: case 3";

// Links, elite units, what is printed, links after it.
const std::tuple<const char*, const char*, QString, const char*> suspect_table[] = {
    {"AD", "", "Doubt units: none", "AD"},
    {"AD AD BS", "", "Doubled link released: A D", "AD BS"},
    {"AD BD DC", "", merged, "AD DC"},
    {"AD BD DC", "A", merged, "AD DC"},        // cut down to none
    {"KA KB AD BD", "AK", merged, "KA AD"},    // the later one goes
    {"AD BD DC DE", "ABD", one_child, "AD BD DC DE"},
    {"AD BD BS DC", "AB", one_child + " S|split: case 1", "BD BS DC"},
    {"AD AS BD DC", "ABD", "Falsely grouped unit: D|p1(A): sisters: D S|p2(B): sisters: D|split: case 1",
     "AD AS DC"},
    {"AD BD BS FS DC", "AB", one_child + " S|split: case 1|split: case 3", "AD BM BS FS DC"},
    {"AD AS BD BS DC", "AB", "Falsely grouped unit: D|p1(A): sisters: D S|p2(B): sisters: D S|split: case 2",
     "AD BS DC"},
    {"AD AT BD BT DC", "AB",    // a tie
     "Falsely grouped unit: D|p1(A): sisters: D T|p2(B): sisters: D T|split: case 2", "BD AT DC"},
    {"KA LB AD BD", "KL", case_3, "KA LB AD BM"},
    {"AD BD FD DC", "AB", case_3, "AD BD FM DC"},    // by their sides
    {"AD BD DC DE", "AB", case_3, "AD BM DC ME"},    // the nearer to the lone half
    {"AD BD DW", "AB", case_3, "AD BM DW MW"},       // what overlaps the lone half
};

// Events that pass before it.
constexpr int in_search = 3;
constexpr int in_cut = 61 + 1;    // between the members of D

using disturbance = std::function<void(Family&, const SmallRecording&)>;

// In place of the ROI maker: a line of its own, then it reads the mask and answers.
disturbance answers(const std::string& answer, const std::string& line = {})
{
    return [=](Family&, const SmallRecording& recording) {
        const std::string script = recording.folder.with(
            "script", "#!/bin/sh\n" + line +
                          "\nread w; read h\nwhile [ $h -gt 0 ]; do read row; h=$((h-1)); done\nprintf '" +
                          answer + "\\n'\n");
        ::chmod(script.c_str(), 0755);
        qputenv("ORVBROWSER_ROIMAKER", script.c_str());
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
    void aSuspectIsMergedRepairedOrCut()
    {
        for (const auto& [links, elite, printed, links_after] : suspect_table) {
            Family w(recording, links, elite);
            CapturedLines out(std::cout);
            w.pushButton_split_clicked();
            QStringList lines = out.take();
            lines.removeIf(
                [](const QString& line) { return line.startsWith("s=") || line.startsWith("roi_"); });
            QCOMPARE(w.named(lines.join('|')), printed);
            QCOMPARE(w.links(), links_after);
            QVERIFY(is_consistent(w));
        }
    }

    // An elite one, too. Other marks stay on their planes.
    void aManualSplitAlwaysCuts()
    {
        Family w(recording, "AD BD DC DE", "DS");
        const std::string lower = *w.member(w.at('D')).rbegin();
        w.m_selected_roi_set = w.m_mouse_over_roi_set = {lower};
        w.m_removed_roi_set = w.m_lineage_mode_roi_set = {w.at('D')};
        CapturedLines out(std::cout);
        w.manualSplit(w.at('D'), {w.at('A'), w.at('B'), w.at('F')}, 21, 13, 20);
        QStringList lines = out.take();
        QCOMPARE(lines.removeIf([](const QString& line) { return line.startsWith("s="); }), 41);
        const QString rois = QString("|roi_plus: 11 10 %1 2 %2|roi_minus: 32 10 %1 2 %3")
                                 .arg("%1", outline_of_box(21, 8), outline_of_box(1, 8));
        QCOMPARE(w.named(lines.join('|')),
                 "manual split mode:|    doubt: D  parents: A B F| E_normal: (-1,0,0)|"
                 "      E_m: (21,13,95.2381)" +
                     rois.arg(20) + rois.arg(21));
        QCOMPARE(w.links(), "AD BM DC ME");
        QCOMPARE(w.m_elite_head_roi_set, keys{w.at('S')});
        QCOMPARE(w.m_selected_roi_set, (keys{lower, keygen({32, 10, 21, 2})}));
        QCOMPARE(w.m_removed_roi_set, (keys{w.at('D'), w.at('M')}));
        QVERIFY(w.m_mouse_over_roi_set.empty() && is_consistent(w));
        QCOMPARE(w.m_lineage_mode_roi_set, keys{w.at('D')});    // the half that keeps its name
    }

    // What cannot stand for the halves, too; a member without pixels is passed over.
    void aSplitAppendsAndPrintsWhateverRoimakerAnswers()
    {
        Family w(recording, "AD BD DC DE", "");
        const std::string empty = keygen({12, 10, 19, 2});
        w.m_roidb->entry_plus({12, 10, 19, 2, "x"});
        w.m_head_members.emplace(w.at('D'), empty);
        w.m_members_head.emplace(empty, w.at('D'));
        answers("1\\n\\nr 1 0 2301")(w, recording);
        CapturedLines out(std::cout);
        std::list<roi> plus, minus;
        w.splitROI(w.at('D'), {-1, 0, 0}, {21, 13, 0}, plus, minus);
        qunsetenv("ORVBROWSER_ROIMAKER");
        QCOMPARE(out.take().join('|'), "roi_plus: 12 10 20 2 2301|roi_minus: 12 10 20 2 2301|"
                                       "roi_plus: 12 10 21 2 2301|roi_minus: 12 10 21 2 2301");
        QVERIFY(plus.size() == 2 && minus.size() == 2);
        const std::string beside = put_roi(w, {13, 12, 20, 2}, 22, 8);    // another one on that plane
        w.m_head_members.emplace(w.at('D'), beside);
        w.m_members_head.emplace(beside, w.at('D'));
        w.manualSplit(w.at('D'), {w.at('A'), w.at('B')}, 21, 13, 20);
        QCOMPARE(w.units(2).size(), 5U);
        QVERIFY(!w.m_roidb->db.contains(empty) && is_consistent(w));
    }

    // From near the unit, and from so far away that the start has to move.
    void theSearchIsExactAndTheCutLosesNoPixel()
    {
        std::mt19937 random(5);
        const auto up_to = [&random](int n) { return static_cast<int>(random() % n); };
        for (int i = 0; i < 20; ++i) {
            OpenWindow w(recording);
            std::vector<std::string> members;
            for (int z = 20; z < 24; ++z)
                members.push_back(
                    put_roi(w, {110 + up_to(20), 10 + up_to(20), z, 2}, 1 + up_to(40), 1 + up_to(40)));
            const std::string unit = put_unit(w, members);
            keys parents;
            while (parents.size() < 2)
                parents.insert(put_unit(w, {put_roi(w, {100 + up_to(70), up_to(70), 10 + up_to(20), 1})}));
            const pos3d normal = w.E_g(*parents.begin()) - w.E_g(*parents.rbegin());
            const pos3d start(130 + up_to(20), i % 2 ? 40 : 400, 21 * focal_plane_step);
            CapturedLines out(std::cout);
            const pos3d expected = literal_search(w, unit, normal, start, 20);
            const QStringList lines = out.take();
            const pos3d found = w.search_cutting_position(unit, normal, start, 20);
            QCOMPARE(out.take(), lines);
            QVERIFY(found.x() == expected.x() && found.y() == expected.y() && found.z() == expected.z());

            const auto pixels = [&w] {
                return std::accumulate(w.m_roidb->db.lower_bound(time_key(2)),
                                       w.m_roidb->db.lower_bound(time_key(3)), 0LL,
                                       [](long long sum, const auto& entry) {
                                           return sum + enclosed_pixels(entry.second.outline());
                                       });
            };
            const long long before = pixels();
            w.manualSplit(unit, parents, 140, 40, 21);
            QCOMPARE(w.units(2).size(), 2u);
            QCOMPARE(pixels(), before);
            QVERIFY(is_consistent(w));
        }
    }

    // Nothing changes but what the disturbance has done.
    void whatCannotBeCutStaysAsItWas()
    {
        for (const auto& row : refusal_table) {
            Family w(recording, row.links, "ABG");
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

    void aManualSplitNeedsAUnitAndTwoParents()
    {
        Family w(recording);
        const auto before = state_of(w);
        const std::string a = w.at('A'), b = w.at('B'), d = w.at('D'), none = w.at('M');
        for (const auto& [doubt, parents] :
             {std::pair(d, keys{a}), {d, {}}, {none, {a, b}}, {d, {a, none}}, {"N/A", {a, b}}}) {
            CapturedLines out(std::cout);
            w.manualSplit(doubt, parents, 21, 13, 20);
            QVERIFY(out.take().last().endsWith(": not a unit and two parent units") && state_of(w) == before);
        }
    }

    // With work for two passes and then none, or with a suspect that stays.
    void theAutomaticSplitGoesOnWithoutHasteUntilItIsSwitchedOff()
    {
        for (const auto& [links, elite, idle_line, links_after] :
             {std::tuple("AD BD AX AX", "AB", "Doubt units: none", "AD BM AX"),
              {"AD BD AX AX", "ABD", "Falsely grouped", "AD BD AX AX"},
              {"AD BD FD", "ABD", "Falsely grouped", "AD BD FD"}}) {
            Family w(recording, links, elite);
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
