#include "host/batch/BatchScript.h"

#include <map>
#include <stdexcept>

namespace Galley {

namespace {

using Kind = BatchAction::Kind;

struct Verb {
    Kind kind;
    bool takesArgument;
};

const std::map<std::string, Verb>& verbs() {
    static const std::map<std::string, Verb> table = {
        {"select", {Kind::select, true}},
        {"deselect", {Kind::deselect, false}},
        {"press", {Kind::press, true}},
        {"pick", {Kind::pick, true}},
        {"double-click", {Kind::doubleClick, true}},
        {"menu", {Kind::menu, true}},
        {"wait", {Kind::wait, false}},
        {"save-as", {Kind::saveAs, true}},
    };
    return table;
}

} // namespace

std::string BatchAction::describe() const {
    for (const auto& [word, verb] : verbs())
        if (verb.kind == kind)
            return argument.empty() ? word : word + " " + argument;
    return "?";
}

std::vector<BatchAction> parseBatchActions(const std::vector<std::string>& words) {
    std::vector<BatchAction> actions;
    for (std::size_t i = 0; i < words.size(); ++i) {
        auto found = verbs().find(words[i]);
        if (found == verbs().end())
            throw std::invalid_argument("unknown action \"" + words[i] +
                                        "\" (actions: select, deselect, press, pick, double-click, "
                                        "menu, wait, save-as)");
        BatchAction action;
        action.kind = found->second.kind;
        if (found->second.takesArgument) {
            if (i + 1 >= words.size() || words[i + 1].empty())
                throw std::invalid_argument("action \"" + words[i] + "\" needs an argument");
            action.argument = words[++i];
        }
        actions.push_back(action);
    }
    return actions;
}

} // namespace Galley
