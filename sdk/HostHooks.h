#pragma once

#include "sdk/CAlert.h"
#include "sdk/ResourceName.h"

class CIdleTask;
class IControlView;

// What the host puts behind the SDK's own helpers (idle-task installation, alerts, row
// widgets). Plug-ins never call it; the host installs it once at start-up. This state lives
// in the SDK's shared library, so host and plug-ins see the one copy.
class IHostHooks {
public:
    virtual ~IHostHooks() = default;
    virtual void installIdleTask(CIdleTask* task, uint32 delayMilliseconds) = 0;
    virtual void uninstallIdleTask(CIdleTask* task) = 0;
    virtual bool isIdleTaskInstalled(const CIdleTask* task) const = 0;
    virtual IAlertPresenter& alerts() = 0;
    // A row widget for `tree` made from a widget resource; null when it cannot be had.
    virtual IControlView* createRowWidget(IControlView* tree, const RsrcSpec& row) = 0;
    virtual PMLocaleId locale() const = 0;
};

// Null restores the default: nothing installed, alerts on standard error.
void SetHostHooks(IHostHooks* hooks);
IHostHooks* GetHostHooks();
