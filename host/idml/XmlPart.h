#pragma once

#include <libxml/tree.h>

#include <memory>
#include <optional>
#include <string>

namespace Galley {

struct XmlDocFree {
    void operator()(xmlDoc* doc) const { xmlFreeDoc(doc); }
};
using XmlDocPtr = std::unique_ptr<xmlDoc, XmlDocFree>;

// Parses one part of a package. Never reaches the network, never expands entities, and
// keeps libxml2's nesting limit, so a hostile part fails with a message instead of a hang.
// Throws IdmlError naming `file` and `part`.
XmlDocPtr parseXmlPart(const std::string& file, const std::string& part, const std::string& data);

// Serialises a part that was changed, with its XML declaration, as UTF-8.
std::string serializeXmlPart(xmlDoc* doc);

// Small readers for element trees.
std::string nodeName(const xmlNode* node);
bool isElement(const xmlNode* node, const char* name);
std::optional<std::string> attribute(const xmlNode* node, const char* name);
std::string textContent(const xmlNode* node);
const xmlNode* firstChildElement(const xmlNode* node, const char* name);
// An IDML property is written either as an attribute of the element or as a child of its
// Properties element; the attribute wins when both are present.
std::optional<std::string> property(const xmlNode* node, const char* name);

} // namespace Galley
