#pragma once

#include <cstdint>

// Basic value types shared by every interface of the host SDK.
//
// Ownership, for every interface in sdk/:
// - Pointers returned by Get…, Query… and Instantiate… operations belong to the host. The
//   plug-in never deletes them. Objects of a document (database, families, stories, text
//   models, strands) live as long as the document; objects of the session (font manager,
//   installed fonts and families) live as long as the session, across font-list updates.
// - Operations that may find nothing return a null pointer; callers check it.
// - Create… and Build… operations make a new object for the caller and hand it over as a
//   std::unique_ptr: these, and only these, the plug-in owns.

using int32 = std::int32_t;
using uint32 = std::uint32_t;

// Identifies an object in a document's database; 0 is no object.
using UID = uint32;
inline constexpr UID kInvalidUID = 0;

// Position in a story's text, counted in characters (code points).
using TextIndex = int32;

using ClassID = uint32;   // class of a change that a subject announces
using PMIID = uint32;     // interface (protocol) identifier
using ServiceID = uint32; // host service identifier

using int16 = std::int16_t;
using ActionID = uint32;         // a menu action
using WidgetID = uint32;         // a widget of a dialog description (its `widgetID`)
using RsrcID = uint32;           // a resource of a plug-in (dialogs, rows, list elements)
using PluginID = uint32;         // a plug-in's identifier prefix
using ImplementationID = uint32; // a class a plug-in registers (its k...Impl)

inline constexpr WidgetID kInvalidWidgetID = 0;
inline constexpr WidgetID kDefaultWidgetId = 0;

using ErrorCode = int32;
inline constexpr ErrorCode kSuccess = 0;
inline constexpr ErrorCode kFailure = 1;
