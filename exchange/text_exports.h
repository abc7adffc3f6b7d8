// text_exports.h - the formats that hold numbers and no pixels, see export.h.
#pragma once
#include "export_graph.h"

#include <filesystem>

// Each writes its file or its folder.
[[nodiscard]] outcome write_geff(const export_request& request, const std::filesystem::path& folder,
                                 loss_report& report, const run_callbacks& callbacks);
[[nodiscard]] outcome write_trackmate(const export_request& request, const std::filesystem::path& file,
                                      loss_report& report, const run_callbacks& callbacks);
[[nodiscard]] outcome write_csv(const export_request& request, const std::filesystem::path& folder,
                                loss_report& report, const run_callbacks& callbacks);
