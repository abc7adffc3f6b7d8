// monkey - does to the window whatever comes to its mind, and looks each time whether its rules still hold.
//
// monkey [--actions N] [--seed S]: the same for the same seed, as far as the clock lets it. Ends with the
// first broken rule, if any, and what led to it.
#include "../support/captured_lines.h"
#include "../support/curation_probe.h"
#include "../support/scripted_dialogs.h"
#include "monkey_window.h"
#include "story.h"
#include "swapped_files.h"

#include <QComboBox>
#include <QCommandLineParser>
#include <QDateTime>
#include <QRegularExpression>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <csignal>

extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*)());

namespace {

// ---- The monkey

class Monkey : public QObject {
public:
    explicit Monkey(std::uint64_t seed) : _seed(seed), _random(seed)
    {
        qputenv("HOME", _files.path("home").c_str());
        qputenv("XDG_CONFIG_HOME", "/dev/null");    // else file dialogs wait for the disk
        for (const char* folder : {"XDG_RUNTIME_DIR", "XDG_STATE_HOME"})
            qputenv(folder, _files.path("home").c_str());
        for (const char* folder : {"ORVBROWSER_IMAGE_ROOT", "PWD"})
            qputenv(folder, _files.path("").c_str());
        for (QTimer& timer : _timers) {    // one stays silent while it is served: the next acts inside it
            connect(&timer, &QTimer::timeout, this, &Monkey::act_in_run);
            timer.start(0);
        }
    }

    [[nodiscard]] const char* act(int action)
    {
        alarm(120);    // seconds
        const CapturedLines out(std::cout), err(std::cerr);
        std::snprintf(story, sizeof story, "monkey: seed %d, action %d: ", static_cast<int>(_seed), action);
        _random = demo_random(_seed, 1, static_cast<std::uint64_t>(action));
        _patience = _random.below(10000);
        _meddling = std::pow(10, -1 - _random.below(4));
        if (!_window || _random.chance(0.0003))
            _window.reset(), _window = std::make_unique<MonkeyWindow>();
        _window->isOpen() || _random.chance(0.8) ? act_once() : click_button("read_roifile");
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        const char* rule = _window ? _window->broken_rule() : nullptr;
        if (_window && !rule && action % 100 == 90)
            make_in_peace();
        if (_window && !rule && action % 100 == 99)
            rule = _window->lists_what_is_found() ? broken_rule_of_history()
                                                  : "a list of findings made anew is the one that is shown";
        if (_window)
            _window->remember_start();
        return rule;
    }

private:
    // The window's own undo; now and then the same in a program that starts afresh.
    const char* broken_rule_of_history()
    {
        note("history");
        const std::string begun = QDateTime::currentDateTimeUtc().toString(Qt::ISODate).toStdString();
        if (const char* const rule = _window->broken_rule_of_undo())
            return rule;
        if (!_window->isOpen() || _window->work().roi_file() != _files.path("demo.roi") || chance(0.5))
            return nullptr;
        const auto now = state_of(*_window);
        const std::size_t unsaved = _window->unsaved_edits();
        _window.reset();
        CurationProbe afresh;
        if (!afresh.work.open(_files.path("demo.roi")) || afresh.work.offers().empty() || unsaved == 0 ||
            afresh.work.offers().front().edits != unsaved || afresh.work.offers().front().time < begun)
            return nullptr;    // its file is another now, and what is offered is older work
        if (!afresh.work.take_up())
            return "what is offered can be taken up";
        if (state_of(afresh) != now)
            return "the journal brings back the state";
        const std::size_t position = afresh.work.history().position();
        while (afresh.work.undo())
            ;
        const auto start = state_of(afresh);
        while (afresh.work.redo())
            ;
        while (afresh.work.history().position() > position)
            (void)afresh.work.undo();
        if (state_of(afresh) != now)
            return "undo and redo of steps from the journal lead to the same state";
        while (afresh.work.undo())
            ;
        return state_of(afresh) == start ? nullptr : "undoing steps from the journal leads to one start";
    }

    // So that there is something to find.
    void make_in_peace()
    {
        note("make");
        for (QTimer& timer : _timers)
            timer.stop();
        _window->make_units_and_links();
        for (QTimer& timer : _timers)
            timer.start(0);
    }

    void act_once()
    {
        static const struct {
            const char* name;
            int weight;    // in per cent
            void (Monkey::*act)();
        } kinds[] = {{"key", 11, &Monkey::press_any_key},
                     {"hold", 2, &Monkey::hold_key},
                     {"widget", 16, &Monkey::click_widget},
                     {"canvas", 14, &Monkey::click_canvas},
                     {"pointer", 9, &Monkey::move},
                     {"wheel", 8, &Monkey::turn_wheel},
                     {"text", 8, &Monkey::type},
                     {"steps", 25, &Monkey::take_steps},
                     {"swap", 3, &Monkey::swap_file},
                     {"focus", 1, &Monkey::focus},
                     {"window", 3, &Monkey::handle_window}};
        const auto* chosen = kinds;
        for (int number = below(100); (number -= chosen->weight) >= 0;)
            ++chosen;
        note(chosen->name);
        _user.answers = {any_answer(), any_answer()};
        window().show();
        (this->*chosen->act)();
    }

    // While the window lets events be processed.
    void act_in_run()
    {
        if (!_window || !_window->is_busy() || QApplication::activeModalWidget())
            return;
        if (--_patience < 0)
            _window->page->stop->click();
        else if (chance(0.0005))
            note("delete"), _window.reset();
        else if (chance(_meddling))
            act_once();
    }

    // The window goes when an action deletes it in a handler: what would act on it next finds another.
    MonkeyWindow& window()
    {
        if (!_window)
            _window = std::make_unique<MonkeyWindow>();
        return *_window;
    }

    void focus()
    {
        const QPointer<QWidget> widget = any_widget(0);
        widget->setFocus(Qt::TabFocusReason);
    }

    // As QTest::mouseClick, but for a widget that goes with the press.
    static void click_at(QWidget* widget, Qt::MouseButton button, QPoint at, Qt::KeyboardModifiers held = {})
    {
        const QPointer<QWidget> pressed = widget;
        QTest::mousePress(widget, button, held, at);
        if (pressed)
            QTest::mouseRelease(pressed, button, held, at);
    }

    // ---- Choosing

    int below(int n) { return _random.below(n); }
    bool chance(double probability) { return _random.chance(probability); }

    template <class Values>
    auto& any_of(const Values& values)
    {
        return *std::next(std::begin(values), below(static_cast<int>(std::size(values))));
    }

    QPoint any_point(const QWidget* in) { return {below(in->width()), below(in->height())}; }
    Qt::MouseButton any_button() { return Qt::MouseButton(chance(0.7) ? 1 : 1 << below(5)); }
    QString any_answer() { return chance(0.3) ? "&Yes" : QString::fromStdString(_files.any()); }

    // The window, or a control of any window; its page comes to the front.
    QWidget* any_widget(double window_share)
    {
        static const QRegularExpression kinds(
            "Button|Slider|ScrollBar|CheckBox|LineEdit|TabBar|SpinBox|TreeWindow|TextBrowser");
        if (chance(window_share))
            return &window();
        QList<QWidget*> controls = window().findChildren<QWidget*>();
        controls.removeIf([](QWidget* w) { return !kinds.match(w->metaObject()->className()).hasMatch(); });
        QWidget* const control = any_of(controls);
        if (window().tabWidget_control_panel->indexOf(control->parentWidget()) >= 0)
            window().tabWidget_control_panel->setCurrentWidget(control->parentWidget());
        note(control->objectName());
        return control;
    }

    // ---- One event

    void click_canvas() { click_roi(any_button()); }
    void move() { move_pointer(window(), below(170), below(170)); }
    void press(int key, int modifiers = 0, QWidget* in = nullptr)
    {
        note(QString::number(key, 16));
        QTest::keyClick(in ? in : &window(), Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    }

    void press_any_key()
    {
        static const std::string letters = "ACDEFLMRSTWXZQ7 GHUJO[]+-01NPIVK,.";
        const int other = chance(0.8) ? Qt::Key_Home + below(8) : Qt::Key_Escape + below(11);
        press(chance(0.5) ? any_of(letters) : other, chance(0.8) ? 0 : below(16) * Qt::ShiftModifier,
              chance(0.3) ? QApplication::focusWidget() : nullptr);
    }

    // H or Space while the canvas is dragged, clicked, or another key pressed; sometimes let go elsewhere.
    void hold_key()
    {
        const Qt::Key held = chance(0.5) ? Qt::Key_H : Qt::Key_Space;
        QTest::keyPress(&window(), held);
        const QPoint from = any_point(window().frame_canvas), to = any_point(window().frame_canvas);
        const QPoint corner = window().frame_canvas->pos();
        if (chance(0.7)) {
            QTest::mousePress(&window(), Qt::LeftButton, {}, corner + from);
            move_pointer(window(), to.x(), to.y());
            QTest::mouseRelease(&window(), Qt::LeftButton, {}, corner + to);
        }
        if (chance(0.3))
            press_any_key();
        QTest::keyRelease(chance(0.8) ? &window() : any_widget(0), held);
    }

    // A choice of a list, as its window would open a list of its own.
    void choose_any()
    {
        QComboBox* const list = any_of(window().findChildren<QComboBox*>());
        note(list->objectName());
        if (list->isEnabled() && list->count() > 0)
            list->setCurrentIndex(below(list->count()));
    }

    void click_widget()
    {
        if (chance(0.05))
            return choose_any();
        const QPointer<QWidget> widget = any_widget(0.2);
        const Qt::MouseButton button = any_button();
        const QPoint at = any_point(widget);
        if (chance(0.2))
            return QTest::mouseDClick(widget, button, {}, at);
        QTest::mousePress(widget, button, {}, at);
        if (widget && chance(0.2))
            QTest::mouseMove(widget, any_point(widget));
        if (widget)
            QTest::mouseRelease(widget, button, {}, at);
    }

    // Answers with Yes, or with a file of its kind when it asks for one.
    void click_button(const QString& name)
    {
        QPushButton* const button = any_of(window().findChildren<QPushButton*>(QRegularExpression(name)));
        QString kind = button->objectName().section('_', -1).toLower();
        kind.replace(QRegularExpression("roifile|restore"), "roi").replace("file", "lineage");
        _user.answers = {QString::fromStdString(_files.of_kind('.' + kind.toStdString())), "&Yes"};
        if (kind == "links")
            _user.answers.removeFirst();
        note(button->objectName());
        click_at(button, Qt::LeftButton, button->rect().center());
    }

    // Several in a row that make sense: clicks on ROIs, a step in time, keys, and buttons.
    void take_steps()
    {
        static const QStringList series =
            QString("L . > A .;L . R .;L . M .;L . > J > .;L . > S . . .;L . > S . . .;drop;, , drop;"
                    ". ward_tracking;. ward_tracking;. auto$ ward_tracking;. (auto|stop|z|select_all|reset)$;"
                    "make_units make_links;make_units elite make_links;^split;^split;^auto_split;"
                    "^(pushButton_)?(read|save|restore);read_;save_;read_roifile;^undo$ ^undo$ "
                    "^redo$;^save_all$;^take_up$")
                .split(';');
        for (const QString& step : any_of(series).split(' '))
            step == "."        ? click_roi(Qt::LeftButton)
            : step == ","      ? click_roi(Qt::RightButton)
            : step == ">"      ? press(chance(0.4) ? Qt::Key_F : Qt::Key_D)
            : step.size() == 1 ? press(step[0].unicode())
                               : click_button(step);
    }

    // On an ROI; where the plane on view has none, beside them, and another plane is shown.
    void click_roi(Qt::MouseButton button)
    {
        QPoint at;
        int tries = 60;
        do
            at = any_point(&window()) / 4;    // where the image is
        while (--tries > 0 && window().xyROI(at.x(), at.y()).empty());
        if (tries == 0 && window().isOpen() && !window().m_roidb->db.empty())
            window().view(any_of(window().m_roidb->db).first);
        const auto held = Qt::KeyboardModifiers(chance(0.8) ? 0 : below(4) * Qt::ShiftModifier);
        click_at(&window(), button,
                 window().frame_canvas->pos() + CanvasView::of(window())->view().screen_pixel(at), held);
    }

    void turn_wheel()
    {
        QWidget* const to = any_widget(0.6);
        const QPointF at = any_point(to);
        const QPoint turn(0, 120 * (below(21) - 10));
        const auto held = Qt::KeyboardModifiers(chance(0.5) ? 0 : below(8) * Qt::ShiftModifier);
        QWheelEvent e(at, to->mapToGlobal(at), {}, turn, Qt::NoButton, held, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(to, &e);
    }

    void type()
    {
        static const QStringList texts{
            "", "0", "5", "-1", "3", "1e9", "99999999999", "Ω☃é", "other", " 4 ", QString(3000, 'x')};
        QLineEdit* const field = any_of(window().findChildren<QLineEdit*>());
        field->selectAll();
        if (field->isEnabled())
            field->insert(any_of(texts));
    }

    void swap_file()
    {
        chance(0.3) ? _files.restore() : chance(0.3) ? _files.fail_one() : _files.swap_one();
        window().dirty = true;    // the image on view may be another now
        window().repaint();
    }

    void handle_window()
    {
        const int what = below(4);
        what == 0   ? window().resize(below(1200), below(1200))
        : what == 1 ? window().hide()
        : what == 2 ? (void)any_widget(0)->window()->close()
                    : window().activateWindow();
    }

    const std::uint64_t _seed;
    demo_random _random;
    SwappedFiles _files{_random};
    ScriptedDialogs _user{{}};
    std::unique_ptr<MonkeyWindow> _window;
    QTimer _timers[3];
    int _patience = 0;       // events until a run is stopped
    double _meddling = 0;    // actions per event of a run
};

}    // namespace

int main(int argc, char** argv)
{
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGALRM, [](int) { std::abort(); });
    std::signal(SIGABRT, tell_story);
    if (__sanitizer_set_death_callback)
        __sanitizer_set_death_callback([] { tell_story(); });
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) { note(text); });
    QCommandLineParser parser;
    parser.addOptions({{"actions", "How many.", "N", "2000"}, {"seed", "Which.", "S", "1"}});
    parser.process(application);
    Monkey monkey(parser.value("seed").toULongLong());
    for (int action = 0; action < parser.value("actions").toInt(); ++action)
        if (const char* const rule = monkey.act(action)) {
            tell_story();
            std::fprintf(stderr, "\nThis does not hold: %s\n", rule);
            return 1;
        }
    return 0;
}
