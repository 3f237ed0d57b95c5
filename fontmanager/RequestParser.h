#pragma once

#include "fontmanager/Request.h"

#include <cstddef>
#include <string>

namespace Vellumine {

// Bounds on what a request may hold; anything beyond is refused, not truncated.
struct RequestLimits {
    std::size_t maximumBytes = 16 * 1024 * 1024;
    std::size_t maximumFonts = 50000;
    std::size_t maximumLineBytes = 64 * 1024;
};

struct ParsedRequest {
    bool ok = false;
    Request request;
    std::string error; // why the text was refused, when not ok
};

// Reads the request's line form. The plug-in writes values without escaping, so a request
// is not XML: each line is "<cmd>NAME</cmd>", "<font>", "</font>", the closing "</cmd>", or
// "<name>raw value</name>". Nothing is expanded, no entity resolved, no file opened.
// Unknown element names are skipped; a repeated element, a line of another form, an
// unbalanced <font> or a missing closing line refuse the whole request.
ParsedRequest parseRequest(const std::string& text, const RequestLimits& limits = {});

} // namespace Vellumine
