#pragma once

#include "fontmanager/Activation.h"
#include "fontmanager/Catalog.h"
#include "fontmanager/LibraryChanges.h"
#include "fontmanager/Request.h"

#include <string>

namespace Vellumine {

// Answers an "activationRequest": activates each named container of the library and
// reports per font its containerID and "activationSuccessfull". Only identifiers are taken
// from the request; the files linked are those the catalog holds for them.
std::string answerActivationRequest(Activation& activation, LibraryChanges& changes,
                                    const Request& request, const std::string& protocolVersion);

} // namespace Vellumine
