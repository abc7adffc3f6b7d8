// making_dialog.h - what is asked before units or links are made again.
#pragma once
#include "making.h"

#include <QString>
#include <QWidget>

#include <optional>

// How many there are, and would be.
struct making_counts {
    std::size_t now = 0;
    std::size_t all_anew = 0;
    std::size_t only_free = 0;
    std::size_t untouched = 0;
};

// "All anew", "Only ..." or "Untouched"; nothing for Cancel. `what`: "units" or "links".
[[nodiscard]] std::optional<spared> ask_what_to_spare(QWidget* parent, const QString& caption,
                                                      const QString& what, const QString& only,
                                                      const making_counts& counts);
