#include "platform/Platform.h"

namespace Platform {

namespace {

Services& installed() {
    static Services current;
    return current;
}

} // namespace

const Services& services() {
    return installed();
}

void install(const Services& services) {
    installed() = services;
}

} // namespace Platform
