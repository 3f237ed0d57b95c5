#pragma once

#include <string>

namespace Vellumine {

// vellumine's window owns a bus name of its own, so that the server (a program without a
// display of its own) can bring it to the front: Show(s containerID, s postScriptName)
// selects the face, by container identifier when it names one of the library, else by
// PostScript name, and raises the window; Title() → s tells the window's title, which names
// the face shown.
inline const std::string windowBusName = "org.vellumine.Vellumine.Window";
inline const std::string windowObjectPath = "/org/vellumine/Window";
inline const std::string windowInterface = "org.vellumine.Window1";

} // namespace Vellumine
