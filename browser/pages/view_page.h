// view_page.h - the page of the control panel that says how the canvas shows the picture.
//
// Keeps outline width, scale bar, marks and tails in the settings of the program; the range of grey belongs
// to the recording.
#pragma once
#include "canvas_marks.h"
#include "canvas_view.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QPushButton>
#include <QSpinBox>
#include <QWidget>

class ViewPage : public QWidget {
    Q_OBJECT

public:
    // The caller adds it to the control panel.
    ViewPage(ORVBrowser& window, CanvasView& view, CanvasMarks& marks);

    // ---- Controls; owned by the page
    QPushButton* zoom_in = nullptr;
    QPushButton* zoom_out = nullptr;
    QPushButton* zoom_fit = nullptr;
    QPushButton* zoom_original = nullptr;
    QSpinBox* low = nullptr;     // grey value shown as black
    QSpinBox* high = nullptr;    // as white
    QDoubleSpinBox* gamma = nullptr;
    QPushButton* range_auto = nullptr;
    QPushButton* range_reset = nullptr;
    QSpinBox* outline_width = nullptr;    // screen pixels
    QCheckBox* scale_bar = nullptr;
    QCheckBox* marks = nullptr;
    QComboBox* tails = nullptr;
    QSpinBox* tail_steps = nullptr;    // time points

private:
    void create_buttons();
    void create_fields();
    void connect_controls();
    void enable_buttons();
    void take_range();
    void show_range();
    [[nodiscard]] mark_choice chosen_marks() const;
    void take_marks();
    void read_settings();
    void write_settings() const;

    ORVBrowser& _window;
    CanvasView& _view;
    CanvasMarks& _marks;
};
