// color_file.h - the file that the colours of the ROI states are read from.
//
// Words in pairs: a state and a colour. A state is any word; the keywords that it contains make the index
// into the table of colours (roi_colors.h).
#pragma once
#include <QColor>
#include <QString>

#include <span>

// Fills the table: white where the file names no colour, an invalid colour where it names what is none.
// False, and the table as it was, when the file cannot be opened.
[[nodiscard]] bool read_color_file(const QString& filename, std::span<QColor, 128> colors);
