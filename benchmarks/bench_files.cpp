// Reading and writing ROI files of 1,000,000 records against numbers read and written without a stream,
// and the memory that they take.
#include "bench_window.h"
#include "topics.h"

#include "roidb_plus.h"

#include <QCoreApplication>
#include <QProcess>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <memory>
#include <random>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int time_points = 100;
constexpr int planes = 50;
constexpr int rois_per_plane = 200;
constexpr int records = time_points * planes * rois_per_plane;

std::string random_outline(std::mt19937& random)
{
    // As long as those of the demo recording.
    std::string outline(std::uniform_int_distribution<std::size_t>(70, 170)(random), '0');
    for (char& step : outline)
        step = static_cast<char>('0' + random() % 4);
    return outline;
}

void write_million_records(const std::string& filename)
{
    std::mt19937 random(1);
    std::ofstream file(filename);
    file << "recording\n";
    for (int t = 0; t < time_points; ++t)
        for (int z = 0; z < planes; ++z)
            for (int i = 0; i < rois_per_plane; ++i)
                file << 5 * i + static_cast<int>(random() % 5) << ' ' << random() % 1000 << ' ' << z << ' '
                     << t << ' ' << random_outline(random) << '\n';
}

struct bare_record {
    int field[4];
    std::string outline;
};

std::string bytes_of(const std::string& filename)
{
    std::string bytes(std::filesystem::file_size(filename), '\0');
    const int fd = ::open(filename.c_str(), O_RDONLY | O_CLOEXEC);
    for (std::size_t at = 0; at < bytes.size();)
        at += static_cast<std::size_t>(::read(fd, bytes.data() + at, bytes.size() - at));
    ::close(fd);
    return bytes;
}

std::vector<bare_record> read_bare(const std::string& filename)
{
    const std::string bytes = bytes_of(filename);
    std::vector<bare_record> all;
    const char* const end = bytes.data() + bytes.size();
    for (const char* at = std::find(bytes.data(), end, '\n') + 1; at < end;) {
        bare_record& r = all.emplace_back();
        for (int& field : r.field)
            at = std::from_chars(at, end, field).ptr + 1;
        const char* const line_end = std::find(at, end, '\n');
        r.outline.assign(at, line_end);
        at = line_end + 1;
    }
    return all;
}

void write_bare(const std::string& filename, const std::vector<bare_record>& all)
{
    std::string bytes = "recording\n";
    for (const bare_record& r : all) {
        char digits[11];
        for (const int field : r.field) {
            bytes.append(digits, std::to_chars(digits, std::end(digits), field).ptr);
            bytes += ' ';
        }
        bytes += r.outline;
        bytes += '\n';
    }
    const int fd = ::open(filename.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    for (std::size_t at = 0; at < bytes.size();)
        at += static_cast<std::size_t>(::write(fd, bytes.data() + at, bytes.size() - at));
    ::fsync(fd);
    ::close(fd);
}

// The bytes after a name in this process's status.
long long status_bytes(const std::string& name)
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        long long kilobytes = 0;
        if (word == name && status >> kilobytes)
            return kilobytes * 1024;
    }
    return 0;
}

std::string million_file(const bench_data& data)
{
    const std::string filename = data.folder + "/million.roi";
    if (!std::filesystem::exists(filename))
        write_million_records(filename);
    return filename;
}

}    // namespace

std::vector<comparison> file_comparisons(const bench_data& data)
{
    const std::string filename = million_file(data);
    const std::string saved = data.folder + "/saved.roi";
    const auto read = [filename] {
        ::malloc_trim(0);    // so that no run pays for what another one left behind
        roidb_plus db("");
        return seconds_of([&] { (void)db.read_plus(filename); });
    };
    const auto read_floor = [filename] {
        ::malloc_trim(0);
        std::vector<bare_record> all;
        return seconds_of([&] { all = read_bare(filename); });
    };
    const auto write = [filename, saved] {
        roidb_plus db("");
        (void)db.read_plus(filename);
        return seconds_of([&] { (void)db.write(saved); });
    };
    const auto write_floor = [filename, saved] {
        const std::vector<bare_record> all = read_bare(filename);
        return seconds_of([&] { write_bare(saved, all); });
    };
    return {{"read 1,000,000 ROIs", "std::from_chars into a vector", 2, "ROI", records, read, read_floor},
            {"write 1,000,000 ROIs", "std::to_chars from a vector, synced", 2, "ROI", records, write,
             write_floor}};
}

int print_peak_memory_of(const std::string& filename)
{
    const long long before = status_bytes("VmRSS:");
    roidb_plus db("");
    (void)db.read_plus(filename);
    std::printf("%lld %zu\n", status_bytes("VmHWM:") - before, db.db.size());
    return 0;
}

void print_memory(const bench_data& data)
{
    std::puts("| memory after reading | bytes a ROI | bytes a record | ratio |\n|---|---:|---:|---:|");
    for (const auto& [name, filename] :
         {std::pair("1,000,000 ROIs", million_file(data)), {"the large recording", data.large()}}) {
        QProcess reader;
        reader.start(QCoreApplication::applicationFilePath(),
                     {"--memory-of", QString::fromStdString(filename)});
        reader.waitForFinished(-1);
        const QList<QByteArray> numbers = reader.readAllStandardOutput().simplified().split(' ');
        const double rois = numbers.value(1).toDouble();
        const double memory = numbers.value(0).toDouble() / rois;
        const double record = static_cast<double>(std::filesystem::file_size(filename)) / rois;
        std::printf("| %s | %.0f | %.0f | %.2f |\n", name, memory, record, memory / record);
    }
}
