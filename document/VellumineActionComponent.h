#pragma once

#include "sdk/IActionComponent.h"

namespace VLM {

// The plug-in's two menu entries: About, and the fonts dialog.
class VellumineActionComponent : public CActionComponent {
public:
    void DoAction(IActiveContext* context, ActionID action, Point where,
                  IPMUnknown* widget) override;

private:
    void DoAbout();
    // Opens the fonts dialog without scanning the document and without waiting for it.
    void DoDialog();
};

} // namespace VLM
