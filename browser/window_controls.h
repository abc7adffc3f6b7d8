// window_controls.h - the labels, fields, sliders and buttons of the main window, owned by their parents.
//
// Made, placed and connected in orvbrowser_widgets.cpp; the Lineage page has its own (lineage_page.h).
#pragma once
#include "picture_frame.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QTabWidget>
#include <QWidget>

struct WindowControls {
    QLabel* textLabel3 = nullptr;    // time point
    QLabel* textLabel4 = nullptr;    // focal plane
    QLineEdit* lineEdit_time_point = nullptr;
    QLineEdit* lineEdit_focal_plane = nullptr;
    QSlider* slider_focal_plane = nullptr;
    QSlider* slider_time_point = nullptr;
    QLineEdit* lineEdit_dataset = nullptr;
    PictureFrame* frame_canvas = nullptr;
    QTabWidget* tabWidget_control_panel = nullptr;

    QWidget* file = nullptr;    // first page: files
    QPushButton* pushButton_read_roifile = nullptr;
    QPushButton* pushButton_read_info = nullptr;
    QPushButton* pushButton_save_info = nullptr;
    QPushButton* pushButton_save_roifile = nullptr;
    QPushButton* pushButton_drop_false_positive = nullptr;
    QPushButton* pushButton_clean = nullptr;
    QPushButton* pushButton_restore = nullptr;
    QPushButton* pushButton_exit = nullptr;
    QPushButton* pushButton_read_FP = nullptr;
    QPushButton* pushButton_save_FP = nullptr;

    QWidget* mainPage = nullptr;    // second page: tracking
    QPushButton* pushButton_z = nullptr;
    QPushButton* pushButton_stop = nullptr;
    QPushButton* pushButton_reset = nullptr;
    QPushButton* pushButton_select_all = nullptr;
    QPushButton* pushButton_backward_tracking = nullptr;
    QPushButton* pushButton_auto = nullptr;
    QPushButton* pushButton_forward_tracking = nullptr;
};
