#pragma once

#include "sdk/HostTypes.h"
#include "sdk/PMString.h"

class IDataBase;
class IDocumentFontUsage;
class IStoryList;
class IWorkspace;

// An open document.
class IDocument {
public:
    virtual ~IDocument() = default;
    virtual PMString GetName() const = 0;
    virtual IDataBase* GetDataBase() = 0;
    virtual IDocumentFontUsage* GetDocumentFontUsage() = 0;
    virtual IWorkspace* GetDocWorkSpace() = 0;
    virtual IStoryList* GetStoryList() = 0;
    // True when the host converted the document from an older format revision on open.
    virtual bool IsConverted() const = 0;
    // True when commands changed the document since it was opened or saved.
    virtual bool IsModified() const = 0;
};
