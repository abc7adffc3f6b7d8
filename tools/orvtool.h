// orvtool.h - what the commands of orvtool share: their arguments and their table.
#pragma once
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

constexpr int exit_done = 0;
constexpr int exit_different = 1;    // compare: there are differences; check: findings
constexpr int exit_refused = 2;      // wrong use, or a file that cannot be read or written

// What stands behind the name of a command.
struct tool_arguments {
    std::vector<std::string> files;
    std::map<std::string, std::string> options;    // without the dashes; a flag has no value

    [[nodiscard]] bool has(const std::string& option) const { return options.contains(option); }
    [[nodiscard]] std::string value(const std::string& option, const std::string& otherwise) const;
};

struct tool_command {
    const char* name;
    const char* purpose;                    // one line
    const char* usage;                      // all of --help
    std::span<const char* const> valued;    // options with a value
    std::span<const char* const> flags;     // options without
    std::size_t files;                      // how many it takes
    int (*run)(const tool_arguments&);      // the exit state
};

// One file each, orvtool_<name>.cpp.
extern const tool_command command_check;
extern const tool_command command_compare;
extern const tool_command command_export;
extern const tool_command command_import;
extern const tool_command command_info;
extern const tool_command command_score;
extern const tool_command command_units;

// One line on standard error: what is wrong, and where help is. Answers exit_refused.
int refuse_use(const std::string& why);

// The value of an option that takes one of a few words; nothing, after one line, when it is none of them.
[[nodiscard]] std::optional<std::string> one_of(const tool_arguments& arguments, const std::string& option,
                                                std::span<const char* const> words);

// The folder of the recording's images below --image-root, else below ORVBROWSER_IMAGE_ROOT, else /image/.
[[nodiscard]] std::string image_folder(const tool_arguments& arguments, const std::string& dataset);

// "/a/b.roi" and ".truth" give "/a/b.truth".
[[nodiscard]] std::string beside(const std::string& roi_file, const std::string& extension);
