#pragma once

#include "host/idml/FontReference.h"
#include "sdk/ICommand.h"

namespace Galley {

class StoryTextModel;

// Sets the family or the face of a range of a story's text.
class ApplyFontCommand : public ICommand {
public:
    ApplyFontCommand(StoryTextModel& model, TextIndex start, int32 length, FontReference font)
        : model_(model), start_(start), length_(length), font_(std::move(font)) {}

    PMString GetName() const override;
    ErrorCode Do() override;

private:
    StoryTextModel& model_;
    TextIndex start_;
    int32 length_;
    FontReference font_;
    bool done_ = false;
};

} // namespace Galley
