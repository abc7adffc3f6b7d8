// Steps at other zooms and ranges than the plain ones, zooming and panning over a crowded plane.
//
// A step is compared with the same step at 1:1 in a window of the same size; an event with the time of one
// frame.
#include "bench_window.h"
#include "topics.h"

#include "canvas_view.h"
#include "pages.h"

#include <QCoreApplication>
#include <QFile>
#include <QImage>

#include <filesystem>
#include <fstream>
#include <memory>

namespace {

constexpr int steps = 100;
constexpr int events = 60;
constexpr double frame_seconds = 0.016;
constexpr QSize usual_window(620, 878);      // a canvas as large as the demo's pictures
constexpr QSize large_window(1219, 1477);    // a canvas of 1200 x 1200
constexpr QSize small_window(620, 560);      // a canvas half as high

class ViewedWindow : public BenchWindow {
public:
    ViewedWindow(const std::string& filename, QSize size) : BenchWindow(filename)
    {
        add_pages(*this);
        openRoiFile(filename);
        resize(size);
        show();
        QCoreApplication::processEvents();
    }

    [[nodiscard]] CanvasView& canvas() { return *CanvasView::of(*this); }
};

using window_pointer = std::shared_ptr<ViewedWindow>;

double seconds_of_steps(ViewedWindow& window)
{
    window.setCurrentFocalPlane(10);
    QCoreApplication::processEvents();
    return seconds_of([&] {
        for (int i = 0; i < steps; ++i) {
            window.setCurrentFocalPlane(i / 20 % 2 == 0 ? 10 + i % 20 : 30 - i % 20);
            QCoreApplication::processEvents();
        }
    });
}

comparison step_at(const char* work, const window_pointer& window, int zoom, const display_range& range,
                   QSize size = usual_window)
{
    const auto at = [window, size](int zoom_steps, const display_range& in_range) {
        window->resize(size);
        window->canvas().show_original();
        window->canvas().zoom_by(zoom_steps, {0, 0});
        window->canvas().set_range(in_range);
        return seconds_of_steps(*window);
    };
    return {work,
            "the same step, plain",
            2,
            "step",
            steps,
            [=] { return at(zoom, range); },
            [=] { return at(0, {}); }};
}

// 1,000 circles of about 900 pixels on each of the planes 10 to 30, of 1200 x 1200 pixels: a diamond for
// each.
std::string crowded_canvas(const std::string& folder)
{
    const std::string filename = folder + "/canvas.roi";
    std::filesystem::create_directories(folder + "/canvas");
    QImage image(1200, 1200, QImage::Format_Grayscale8);
    image.fill(Qt::gray);
    std::ofstream file(filename);
    file << "canvas\n";
    std::string outline;
    for (const char* stair : {"23", "03", "01", "21"})
        for (int i = 0; i < 17; ++i)
            outline += stair;
    for (int z = 10; z <= 30; ++z) {
        (void)image.save(QString("%1/canvas/000-0%2.jpg").arg(QString::fromStdString(folder)).arg(z));
        for (int i = 0; i < 1000; ++i)
            file << 2 + i % 32 * 37 << ' ' << 20 + i / 32 * 37 << ' ' << z << " 0 " << outline << '\n';
    }
    return filename;
}

comparison event(const char* work, const window_pointer& window,
                 const std::function<void(CanvasView&, int)>& act)
{
    const auto run = [window, act] {
        window->setCurrentFocalPlane(20);
        window->canvas().show_original();
        return seconds_of([&] {
            for (int i = 0; i < events; ++i) {
                act(window->canvas(), i);
                QCoreApplication::processEvents();
            }
        });
    };
    return {work, "one frame", 1, "event", events, run, [] { return frame_seconds * events; }};
}

}    // namespace

std::vector<comparison> view_comparisons(const bench_data& data)
{
    qputenv("ORVBROWSER_IMAGE_ROOT", data.folder.c_str());
    const auto demo = std::make_shared<ViewedWindow>(data.recording(), usual_window);
    const auto crowded = std::make_shared<ViewedWindow>(crowded_canvas(data.folder), large_window);
    constexpr display_range narrow{20, 200, 1.5};
    return {step_at("step at 2:1", demo, 2, {}),
            step_at("step at 2.8:1, in a range", demo, 3, narrow),
            step_at("step at 1:1.4", demo, -1, {}),
            step_at("step at 1:2", demo, -2, {}),
            step_at("step at 1:1, in a range", demo, 0, narrow),
            step_at("step at 4:1, in a range, 1200 x 1200", crowded, 4, narrow, large_window),
            step_at("step at 1:1.4, in a range, 1200 x 1200", crowded, -1, narrow, large_window),
            step_at("step at 1:1.4, canvas half as high", demo, -1, {}, small_window),
            event("zoom about 1,000 outlines", crowded,
                  [](CanvasView& view, int i) {
                      view.zoom_by(i % 4 < 2 ? -1 : 1, {600, 600});
                  }),
            event("pan over 1,000 outlines", crowded, [](CanvasView& view, int i) {
                if (i == 0)
                    view.zoom_by(1, {600, 600});
                view.pan_by(i % 2 == 0 ? QPoint(5, 3) : QPoint(-5, -3));
            })};
}
