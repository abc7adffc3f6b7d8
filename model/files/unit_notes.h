// unit_notes.h - what a person noted of units, as lines of a lineage file: "EDITED head", "REVIEWED head",
// "DISMISSED kind head other", "GAP earlier later", "CALLED head name".
#pragma once
#include "lineage_file.h"

#include <set>
#include <string>
#include <utility>
#include <vector>

using unit_notes = std::set<std::string>;

[[nodiscard]] unit_notes notes_of(const lineage& units);

// Puts the notes whose units are in the lineage, and dismissals of any ROI, in their places there.
void put_notes(const unit_notes& notes, lineage& units);

// The note, about the unit `to` where it was about `from`; "" when it has no unit any more (`to` is "").
[[nodiscard]] std::string about_another(const std::string& note, const std::string& from,
                                        const std::string& to);

// The notes of a kind ("CALLED"), as the word that follows it and the rest; with `first`, those where it is
// this word.
[[nodiscard]] std::vector<std::pair<std::string, std::string>>
notes_of_kind(const unit_notes& notes, const std::string& kind, const std::string& first = {});
