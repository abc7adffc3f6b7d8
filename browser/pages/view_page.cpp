#include "view_page.h"

#include "page_buttons.h"

#include <QCoreApplication>
#include <QLabel>
#include <QSettings>
#include <QSignalBlocker>

#include <algorithm>
#include <type_traits>

namespace {

const button_row<ViewPage> buttons[] = {
    {&ViewPage::zoom_in,
     "zoom_in",
     QT_TRANSLATE_NOOP("ViewPage", "Zoom in"),
     {8, 4, 76, 26},
     QT_TRANSLATE_NOOP("ViewPage",
                       "Larger, about the middle of the canvas (+; Ctrl+wheel: about the pointer)")},
    {&ViewPage::zoom_out,
     "zoom_out",
     QT_TRANSLATE_NOOP("ViewPage", "Zoom out"),
     {84, 4, 76, 26},
     QT_TRANSLATE_NOOP("ViewPage",
                       "Smaller, about the middle of the canvas (-; Ctrl+wheel: about the pointer)")},
    {&ViewPage::zoom_original,
     "zoom_original",
     QT_TRANSLATE_NOOP("ViewPage", "1:1"),
     {160, 4, 50, 26},
     QT_TRANSLATE_NOOP("ViewPage", "One screen pixel for each pixel, from the corner of the picture (0)")},
    {&ViewPage::zoom_fit,
     "zoom_fit",
     QT_TRANSLATE_NOOP("ViewPage", "Fit"),
     {210, 4, 50, 26},
     QT_TRANSLATE_NOOP("ViewPage", "The whole picture (1)")},
    {&ViewPage::range_auto,
     "range_auto",
     QT_TRANSLATE_NOOP("ViewPage", "Auto"),
     {348, 36, 60, 26},
     QT_TRANSLATE_NOOP("ViewPage", "Range from the darkest and the brightest thousandth of this plane")},
    {&ViewPage::range_reset,
     "range_reset",
     QT_TRANSLATE_NOOP("ViewPage", "Reset"),
     {408, 36, 60, 26},
     QT_TRANSLATE_NOOP("ViewPage", "Grey values as they are in the image")},
};

// A program that has not named itself keeps nothing.
bool has_settings() { return !QCoreApplication::organizationName().isEmpty(); }

// Only fields to type in take the keyboard from the canvas; what is typed holds once it is done.
template <class Field>
Field* place(Field* field, const char* name, QRect where, const QString& tip)
{
    field->setObjectName(name);
    field->setGeometry(where);
    field->setToolTip(tip);
    field->setFocusPolicy(Qt::NoFocus);
    if constexpr (std::is_base_of_v<QAbstractSpinBox, Field>) {
        field->setFocusPolicy(Qt::StrongFocus);
        field->setKeyboardTracking(false);
    }
    return field;
}

}    // namespace

ViewPage::ViewPage(ORVBrowser& window, CanvasView& view, CanvasMarks& canvas_marks)
    : QWidget(window.tabWidget_control_panel), _window(window), _view(view), _marks(canvas_marks)
{
    setObjectName("viewPage");
    create_buttons();
    create_fields();
    read_settings();
    show_range();
    _marks.choose(chosen_marks());
    _view.set_outline_width(outline_width->value());
    connect_controls();
    enable_buttons();
}

void ViewPage::enable_buttons()
{
    for (const auto& row : buttons)
        (this->*row.button)->setEnabled(_window.isOpen());
}

void ViewPage::create_buttons()
{
    add_buttons(*this, buttons);
    scale_bar = place(new QCheckBox(tr("Scale bar"), this), "scale_bar", {280, 4, 90, 26},
                      tr("A bar of so many micrometres in the lower right corner"));
    marks = place(new QCheckBox(tr("Marks"), this), "marks", {376, 4, 70, 26},
                  tr("Crosses in false positives, numbers of what is chosen, rings around what is shown"));
}

void ViewPage::create_fields()
{
    const auto caption = [this](const QString& text, QRect where) {
        (new QLabel(text, this))->setGeometry(where);
    };
    caption(tr("Grey"), {8, 36, 36, 26});
    low = place(new QSpinBox(this), "low", {44, 36, 60, 26}, tr("Shown as black, as is what is darker"));
    low->setRange(0, 254);
    caption(tr("to"), {110, 36, 20, 26});
    high = place(new QSpinBox(this), "high", {130, 36, 60, 26}, tr("Shown as white, as is what is brighter"));
    high->setRange(1, 255);
    caption(tr("gamma"), {204, 36, 50, 26});
    gamma = place(new QDoubleSpinBox(this), "gamma", {258, 36, 70, 26},
                  tr("Above 1, what is dark is shown brighter"));
    gamma->setRange(0.2, 5);
    gamma->setSingleStep(0.1);
    caption(tr("Outlines"), {8, 68, 56, 26});
    outline_width = place(new QSpinBox(this), "outline_width", {68, 68, 50, 26},
                          tr("How wide outlines are, in pixels of the screen (H held hides them)"));
    outline_width->setRange(1, 3);
    marks->setChecked(true);
    caption(tr("Tails"), {134, 68, 36, 26});
    tails = place(new QComboBox(this), "tails", {172, 68, 190, 26},
                  tr("Where nuclei came from (blue) and where they go (orange)"));
    tails->addItems({tr("none"), tr("of the chosen nucleus"), tr("of all near this plane")});
    tail_steps = place(new QSpinBox(this), "tail_steps", {366, 68, 50, 26}, tr("How far tails reach"));
    tail_steps->setRange(1, 20);
    tail_steps->setValue(5);
    caption(tr("time points"), {422, 68, 90, 26});
}

void ViewPage::connect_controls()
{
    connect(zoom_in, &QPushButton::clicked, &_view, [this] { _view.zoom_by(1); });
    connect(zoom_out, &QPushButton::clicked, &_view, [this] { _view.zoom_by(-1); });
    connect(zoom_fit, &QPushButton::clicked, &_view, &CanvasView::fit);
    connect(zoom_original, &QPushButton::clicked, &_view, &CanvasView::show_original);
    connect(range_auto, &QPushButton::clicked, this, [this] {
        const QPixmap* const image = _window.image_on_view();
        display_range range = range_of(image ? image->toImage() : QImage());
        range.gamma = _view.range().gamma;
        _view.set_range(range);
    });
    connect(range_reset, &QPushButton::clicked, this, [this] { _view.set_range({}); });
    connect(&_view, &CanvasView::range_changed, this, &ViewPage::show_range);
    connect(&_view, &CanvasView::opened_or_closed, this, &ViewPage::enable_buttons);
    for (QSpinBox* const end : {low, high})
        connect(end, &QSpinBox::valueChanged, this, &ViewPage::take_range);
    connect(gamma, &QDoubleSpinBox::valueChanged, this, &ViewPage::take_range);
    connect(outline_width, &QSpinBox::valueChanged, &_view, &CanvasView::set_outline_width);
    connect(outline_width, &QSpinBox::valueChanged, this, &ViewPage::take_marks);
    connect(tail_steps, &QSpinBox::valueChanged, this, &ViewPage::take_marks);
    connect(tails, &QComboBox::currentIndexChanged, this, &ViewPage::take_marks);
    for (QCheckBox* const box : {scale_bar, marks})
        connect(box, &QCheckBox::toggled, this, &ViewPage::take_marks);
}

// One end pushes the other along.
void ViewPage::take_range()
{
    display_range range{low->value(), high->value(), gamma->value()};
    if (range.high <= range.low && sender() == high)
        range.low = range.high - 1;
    range.high = std::max(range.high, range.low + 1);
    _view.set_range(range);
    show_range();
}

void ViewPage::show_range()
{
    const QSignalBlocker quiet_low(low), quiet_high(high), quiet_gamma(gamma);
    low->setValue(_view.range().low);
    high->setValue(_view.range().high);
    gamma->setValue(_view.range().gamma);
}

mark_choice ViewPage::chosen_marks() const
{
    return {marks->isChecked(), scale_bar->isChecked(), static_cast<tail_choice>(tails->currentIndex()),
            tail_steps->value()};
}

void ViewPage::take_marks()
{
    _marks.choose(chosen_marks());
    write_settings();
}

void ViewPage::read_settings()
{
    if (!has_settings())
        return;
    const QSettings settings;
    outline_width->setValue(settings.value("view/outline_width", 1).toInt());
    scale_bar->setChecked(settings.value("view/scale_bar", false).toBool());
    marks->setChecked(settings.value("view/marks", true).toBool());
    tails->setCurrentIndex(std::clamp(settings.value("view/tails", 0).toInt(), 0, tails->count() - 1));
    tail_steps->setValue(settings.value("view/tail_steps", 5).toInt());
}

void ViewPage::write_settings() const
{
    if (!has_settings())
        return;
    QSettings settings;
    settings.setValue("view/outline_width", outline_width->value());
    settings.setValue("view/scale_bar", scale_bar->isChecked());
    settings.setValue("view/marks", marks->isChecked());
    settings.setValue("view/tails", tails->currentIndex());
    settings.setValue("view/tail_steps", tail_steps->value());
}
