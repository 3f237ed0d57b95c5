#pragma once

#include "sdk/IObserver.h"

namespace VLM {

// Watches the host's font system while a document is being handled: when the installed
// fonts change, the document is scanned again, the records keep what the font manager and
// the user said of them, the font manager is asked again, and the open dialogs hear of it.
class FontChangeObserver : public CObserver {
public:
    FontChangeObserver();
    void Update(ClassID change, ISubject* subject, PMIID protocol, void* changedBy) override;
    void AutoAttach() override;
    void AutoDetach() override;
};

} // namespace VLM
