// make_demo - writes a synthetic recording of a dividing embryo into a folder.
#include "demo_files.h"
#include "demo_presets.h"

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <getopt.h>
#include <iostream>
#include <optional>
#include <string_view>
#include <unistd.h>

namespace {

constexpr int exit_usage = 2;

constexpr const char* usage = R"(Usage: make_demo [options] FOLDER
Writes a synthetic recording of a dividing embryo into FOLDER: images NAME/ttt-zzz.jpg,
outlines NAME.roi and the truth about them NAME.truth.

  --preset NAME      demo, crowded, packed or noisy (demo); the options after it may
                     change it again
  --name NAME        the recording's name (demo)
  --seed N           another embryo for every number (1)
  --large            150 time points, 55 planes, 600 nuclei, 600 x 600 pixels;
                     the options after it may change them again
  --time-points N    1 to 1000 (12)
  --planes N         1 to 1000 (40)
  --nuclei N         1 to 2000, at the last time point (30)
  --width N          64 to 1000 pixels (400)
  --height N         64 to 1000 pixels (400)
  --missing RATE     share of the outlines that are missing, 0 to 1 (0.02)
  --false RATE       outlines of nothing, as a share of the others, 0 to 1 (0.02)
  --joined RATE      share of the nuclei that move into contact with a neighbour at
                     each time point, so that one outline joins both, 0 to 1 (0.03)
  --parts            the truth has the two outlines of each joined one (crowded, packed
                     and noisy have them anyway)
  --quality N        JPEG quality, 1 to 100 (85)
  --no-images        outlines and truth only
  --help             this text
)";

struct arguments {
    demo_options recording;
    std::string folder;
    demo_images images = demo_images::written;
    bool help = false;
};

template <class number>
bool parse(std::string_view text, number least, number most, number& value)
{
    number parsed{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (error != std::errc() || end != text.data() + text.size() || !(parsed >= least && parsed <= most))
        return false;
    value = parsed;
    return true;
}

// One word, which names a folder.
bool parse_name(std::string_view text, std::string& name)
{
    const bool printable = text.find_first_of("/ \t\n\v\f\r") == std::string_view::npos;
    if (text.empty() || text == "." || text == ".." || !printable)
        return false;
    name = text;
    return true;
}

void make_large(demo_options& o)
{
    o.time_points = 150;
    o.planes = 55;
    o.nuclei = 600;
    o.width = o.height = 600;
}

enum option_code {
    preset = 1,
    name,
    seed,
    large,
    time_points,
    planes,
    nuclei,
    width,
    height,
    missing,
    spurious,
    joined,
    parts,
    quality,
    no_images,
    help
};

constexpr option long_options[] = {
    {"preset", required_argument, nullptr, preset},
    {"name", required_argument, nullptr, name},
    {"seed", required_argument, nullptr, seed},
    {"large", no_argument, nullptr, large},
    {"time-points", required_argument, nullptr, time_points},
    {"planes", required_argument, nullptr, planes},
    {"nuclei", required_argument, nullptr, nuclei},
    {"width", required_argument, nullptr, width},
    {"height", required_argument, nullptr, height},
    {"missing", required_argument, nullptr, missing},
    {"false", required_argument, nullptr, spurious},
    {"joined", required_argument, nullptr, joined},
    {"parts", no_argument, nullptr, parts},
    {"quality", required_argument, nullptr, quality},
    {"no-images", no_argument, nullptr, no_images},
    {"help", no_argument, nullptr, help},
    {},
};

// False when the value is none for this option.
bool apply(int code, std::string_view value, arguments& a)
{
    demo_options& o = a.recording;
    switch (code) {
    case preset:
        return apply_preset(value, o);
    case name:
        return parse_name(value, o.name);
    case seed:
        return parse(value, std::uint64_t{0}, UINT64_MAX, o.seed);
    case large:
        make_large(o);
        return true;
    case time_points:
        return parse(value, 1, 1000, o.time_points);
    case planes:
        return parse(value, 1, 1000, o.planes);
    case nuclei:
        return parse(value, 1, 2000, o.nuclei);
    case width:
        return parse(value, 64, 1000, o.width);
    case height:
        return parse(value, 64, 1000, o.height);
    case missing:
        return parse(value, 0.0, 1.0, o.missing_rate);
    case spurious:
        return parse(value, 0.0, 1.0, o.false_rate);
    case joined:
        return parse(value, 0.0, 1.0, o.joined_rate);
    case parts:
        return o.crowding.truth_of_parts = true;
    case quality:
        return parse(value, 1, 100, o.jpeg_quality);
    case no_images:
        a.images = demo_images::left_out;
        return true;
    default:
        a.help = true;
        return true;
    }
}

std::nullopt_t refuse(const std::string& why)
{
    std::cerr << "make_demo: " << why << "; see make_demo --help" << std::endl;
    return std::nullopt;
}

// Nothing, after one line on standard error, when the arguments are wrong.
std::optional<arguments> parse_arguments(int argc, char** argv)
{
    arguments a;
    int index = 0;
    for (int code = 0; (code = getopt_long(argc, argv, ":", long_options, &index)) != -1;) {
        if (code == ':')
            return refuse(std::string(argv[optind - 1]) + " needs a value");
        if (code == '?')
            return refuse("unknown option " + std::string(argv[optind - 1]));
        const std::string value = optarg ? optarg : "";
        if (!apply(code, value, a))
            return refuse("no value for --" + std::string(long_options[index].name) + ": " + value);
    }
    if (a.help)
        return a;
    if (argc - optind != 1)
        return refuse(argc == optind ? "no folder given" : "more than one folder given");
    a.folder = argv[optind];
    return a;
}

// Only on a terminal; in a log file it would be hundreds of lines.
demo_progress progress_line()
{
    if (!isatty(STDERR_FILENO))
        return {};
    return [](int done, int total) {
        std::cerr << "\rwriting images " << done << '/' << total << (done == total ? "\n" : "") << std::flush;
    };
}

}    // namespace

int main(int argc, char** argv)
{
    const auto a = parse_arguments(argc, argv);
    if (!a)
        return exit_usage;
    if (a->help) {
        std::cout << usage;
        return EXIT_SUCCESS;
    }
    const demo_recording recording = make_recording(a->recording);
    return write_recording(recording, a->folder, a->images, progress_line()) ? EXIT_SUCCESS : EXIT_FAILURE;
}
