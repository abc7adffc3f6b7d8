// small_recording.h - a tiny recording in a folder of its own: an ROI file and its images.
//
// The images are 60 x 40 pixels of one grey, another for each position, so that a picture tells where it was
// taken. While the object lives it is the image root and the folder that dialogs start in.
#pragma once
#include "temp_folder.h"

#include <QDir>
#include <QFile>
#include <QImage>

struct SmallRecording {
    explicit SmallRecording(const std::string& dataset = "tiny", int first = 0, int last = 4)
        : file(folder.with("file.roi", dataset + rois(first, last)))
    {
        QDir().mkpath(QString::fromStdString(folder.path(dataset)));
        for (int t = first; t <= last; ++t)
            for (int z = 19; z <= 22; ++z)
                write_image(path(QString("%1/%2-%3.jpg")
                                     .arg(dataset.c_str())
                                     .arg(t, 3, 10, QChar('0'))
                                     .arg(z, 3, 10, QChar('0'))
                                     .toUtf8()),
                            grey(t, z));
        qputenv("ORVBROWSER_IMAGE_ROOT", folder.path("").c_str());
        qputenv("PWD", folder.path("").c_str());
    }

    [[nodiscard]] static int grey(int t, int z) { return 40 + (t * 7 + z * 11) % 150; }

    // A file in the folder of the recording.
    [[nodiscard]] QString path(const char* name) const { return QString::fromStdString(folder.path(name)); }

    temp_folder folder;
    std::string file;    // as "Read ROIs" takes it

private:
    static void write_image(const QString& name, int level)
    {
        QImage image(60, 40, QImage::Format_Grayscale8);
        image.fill(QColor(level, level, level));
        if (!image.save(name, "JPEG", 100))
            qFatal("cannot write %s", qPrintable(name));
    }

    // On focal plane 20 of each time point: a square of 4 x 4 pixels at (10, 5) and a single point at (30,
    // 25).
    static std::string rois(int first, int last)
    {
        std::string text = "\n";
        for (int t = first; t <= last; ++t)
            text += "10 5 20 " + std::to_string(t) + " 222233330000\n" + "30 25 20 " + std::to_string(t) +
                    " 2301\n";
        return text;
    }
};
