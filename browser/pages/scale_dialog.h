// scale_dialog.h - the sizes and focal planes of the recording.
#pragma once
#include "orvbrowser.h"

// Lets a person change them; a step when anything was changed.
void edit_scale(ORVBrowser& window);
