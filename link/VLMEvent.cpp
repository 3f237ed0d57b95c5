#include "link/VLMEvent.h"

#include "foundation/Logger.h"
#include "link/NotifiyHandlerFactory.h"
#include "link/ProtocolConstants.h"
#include "link/VLMController.h"

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

} // namespace VLM
