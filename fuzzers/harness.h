// harness.h - what the fuzz targets share: the input as a file or a stream, and how a broken promise is told.
#pragma once
#include "../tests/support/temp_folder.h"
#include "roi_reader.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>

inline void require(bool holds, const char* promise)
{
    if (holds)
        return;
    std::fprintf(stderr, "Broken: %s\n", promise);
    std::abort();
}

// The folder of this process. What the readers say about bad input is not of interest here.
inline const temp_folder& scratch()
{
    static const temp_folder folder;
    static const bool is_silent = std::cerr.rdbuf(nullptr) && std::cout.rdbuf(nullptr);
    (void)is_silent;
    return folder;
}

// Writes the input to a file in the folder of this process and returns its path.
inline std::string input_file(const std::uint8_t* data, std::size_t size, const char* name = "input")
{
    return scratch().with(name, std::string(reinterpret_cast<const char*>(data), size));
}

// A stream that reads a text, which must outlive it.
inline auto stream_of(std::string_view text)
{
    const auto close = [](std::FILE* stream) { std::fclose(stream); };
    void* const bytes = const_cast<char*>(text.data());    // opened for reading only
    return std::unique_ptr<std::FILE, decltype(close)>(::fmemopen(bytes, text.size(), "r"));
}
