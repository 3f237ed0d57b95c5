#pragma once

#include "sdk/HostTypes.h"

// Ticks (sixtieths of a second) since an arbitrary start, from the monotonic clock.
uint32 TickCount();

// Replaces the clock behind TickCount, so that waits bounded in ticks can be driven in
// tests; null restores the monotonic clock.
using TickSource = uint32 (*)();
void SetTickSource(TickSource source);
