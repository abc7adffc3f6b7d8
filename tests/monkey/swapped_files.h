// swapped_files.h - the monkey's files, which change under the window that has read them.
#pragma once
#include "../support/failing_reads.h"
#include "../support/temp_folder.h"
#include "curation.h"
#include "demo_files.h"
#include "demo_random.h"
#include "kept_work.h"
#include "story.h"

#include <QRegularExpression>

#include <filesystem>

namespace fs = std::filesystem;

class SwappedFiles {
public:
    explicit SwappedFiles(demo_random& random) : _random(random) { restore(); }

    [[nodiscard]] std::string path(const std::string& name) const { return _folder.path(name); }

    // A file with this suffix, mostly one of the recording that is mostly open.
    [[nodiscard]] std::string of_kind(const std::string& suffix) const
    {
        return path((_random.chance(0.7) ? "demo" : _random.chance(0.7) ? "variant" : "other") + suffix);
    }

    [[nodiscard]] std::string any() const
    {
        const std::string image =
            "/00" + std::to_string(_random.below(6)) + "-00" + std::to_string(_random.below(10)) + ".jpg";
        const std::string kinds[] = {".roi", ".lineage",   ".info", ".fp", ".nwk",
                                     "/",    "/a/missing", image,   image};
        return _random.chance(0.1) ? path("home/.orvbrowser") : of_kind(kinds[_random.below(9)]);
    }

    // Two recordings, and a file in which all ROIs of the first are points.
    void restore()
    {
        _fault.reset();
        const curation somebody_else;    // no window takes it for a save of its own
        const kept_work::Writing writing(somebody_else);
        for (const char* name : {"demo", "other", "demo.roi", "other.roi", "variant.roi", "home"})
            fs::remove_all(path(name));
        for (std::uint64_t seed = 1; const char* name : {"demo", "other"})
            (void)write_recording(make_recording({name, seed++, 6, 14, 14, 160, 160, 0.05, 0.05, 0.25}),
                                  path(""));
        QString rois = QString::fromStdString(_folder.contents("demo.roi"));
        rois.replace(QRegularExpression(" [0-3]+\n"), " 2301\n");
        (void)_folder.with("variant.roi", rois.toStdString());
        fs::create_directory(path("home"));
        (void)_folder.with("home/.orvbrowser", "DEFAULT #ff0000\nSELECTED nonsense\nREMOVED");
    }

    // From now on some file cannot be read to its end; any that could not be can again.
    void fail_one()
    {
        const std::string name = any();
        _fault.reset();
        std::error_code missing;
        const auto size = fs::is_regular_file(name, missing) ? fs::file_size(name) : 0;
        if (size > 0 && _random.chance(0.5))
            _fault = std::make_unique<failing_reads>(name, _random.below(static_cast<int>(size)));
    }

    // Garbles, cuts off, exchanges, removes or hides behind a folder one file.
    void swap_one()
    {
        _fault.reset();    // of this program's own reading
        const fs::path name = any(), other = any();
        if (!name.has_filename())
            return;
        const int change = _random.below(5);
        std::string bytes = contents(change == 2 ? other : name);
        for (int i = _random.below(30); change == 0 && i > 0 && !bytes.empty(); --i)
            bytes[_random.below(static_cast<int>(bytes.size()))] = "01239- \n\xff\0x"[_random.below(11)];
        if (change == 1)
            bytes.resize(_random.below(static_cast<int>(bytes.size()) + 1));
        fs::remove_all(name);
        create_directories(change == 4 ? name : name.parent_path());
        if (change < 3)
            std::ofstream(name, std::ios::binary) << bytes;
    }

private:
    [[nodiscard]] static std::string contents(const fs::path& name)
    {
        std::ifstream file(name, std::ios::binary);
        return is_directory(name) ? std::string() : std::string{std::istreambuf_iterator<char>(file), {}};
    }

    demo_random& _random;
    temp_folder _folder;
    std::unique_ptr<failing_reads> _fault;
};
