// making_dialog.h - what is asked before units or links are made again.
#pragma once
#include "making.h"

#include <QString>
#include <QWidget>

#include <optional>

// How many there are, and would be.
struct making_counts {
    struct outcome {
        std::size_t after = 0;
        std::size_t links_gone = 0;    // those of units that go
    };
    std::size_t now = 0;
    outcome all_anew;
    outcome only_free;
    outcome untouched;
};

// "All anew", "Only ..." or "Untouched"; nothing for Cancel. `what`: "units" or "links".
[[nodiscard]] std::optional<spared> ask_what_to_spare(QWidget* parent, const QString& caption,
                                                      const QString& what, const QString& only,
                                                      const making_counts& counts);
