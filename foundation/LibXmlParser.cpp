#include "foundation/LibXmlParser.h"

#include "foundation/Exception.h"
#include "foundation/LibXmlNode.h"

#include <libxml/parser.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlsave.h>

namespace Tamrik {

namespace {

// Network access is never wanted, and libxml2's console reports would only reach the
// host's terminal; the error itself is kept and raised as an exception.
constexpr int readOptions = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;

// libxml2 also reports some problems (encoding errors among them) on the console through
// its global error channels, whatever the parse options say. The guard routes them to
// nowhere for the duration of one read and restores the caller's handlers; the error record
// that the exception quotes is kept all the same.
void discardStructuredError(void*, xmlErrorPtr) {}

class ConsoleErrorSilencer {
public:
    ConsoleErrorSilencer() {
        // Initialising the library resets the error channels, so it must not happen for
        // the first time inside the guard.
        xmlInitParser();
        previous = xmlStructuredError;
        previousContext = xmlStructuredErrorContext;
        xmlSetStructuredErrorFunc(nullptr, discardStructuredError);
    }
    ~ConsoleErrorSilencer() { xmlSetStructuredErrorFunc(previousContext, previous); }
    ConsoleErrorSilencer(const ConsoleErrorSilencer&) = delete;
    ConsoleErrorSilencer& operator=(const ConsoleErrorSilencer&) = delete;

private:
    xmlStructuredErrorFunc previous = nullptr;
    void* previousContext = nullptr;
};

std::string trimmedErrorText(const char* message) {
    std::string text = message != nullptr ? message : "";
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) {
        text.pop_back();
    }
    return text;
}

} // namespace

SmartPointer<IXmlParser> IXmlParser::getInstance(const std::string& kind) {
    if (kind == "LibXmlParser") {
        return SmartPointer<IXmlParser>(new LibXmlParser());
    }
    return SmartPointer<IXmlParser>();
}

LibXmlParser::~LibXmlParser() {
    cleanup();
}

void LibXmlParser::cleanup() {
    delete rootNode;
    rootNode = nullptr;
    if (document != nullptr) {
        xmlFreeDoc(document);
        document = nullptr;
    }
}

void LibXmlParser::raiseParseFailure(unsigned long lineWithRecord,
                                     unsigned long lineWithoutRecord) {
    const xmlError* error = xmlGetLastError();
    if (error != nullptr) {
        throw Exception("LibXml: Document not parsed successfully: " +
                            trimmedErrorText(error->message),
                        "libxmlparser", lineWithRecord, "");
    }
    throw Exception("LibXml: Document not parsed successfully: unknown error message",
                    "libxmlparser", lineWithoutRecord, "");
}

void LibXmlParser::parse(const std::string& path) {
    cleanup();
    xmlResetLastError();
    const ConsoleErrorSilencer silencer;
    document = xmlReadFile(path.c_str(), nullptr, readOptions);
    if (document == nullptr) {
        raiseParseFailure(353, 355);
    }
    createRoot();
}

void LibXmlParser::parseString(const std::string& text) {
    cleanup();
    xmlResetLastError();
    if (text.size() > static_cast<std::size_t>(INT32_MAX)) {
        throw Exception("LibXml: Document not parsed successfully: document too large",
                        "libxmlparser", 374, "");
    }
    const ConsoleErrorSilencer silencer;
    document =
        xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, readOptions);
    if (document == nullptr) {
        raiseParseFailure(374, 376);
    }
    createRoot();
}

void LibXmlParser::createRoot() {
    xmlNodePtr root = xmlDocGetRootElement(document);
    if (root == nullptr) {
        xmlFreeDoc(document);
        document = nullptr;
        throw Exception("LibXml: Document empty.", "libxmlparser", 334, "");
    }
    rootNode = new LibXmlNode(this, root, nullptr, false);
}

IXmlNode* LibXmlParser::getRootNode() const {
    return rootNode;
}

void LibXmlParser::write(const std::string& path) const {
    if (rootNode == nullptr || rootNode->getXmlNode() == nullptr ||
        rootNode->getXmlNode()->doc == nullptr) {
        return;
    }
    xmlSaveFormatFileEnc(path.c_str(), rootNode->getXmlNode()->doc, "UTF-8", 1);
}

void LibXmlParser::writeString(std::string& /*out*/) const {}

IXmlNode* LibXmlParser::createRootNode(const std::string& name, const std::string& namespaceUri) {
    cleanup();
    document = xmlNewDoc(BAD_CAST "1.0");
    xmlNodePtr element = xmlNewNode(nullptr, BAD_CAST name.c_str());
    if (!namespaceUri.empty()) {
        xmlNsPtr ns = xmlNewNs(element, BAD_CAST namespaceUri.c_str(), nullptr);
        xmlSetNs(element, ns);
    }
    xmlDocSetRootElement(document, element);
    rootNode = new LibXmlNode(this, element, nullptr, false);
    return rootNode;
}

} // namespace Tamrik
