#pragma once

#include "sdk/HostTypes.h"

// The host's numeric identifiers that plug-in logic compares against.

// The session's font manager; also the protocol on which its subject announces changes.
inline constexpr PMIID IID_IFONTMGR = 15873;

// Change class announced by the font manager's subject when the set of installed fonts
// changed after a font-list update.
inline constexpr ClassID kFontSystemChangedMessage = 16074;

// Document signal sent after a document has been opened.
inline constexpr ServiceID kAfterOpenDocSignalResponderService = 3598;
