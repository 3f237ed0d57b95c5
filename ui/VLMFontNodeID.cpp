#include "ui/VLMFontNodeID.h"

#include "foundation/Logger.h"
#include "resources/VellumineIDs.h"
#include "ui/TreeViewDataNode.h"

NodeID VLMFontNodeID::Create(const TreeViewDataNode* node, int) {
    return NodeID(new VLMFontNodeID(node));
}

NodeID VLMFontNodeID::Create() {
    return NodeID(new VLMFontNodeID(nullptr));
}

const TreeViewDataNode* VLMFontNodeID::NodeOf(const NodeID& id) {
    const auto* ours = dynamic_cast<const VLMFontNodeID*>(id.Get());
    return ours ? ours->node_ : nullptr;
}

int32 VLMFontNodeID::GetNodeType() const {
    return kVLMFontNodeType;
}

namespace {

int32 sign(int value) {
    return value < 0 ? -1 : (value > 0 ? 1 : 0);
}

} // namespace

int32 VLMFontNodeID::Compare(const NodeIDClass* other) const {
    Logger::log("VLMFontNodeID::Compare", "entering node compare");
    const auto* theirs = dynamic_cast<const VLMFontNodeID*>(other);
    if (!theirs || !node_ || !theirs->node_)
        return 0;
    const TreeViewDataNode& a = *node_;
    const TreeViewDataNode& b = *theirs->node_;
    int32 result = 0;
    // The two tests run in opposite senses on purpose: a lower level orders after a
    // higher one, a lower sequence number before a higher one.
    if (b.GetLevel() != a.GetLevel()) {
        result = b.GetLevel() > a.GetLevel() ? 1 : -1;
    } else {
        result = a.GetSequenceNumber() > b.GetSequenceNumber()   ? 1
                 : a.GetSequenceNumber() < b.GetSequenceNumber() ? -1
                                                                 : 0;
        if (result == 0) {
            const auto recordA = a.GetData();
            const auto recordB = b.GetData();
            if (recordA && recordB) {
                result = sign(recordA->hostFontName.compare(recordB->hostFontName));
                if (result == 0)
                    result = sign(recordA->font.styleName.compare(recordB->font.styleName));
            }
        }
    }
    Logger::log("VLMFontNodeID::Compare", "leaving node compare");
    return result;
}

void VLMFontNodeID::Read(IPMStream* stream) {
    PMString discarded;
    discarded.ReadWrite(stream);
}

void VLMFontNodeID::Write(IPMStream* stream) const {
    PMString placeholder("blub", PMString::kDontTranslateDuringCall);
    placeholder.ReadWrite(stream);
}

std::string VLMFontNodeID::GetContainerID() const {
    return node_ ? node_->GetContainerID() : std::string();
}
