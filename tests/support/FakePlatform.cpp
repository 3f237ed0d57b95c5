#include "support/FakePlatform.h"

namespace VLMTest {

FakePlatform::FakePlatform() : previous(Platform::services()) {
    Platform::install({&appEvents, &notifications, &runningApplications, &launchers, &clock});
}

FakePlatform::~FakePlatform() {
    Platform::install(previous);
}

} // namespace VLMTest
