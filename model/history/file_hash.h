// file_hash.h - files told apart by their content, and copies of them put aside.
#pragma once
#include <optional>
#include <string>

// SHA-256 of the content, in hexadecimal digits; "" when there is no such file or it cannot be read.
[[nodiscard]] std::string hash_of_file(const std::string& filename);
[[nodiscard]] std::string hash_of_text(const std::string& text);

// The content of a file; "" when there is none, nothing when it cannot be read.
[[nodiscard]] std::optional<std::string> content_of(const std::string& filename);

// UTC as part of a file name: "20261121T143210Z".
[[nodiscard]] std::string time_in_name();

// The name and the suffix, with a number between them where there is such a file already.
[[nodiscard]] std::string free_name(const std::string& name, const std::string& suffix = {});

// Compresses the file beside itself, as <filename>.<UTC>.gz, and removes it unless it is to stay. False, and
// the file is as it was, when that fails.
bool put_aside_compressed(const std::string& filename, bool stays);
