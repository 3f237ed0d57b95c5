#pragma once

#include <QString>

class QWidget;

namespace Galley {

class PluginHost;

// Help ▸ About Galley: the version, the licence and the plug-ins running in this process
// with the file each came from (a plug-in's own About stays in its menu).
QString aboutGalleyText(const PluginHost& plugins);
void showAboutGalley(QWidget* parent, const PluginHost& plugins);

} // namespace Galley
