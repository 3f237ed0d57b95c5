#pragma once

#include "sdk/HostTypes.h"

// Runs of text over which character attributes stay the same. Runs cover the text from 0
// to the model's length without gaps, and none is empty.
class IAttributeStrand {
public:
    virtual ~IAttributeStrand() = default;
    virtual int32 GetRunCount() const = 0;
    // Characters from `position` to the end of the run that holds it; 0 when `position` is
    // outside the text.
    virtual int32 GetRunLength(TextIndex position) const = 0;
};
