// The corrections that a person makes most often, and how many inputs each takes: keys, clicks and buttons.
#include "../support/captured_lines.h"
#include "../support/family.h"
#include "../support/paged_window.h"

#include <QPushButton>

namespace {

using Window = FamilyIn<PagedWindow>;

QPoint middle_of(char letter)
{
    for (const auto& unit : family)
        if (unit.letter == letter)
            return {unit.x + unit.width / 2, unit.y + unit.height / 2};
    return {};
}

void press_button(Window& w, const QString& name)
{
    auto* const button = w.findChild<QPushButton*>(name);
    w.tabWidget_control_panel->setCurrentWidget(button->parentWidget());
    QTest::mouseClick(button, Qt::LeftButton);
}

// "< >": a time point back, forward; "U": that key; ".A": a click on unit A; "^", "-", "=": with Ctrl, or a
// right click with Shift, with both; "+": with Ctrl and Shift; "@": on the place of a cut; "save_all": that
// button.
void do_input(Window& w, const QString& input)
{
    const char kind = input[0].toLatin1();
    const QPoint at = input.size() == 2 ? middle_of(input[1].toLatin1()) : QPoint();
    switch (kind) {
    case '<':
        return w.press(Qt::Key_Left);
    case '>':
        return w.press(Qt::Key_Right);
    case '.':
        return w.click_with(Qt::NoModifier, at);
    case '^':
        return w.click_with(Qt::ControlModifier, at);
    case '+':
        return w.click_with(Qt::ControlModifier | Qt::ShiftModifier, at);
    case '-':
        return w.click_with(Qt::ShiftModifier, at, Qt::RightButton);
    case '=':
        return w.click_with(Qt::ShiftModifier | Qt::ControlModifier, at, Qt::RightButton);
    case '@':
        return w.click_with(Qt::NoModifier, {22, 14});
    default:
        input.size() == 1 ? w.press(input[0].unicode()) : press_button(w, input);
    }
}

}    // namespace

class TestGuiCorrections : public QObject {
    Q_OBJECT
private slots:
    void eachTakesSoManyInputs_data()
    {
        QTest::addColumn<int>("t");    // where the person sees it
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("inputs");
        QTest::addColumn<QString>("after");
        QTest::addColumn<int>("false_positives");
        QTest::addColumn<int>("count");
        const struct {
            const char* name;
            int t;
            const char *before, *inputs, *after;
            int false_positives, count;
        } rows[] = {
            {"link a dead end", 1, "KA LB", "^A > +D", "KA LB AD", 0, 3},
            {"link the dead end that is found", 4, "LB AD BS DC", "dead_end > +A", "KA LB AD BS DC", 0, 3},
            {"remove one of two parents", 2, "AD BD", "^D < +B", "AD", 0, 3},
            {"merge", 2, "AD BS", "^D M .S", "AD BD", 0, 3},
            {"false division", 1, "AD AS", "^A > +S", "AD", 0, 3},
            {"false division, with a key", 1, "AD AS", "^A > U .S", "AD", 0, 4},
            {"missed daughter", 1, "AD", "^A > +S", "AD AS", 0, 3},
            {"swap of two tracks", 2, "AS FD", "^S O .D", "AD FS", 0, 3},
            {"false positive at four time points", 0, "KA AD DC", "=K", "KA AD DC", 8, 1},
            {"false positive at four time points, not linked", 0, "", "-K > -A > -D > -C", "", 8, 7},
            {"save all", 0, "KA", "save_all", "KA", 0, 1},
        };
        for (const auto& row : rows)
            QTest::newRow(row.name) << row.t << QString(row.before) << QString(row.inputs)
                                    << QString(row.after) << row.false_positives << row.count;
    }

    void eachTakesSoManyInputs()
    {
        QFETCH(int, t);
        QFETCH(QString, before);
        QFETCH(QString, inputs);
        QFETCH(QString, after);
        QFETCH(int, false_positives);
        QFETCH(int, count);
        const SmallRecording recording;
        Window w(before, "", recording);
        const CapturedLines out(std::cout), err(std::cerr);
        w.setCurrentTimePoint(t);
        const QStringList all = inputs.split(' ');
        for (const QString& input : all)
            do_input(w, input);
        QCOMPARE(w.links(), after);
        QVERIFY(!inputs.contains('O') || w.chosen() == w.at('S'));
        QCOMPARE(w.m_removed_roi_set.size(), static_cast<std::size_t>(false_positives));
        QCOMPARE(all.size(), count);
        QVERIFY(inputs != "save_all" || w.unsaved_edits() == 0);
    }
};

QTEST_MAIN(TestGuiCorrections)
#include "test_gui_corrections.moc"
