#pragma once

#include "sdk/HostTypes.h"
#include "sdk/PMString.h"

// A change to a document, made through the host so that it can be tracked and saved.
class ICommand {
public:
    virtual ~ICommand() = default;
    virtual PMString GetName() const = 0;
    // Carries the change out; a command runs once, a second call fails.
    virtual ErrorCode Do() = 0;
};

namespace CmdUtils {
// Runs a command; kFailure for a null command.
ErrorCode ProcessCommand(ICommand* command);
} // namespace CmdUtils
