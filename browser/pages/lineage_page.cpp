#include "lineage_page.h"

#include "page_buttons.h"

#include "busy_run.h"
#include "export_dialog.h"
#include "file_dialogs.h"
#include "help_window.h"
#include "import_dialog.h"
#include "message_line.h"
#include "scale_dialog.h"
#include "tree_window.h"

#include <QLineEdit>

#include <algorithm>

namespace {

// By unit_rule: these give the best units on recordings whose truth is known (docs/units.md).
constexpr double default_shares[] = {nearest_rule().share, 0};
constexpr int count_after_ms = 300;    // several changes are counted in one go

const button_row<LineagePage> buttons[] = {
    {&LineagePage::make_units,
     "make_units",
     QT_TRANSLATE_NOOP("LineagePage", "Make units"),
     {8, 4, 84, 26},
     QT_TRANSLATE_NOOP("LineagePage", "Group the ROIs of the whole recording across planes into units")},
    {&LineagePage::make_links,
     "make_links",
     QT_TRANSLATE_NOOP("LineagePage", "Make links"),
     {236, 4, 82, 26},
     QT_TRANSLATE_NOOP("LineagePage", "Link the units of successive time points by the rule chosen")},
    {&LineagePage::elite,
     "elite",
     QT_TRANSLATE_NOOP("LineagePage", "Elite"),
     {318, 4, 60, 26},
     QT_TRANSLATE_NOOP(
         "LineagePage",
         "Mark all units of this time point as known to be right, or unmark them (one unit: E)")},
    {&LineagePage::split,
     "split",
     QT_TRANSLATE_NOOP("LineagePage", "Split"),
     {8, 32, 60, 26},
     QT_TRANSLATE_NOOP("LineagePage", "Split or repair the first doubtful unit (by hand: S)")},
    {&LineagePage::auto_split,
     "auto_split",
     QT_TRANSLATE_NOOP("LineagePage", "Auto split"),
     {68, 32, 80, 26},
     QT_TRANSLATE_NOOP("LineagePage",
                       "Split or repair doubtful units, one after the other, until switched off")},
    {&LineagePage::read_lineage_file,
     "read_lineage_file",
     QT_TRANSLATE_NOOP("LineagePage", "Read Lineage"),
     {158, 32, 100, 26},
     QT_TRANSLATE_NOOP("LineagePage", "Read units, links and elite marks from a file")},
    {&LineagePage::save_lineage_file,
     "save_lineage_file",
     QT_TRANSLATE_NOOP("LineagePage", "Save Lineage"),
     {258, 32, 100, 26},
     QT_TRANSLATE_NOOP("LineagePage", "Save units, links and elite marks to a file")},
    {&LineagePage::tree,
     "tree",
     QT_TRANSLATE_NOOP("LineagePage", "Tree"),
     {378, 32, 60, 26},
     QT_TRANSLATE_NOOP("LineagePage", "Draw the lineage as a tree (of one nucleus: choose it with L)")},
    {&LineagePage::help,
     "help",
     QT_TRANSLATE_NOOP("LineagePage", "Help"),
     {438, 32, 60, 26},
     QT_TRANSLATE_NOOP("LineagePage", "Keys, mouse, modes and colours")},
    {&LineagePage::scale,
     "scale",
     QT_TRANSLATE_NOOP("LineagePage", "Scale"),
     {498, 32, 60, 26},
     QT_TRANSLATE_NOOP("LineagePage", "Sizes of pixels and focal-plane steps, interval, and focal planes")},
    {&LineagePage::reload_colors,
     "reload_colors",
     QT_TRANSLATE_NOOP("LineagePage", "Reload colours"),
     {8, 60, 110, 26},
     QT_TRANSLATE_NOOP("LineagePage", "Read the colours again from .orvbrowser in the home directory")},
    {&LineagePage::close_recording,
     "close_recording",
     QT_TRANSLATE_NOOP("LineagePage", "Close"),
     {118, 60, 60, 26},
     QT_TRANSLATE_NOOP("LineagePage", "Close the recording; what is not saved is lost")},
    {&LineagePage::import_labels,
     "import",
     QT_TRANSLATE_NOOP("LineagePage", "Import..."),
     {188, 60, 76, 26},
     QT_TRANSLATE_NOOP("LineagePage",
                       "Make a recording of the label images of another program, and open it")},
    {&LineagePage::export_units,
     "export",
     QT_TRANSLATE_NOOP("LineagePage", "Export..."),
     {264, 60, 76, 26},
     QT_TRANSLATE_NOOP("LineagePage", "Write units and links as other programs read them")},
    {&LineagePage::stop,
     "stop",
     QT_TRANSLATE_NOOP("LineagePage", "Stop"),
     {528, 60, 60, 26},
     QT_TRANSLATE_NOOP("LineagePage", "End the operation that is going on; what it has done stays")},
};

file_question lineage_question(QFileDialog::AcceptMode mode, const char* object_name, const QString& caption)
{
    return {mode, "lineage file (*.lineage)", object_name, caption};
}

QString line_of(const QString& of_what, const tally& t)
{
    return LineagePage::tr("%1: %2 ROIs, %3 units, %4 links, %5 doubtful, %6 dead ends, %7 unlinked")
        .arg(of_what)
        .arg(t.rois)
        .arg(t.units)
        .arg(t.links)
        .arg(t.doubtful)
        .arg(t.dead_ends)
        .arg(t.unlinked);
}

}    // namespace

LineagePage::LineagePage(ORVBrowser& window) : QWidget(window.tabWidget_control_panel), _window(window)
{
    setObjectName("lineagePage");
    create_controls();
    connect_controls();
    enable_controls();
    _count_soon.setSingleShot(true);
    connect(&_count_soon, &QTimer::timeout, this, &LineagePage::count);
    connect(window.slider_time_point, &QSlider::valueChanged, this, &LineagePage::show_numbers);
}

LineagePage::~LineagePage() = default;

void LineagePage::create_controls()
{
    add_buttons(*this, buttons);
    auto_split->setCheckable(true);

    rule = new QComboBox(this);
    rule->setObjectName("rule");
    rule->setGeometry(94, 4, 84, 26);
    rule->addItems({tr("Nearest"), tr("Overlap")});
    rule->setToolTip(
        tr("Nearest: ROIs go with the nearest ones of the next plane, units with the nearest ones of the "
           "next time point. Overlap: with all that they share pixels with"));
    rule->setFocusPolicy(Qt::NoFocus);
    overlap = new QDoubleSpinBox(this);
    overlap->setObjectName("overlap");
    overlap->setGeometry(180, 4, 54, 26);
    overlap->setRange(0, 0.95);
    overlap->setSingleStep(0.05);
    overlap->setValue(default_shares[0]);
    overlap->setToolTip(
        tr("What outlines of one unit share between planes: of the smaller outline (Nearest), of the "
           "larger one (Overlap; 0: one pixel)"));
    overlap->setFocusPolicy(Qt::NoFocus);
    for (QLineEdit* field : overlap->findChildren<QLineEdit*>())
        field->setFocusPolicy(Qt::NoFocus);

    progress = new QProgressBar(this);
    progress->setObjectName("progress");
    progress->setGeometry(350, 62, 170, 22);
    progress->setFormat(tr("time point %v of %m"));
    progress->hide();
    numbers = new QLabel(this);
    numbers->setObjectName("numbers");
    numbers->setGeometry(8, 87, 584, 30);
    QFont small = numbers->font();
    small.setPixelSize(11);
    numbers->setFont(small);
}

void LineagePage::connect_controls()
{
    ORVBrowser* const window = &_window;
    connect(make_units, &QPushButton::clicked, this, &LineagePage::make_all_units);
    connect(make_links, &QPushButton::clicked, this, &LineagePage::make_all_links);
    connect(rule, &QComboBox::currentIndexChanged, this,
            [this](int chosen) { overlap->setValue(default_shares[chosen]); });
    connect(scale, &QPushButton::clicked, this, [this] { edit_scale(_window); });
    connect(elite, &QPushButton::clicked, this, &LineagePage::toggle_elite);
    connect(split, &QPushButton::clicked, this, &LineagePage::split_shown);
    connect(auto_split, &QPushButton::toggled, this, &LineagePage::toggle_auto_split);
    connect(read_lineage_file, &QPushButton::clicked, this, &LineagePage::read_file);
    connect(save_lineage_file, &QPushButton::clicked, this, &LineagePage::save_file);
    connect(tree, &QPushButton::clicked, this, &LineagePage::show_tree);
    connect(help, &QPushButton::clicked, this, &LineagePage::show_help);
    connect(reload_colors, &QPushButton::clicked, window, &ORVBrowser::pushButton_reload_config_file_clicked);
    connect(reload_colors, &QPushButton::clicked, this, [this] {
        if (_help_window)
            _help_window->update_text();
    });
    connect(close_recording, &QPushButton::clicked, window, &ORVBrowser::pushButton_close_clicked);
    connect(import_labels, &QPushButton::clicked, this, [this] { ImportDialog::show_for(_window); });
    connect(export_units, &QPushButton::clicked, this, [this] { ExportDialog::show_for(_window); });
    connect(stop, &QPushButton::clicked, this, [this] {
        _stop_asked = true;
        auto_split->setChecked(false);
        _window.pushButton_stop_clicked();
    });
}

void LineagePage::state_changed()
{
    if (!_count_soon.isActive())
        _count_soon.start(count_after_ms);
}

void LineagePage::recording_changed()
{
    enable_controls();
    state_changed();
}

void LineagePage::waiting_changed() { enable_controls(); }

void LineagePage::showEvent(QShowEvent*) { count(); }

// The switch of the automatic split, and Stop, are what ends a run; help and import are there without a
// recording, too.
void LineagePage::enable_controls()
{
    const bool is_open = _window.isOpen();
    const bool is_busy = is_open && _window.is_waited_for();
    for (const auto& row : buttons)
        (this->*row.button)->setEnabled(is_open && !is_busy);
    overlap->setEnabled(is_open && !is_busy);
    rule->setEnabled(is_open && !is_busy);
    auto_split->setEnabled(is_open && (!is_busy || auto_split->isChecked()));
    stop->setEnabled(is_busy);
    help->setEnabled(true);
    import_labels->setEnabled(!is_busy);
}

// While units are being made, or nobody looks, it can wait.
void LineagePage::count()
{
    if (_window.is_making_units()) {
        state_changed();
        return;
    }
    if (!isVisible())
        return;
    _tallies = _window.isOpen() ? count_lineage(_window) : std::map<int, tally>();
    show_numbers();
}

// Moving through the recording costs a look into a table.
void LineagePage::show_numbers()
{
    if (!_window.isOpen()) {
        numbers->clear();
        return;
    }
    tally all;
    for (const auto& [t, at] : _tallies)
        all.add(at);
    const int t = _window.time_point();
    const auto here = _tallies.find(t);
    numbers->setText(line_of(tr("Recording"), all) + '\n' +
                     line_of(tr("Time point %1").arg(t), here == _tallies.end() ? tally() : here->second));
}

void LineagePage::toggle_elite()
{
    const std::set<std::string> units = _window.units(_window.time_point());
    const bool all_are = std::all_of(units.begin(), units.end(), [this](const std::string& unit) {
        return _window.elite().contains(unit);
    });
    _window.set_elite(units, !all_are);
    _window.show_changes();
}

void LineagePage::read_file()
{
    const QPointer<LineagePage> self(this);
    const std::string filename = native_name(ask_filename(
        this, lineage_question(QFileDialog::AcceptOpen, "open lineage-file", tr("Choose a filename to read")),
        default_file(_window.dataset(), ".lineage")));
    if (!filename.empty() && self && is_there(filename))
        (void)_window.take_lineage(filename);
}

void LineagePage::save_file()
{
    const QPointer<LineagePage> self(this);
    save_lineage_file->setEnabled(false);
    const QString filename = ask_filename(
        this,
        lineage_question(QFileDialog::AcceptSave, "save lineage-file", tr("Choose a filename to save under")),
        default_file(_window.dataset(), ".lineage"));
    const bool is_wanted = !filename.isEmpty() && may_write(this, filename);
    if (!self)
        return;
    const kept_work::Writing writing(_window);
    if (is_wanted && _window.isOpen())
        write_lineage(native_name(filename), _window.dataset(), _window.current_lineage());
    enable_controls();
}

void LineagePage::show_tree()
{
    if (!_tree_window)
        _tree_window = new TreeWindow(_window);
    _tree_window->show();
    _tree_window->raise();
}

void LineagePage::show_help()
{
    if (!_help_window)
        _help_window = new HelpWindow(_window);
    _help_window->update_text();
    _help_window->show();
    _help_window->raise();
}
