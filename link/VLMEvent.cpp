#include "link/VLMEvent.h"

#include "foundation/Logger.h"
#include "link/NotifiyHandlerFactory.h"
#include "link/ProtocolConstants.h"
#include "link/VLMController.h"

#include <algorithm>

namespace VLM {

namespace {

const std::string sendTag = "VLMController-send";
const std::string parseTag = "VLMController-VLMEvent::parseResult";

} // namespace

Tamrik::IXmlNode* VLMEvent::send() {
    Logger::log(sendTag, "starting send message", 0);
    result = NotifiyHandlerFactory::getNotifyHandler(false)->SendToVlm(message);
    Logger::log(sendTag, "ending send message", 0);
    succeeded = false;
    Tamrik::IXmlNode* root = parseResult();
    succeeded = root != nullptr;
    return root;
}

Tamrik::IXmlNode* VLMEvent::parseResult() {
    replyDocument = nullptr;
    if (result.empty()) {
        return nullptr;
    }
    Tamrik::SmartPointer<Tamrik::IXmlParser> parser =
        Tamrik::IXmlParser::getInstance("LibXmlParser");
    if (parser.isNull()) {
        return nullptr;
    }
    Logger::log(parseTag, "parser instance created", 0);
    parser->parseString(result);
    Logger::log(parseTag, "response parsed", 0);
    Tamrik::IXmlNode* root = parser->getRootNode();
    if (root == nullptr) {
        return nullptr;
    }
    Tamrik::IXmlNode* version = root->getFirstChild("protocolVersion");
    if (version == nullptr) {
        Logger::log(parseTag, "no protocolversion tag suppled", 0);
        return nullptr;
    }
    protocolVersion = version->getContent();
    if (!VLMController::checkForNeededProtocolVersion(protocolVersion, neededProtocolMajor,
                                                      neededProtocolMinor)) {
        Logger::log(parseTag, "required version too low. version was: " + protocolVersion, 0);
        return nullptr;
    }
    replyDocument = parser;
    return root;
}

void VLMFontBasedEvent::forEachAnsweredRecord(
    const Tamrik::IXmlNode& reply, const std::string& key, std::string Protocol::Font::*field,
    const std::function<void(const Tamrik::IXmlNode& font, VLMFontInfo& record)>& answer) {
    for (const Tamrik::IXmlNode* node = reply.getFirstChild(); node != nullptr;
         node = node->getNextNode()) {
        if (node->getName() != "font") {
            continue;
        }
        const Tamrik::IXmlNode* keyNode = node->getFirstChild(key);
        if (keyNode == nullptr) {
            continue;
        }
        const std::string content = keyNode->getContent();
        auto record = std::find_if(fonts.begin(), fonts.end(),
                                   [&](const auto& font) { return font->font.*field == content; });
        if (record != fonts.end()) {
            answer(*node, **record);
        }
    }
}

} // namespace VLM
