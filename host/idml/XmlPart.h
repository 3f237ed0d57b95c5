#pragma once

#include <libxml/tree.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace Galley {

struct XmlDocFree {
    void operator()(xmlDoc* doc) const { xmlFreeDoc(doc); }
};
using XmlDocPtr = std::unique_ptr<xmlDoc, XmlDocFree>;

// How many nodes (elements, attributes, text, comments, processing instructions) the parts
// of one package may hold. Bytes alone do not bound memory: four bytes of "<a/>" cost a
// tree node of well over a hundred bytes.
struct NodeBudget {
    std::size_t maxPartNodes = 0;
    std::size_t maxTotalNodes = 0;
    std::size_t usedNodes = 0; // by the parts parsed so far
};

// IDML elements carry a few dozen attributes; far more is an attack on the parser.
inline constexpr std::size_t kMaxAttributesPerElement = 1000;

// Parses one part of a package. Never reaches the network and refuses any document type
// declaration, so no entity can be declared and none is ever expanded. With a budget, the
// parse stops as soon as the part or the package holds too many nodes; an element with more
// than kMaxAttributesPerElement attributes is refused before parsing. Keeps libxml2's
// nesting limit, so a hostile part fails with a message instead of a hang.
// Throws IdmlError naming `file` and `part`.
XmlDocPtr parseXmlPart(const std::string& file, const std::string& part, const std::string& data,
                       NodeBudget* budget = nullptr);

// Serialises a part that was changed, with its XML declaration, as UTF-8.
std::string serializeXmlPart(xmlDoc* doc);

// Small readers for element trees. Values are read as the parser left them: text and
// character data only, never through an entity.
std::string nodeName(const xmlNode* node);
bool isElement(const xmlNode* node, const char* name);
std::optional<std::string> attribute(const xmlNode* node, const char* name);
std::string textContent(const xmlNode* node);
const xmlNode* firstChildElement(const xmlNode* node, const char* name);
// An IDML property is written either as an attribute of the element or as a child of its
// Properties element; the attribute wins when both are present.
std::optional<std::string> property(const xmlNode* node, const char* name);

// Replaces an element's children with one text node.
void setTextContent(xmlNode* element, const std::string& text);
// Writes a property where the element already keeps it (attribute or Properties child); a
// new AppliedFont goes into Properties and a new FontStyle into an attribute, as IDML
// writers do.
void setProperty(xmlNode* element, const char* name, const std::string& value);

} // namespace Galley
