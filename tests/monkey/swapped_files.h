// swapped_files.h - the files that the monkey works on, which change under the window that has read them.
#pragma once
#include "../support/temp_folder.h"
#include "demo_files.h"
#include "demo_random.h"

#include <QRegularExpression>

#include <map>

class SwappedFiles {
public:
    // Two recordings, and a file in which all ROIs of the first are points.
    SwappedFiles()
    {
        for (std::uint64_t seed = 1; const char* name : {"demo", "other"})
            (void)write_recording(make_recording({name, seed++, 6, 14, 14, 160, 160, 0.05, 0.05, 0.25}),
                                  path(""));
        QString rois = QString::fromStdString(contents(path("demo.roi")));
        rois.replace(QRegularExpression(" [0-3]+\n"), " 2301\n");
        write(path("variant.roi"), rois.toStdString());
        for (const auto& entry : std::filesystem::recursive_directory_iterator(path("")))
            if (entry.is_regular_file())
                _whole[entry.path()] = contents(entry.path());
        _whole[path("home/.orvbrowser")] = "DEFAULT #ff0000\nSELECTED nonsense\nREMOVED";
    }

    [[nodiscard]] std::string path(const std::string& name) const { return _folder.path(name); }

    // A file with this suffix, mostly one of the recording that is mostly open.
    [[nodiscard]] std::string of_kind(const std::string& suffix, demo_random& random) const
    {
        return path((random.chance(0.5) ? "demo" : random.chance(0.7) ? "variant" : "other") + suffix);
    }

    [[nodiscard]] std::string any(demo_random& random) const
    {
        static const char* const kinds[] = {".roi", ".lineage", ".info", ".fp", ".nwk", "/", "/a/missing"};
        const std::string image =
            "demo/00" + std::to_string(random.below(6)) + "-00" + std::to_string(random.below(10));
        return random.chance(0.3)   ? path(image + ".jpg")
               : random.chance(0.1) ? path("home/.orvbrowser")
                                    : of_kind(kinds[random.below(7)], random);
    }

    void restore() const
    {
        for (const auto& [name, bytes] : _whole)
            if (contents(name) != bytes)
                write(name, bytes);
    }

    // Garbles, cuts off, exchanges, removes or hides behind a folder one file.
    void swap_one(demo_random& random) const
    {
        const std::string name = any(random);
        std::string bytes = contents(name);
        const int change = random.below(5);
        for (int i = random.below(30); change == 0 && i > 0 && !bytes.empty(); --i)
            bytes[random.below(static_cast<int>(bytes.size()))] = "01239- \n\xff\0x"[random.below(11)];
        if (change == 1)
            bytes.resize(random.below(static_cast<int>(bytes.size()) + 1));
        write(name, change == 2 ? contents(any(random)) : bytes);
        std::error_code is_folder;
        if (change > 2 && std::filesystem::remove(name, is_folder) && change > 3)
            std::filesystem::create_directory(name);
    }

private:
    [[nodiscard]] static std::string contents(const std::filesystem::path& name)
    {
        std::ifstream file(name, std::ios::binary);
        return is_directory(name) ? std::string() : std::string{std::istreambuf_iterator<char>(file), {}};
    }

    // Also over a folder, and into one that is gone.
    static void write(const std::filesystem::path& name, const std::string& bytes)
    {
        if (!name.has_filename())
            return;
        if (is_directory(name))
            remove_all(name);
        create_directories(name.parent_path());
        std::ofstream(name, std::ios::binary) << bytes;
    }

    temp_folder _folder;
    std::map<std::string, std::string> _whole;
};
