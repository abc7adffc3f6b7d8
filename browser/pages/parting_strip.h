// parting_strip.h - a strip of small pictures of a unit's planes, with the sides that a cut gives them.
#pragma once
#include "unit_parting.h"

#include <QWidget>

#include <optional>

class PartingStrip : public QWidget {
public:
    explicit PartingStrip(QWidget* parent) : QWidget(parent) {}

    void show_parting(const std::optional<unit_parting>& parting);    // nothing: an empty strip

protected:
    void paintEvent(QPaintEvent* e) override;

private:
    std::optional<unit_parting> _parting;
};
