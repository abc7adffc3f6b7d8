// input_kinds.h - kinds of keys and controls that further input tells apart.
#pragma once

class QEvent;
class QWidget;

// True iff what is typed goes into a field.
[[nodiscard]] bool is_typing();

// Keys that only look: what was pointed out stays so.
[[nodiscard]] bool is_looking(int key);

// True iff a key is held that does not step: it has done what it does.
[[nodiscard]] bool is_idle_repeat(const QEvent* e);

[[nodiscard]] bool arms_a_mode(int key);

// Buttons and lists do something with the recording; those of the page "View" only look.
[[nodiscard]] bool acts(const QWidget* control);
