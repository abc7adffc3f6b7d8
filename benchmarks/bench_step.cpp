// One navigation step of the window against the least it can cost.
//
//     bench_step FILE.roi      the images are in the folder of FILE.roi, unless ORVBROWSER_IMAGE_ROOT is set
//
// A step of the window goes to the next focal plane or time point, to a picture that is in no cache,
// and ends when it is painted. The bare step decodes the same JPEG file and lets a painter draw the
// same polygons. Both walk over the whole recording in turn; the ratio is of their fastest walks.
#include "keygen.h"
#include "orvbrowser.h"
#include "q_roiimg.h"

#include <QFile>
#include <QFileInfo>
#include <QPainter>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <vector>

namespace {

constexpr int rounds = 7;
constexpr int most_planes = 1000;

struct step {
    int t, z;
    QString image;
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

// Every image of the recording, so that each lies beside the one before.
std::vector<step> walk_over(roidb_plus& db, const QString& root)
{
    std::vector<step> steps;
    for (int t = db.t_min(); t <= db.t_max(); ++t)
        for (int i = 0; i < most_planes; ++i) {
            const int z = t % 2 == 0 ? i : most_planes - 1 - i;
            const QString image =
                root + "/" + QString::fromStdString(db.name() + "/" + digit3(t) + "-" + digit3(z) + ".jpg");
            if (QFile::exists(image))
                steps.push_back({t, z, image, outlines_of(db, t, z)});
        }
    return steps;
}

// From one image to the one beside it: a single step.
void step_window(ORVBrowser& window, const step& from, const step& to)
{
    if (to.t != from.t)
        window.setCurrentTimePoint(to.t);
    if (to.z != from.z)
        window.setCurrentFocalPlane(to.z);
    QCoreApplication::processEvents();
}

void step_bare(const step&, const step& to)
{
    QPixmap picture(to.image);
    QPainter painter(&picture);
    painter.setPen(QPen(Qt::yellow, 1, Qt::SolidLine));
    for (const QPolygon& outline : to.outlines)
        painter.drawPolygon(outline);
}

double milliseconds_a_step(const std::vector<step>& steps,
                           const std::function<void(const step&, const step&)>& go)
{
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 1; i < steps.size(); ++i)
        go(steps[i - 1], steps[i]);
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
    return taken.count() / static_cast<double>(steps.size() - 1);
}

int compare(const std::string& filename)
{
    roidb_plus db("");
    if (!db.read_plus(filename))
        return EXIT_FAILURE;
    if (qEnvironmentVariableIsEmpty("ORVBROWSER_IMAGE_ROOT"))
        qputenv("ORVBROWSER_IMAGE_ROOT", QFileInfo(QString::fromStdString(filename)).absolutePath().toUtf8());
    const std::vector<step> steps = walk_over(db, qEnvironmentVariable("ORVBROWSER_IMAGE_ROOT"));
    if (steps.size() < 2) {
        std::cerr << "No images of " << filename << std::endl;
        return EXIT_FAILURE;
    }
    ORVBrowser window;
    window.show();
    double best_window = 1e9;
    double best_bare = 1e9;
    const auto go_window = [&window](const step& from, const step& to) { step_window(window, from, to); };
    for (int round = 0; round < rounds; ++round) {
        window.openRoiFile(filename);    // anew, so that its caches are empty
        window.setMaxFocalPlane(most_planes);
        window.setCurrentTimePoint(steps.front().t);
        window.setCurrentFocalPlane(steps.front().z);
        QCoreApplication::processEvents();
        best_window = std::min(best_window, milliseconds_a_step(steps, go_window));
        best_bare = std::min(best_bare, milliseconds_a_step(steps, step_bare));
    }
    std::printf("%zu steps: window %.3f ms, bare %.3f ms, ratio %.2f\n", steps.size(), best_window, best_bare,
                best_window / best_bare);
    return EXIT_SUCCESS;
}

}    // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (argc == 2)
        return compare(argv[1]);
    std::cerr << "usage: bench_step FILE.roi" << std::endl;
    return EXIT_FAILURE;
}
