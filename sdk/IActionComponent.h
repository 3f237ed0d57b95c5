#pragma once

#include "sdk/IPMUnknown.h"

class IDocument;

// Where an action was invoked: the front document, if any.
class IActiveContext {
public:
    virtual ~IActiveContext() = default;
    virtual IDocument* GetContextDocument() const = 0;
};

struct Point {
    double x = 0;
    double y = 0;
};

// Carries out a plug-in's menu actions. The host calls DoAction with the action ID of the
// menu entry the user chose (in batch mode: the one named on the command line).
class CActionComponent : public IPMUnknown {
public:
    virtual void DoAction(IActiveContext* context, ActionID action, Point where,
                          IPMUnknown* widget) = 0;
};
