#include "foundation/HostText.h"

#include "foundation/ConvertUTF.h"

#include <vector>

namespace Helpers {

namespace {

std::vector<Tamrik::UTF::UTF32> codePointsOf(const WideString& wide) {
    const std::size_t count = wide.CharCount();
    std::vector<Tamrik::UTF::UTF32> points(count);
    if (wide.UTF16Count() != count) {
        for (std::size_t i = 0; i < count; ++i) {
            points[i] = wide.GetCodePoint(i);
        }
    } else {
        for (std::size_t i = 0; i < count; ++i) {
            points[i] = wide.Units()[i];
        }
    }
    return points;
}

} // namespace

std::string convertToUTF8(const WideString& wide, ConversionStats* stats) {
    using namespace Tamrik::UTF;
    const std::vector<UTF32> points = codePointsOf(wide);
    std::vector<UTF8> buffer(2 * points.size() + 1);
    ConversionResult result;
    UTF8* written;
    int attempts = 0;
    do {
        if (attempts > 0) {
            buffer.resize(buffer.size() * 2);
        }
        ++attempts;
        const UTF32* source = points.data();
        written = buffer.data();
        result = ConvertUTF32toUTF8(&source, points.data() + points.size(), &written,
                                    buffer.data() + buffer.size(), strictConversion);
    } while (result == targetExhausted);
    if (stats != nullptr) {
        stats->attempts = attempts;
        stats->finalBufferSize = buffer.size();
    }
    if (result != conversionOK) {
        return "";
    }
    return std::string(reinterpret_cast<const char*>(buffer.data()),
                       static_cast<std::size_t>(written - buffer.data()));
}

std::string toString(const PMString& text) {
    return convertToUTF8(text.ToWideString());
}

} // namespace Helpers
