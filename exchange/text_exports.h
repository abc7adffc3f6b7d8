// text_exports.h - the formats that hold numbers and no pixels, see export.h.
#pragma once
#include "export_graph.h"

#include <filesystem>

// Each writes its file or its folder. False after one line on standard error.
[[nodiscard]] bool write_geff(const export_request& request, const std::filesystem::path& folder,
                              loss_report& report);
[[nodiscard]] bool write_trackmate(const export_request& request, const std::filesystem::path& file,
                                   loss_report& report);
[[nodiscard]] bool write_csv(const export_request& request, const std::filesystem::path& folder,
                             loss_report& report);
