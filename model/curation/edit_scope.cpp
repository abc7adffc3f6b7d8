#include "edit_scope.h"

#include "curation.h"
#include "open_step.h"

namespace {

std::string title_of(const char* what, const std::string& a, const std::string& b)
{
    std::string title = what;
    if (!a.empty())
        title += ' ' + a;
    if (!b.empty())
        title += " and " + b;
    return title;
}

}    // namespace

EditScope::EditScope(curation& model, const char* what, const std::string& a, const std::string& b)
{
    if (!model.m_open_step)
        model.m_open_step = std::make_shared<open_step>(&model, title_of(what, a, b), model.chosen());
    _step = model.m_open_step;
    ++_step->scopes;
}

EditScope::~EditScope()
{
    if (--_step->scopes == 0 && _step->model)
        _step->model->end_step();
}

MachineScope::MachineScope(curation& model, const char* what, const std::string& a)
    : EditScope(model, what, a)
{
    ++_step->machine_scopes;
}

MachineScope::~MachineScope() { --_step->machine_scopes; }
