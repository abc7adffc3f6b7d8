// orvtool - what can be done with a recording without a window.
#include "orvtool.h"

#include "error_line.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>

namespace {

constexpr const tool_command* commands[] = {&command_check,  &command_compare, &command_export,
                                            &command_import, &command_info,    &command_score,
                                            &command_units};

void print_help()
{
    std::cout
        << "Usage: orvtool COMMAND ...\nWorks on recordings without a window. orvtool COMMAND --help tells "
           "more.\n\n";
    for (const tool_command* const c : commands)
        std::cout << "  " << c->name << std::string(10 - std::string(c->name).size(), ' ') << c->purpose
                  << '\n';
}

// Nothing, after one line on standard error, when the arguments are wrong.
std::optional<tool_arguments> parse(const tool_command& command, std::span<char* const> words)
{
    tool_arguments found;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string word = words[i];
        if (!word.starts_with("--")) {
            found.files.push_back(word);
            continue;
        }
        const auto equals = std::min(word.find('='), word.size());
        const std::string name = word.substr(2, equals - 2);
        const bool has_value = std::ranges::count(command.valued, name) > 0;
        const bool is_flag = name == "help" || std::ranges::count(command.flags, name) > 0;
        if (!has_value && (!is_flag || equals < word.size()))
            return refuse_use("unknown option " + word), std::nullopt;
        if (has_value && equals == word.size() && i + 1 == words.size())
            return refuse_use(word + " needs a value"), std::nullopt;
        std::string& value = found.options[name];
        if (has_value)
            value = equals < word.size() ? word.substr(equals + 1) : words[++i];
    }
    if (!found.has("help") && found.files.size() != command.files)
        return refuse_use(std::string(command.name) + " takes " + std::to_string(command.files) +
                          (command.files == 1 ? " file" : " files")),
               std::nullopt;
    return found;
}

int run(std::span<char* const> words)
{
    if (words.empty())
        return refuse_use("no command");
    const std::string name = words[0];
    if (name == "--help") {
        print_help();
        return exit_done;
    }
    const auto command = std::ranges::find(commands, name, &tool_command::name);
    if (command == std::end(commands))
        return refuse_use("no command " + name);
    const auto arguments = parse(**command, words.subspan(1));
    if (!arguments)
        return exit_refused;
    if (!arguments->has("help"))
        return (*command)->run(*arguments);
    std::cout << (*command)->usage;
    return exit_done;
}

}    // namespace

std::string tool_arguments::value(const std::string& option, const std::string& otherwise) const
{
    const auto found = options.find(option);
    return found == options.end() ? otherwise : found->second;
}

int refuse_use(const std::string& why)
{
    error_line("orvtool: ", why, "; see orvtool --help");
    return exit_refused;
}

std::optional<std::string> one_of(const tool_arguments& arguments, const std::string& option,
                                  std::span<const char* const> words)
{
    const std::string value = arguments.value(option, words.front());
    if (std::ranges::count(words, value) > 0)
        return value;
    refuse_use("no value for --" + option + ": " + value);
    return std::nullopt;
}

std::string image_folder(const tool_arguments& arguments, const std::string& dataset)
{
    const char* const set = std::getenv("ORVBROWSER_IMAGE_ROOT");
    std::string root = arguments.value("image-root", set && *set ? set : "/image/");
    if (!root.ends_with('/'))
        root += '/';
    return root + dataset + '/';
}

std::string beside(const std::string& roi_file, const std::string& extension)
{
    return std::filesystem::path(roi_file).replace_extension(extension).string();
}

int main(int argc, char** argv)
{
    int status = exit_refused;
    try {
        status = run(std::span(argv, static_cast<std::size_t>(argc)).subspan(argc > 0 ? 1 : 0));
    } catch (const std::exception& e) {
        error_line("orvtool: ", e.what());
    }
    if (std::cout.flush())
        return status;
    error_line("orvtool: Cannot write to standard output");
    return exit_refused;
}
