#pragma once

#include <string>

namespace VLM {

class IVLMChangeNotifier;

// The transport to the font manager and the registry of those who listen to it.
class IVLMNotifyHandler {
public:
    // Starts receiving the font manager's events and watching its library.
    virtual void start() = 0;
    virtual void end() = 0;
    // Hands a library change noticed since the last call to the listeners.
    virtual void push() = 0;
    // Registry changes take effect at the start of the next broadcast.
    virtual void registerNotifer(IVLMChangeNotifier* notifier) = 0;
    virtual void unregisterNotifer(IVLMChangeNotifier* notifier) = 0;
    virtual void clearNotifiers() = 0;
    virtual void notifiyAll(const std::string& text) = 0;
    // One synchronous request and reply. Never throws: any failure answers "".
    virtual std::string SendToVlm(const std::string& message) = 0;
    virtual void WaitForLaunch() = 0;
    virtual ~IVLMNotifyHandler() = default;
};

} // namespace VLM
