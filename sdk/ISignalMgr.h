#pragma once

#include "sdk/HostTypes.h"

class IDocument;

// What a document signal carries: the document it is about.
class IDocumentSignalData {
public:
    virtual ~IDocumentSignalData() = default;
    // The document; null when it is already gone.
    virtual IDocument* GetDocument() const = 0;
};

// One signal being sent to the responders registered for its service.
class ISignalMgr {
public:
    virtual ~ISignalMgr() = default;
    virtual ServiceID GetServiceID() const = 0;
    // Null for signals that are not about a document.
    virtual IDocumentSignalData* GetDocumentSignalData() const = 0;
};
