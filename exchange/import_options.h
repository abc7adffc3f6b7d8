// import_options.h - what a person may ask of an import, as text.
#pragma once
#include "import.h"

#include <span>
#include <string>

struct import_option {
    const char* name;    // "range": low:high or auto; "bin": N; "crop": x,y,width,height; "times", "planes":
                         // first:last; "pixel", "plane": micrometres; "interval": seconds

    // False, and the request as it was, when the text is no value of it.
    bool (*read)(const std::string& text, import_request& request);
};

[[nodiscard]] std::span<const import_option> import_options();
