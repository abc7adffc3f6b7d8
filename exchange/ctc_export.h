// ctc_export.h - see export.h.
#pragma once
#include "export_graph.h"

#include <filesystem>

// Writes masks and table into the folder, named `prefix`TTT.tif and `table`.
[[nodiscard]] outcome write_ctc(const export_request& request, const std::filesystem::path& folder,
                                const std::string& prefix, const std::string& table, loss_report& report,
                                const run_callbacks& callbacks);
