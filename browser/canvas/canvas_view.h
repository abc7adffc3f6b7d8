// canvas_view.h - how the canvas shows the picture: at which zoom and place, in which range of grey, with
// outlines how wide; and the scroll bars for it.
//
// With the plain view the canvas shows the window's own picture. Otherwise the visible part of image and
// outlines is made besides; the window's picture never depends on the view. Opening a recording makes view
// and range plain again.
#pragma once
#include "canvas_layer.h"
#include "curation_observer.h"
#include "orvbrowser.h"
#include "visible_image.h"

#include <QObject>
#include <QPointer>
#include <QScrollBar>

#include <functional>
#include <vector>

class CanvasView : public QObject, public CanvasLayer, private curation_observer {
    Q_OBJECT

public:
    // For this window, which owns it and shows its picture through it from then on.
    explicit CanvasView(ORVBrowser& window);
    ~CanvasView() override;

    // The one of this window; null where no pages were added.
    [[nodiscard]] static CanvasView* of(const ORVBrowser& window);

    [[nodiscard]] const view_transform& view() const noexcept { return _view; }
    void zoom_by(int steps, QPoint about);    // a point of the canvas
    void zoom_by(int steps);                  // about the middle of the canvas
    void show_original();                     // 1:1, from the corner
    void fit();                               // all of this plane
    void pan_by(QPoint way);                  // screen pixels
    // Puts an area of the picture in the middle, unless it is well within view.
    void reveal(const QRect& picture);

    [[nodiscard]] const display_range& range() const noexcept { return _range; }
    void set_range(const display_range& range);    // REQUIRES: low < high, gamma > 0
    void set_outline_width(int width);             // screen pixels
    void hide_outlines(bool on);

    // Draws over the picture whenever the canvas is painted; in screen pixels.
    void add_overlay(std::function<void(QPainter&)> paint) { _overlays.push_back(std::move(paint)); }
    void update_canvas();    // soon

    // ---- For the canvas
    void picture_changed() override;
    [[nodiscard]] bool paint_picture(QPainter& painter, const QRect& exposed) override;
    void paint_overlay(QPainter& painter) override;
    [[nodiscard]] QPoint picture_pixel(QPoint at) const override { return _view.picture_pixel(at); }
    [[nodiscard]] QRect screen_area(const QRect& picture) const override;

signals:
    void opened_or_closed();
    void range_changed();
    void picture_made();    // anew, of this plane or another

protected:
    bool eventFilter(QObject* watched, QEvent* e) override;

private:
    void recording_changed() override;
    [[nodiscard]] QSize canvas_size() const { return _canvas->size(); }
    [[nodiscard]] bool shows_plain_picture() const;
    void keep_in_view();
    void view_changed();
    void place_scroll_bar(QScrollBar& bar, double picture, double canvas, double corner);
    void place_scroll_bars();
    void grow_to(const QRect& picture);
    void paint_lineage(QPainter& painter);

    ORVBrowser& _window;
    QPointer<PictureFrame> _canvas;
    QScrollBar* _across = nullptr;
    QScrollBar* _down = nullptr;
    const Observing _observing{_window, *this};
    view_transform _view;
    display_range _range;
    int _outline_width = 1;
    bool _are_outlines_hidden = false;
    visible_image _image;
    QImage _composed;     // with the outlines, where it was painted last
    QRect _plane_area;    // of the picture: what this plane has to show
    QSize _extent;        // all that planes of this recording had to show so far
    std::vector<std::function<void(QPainter&)>> _overlays;
};
