#include "link/VLMFontRequestEvent.h"

#include "foundation/Exception.h"
#include "foundation/Logger.h"
#include "foundation/NumberText.h"
#include "link/ProtocolConstants.h"
#include "link/RequestText.h"

#include <sstream>
#include <unordered_map>

namespace VLM {

namespace {

const std::string parseTag = "VLMController-VLMFontRequestEvent::parseResult";

std::uint32_t parseCount(const std::string& content, const std::string& element,
                         unsigned long line) {
    bool ok = false;
    const unsigned long value = Tamrik::safeParse<unsigned long>(content, ok);
    if (!ok) {
        throw Tamrik::Exception("could not parse <" + element + "> '" + content + "'",
                                "VLMController", line, "");
    }
    return static_cast<std::uint32_t>(value);
}

// Numeric form only: "1" is true, "0" false, the word "true" reads as false.
bool readStreamBool(const std::string& content) {
    bool value = false;
    std::istringstream in(content);
    in >> value;
    return value;
}

} // namespace

void VLMFontRequestEvent::build() {
    using namespace RequestText;
    message = command("fontRequest") + element("targetApp", targetApplication) +
              element("targetClass", targetClass) + element("protocolVersion", versionNumber);
    for (const Tamrik::SmartPointer<VLMFontInfo>& record : fonts) {
        const Protocol::Font& font = record->font;
        message += fontOpening() + element("syncID", font.syncID) + element("psName", font.psName);
        if (font.type != 4) {
            message += element("type", record->getTypeString());
        }
        if (!font.familyName.empty()) {
            message += element("familyName", font.familyName);
        }
        if (!font.styleName.empty()) {
            message += element("styleName", font.styleName);
        }
        message += fontClosing();
    }
    message += end();
}

Protocol::Font VLMFontRequestEvent::parseFont(const Tamrik::IXmlNode* fontNode) {
    using Protocol::HandlerHelpers::parseBoolean;
    Protocol::Font font;
    for (const Tamrik::IXmlNode* node = fontNode->getFirstTagChild(); node != nullptr;
         node = node->getNextTagNode()) {
        const std::string name = node->getName();
        const std::string content = node->getContent();
        if (name == "type") {
            font.type = Protocol::Font::stringToType(content);
        } else if (name == "syncID") {
            font.syncID = content;
        } else if (name == "psName") {
            font.psName = content;
        } else if (name == "styleName") {
            font.styleName = content;
        } else if (name == "familyName") {
            font.familyName = content;
        } else if (name == "count") {
            font.count = parseCount(content, "count", 346);
        } else if (name == "isActive") {
            font.isActive = parseBoolean(content);
        } else if (name == "typeMatchingCount") {
            font.typeMatchingCount = parseCount(content, "typeMatchingCount", 357);
        } else if (name == "isTypeMatchingActive") {
            font.isTypeMatchingActive = parseBoolean(content);
        } else if (name == "typeMatchingContainerID") {
            font.typeMatchingContainerID = content;
        } else if (name == "fontInfo") {
            font.fontInfo.push_back(Protocol::HandlerHelpers::parseFontInfo(node));
        } else if (name == "containerID") {
            font.containerID = content;
        } else if (name == "activationSuccessfull") {
            font.activationSuccessfull = parseBoolean(content);
        } else {
            throw Tamrik::Exception("could not parse node in <font> '" + name + "'",
                                    "VLMController", 380, "");
        }
    }
    return font;
}

Tamrik::IXmlNode* VLMFontRequestEvent::parseResult() {
    Tamrik::IXmlNode* root = VLMFontBasedEvent::parseResult();
    Logger::log(parseTag, "starting parsing message", 0);
    if (root == nullptr) {
        return nullptr;
    }
    std::vector<Protocol::Font> replyFonts;
    for (const Tamrik::IXmlNode* node = root->getFirstChild(); node != nullptr;
         node = node->getNextNode()) {
        const std::string name = node->getName();
        if (name == "font") {
            replyFonts.push_back(parseFont(node));
        } else if (name == "showWindow") {
            showWindow = readStreamBool(node->getContent());
        }
    }
    Logger::log(parseTag, "end parsing message", 0);
    // Only a reply read to its end is merged: a fault above leaves every record as it was.
    merge(replyFonts);
    return root;
}

// The first reply font of each syncID answers every record with that syncID.
void VLMFontRequestEvent::merge(const std::vector<Protocol::Font>& replyFonts) {
    std::unordered_map<std::string, const Protocol::Font*> bySyncID;
    bySyncID.reserve(replyFonts.size());
    for (const Protocol::Font& font : replyFonts) {
        bySyncID.emplace(font.syncID, &font); // keeps the first of equal keys
    }
    for (Tamrik::SmartPointer<VLMFontInfo>& record : fonts) {
        auto match = bySyncID.find(record->font.syncID);
        if (match == bySyncID.end()) {
            continue;
        }
        record->font = *match->second;
        record->hasTypeMatching = record->font.typeMatchingCount != 0;
    }
}

} // namespace VLM
