// awaited_click.h - corrections that work on the chosen nucleus and the one that is clicked next, beside the
// window's own modes.
#pragma once
#include "quick_edits.h"

#include <QString>

#include <string>

class AwaitedClick {
public:
    AwaitedClick(ORVBrowser& window, QuickEdits& edits) : _window(window), _edits(edits) {}

    [[nodiscard]] bool is_armed() const noexcept { return _what != kind::nothing; }
    [[nodiscard]] QString text() const;    // what is waited for, and how to end it; "" for nothing

    // Arms what this key stands for, or puts it away; no mode of the window stays armed beside it. False for
    // any other key.
    [[nodiscard]] bool take_key(int key);
    void put_away() noexcept { _what = kind::nothing; }
    void take_click(const std::string& roi);    // on an ROI

private:
    enum class kind { nothing, unlink, gap, swap };

    [[nodiscard]] static kind kind_of(int key) noexcept;

    ORVBrowser& _window;
    QuickEdits& _edits;
    kind _what = kind::nothing;
};
