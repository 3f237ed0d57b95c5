#include "host/session/GalleySession.h"

namespace Galley {

GalleySession::GalleySession(FaceSource& faces) : fontMgr_(faces) {
    gSession = this;
}

GalleySession::~GalleySession() {
    if (gSession == this)
        gSession = nullptr;
}

} // namespace Galley
