#include "host/idml/XmlPart.h"

#include "host/idml/IdmlError.h"

#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include <cstring>

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

} // namespace

XmlDocPtr parseXmlPart(const std::string& file, const std::string& part, const std::string& data) {
    std::unique_ptr<xmlParserCtxt, ParserCtxtFree> ctxt(xmlNewParserCtxt());
    if (!ctxt)
        throw IdmlError(file, part, "out of memory while parsing");
    const int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    XmlDocPtr doc(xmlCtxtReadMemory(ctxt.get(), data.data(), static_cast<int>(data.size()),
                                    part.c_str(), nullptr, options));
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
    xmlChar* value = xmlGetNoNsProp(node, reinterpret_cast<const xmlChar*>(name));
    if (!value)
        return std::nullopt;
    std::string text(reinterpret_cast<const char*>(value));
    xmlFree(value);
    return text;
}

std::string textContent(const xmlNode* node) {
    xmlChar* value = xmlNodeGetContent(node);
    std::string text = value ? reinterpret_cast<const char*>(value) : "";
    xmlFree(value);
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

} // namespace Galley
