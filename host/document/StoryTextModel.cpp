#include "host/document/StoryTextModel.h"

#include "host/document/FontUsage.h"
#include "host/document/IdmlDocument.h"
#include "host/idml/Story.h"

namespace Galley {

int32 StoryTextModel::TotalLength() const {
    return story_.length();
}

int32 StoryTextModel::GetRunCount() const {
    return static_cast<int32>(story_.runs().size());
}

int32 StoryTextModel::GetRunLength(TextIndex position) const {
    for (const StoryRun& run : story_.runs()) {
        if (position >= run.start && position < run.start + run.length)
            return run.start + run.length - position;
    }
    return 0;
}

bool StoryTextModel::runsOver(TextIndex start, TextIndex end, std::size_t& first,
                              std::size_t& last) const {
    const auto& runs = story_.runs();
    bool found = false;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        if (runs[i].start + runs[i].length <= start || runs[i].start >= end)
            continue;
        if (!found)
            first = i;
        last = i;
        found = true;
    }
    return found && start < end;
}

const std::vector<const StoryTextModel::RunAttributes*>& StoryTextModel::attributes() const {
    // A run's font comes from its styles too: a redefined style changes it.
    const std::pair revision{story_.revision(), document_.styles().revision()};
    if (cachedRevision_ != revision) {
        attributes_.clear();
        distinct_.clear();
        for (const StoryRun& run : story_.runs()) {
            FontKey key = resolveRunFont(run, document_.styles());
            // Text in a composite font shows as the composite's first face.
            if (const auto* faces = document_.catalog().composite(key.family))
                key = faces->front();
            UID family = document_.families().familyNamed(key.family).uid();
            auto& shared = distinct_[{family, key.style}];
            if (!shared)
                shared = std::make_unique<RunAttributes>(RunAttributes{
                    FontFamilyAttribute(family), FontFaceAttribute(PMString(key.style))});
            attributes_.push_back(shared.get());
        }
        cachedRevision_ = revision;
    }
    return attributes_;
}

const ITextAttrUID* StoryTextModel::QueryFontFamilyAttribute(TextIndex start, TextIndex end) const {
    std::size_t first = 0, last = 0;
    if (!runsOver(start, end, first, last))
        return nullptr;
    const auto& all = attributes();
    for (std::size_t i = first + 1; i <= last; ++i) {
        if (all[i]->family.GetUIDData() != all[first]->family.GetUIDData())
            return nullptr;
    }
    return &all[first]->family;
}

const ITextAttrFont* StoryTextModel::QueryFontFaceAttribute(TextIndex start, TextIndex end) const {
    std::size_t first = 0, last = 0;
    if (!runsOver(start, end, first, last))
        return nullptr;
    const auto& all = attributes();
    for (std::size_t i = first + 1; i <= last; ++i) {
        if (!(all[i]->face.GetFontName() == all[first]->face.GetFontName()))
            return nullptr;
    }
    return &all[first]->face;
}

} // namespace Galley
