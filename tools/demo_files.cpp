#include "demo_files.h"

#include "ORV_roidb.h"
#include "demo_images.h"
#include "grey_jpeg.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <mutex>
#include <thread>

namespace {

namespace fs = std::filesystem;

bool cannot_write(const fs::path& file)
{
    std::cerr << "Cannot write " << file.string() << std::endl;
    return false;
}

bool write_file(const fs::path& file, const char* bytes, std::size_t size)
{
    std::ofstream out(file, std::ios::binary);
    out.write(bytes, static_cast<std::streamsize>(size));
    out.close();
    return out.good();
}

bool make_folder(const fs::path& folder)
{
    std::error_code error;
    fs::create_directories(folder, error);
    return fs::is_directory(folder, error) || cannot_write(folder);
}

// Images are independent of each other: each thread takes the next one that nobody has.
class image_writer {
public:
    image_writer(const demo_recording& recording, fs::path folder)
        : _options(recording.options), _painter(recording.embryo, recording.options),
          _folder(std::move(folder)), _total(_options.time_points * _options.planes)
    {
    }

    bool run(const demo_progress& progress)
    {
        std::vector<std::thread> helpers;
        for (unsigned i = 1; i < std::max(1u, std::thread::hardware_concurrency()); ++i)
            helpers.emplace_back([this] { write_images({}); });
        write_images(progress);
        for (std::thread& helper : helpers)
            helper.join();
        if (!_failed.empty())
            return cannot_write(_failed);
        if (progress)
            progress(_total, _total);
        return true;
    }

private:
    void write_images(const demo_progress& progress)
    {
        for (int i = _next++; i < _total && !_stopped; i = _next++) {
            write_image(i / _options.planes, i % _options.planes);
            if (progress)
                progress(i, _total);
        }
    }

    void write_image(int t, int z)
    {
        const auto bytes =
            grey_jpeg(_painter.paint(t, z), _options.width, _options.height, _options.jpeg_quality);
        const fs::path file = _folder / (roidb::digit(t, 3) + '-' + roidb::digit(z, 3) + ".jpg");
        if (write_file(file, reinterpret_cast<const char*>(bytes.data()), bytes.size()))
            return;
        const std::lock_guard lock(_mutex);
        _failed = file;
        _stopped = true;
    }

    const demo_options& _options;
    demo_painter _painter;
    fs::path _folder;
    int _total;
    std::atomic<int> _next = 0;
    std::atomic<bool> _stopped = false;
    std::mutex _mutex;
    fs::path _failed;    // guarded by _mutex while threads run
};

// Which pixels of a joined outline belong to which nucleus.
std::string part_lines(const demo_detection& d)
{
    std::string text;
    for (const auto& [label, part] : d.parts)
        text += "PART " + roidb::keygen(d.outline) + ' ' + std::to_string(label) + ' ' +
                std::to_string(part.x()) + ' ' + std::to_string(part.y()) + ' ' + part.outline() + '\n';
    return text;
}

std::string truth_text(const demo_recording& recording)
{
    std::string text = "NAME " + recording.options.name + '\n';
    for (const demo_detection& d : recording.detections) {
        text += d.other ? "JOIN " : "ROI ";
        text += roidb::keygen(d.outline) + ' ' + std::to_string(d.label);
        if (d.other)
            text += ' ' + std::to_string(d.other);
        text += '\n' + part_lines(d);
    }
    for (const demo_track& k : recording.embryo.tracks) {
        text += "TRACK";
        for (const int field : {k.label, k.first, k.last, k.parent})
            text += ' ' + std::to_string(field);
        text += '\n';
    }
    return text;
}

roidb database_of(const demo_recording& recording)
{
    roidb database(recording.options.name);
    for (const demo_detection& d : recording.detections)
        database.entry(d.outline);
    return database;
}

}    // namespace

demo_recording make_recording(const demo_options& options)
{
    demo_recording recording{options, grow_embryo(options), {}};
    recording.detections = detect(recording.embryo, options);
    return recording;
}

bool write_recording(const demo_recording& recording, const std::string& folder, demo_images images,
                     const demo_progress& progress)
{
    const fs::path root(folder);
    const std::string& name = recording.options.name;
    if (!make_folder(root))
        return false;
    const bool with_images = images == demo_images::written;
    if (with_images && !(make_folder(root / name) && image_writer(recording, root / name).run(progress)))
        return false;
    const std::string truth = truth_text(recording);
    const fs::path truth_file = root / (name + ".truth");
    if (!write_file(truth_file, truth.data(), truth.size()))
        return cannot_write(truth_file);
    return database_of(recording).write((root / (name + ".roi")).string());
}
