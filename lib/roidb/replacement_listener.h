// replacement_listener.h - who must know when a file is replaced as a whole (replacing_file).
#pragma once
#include <string>

class replacement_listener {
public:
    replacement_listener();
    virtual ~replacement_listener();
    replacement_listener(const replacement_listener&) = delete;
    replacement_listener& operator=(const replacement_listener&) = delete;

    // The new content is complete, and lies in the file `content`; `target`, which has no symbolic link in
    // it, is still as it was.
    virtual void before_replacing(const std::string& target, const std::string& content) = 0;

    // It has been replaced, or not.
    virtual void after_replacing(const std::string& target, bool is_replaced) = 0;
};

// For replacing_file. On the calling thread, which is that of the listeners.
void tell_before_replacing(const std::string& target, const std::string& content);
void tell_after_replacing(const std::string& target, bool is_replaced);
