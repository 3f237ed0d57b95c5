#include "host/document/ApplyFontCommand.h"

#include "host/document/StoryTextModel.h"
#include "host/idml/Story.h"

namespace Galley {

PMString ApplyFontCommand::GetName() const {
    return PMString(font_.family ? "Apply Font Family" : "Apply Font Style",
                    PMString::kDontTranslateDuringCall);
}

ErrorCode ApplyFontCommand::Do() {
    if (done_)
        return kFailure;
    done_ = true;
    return model_.story().applyLocalFont(start_, length_, font_) ? kSuccess : kFailure;
}

} // namespace Galley
