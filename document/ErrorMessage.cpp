#include "document/ErrorMessage.h"

#include "sdk/CAlert.h"
#include "sdk/HostIdentifiers.h"

namespace VLM {

void showErrorMessage(std::string text) {
    CAlert::ModalAlert(PMString(text, PMString::kDontTranslateDuringCall), PMString("OK"),
                       PMString(), PMString(), kOKButton, kCautionIcon);
}

} // namespace VLM
