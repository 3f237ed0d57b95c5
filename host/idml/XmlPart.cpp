#include "host/idml/XmlPart.h"

#include "host/idml/IdmlError.h"

#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include <algorithm>
#include <cstring>
#include <string_view>

namespace Galley {

namespace {

struct ParserCtxtFree {
    void operator()(xmlParserCtxt* ctxt) const { xmlFreeParserCtxt(ctxt); }
};

std::string describe(const xmlError* error) {
    if (!error || !error->message)
        return "malformed XML";
    std::string message = error->message;
    while (!message.empty() && (message.back() == '\n' || message.back() == ' '))
        message.pop_back();
    return "malformed XML at line " + std::to_string(error->line) + ": " + message;
}

// Sits between libxml2's parser and its tree builder: counts every node before it is
// built and stops the parser at the first thing a package may not hold. libxml2 hands
// each callback the parser context, whose _private points here.
struct ParseGuard {
    xmlSAXHandler tree; // libxml2's own tree-building callbacks
    NodeBudget* budget = nullptr;
    std::size_t partNodes = 0;
    std::string refusal; // why the parse was stopped; empty while it runs

    static ParseGuard& of(void* context) {
        return *static_cast<ParseGuard*>(static_cast<xmlParserCtxt*>(context)->_private);
    }

    // False once the parse has been stopped.
    bool count(void* context, std::size_t nodes) {
        if (!refusal.empty())
            return false;
        partNodes += nodes;
        if (!budget)
            return true;
        budget->usedNodes += nodes;
        if (partNodes > budget->maxPartNodes)
            stop(context,
                 "part holds more than " + std::to_string(budget->maxPartNodes) + " XML nodes");
        else if (budget->usedNodes > budget->maxTotalNodes)
            stop(context,
                 "package holds more than " + std::to_string(budget->maxTotalNodes) + " XML nodes");
        return refusal.empty();
    }

    void stop(void* context, std::string why) {
        refusal = std::move(why);
        xmlStopParser(static_cast<xmlParserCtxt*>(context));
    }

    static void startElement(void* context, const xmlChar* local, const xmlChar* prefix,
                             const xmlChar* uri, int namespaces, const xmlChar** namespaceList,
                             int attributes, int defaulted, const xmlChar** attributeList) {
        ParseGuard& guard = of(context);
        if (guard.count(context, 1 + static_cast<std::size_t>(namespaces + attributes)))
            guard.tree.startElementNs(context, local, prefix, uri, namespaces, namespaceList,
                                      attributes, defaulted, attributeList);
    }

    // Adjacent text joins one node; a new node starts only after something else.
    static void characters(void* context, const xmlChar* text, int length) {
        ParseGuard& guard = of(context);
        const xmlNode* parent = static_cast<xmlParserCtxt*>(context)->node;
        bool joins = parent && parent->last && parent->last->type == XML_TEXT_NODE;
        if (guard.count(context, joins ? 0 : 1))
            guard.tree.characters(context, text, length);
    }

    static void cdataBlock(void* context, const xmlChar* text, int length) {
        ParseGuard& guard = of(context);
        if (guard.count(context, 1))
            guard.tree.cdataBlock(context, text, length);
    }

    static void comment(void* context, const xmlChar* text) {
        ParseGuard& guard = of(context);
        if (guard.count(context, 1))
            guard.tree.comment(context, text);
    }

    static void processingInstruction(void* context, const xmlChar* target, const xmlChar* data) {
        ParseGuard& guard = of(context);
        if (guard.count(context, 1))
            guard.tree.processingInstruction(context, target, data);
    }

    // IDML parts never carry a document type declaration. Refusing it before its internal
    // subset is read means no entity is ever declared, so none can be expanded later.
    static void internalSubset(void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
        of(context).stop(context, "document type declarations are not accepted");
    }

    void install(xmlParserCtxt* ctxt) {
        tree = *ctxt->sax;
        ctxt->_private = this;
        ctxt->sax->startElementNs = startElement;
        ctxt->sax->characters = characters;
        ctxt->sax->ignorableWhitespace = characters;
        ctxt->sax->cdataBlock = cdataBlock;
        ctxt->sax->comment = comment;
        ctxt->sax->processingInstruction = processingInstruction;
        ctxt->sax->internalSubset = internalSubset;
    }
};

// libxml2 checks each attribute of an element against all earlier ones, so an element with
// tens of thousands of attributes costs seconds before any callback could count them. This
// linear pass over the markup refuses such an element before the parser sees it.
std::optional<std::size_t> elementWithTooManyAttributes(std::string_view data, std::size_t limit) {
    auto skipPast = [&](std::size_t from, std::string_view end) {
        std::size_t found = data.find(end, from);
        return found == std::string_view::npos ? data.size() : found + end.size();
    };
    std::size_t i = 0;
    while ((i = data.find('<', i)) != std::string_view::npos) {
        std::string_view rest = data.substr(i);
        if (rest.starts_with("<!--")) {
            i = skipPast(i + 4, "-->");
        } else if (rest.starts_with("<![CDATA[")) {
            i = skipPast(i + 9, "]]>");
        } else if (rest.starts_with("<?")) {
            i = skipPast(i + 2, "?>");
        } else {
            std::size_t attributes = 0;
            char quote = 0;
            for (++i; i < data.size(); ++i) {
                const char c = data[i];
                if (quote) {
                    quote = c == quote ? 0 : quote;
                } else if (c == '"' || c == '\'') {
                    quote = c;
                } else if (c == '=' && ++attributes > limit) {
                    return static_cast<std::size_t>(
                               std::count(data.begin(), data.begin() + i, '\n')) +
                           1;
                } else if (c == '>') {
                    break;
                }
            }
        }
    }
    return std::nullopt;
}

// The text of `first` and its following siblings that are text or character data.
void appendText(const xmlNode* first, std::string& out) {
    for (const xmlNode* child = first; child; child = child->next) {
        if ((child->type == XML_TEXT_NODE || child->type == XML_CDATA_SECTION_NODE) &&
            child->content)
            out += reinterpret_cast<const char*>(child->content);
    }
}

} // namespace

XmlDocPtr parseXmlPart(const std::string& file, const std::string& part, const std::string& data,
                       NodeBudget* budget) {
    if (auto line = elementWithTooManyAttributes(data, kMaxAttributesPerElement))
        throw IdmlError(file, part,
                        "an element at line " + std::to_string(*line) + " has more than " +
                            std::to_string(kMaxAttributesPerElement) + " attributes");
    std::unique_ptr<xmlParserCtxt, ParserCtxtFree> ctxt(xmlNewParserCtxt());
    if (!ctxt)
        throw IdmlError(file, part, "out of memory while parsing");
    ParseGuard guard;
    guard.budget = budget;
    guard.install(ctxt.get());
    const int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    XmlDocPtr doc(xmlCtxtReadMemory(ctxt.get(), data.data(), static_cast<int>(data.size()),
                                    part.c_str(), nullptr, options));
    if (!guard.refusal.empty())
        throw IdmlError(file, part, guard.refusal);
    if (!doc || !ctxt->wellFormed)
        throw IdmlError(file, part, describe(xmlCtxtGetLastError(ctxt.get())));
    if (!xmlDocGetRootElement(doc.get()))
        throw IdmlError(file, part, "part has no root element");
    return doc;
}

std::string serializeXmlPart(xmlDoc* doc) {
    xmlChar* buffer = nullptr;
    int size = 0;
    xmlDocDumpMemoryEnc(doc, &buffer, &size, "UTF-8");
    std::string text(reinterpret_cast<const char*>(buffer), size > 0 ? size : 0);
    xmlFree(buffer);
    return text;
}

std::string nodeName(const xmlNode* node) {
    return node && node->name ? reinterpret_cast<const char*>(node->name) : "";
}

bool isElement(const xmlNode* node, const char* name) {
    return node && node->type == XML_ELEMENT_NODE &&
           std::strcmp(reinterpret_cast<const char*>(node->name), name) == 0;
}

std::optional<std::string> attribute(const xmlNode* node, const char* name) {
    if (!node || node->type != XML_ELEMENT_NODE)
        return std::nullopt;
    for (const xmlAttr* attr = node->properties; attr; attr = attr->next) {
        if (attr->ns == nullptr &&
            std::strcmp(reinterpret_cast<const char*>(attr->name), name) == 0) {
            std::string text;
            appendText(attr->children, text);
            return text;
        }
    }
    return std::nullopt;
}

// Iterative, so that the depth of the tree costs no stack.
std::string textContent(const xmlNode* node) {
    std::string text;
    if (!node)
        return text;
    if (node->type != XML_ELEMENT_NODE)
        return node->content ? reinterpret_cast<const char*>(node->content) : "";
    const xmlNode* child = node->children;
    while (child && child != node) {
        if (child->type == XML_TEXT_NODE || child->type == XML_CDATA_SECTION_NODE) {
            if (child->content)
                text += reinterpret_cast<const char*>(child->content);
        } else if (child->type == XML_ELEMENT_NODE && child->children) {
            child = child->children;
            continue;
        }
        while (child != node && !child->next)
            child = child->parent;
        if (child != node)
            child = child->next;
    }
    return text;
}

const xmlNode* firstChildElement(const xmlNode* node, const char* name) {
    for (const xmlNode* child = node ? node->children : nullptr; child; child = child->next) {
        if (isElement(child, name))
            return child;
    }
    return nullptr;
}

std::optional<std::string> property(const xmlNode* node, const char* name) {
    if (auto value = attribute(node, name))
        return value;
    if (const xmlNode* found = firstChildElement(firstChildElement(node, "Properties"), name))
        return textContent(found);
    return std::nullopt;
}

namespace {

const xmlChar* xmlText(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

} // namespace

void setTextContent(xmlNode* element, const std::string& text) {
    xmlNodeSetContent(element, nullptr);
    xmlAddChild(element, xmlNewDocText(element->doc, xmlText(text.c_str())));
}

void setProperty(xmlNode* element, const char* name, const std::string& value) {
    if (xmlHasProp(element, xmlText(name))) {
        xmlSetProp(element, xmlText(name), xmlText(value.c_str()));
        return;
    }
    auto* properties = const_cast<xmlNode*>(firstChildElement(element, "Properties"));
    if (auto* existing = const_cast<xmlNode*>(firstChildElement(properties, name))) {
        setTextContent(existing, value);
        return;
    }
    if (std::strcmp(name, "FontStyle") == 0) {
        xmlSetProp(element, xmlText(name), xmlText(value.c_str()));
        return;
    }
    if (!properties) {
        properties = xmlNewDocNode(element->doc, nullptr, xmlText("Properties"), nullptr);
        if (element->children)
            xmlAddPrevSibling(element->children, properties);
        else
            xmlAddChild(element, properties);
    }
    xmlNode* child = xmlNewDocNode(element->doc, nullptr, xmlText(name), nullptr);
    xmlSetProp(child, xmlText("type"), xmlText("string"));
    setTextContent(child, value);
    xmlAddChild(properties, child);
}

} // namespace Galley
