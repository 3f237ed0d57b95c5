#include "ui/DialogNews.h"

#include "link/NotifiyHandlerFactory.h"

#include <algorithm>
#include <vector>

namespace DialogNews {

namespace {

class Relay : public VLM::IVLMChangeNotifier {
public:
    void OnVLMNotify(const std::string& text) override {
        // A dialog may close, and so detach itself or others, while it hears the news.
        const std::vector<VLM::IVLMChangeNotifier*> hearing = attached;
        for (VLM::IVLMChangeNotifier* observer : hearing)
            if (isAttached(observer))
                observer->OnVLMNotify(text);
    }
    bool isAttached(const VLM::IVLMChangeNotifier* observer) const {
        return std::find(attached.begin(), attached.end(), observer) != attached.end();
    }

    std::vector<VLM::IVLMChangeNotifier*> attached;
    // A renewed transport starts with an empty registry: the relay registers there too.
    VLM::IVLMNotifyHandler* registeredWith = nullptr;
};

Relay& relay() {
    static Relay instance;
    return instance;
}

} // namespace

void listen(VLM::IVLMChangeNotifier* observer) {
    Relay& news = relay();
    VLM::IVLMNotifyHandler* transport = VLM::NotifiyHandlerFactory::getNotifyHandler(false);
    if (news.registeredWith != transport) {
        transport->registerNotifer(&news);
        news.registeredWith = transport;
    }
    if (!news.isAttached(observer))
        news.attached.push_back(observer);
}

void stopListening(VLM::IVLMChangeNotifier* observer) {
    std::erase(relay().attached, observer);
}

} // namespace DialogNews
