// overwrite.h - files written in place, where none can be put beside them.
//
// Until the new content is complete and on disk, a copy of the old one lies in the person's state
// folder: $XDG_STATE_HOME/orvbrowser, else ~/.local/state/orvbrowser.
#pragma once
#include <string>

// The state folder, made if need be, with its last "/". Empty when there is none to be had.
std::string state_folder();

// Makes the content of `from`, a file open for reading, that of the file `target`, which keeps its owner
// and its rights. When that fails: false, the reason in errno, and `target` is as it was, or one line
// on standard error names the copy of what it was.
bool overwrite_keeping_copy(int from, const std::string& target);
