#pragma once

#include "link/VLMChangeNotifier.h"

// How the dialogs' observers hear the font manager's news while they are attached.
//
// The transport's registry applies changes only at its next broadcast, removals before
// additions, so an observer that attached and detached between two broadcasts would stay
// registered there after its dialog was destroyed, and the next news would call freed
// memory. The dialogs therefore never register themselves: one listener that lives as long
// as the process is registered with the transport, and it passes each news on to the
// observers attached at that moment.
namespace DialogNews {

// Takes effect at once: the next news reaches `observer`, and none after stopListening.
void listen(VLM::IVLMChangeNotifier* observer);
void stopListening(VLM::IVLMChangeNotifier* observer);

} // namespace DialogNews
