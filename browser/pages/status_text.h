// status_text.h - what the message line says of modes, edits and what lies under the pointer.
#pragma once
#include "orvbrowser.h"

#include <QString>

// What the armed mode waits for; "" when none is armed.
[[nodiscard]] QString text_of_mode(ORVBrowser& window);

// What a step has done, from its title; units by their numbers and names.
[[nodiscard]] QString text_of_step(ORVBrowser& window, const std::string& title);

// That a unit is the chosen nucleus now; that a ROI is in none. That nothing is chosen.
[[nodiscard]] QString text_of_choice(ORVBrowser& window, const std::string& unit);
[[nodiscard]] QString text_of_no_unit();
[[nodiscard]] QString text_of_no_choice();

// Why a cut was not made.
[[nodiscard]] QString text_of_failed_split(const std::string& chosen, const std::set<std::string>& parents);

// Why a click in this mode has changed nothing; "" when that needs no word.
[[nodiscard]] QString text_of_refusal(ORVBrowser& window, ORVBrowser::armed mode, const std::string& clicked);

// Place, grey value, ROI, unit and its relatives at a picture pixel.
[[nodiscard]] QString text_of_pixel(ORVBrowser& window, QPoint at);
