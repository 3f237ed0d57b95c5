#pragma once

class IDocFontMgr;

// A document's workspace: its style and font resources.
class IWorkspace {
public:
    virtual ~IWorkspace() = default;
    virtual IDocFontMgr* GetDocFontMgr() = 0;
};
