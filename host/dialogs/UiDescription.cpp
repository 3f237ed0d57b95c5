#include "host/dialogs/UiDescription.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace Galley {

namespace {

using Kind = WidgetSpec::Kind;

const std::map<std::string, Kind>& knownClasses() {
    static const std::map<std::string, Kind> classes = {
        {"QDialog", Kind::panel},       {"QWidget", Kind::panel},
        {"QFrame", Kind::panel},        {"QGroupBox", Kind::panel},
        {"QLabel", Kind::label},        {"QLineEdit", Kind::editText},
        {"QPushButton", Kind::button},  {"QProgressBar", Kind::progressBar},
        {"QTreeView", Kind::treeView},  {"QTreeWidget", Kind::treeView},
        {"QListWidget", Kind::listBox}, {"QListView", Kind::listBox},
    };
    return classes;
}

bool isInteractive(Kind kind) {
    return kind != Kind::panel && kind != Kind::label;
}

std::string attribute(xmlNode* node, const char* name) {
    xmlChar* value = xmlGetProp(node, reinterpret_cast<const xmlChar*>(name));
    std::string text = value ? reinterpret_cast<const char*>(value) : "";
    xmlFree(value);
    return text;
}

bool named(xmlNode* node, const char* name) {
    return node->type == XML_ELEMENT_NODE &&
           xmlStrcmp(node->name, reinterpret_cast<const xmlChar*>(name)) == 0;
}

std::string contentOf(xmlNode* node) {
    xmlChar* value = xmlNodeGetContent(node);
    std::string text = value ? reinterpret_cast<const char*>(value) : "";
    xmlFree(value);
    return text;
}

class Reader {
public:
    explicit Reader(std::string file) : file_(std::move(file)) {}

    [[noreturn]] void fail(xmlNode* node, const std::string& why) const {
        std::string message = "dialog description ";
        message += file_;
        if (node) {
            message += ':';
            message += std::to_string(xmlGetLineNo(node));
        }
        message += ": ";
        throw std::runtime_error(message += why);
    }

    WidgetSpec widget(xmlNode* node, bool topLevel) const {
        WidgetSpec spec;
        spec.qtClass = attribute(node, "class");
        spec.name = attribute(node, "name");
        auto known = knownClasses().find(spec.qtClass);
        if (known == knownClasses().end())
            fail(node, "widget \"" + spec.name + "\" has the class \"" + spec.qtClass +
                           "\", which Galley's dialogs do not know");
        spec.kind = known->second;
        for (xmlNode* child = node->children; child; child = child->next) {
            if (named(child, "property"))
                property(child, spec);
            else if (named(child, "widget"))
                spec.children.push_back(widget(child, false));
            else if (named(child, "layout"))
                layout(child, spec);
        }
        if (spec.id == kInvalidWidgetID && (topLevel || isInteractive(spec.kind)))
            fail(node,
                 "widget \"" + spec.name + "\" (" + spec.qtClass + ") has no widgetID property");
        return spec;
    }

private:
    void layout(xmlNode* node, WidgetSpec& parent) const {
        for (xmlNode* item = node->children; item; item = item->next) {
            if (!named(item, "item"))
                continue;
            for (xmlNode* child = item->children; child; child = child->next) {
                if (named(child, "widget"))
                    parent.children.push_back(widget(child, false));
                else if (named(child, "layout"))
                    layout(child, parent);
            }
        }
    }

    void property(xmlNode* node, WidgetSpec& spec) const {
        const std::string name = attribute(node, "name");
        xmlNode* value = node->children;
        while (value && value->type != XML_ELEMENT_NODE)
            value = value->next;
        if (!value)
            return;
        const std::string text = contentOf(value);
        if (name == "widgetID") {
            try {
                std::size_t used = 0;
                const unsigned long id = std::stoul(text, &used, 0);
                if (used != text.size() || id == 0 || id > 0xFFFFFFFFul)
                    throw std::invalid_argument(text);
                spec.id = static_cast<WidgetID>(id);
            } catch (const std::exception&) {
                fail(node, "widget \"" + spec.name + "\" has the widgetID \"" + text +
                               "\", which is not a number");
            }
        } else if (name == "text" || name == "windowTitle" || name == "title") {
            spec.text = text;
        } else if (name == "accessibleName") {
            spec.accessibleName = text;
        } else if (name == "default") {
            spec.isDefault = text == "true";
        } else if (name == "enabled") {
            spec.enabled = text != "false";
        } else if (name == "minimumSize") {
            for (xmlNode* part = value->children; part; part = part->next)
                if (named(part, "width"))
                    spec.minimumWidth = std::atoi(contentOf(part).c_str());
        }
    }

    std::string file_;
};

struct DocFree {
    void operator()(xmlDoc* doc) const { xmlFreeDoc(doc); }
};

} // namespace

WidgetSpec parseUiDescription(const std::string& xml, const std::string& nameForMessages) {
    Reader reader(nameForMessages);
    std::unique_ptr<xmlDoc, DocFree> doc(
        xmlReadMemory(xml.data(), static_cast<int>(xml.size()), nameForMessages.c_str(), nullptr,
                      XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    if (!doc)
        reader.fail(nullptr, "not well-formed XML");
    xmlNode* root = xmlDocGetRootElement(doc.get());
    if (!root || !named(root, "ui"))
        reader.fail(root, "not a Qt Designer description (no <ui> root)");
    for (xmlNode* child = root->children; child; child = child->next)
        if (named(child, "widget"))
            return reader.widget(child, true);
    reader.fail(root, "it describes no widget");
}

WidgetSpec readUiDescription(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw std::runtime_error("dialog description " + path + " cannot be read");
    std::ostringstream content;
    content << in.rdbuf();
    return parseUiDescription(content.str(), path);
}

} // namespace Galley
