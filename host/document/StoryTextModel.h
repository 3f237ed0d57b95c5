#pragma once

#include "host/document/TextAttributeValues.h"
#include "sdk/IAttributeStrand.h"
#include "sdk/IComposeScanner.h"
#include "sdk/ITextModel.h"

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Galley {

class IdmlDocument;
class Story;

// A story as the SDK's text model: its font strand is the story's runs, and its scanner
// reports each run's resolved family (as a UID of the document's families) and face.
class StoryTextModel : public ITextModel, public IAttributeStrand, public IComposeScanner {
public:
    StoryTextModel(UID uid, Story& story, IdmlDocument& document)
        : uid_(uid), story_(story), document_(document) {}

    UID GetUID() const override { return uid_; }
    int32 TotalLength() const override;
    IAttributeStrand* QueryFontStrand() override { return this; }
    IComposeScanner* QueryComposeScanner() override { return this; }

    int32 GetRunCount() const override;
    int32 GetRunLength(TextIndex position) const override;

    const ITextAttrUID* QueryFontFamilyAttribute(TextIndex start, TextIndex end) const override;
    const ITextAttrFont* QueryFontFaceAttribute(TextIndex start, TextIndex end) const override;

    Story& story() { return story_; }
    IdmlDocument& document() { return document_; }

private:
    struct RunAttributes {
        FontFamilyAttribute family;
        FontFaceAttribute face;
    };
    // Indices of the first and last run over [start, end), or false when none.
    bool runsOver(TextIndex start, TextIndex end, std::size_t& first, std::size_t& last) const;
    // One entry per run, pointing at one shared value per distinct family and face.
    const std::vector<const RunAttributes*>& attributes() const;

    UID uid_;
    Story& story_;
    IdmlDocument& document_;
    mutable std::vector<const RunAttributes*> attributes_;
    mutable std::map<std::pair<UID, std::string>, std::unique_ptr<RunAttributes>> distinct_;
    mutable std::pair<unsigned, unsigned> cachedRevision_{~0u, ~0u}; // story's, styles'
};

} // namespace Galley
