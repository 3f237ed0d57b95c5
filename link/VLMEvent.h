#pragma once

#include "foundation/IXmlNode.h"
#include "foundation/IXmlParser.h"
#include "foundation/SmartPointer.h"
#include "link/FontInfo.h"

#include <functional>
#include <string>

namespace VLM {

// One exchange with the font manager: build() composes the request text, send() carries
// it and parses the reply with the class's parseResult().
class VLMEvent {
public:
    VLMEvent() = default;
    virtual ~VLMEvent() = default;
    VLMEvent(const VLMEvent&) = delete;
    VLMEvent& operator=(const VLMEvent&) = delete;

    virtual void build() = 0;
    // The reply's root node, or null when the exchange failed or the reply was rejected.
    // Malformed replies raise Tamrik::Exception. The node stays valid while this event
    // lives and until its next send().
    Tamrik::IXmlNode* send();
    // The reply check every parser starts with: a parsable reply announcing protocol
    // version 2.0 or later.
    virtual Tamrik::IXmlNode* parseResult();

    std::string getProtocolVersion() const { return protocolVersion; }
    const std::string& getMessage() const { return message; }
    const std::string& getResult() const { return result; }
    bool hasSucceeded() const { return succeeded; }

protected:
    std::string result;
    std::string message;
    std::string protocolVersion;
    bool succeeded = false;

private:
    // Owns the reply document that the returned root node belongs to.
    Tamrik::SmartPointer<Tamrik::IXmlParser> replyDocument;
};

// A request about a list of fonts, in the list's order.
class VLMFontBasedEvent : public VLMEvent {
public:
    VLMFontList fonts;
    // Whether the font manager wants to show its own window; set by the font reply.
    bool showWindow = false;

protected:
    // Calls `answer` for each <font> of the reply whose `key` child's content equals `field`
    // of a record, with the first such record; other <font>s are skipped.
    void forEachAnsweredRecord(
        const Tamrik::IXmlNode& reply, const std::string& key, std::string Protocol::Font::*field,
        const std::function<void(const Tamrik::IXmlNode& font, VLMFontInfo& record)>& answer);
};

} // namespace VLM
