#pragma once

#include "host/idml/FontSpec.h"
#include "sdk/ICommand.h"

namespace Galley {

class StoryTextModel;

// Sets the family or the face of a range of a story's text.
class ApplyFontCommand : public ICommand {
public:
    ApplyFontCommand(StoryTextModel& model, TextIndex start, int32 length, FontSpec font)
        : model_(model), start_(start), length_(length), font_(std::move(font)) {}

    PMString GetName() const override;
    ErrorCode Do() override;

private:
    StoryTextModel& model_;
    TextIndex start_;
    int32 length_;
    FontSpec font_;
    bool done_ = false;
};

} // namespace Galley
