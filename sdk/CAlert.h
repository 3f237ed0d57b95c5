#pragma once

#include "sdk/HostTypes.h"
#include "sdk/PMString.h"

// The host's alerts. Texts are translated through the plug-in's string tables when they
// are translatable (a key without text shows as the key). Every call returns when the
// alert has been answered: in the GUI by the user, in batch mode at once with the default
// button (the alert is printed on standard error).
class CAlert {
public:
    // An information alert with one OK button.
    static void InformationAlert(const PMString& message);
    // A modal alert with up to three buttons (empty texts are left out). Returns the
    // number (1 to 3) of the button that answered it.
    static int16 ModalAlert(const PMString& message, const PMString& button1,
                            const PMString& button2, const PMString& button3, int16 defaultButton,
                            int16 iconType);
};

// What the host puts behind CAlert.
class IAlertPresenter {
public:
    virtual ~IAlertPresenter() = default;
    enum class Kind { information, modal };
    virtual int16 present(Kind kind, const PMString& message, const PMString buttons[3],
                          int16 defaultButton, int16 iconType) = 0;
};
