// edit_scope.h - one thing that a person does: what is edited while it lives is one step.
//
// A scope inside another joins its step, handlers that run meanwhile included. When the recording is
// opened or closed the step ends there and then.
#pragma once
#include <memory>
#include <string>

class curation;
struct open_step;

class EditScope {
public:
    // The title of the step: what is done, and to which units ("Merge A and B").
    EditScope(curation& model, const char* what, const std::string& a = {}, const std::string& b = {});
    ~EditScope();
    EditScope(const EditScope&) = delete;
    EditScope& operator=(const EditScope&) = delete;

protected:
    std::shared_ptr<open_step> _step;
};

// The same for what is made by a rule, not decided unit by unit: a person has not looked at the units that it
// changes.
class MachineScope : public EditScope {
public:
    MachineScope(curation& model, const char* what, const std::string& a = {});
    ~MachineScope();
};
