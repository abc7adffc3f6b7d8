// say_finding.h - what the message line says of a walk through what looks wrong.
#pragma once
#include "orvbrowser.h"

#include <optional>
#include <string>

enum class walk { doubtful, dead_end, unlinked };

// The unit that was found, or that there is none.
void say_finding(ORVBrowser& window, walk what, const std::optional<std::string>& unit);
