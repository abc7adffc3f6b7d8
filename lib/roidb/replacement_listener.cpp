#include "replacement_listener.h"

#include <vector>

namespace {

std::vector<replacement_listener*>& listeners()
{
    static std::vector<replacement_listener*> all;
    return all;
}

}    // namespace

replacement_listener::replacement_listener() { listeners().push_back(this); }

replacement_listener::~replacement_listener() { std::erase(listeners(), this); }

void tell_before_replacing(const std::string& target, const std::string& content)
{
    for (std::size_t i = 0; i < listeners().size(); ++i)
        listeners()[i]->before_replacing(target, content);
}

void tell_after_replacing(const std::string& target, bool is_replaced)
{
    for (std::size_t i = 0; i < listeners().size(); ++i)
        listeners()[i]->after_replacing(target, is_replaced);
}
