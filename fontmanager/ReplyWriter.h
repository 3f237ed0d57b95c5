#pragma once

#include <string>

namespace Vellumine {

// Writes a reply in the requests' line form: "<cmd>NAME</cmd>", "<protocolVersion>…",
// element lines, <font> and <fontInfo> blocks, and a lone "</cmd>" last. The plug-in's
// transport drops the first line's "</cmd>", joins the lines and escapes every "&" before
// it parses, so values are written raw, with these exceptions that keep the joined text
// well-formed XML whose element content is the value itself:
//  - each run of "<" and ">" is written as a CDATA section ("a<b" as "a<![CDATA[<]]>b"),
//    which also keeps "</cmd>" and "]]>" out of the text;
//  - line feeds and other control characters (tab excepted) become spaces, since the
//    transport would drop line feeds and XML forbids the others;
//  - bytes that are not UTF-8 and characters XML forbids become U+FFFD.
class ReplyWriter {
public:
    ReplyWriter(const std::string& command, const std::string& protocolVersion);

    ReplyWriter& element(const std::string& name, const std::string& value);
    ReplyWriter& element(const std::string& name, bool value); // "true" / "false"
    ReplyWriter& openFont();
    ReplyWriter& closeFont();
    // <fontInfo> with its two children: the container identifier, then a description.
    ReplyWriter& fontInfo(const std::string& containerID, const std::string& description);

    // Bytes written so far.
    std::size_t size() const { return text.size(); }

    // The reply with its closing "</cmd>" line.
    std::string finish();

    // A value as it is written into a reply line.
    static std::string encodeValue(const std::string& value);

private:
    std::string text;
};

} // namespace Vellumine
