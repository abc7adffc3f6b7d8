#include "error_line.h"

#include <algorithm>
#include <iostream>
#include <utility>
#include <vector>

namespace {

std::vector<error_listener*>& listeners()
{
    static std::vector<error_listener*> all;
    return all;
}

}    // namespace

void write_error_line(const std::string& line)
{
    std::cerr << line << std::endl;
    const std::vector<error_listener*> present = listeners();    // one may go while it hears
    for (error_listener* const listener : present)
        if (std::ranges::find(listeners(), listener) != listeners().end())
            listener->_hear(line);
}

error_listener::error_listener(std::function<void(const std::string&)> hear) : _hear(std::move(hear))
{
    listeners().push_back(this);
}

error_listener::~error_listener() { std::erase(listeners(), this); }
