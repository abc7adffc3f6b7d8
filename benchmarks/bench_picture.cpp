// Steps through the demo recording and pointer moves over a crowded plane.
//
// A step ends when the canvas has repainted itself. The bare step decodes the same JPEG file, unless it
// is in memory already, and lets a painter draw the same polygons.
#include "bench_window.h"
#include "topics.h"

#include "keygen.h"

#include <QCoreApplication>
#include <QFile>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <memory>

namespace {

struct image_step {
    int t, z;
    QString image;
    QPixmap decoded;
    std::vector<QPolygon> outlines;
};

std::vector<QPolygon> outlines_of(roidb_plus& db, int t, int z)
{
    std::vector<QPolygon> outlines;
    db.seek(t, z, 0);
    for (roi r; db.find_plus(t, z, r);)
        outlines.push_back(q_roiimg(r).qpointarray());
    return outlines;
}

// Some images in the midst of the recording, so that each lies beside the one before and all fit into
// the window's cache.
std::vector<image_step> walk_over(roidb_plus& db, const std::string& folder)
{
    constexpr int first_plane = 10;
    constexpr int last_plane = 29;
    std::vector<image_step> steps;
    for (int t = db.t_max() - 4; t <= db.t_max(); ++t)
        for (int i = first_plane; i <= last_plane; ++i) {
            const int z = t % 2 == 0 ? i : first_plane + last_plane - i;
            const QString image =
                QString::fromStdString(folder + "/" + db.name() + "/" + digit3(t) + "-" + digit3(z) + ".jpg");
            steps.push_back({t, z, image, QPixmap(image), outlines_of(db, t, z)});
        }
    return steps;
}

void go_to(ORVBrowser& window, const image_step& to)
{
    window.setCurrentTimePoint(to.t);
    window.setCurrentFocalPlane(to.z);
    QCoreApplication::processEvents();
}

void walk_window(ORVBrowser& window, const std::vector<image_step>& steps)
{
    for (std::size_t i = 1; i < steps.size(); ++i) {
        if (steps[i].t != steps[i - 1].t)
            window.setCurrentTimePoint(steps[i].t);
        else
            window.setCurrentFocalPlane(steps[i].z);
        QCoreApplication::processEvents();
    }
}

void draw_bare(QPixmap picture, const std::vector<QPolygon>& outlines)
{
    QPainter painter(&picture);
    painter.setPen(QPen(Qt::yellow, 1, Qt::SolidLine));
    for (const QPolygon& outline : outlines)
        painter.drawPolygon(outline);
}

// 1,000 squares of 10 x 10 pixels on one plane, 18 pixels apart.
std::string crowded_plane(const std::string& folder)
{
    constexpr int squares = 1000;
    constexpr int in_row = 32;
    constexpr int distance = 18;
    const std::string filename = folder + "/crowded.roi";
    std::filesystem::create_directories(folder + "/crowded");
    QImage image(600, 600, QImage::Format_Grayscale8);
    image.fill(Qt::gray);
    (void)image.save(QString::fromStdString(folder + "/crowded/000-020.jpg"));
    std::ofstream file(filename);
    file << "crowded\n";
    std::string outline;
    for (const char step : {'2', '3', '0', '1'})
        outline.append(10, step);
    for (int i = 0; i < squares; ++i)
        file << 10 + i % in_row * distance << ' ' << 10 + i / in_row * distance << " 20 0 " << outline
             << '\n';
    return filename;
}

// As a hand moves the pointer: one to three pixels an event, over the whole plane.
std::vector<QPoint> pointer_path()
{
    std::vector<QPoint> path;
    for (int i = 0; i < 5000; ++i)
        path.emplace_back(300 + static_cast<int>(280 * std::sin(i * 0.0037)),
                          300 + static_cast<int>(280 * std::cos(i * 0.0053)));
    return path;
}

void move_pointer(ORVBrowser& window, QPoint to)
{
    const QPointF at = window.frame_canvas->pos() + to;
    QMouseEvent e(QEvent::MouseMove, at, window.mapToGlobal(at), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window, &e);
}

bool is_hit(const q_roiimg& raster, QPoint at)
{
    const int x = at.x() - raster.top_left().x();
    const int y = at.y() - raster.top_left().y();
    return x >= 0 && y >= 0 && x < raster.width() && y < raster.height() && raster.value(x, y) != 0;
}

std::vector<comparison> step_comparisons(const bench_data& data)
{
    qputenv("ORVBROWSER_IMAGE_ROOT", data.folder.c_str());
    const auto window = std::make_shared<BenchWindow>(data.recording());
    window->show();
    const auto steps = std::make_shared<std::vector<image_step>>(walk_over(*window->m_roidb, data.folder));
    const auto cold = [window, steps] {
        window->build_imgdb();
        go_to(*window, steps->front());
        return seconds_of([&] { walk_window(*window, *steps); });
    };
    const auto warm = [window, steps] {
        go_to(*window, steps->front());
        walk_window(*window, *steps);
        go_to(*window, steps->front());
        return seconds_of([&] { walk_window(*window, *steps); });
    };
    const auto cold_floor = [steps] {
        return seconds_of([&] {
            for (const image_step& step : *steps)
                draw_bare(QPixmap(step.image), step.outlines);
        });
    };
    const auto warm_floor = [steps] {
        return seconds_of([&] {
            for (const image_step& step : *steps)
                draw_bare(step.decoded, step.outlines);
        });
    };
    const auto count = static_cast<double>(steps->size() - 1);
    return {{"step, image not in memory", "bare decode and painter", 2, "step", count, cold, cold_floor},
            {"step, image in memory", "bare painter", 2, "step", count, warm, warm_floor}};
}

}    // namespace

std::vector<comparison> picture_comparisons(const bench_data& data)
{
    std::vector<comparison> all = step_comparisons(data);
    const auto window = std::make_shared<BenchWindow>(crowded_plane(data.folder));
    window->show();
    window->setCurrentFocalPlane(20);
    const auto path = std::make_shared<std::vector<QPoint>>(pointer_path());
    const auto rasters = std::make_shared<std::vector<std::unique_ptr<q_roiimg>>>();
    for (const auto& [key, r] : window->m_roidb->db)
        rasters->emplace_back(std::make_unique<q_roiimg>(r))->map();
    const auto hit_tests = [path, rasters] {
        return seconds_of([&] {
            for (const QPoint at : *path) {
                const auto hit = std::find_if(rasters->begin(), rasters->end(),
                                              [at](const auto& raster) { return is_hit(*raster, at); });
                benchmark::DoNotOptimize(hit);
            }
        });
    };
    const auto across = [window, path] {
        return seconds_of([&] {
            for (const QPoint at : *path)
                move_pointer(*window, at);
        });
    };
    // To and fro between two pixels of the ROI that the hit test meets last but for a few.
    const auto inside = [window, path] {
        move_pointer(*window, {140, 570});
        return seconds_of([&] {
            for (std::size_t i = 0; i < path->size(); ++i)
                move_pointer(*window, {140 + static_cast<int>(i % 2), 570});
        });
    };
    const auto inside_floor = [path, rasters] {
        return seconds_of([&] {
            for (std::size_t i = 0; i < path->size(); ++i) {
                const QPoint at(140 + static_cast<int>(i % 2), 570);
                const auto hit = std::find_if(rasters->begin(), rasters->end(),
                                              [at](const auto& raster) { return is_hit(*raster, at); });
                benchmark::DoNotOptimize(hit);
            }
        });
    };
    const auto events = static_cast<double>(path->size());
    all.push_back(
        {"pointer inside one of 1,000 ROIs", "the hit test", 2, "event", events, inside, inside_floor});
    all.push_back({"pointer across 1,000 ROIs", "the hit test", 2, "event", events, across, hit_tests});
    return all;
}
