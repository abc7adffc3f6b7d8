// monkey - does to the window whatever comes to its mind, and looks each time whether its rules still hold.
//
// monkey [--actions N] [--seed S]: the same for the same seed, as far as the clock lets it. Ends with how
// often it did what, or with the first broken rule and what led to it.
#include "../support/captured_lines.h"
#include "../support/editing.h"
#include "../support/scripted_dialogs.h"
#include "monkey_window.h"
#include "swapped_files.h"

#include <QCommandLineParser>
#include <QRegularExpression>
#include <QTimer>
#include <QWheelEvent>

#include <cmath>
#include <csignal>
#include <cstring>
#include <unistd.h>

extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*)());

namespace {

char story[1000];    // of the action going on, for when the program dies in it

void tell_story(int = 0) { (void)!write(STDERR_FILENO, story, std::strlen(story)); }

void note(const QString& what)
{
    const std::size_t length = std::strlen(story);
    std::snprintf(story + length, sizeof story - length, "%s, ", qPrintable(what));
}

class Monkey : public QObject {
public:
    explicit Monkey(std::uint64_t seed) : _seed(seed), _random(seed)
    {
        qputenv("HOME", _files.path("home").c_str());
        qputenv("XDG_CONFIG_HOME",
                "/dev/null");    // a file dialog would wait for the disk to keep its settings
        for (const char* folder : {"ORVBROWSER_IMAGE_ROOT", "PWD"})
            qputenv(folder, _files.path("").c_str());
        for (QTimer& timer : _timers) {    // one stays silent while it is served: the next acts inside it
            connect(&timer, &QTimer::timeout, this, &Monkey::act_in_run);
            timer.start(0);
        }
    }

    // The rule that is broken, or nothing.
    [[nodiscard]] const char* act(int action)
    {
        constexpr int patience_s = 120;
        alarm(patience_s);
        std::snprintf(story, sizeof story, "monkey: seed %d, action %d: ", static_cast<int>(_seed), action);
        _random = demo_random(_seed, 1, static_cast<std::uint64_t>(action));
        _patience = _random.below(10000);
        _meddling = std::pow(10, -1 - _random.below(4));
        if (!_window || _random.chance(0.0003))
            _window.reset(), _window = std::make_unique<MonkeyWindow>();
        _window->is_open() || _random.chance(0.8) ? act_once() : open_recording();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        count_states();
        return _window->broken_rule();
    }

    [[nodiscard]] const std::map<std::string, int>& times() const { return _times; }

private:
    void act_once()
    {
        const struct {
            const char* name;
            int weight;    // in per cent
            void (Monkey::*act)();
        } kinds[] = {{"key", 13, &Monkey::press_key},       {"control", 14, &Monkey::click_control},
                     {"canvas", 17, &Monkey::click_canvas}, {"pointer", 9, &Monkey::move},
                     {"wheel", 8, &Monkey::turn_wheel},     {"text", 8, &Monkey::type},
                     {"edit", 10, &Monkey::edit_lineage},   {"tracking", 4, &Monkey::track},
                     {"lineage", 3, &Monkey::make_lineage}, {"split", 2, &Monkey::split},
                     {"drop", 2, &Monkey::drop_rois},       {"file", 3, &Monkey::use_file},
                     {"swap", 3, &Monkey::swap_file},       {"opening", 1, &Monkey::open_recording},
                     {"window", 3, &Monkey::handle_window}};
        const auto* chosen = kinds;
        for (int number = _random.below(100); (number -= chosen->weight) >= 0;)
            ++chosen;
        ++_times[(_depth > 0 ? "in a run: " : "") + std::string(chosen->name)];
        note(chosen->name);
        _user.answers = {any_answer(), any_answer()};
        _window->show();
        (this->*chosen->act)();
    }

    // While the window lets events be processed.
    void act_in_run()
    {
        if (!_window || !_window->access.is_busy() || QApplication::activeModalWidget())
            return;
        ++_times["in a run: events"];
        if (--_patience < 0) {
            _window->page->stop->click();
        } else if (_random.chance(_meddling)) {
            _times["in a run: depth"] = std::max(++_depth, _times["in a run: depth"]);
            act_once();
            --_depth;
        }
    }

    // ---- Choosing

    template <class Values>
    auto& any_of(const Values& values)
    {
        return *std::next(std::begin(values), _random.below(static_cast<int>(std::size(values))));
    }

    QPoint any_point(const QWidget* in) { return {_random.below(in->width()), _random.below(in->height())}; }
    Qt::MouseButton any_button() { return Qt::MouseButton(_random.chance(0.7) ? 1 : 1 << _random.below(3)); }
    QString any_answer()
    {
        return _random.chance(0.3) ? "&Yes" : QString::fromStdString(_files.any(_random));
    }

    // Of any window; its page comes to the front.
    QWidget* any_control()
    {
        static const QRegularExpression kinds("Button|Slider|LineEdit|TabBar|SpinBox|TreeWindow|TextBrowser");
        QList<QWidget*> controls = _window->findChildren<QWidget*>();
        controls.removeIf([](QWidget* w) { return !kinds.match(w->metaObject()->className()).hasMatch(); });
        QWidget* const control = any_of(controls);
        if (_window->tabWidget_control_panel->indexOf(control->parentWidget()) >= 0)
            _window->tabWidget_control_panel->setCurrentWidget(control->parentWidget());
        note(control->objectName());
        return control;
    }

    // ---- One event

    void press(int key) { note(QChar(key)), QTest::keyClick(_window.get(), Qt::Key(key)); }
    void click(QWidget* button) { note(button->objectName()), QTest::mouseClick(button, Qt::LeftButton); }
    void move() { move_pointer(*_window, _random.below(170), _random.below(170)); }

    void press_key()
    {
        static const std::string letters = "ACDEFLMRSTWXZQ7 ";
        const int other =
            _random.chance(0.8) ? Qt::Key_Home + _random.below(8) : Qt::Key_Escape + _random.below(11);
        const int key = _random.chance(0.5) ? any_of(letters) : other;
        const int modifiers = _random.chance(0.8) ? 0 : _random.below(16) * Qt::ShiftModifier;
        QWidget* const focus = QApplication::focusWidget();
        note(QString::number(key, 16));
        QTest::keyClick(focus && _random.chance(0.3) ? focus : _window.get(), Qt::Key(key),
                        Qt::KeyboardModifiers(modifiers));
    }

    void click_control()
    {
        const QPointer<QWidget> control = any_control();
        const Qt::MouseButton button = any_button();
        const QPoint at = any_point(control);
        if (_random.chance(0.1))
            return QTest::mouseDClick(control, button, {}, at);
        QTest::mousePress(control, button, {}, at);
        if (_random.chance(0.2))
            QTest::mouseMove(control, any_point(control));
        QTest::mouseRelease(control, button, {}, at);
    }

    // On an ROI; where the plane on view has none, beside them, and another plane is shown.
    void click_roi(Qt::MouseButton button = Qt::LeftButton)
    {
        QPoint at;
        int tries = 60;
        do
            at = any_point(_window.get()) / 4;    // where the image is
        while (--tries > 0 && _window->xyROI(at.x(), at.y()).empty());
        if (tries == 0 && _window->is_open() && !_window->m_roidb->db.empty())
            _window->view(any_of(_window->m_roidb->db).first);
        ::click(*_window, at.x(), at.y(), button);
    }

    void click_canvas()
    {
        _random.chance(0.8) ? click_roi(any_button())
                            : QTest::mouseDClick(_window.get(), any_button(), {}, any_point(_window.get()));
    }

    void turn_wheel()
    {
        QWidget* const to = _random.chance(0.6) ? _window.get() : any_control();
        const QPointF at = any_point(to);
        const QPoint turn(0, 120 * (_random.below(21) - 10));
        QWheelEvent e(at, to->mapToGlobal(at), {}, turn, Qt::NoButton, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(to, &e);
    }

    void type()
    {
        static const QStringList texts{
            "", "0", "5", "-1", "3", "1e9", "99999999999", "Ω☃é", "other", " 4 ", QString(3000, 'x')};
        QLineEdit* const field = any_of(_window->findChildren<QLineEdit*>());
        field->selectAll();
        if (field->isEnabled())
            field->insert(any_of(texts));
    }

    // ---- Several in a row that make sense

    void edit_lineage()
    {
        static const std::string edits = "ARMSSE";
        const int edit = any_of(edits);
        press(Qt::Key_L);
        click_roi();
        if (edit == Qt::Key_A || edit == Qt::Key_S)
            press(_random.chance(0.4) ? Qt::Key_F : Qt::Key_D);
        press(edit);
        for (int clicks = edit == Qt::Key_S ? 3 : 1; clicks > 0; --clicks)
            click_roi();
    }

    void track()
    {
        click_roi();
        if (_random.chance(0.3))
            click(_window->pushButton_auto);
        click(any_of(_window->mainPage->findChildren<QPushButton*>()));
    }

    void make_lineage()
    {
        click(_window->page->make_units);
        if (_random.chance(0.5))
            click(_window->page->elite);
        _user.answers = {"&Yes"};
        click(_window->page->make_links);
    }

    void drop_rois()
    {
        for (int clicks = _random.below(4); clicks > 0; --clicks)
            click_roi(Qt::RightButton);
        click(_window->pushButton_drop_false_positive);
    }

    void split() { click(_random.chance(0.7) ? _window->page->split : _window->page->auto_split); }

    void open_recording()
    {
        _user.answers = {QString::fromStdString(_files.path(_random.chance(0.9) ? "demo.roi" : "other.roi"))};
        click(_window->pushButton_read_roifile);
    }

    // Any control that asks for a file, answered with one of its kind.
    void use_file()
    {
        static const QRegularExpression names("(read|save|restore).*");
        QPushButton* const button = any_of(_window->findChildren<QPushButton*>(names));
        const QString kind = button->objectName().section('_', -1);
        const QString suffix = kind == "file" ? "lineage" : kind == "roifile" ? "roi" : kind.toLower();
        _user.answers = {QString::fromStdString(_files.of_kind('.' + suffix.toStdString(), _random)), "&Yes"};
        click(button);
    }

    void swap_file()
    {
        _random.chance(0.3) ? _files.restore() : _files.swap_one(_random);
        _window->dirty = true;    // the image on view may be another now
        _window->repaint();
    }

    void handle_window()
    {
        const int what = _random.below(4);
        what == 0   ? _window->resize(_random.below(1200), _random.below(1200))
        : what == 1 ? _window->hide()
        : what == 2 ? (void)any_control()->window()->close()
                    : _window->activateWindow();
    }

    // ---- Counting

    void count_states()
    {
        for (const QString& line : _out.take() + _err.take())
            ++_times["line: " + line.section(QRegularExpression("[0-9/(]"), 0, 0).left(40).toStdString()];
        const std::pair<const char*, bool> states[] = {
            {"open", _window->is_open()},
            {"units", !_window->m_head_members.empty()},
            {"links", !_window->m_linkage_multimap.empty()},
            {"doubtful", !_window->m_falsely_grouped_units_candidates.empty()},
            {"elite", !_window->m_elite_head_roi_set.empty()}};
        for (const auto& [state, is_so] : states)
            _times[std::string("state: ") + state] += is_so;
    }

    const std::uint64_t _seed;
    demo_random _random;
    SwappedFiles _files;
    CapturedLines _out{std::cout}, _err{std::cerr};
    ScriptedDialogs _user{{}};
    std::unique_ptr<MonkeyWindow> _window;
    QTimer _timers[3];
    int _patience = 0;       // events until a run is stopped
    double _meddling = 0;    // actions per event of a run
    int _depth = 0;
    std::map<std::string, int> _times;
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
    for (int action = 0; action < parser.value("actions").toInt(); ++action) {
        if (const char* const rule = monkey.act(action)) {
            tell_story();
            std::fprintf(stderr, "\nThis does not hold: %s\n", rule);
            return 1;
        }
    }
    for (const auto& [what, times] : monkey.times())
        std::printf("%8d %s\n", times, what.c_str());
    return 0;
}
