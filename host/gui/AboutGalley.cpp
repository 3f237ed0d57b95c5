#include "host/gui/AboutGalley.h"

#include "host/gui/GuiText.h"
#include "host/plugins/PluginHost.h"
#include "host/plugins/PluginLoader.h"

#include <QApplication>
#include <QMessageBox>

namespace Galley {

namespace {

QString pluginList(const PluginHost& host) {
    QString items;
    for (const auto& plugin : host.plugins()) {
        if (plugin->state != LoadedPlugin::State::running)
            continue;
        items += QString("<li>%1 <small>(%2)</small></li>")
                     .arg(QString::fromStdString(plugin->name()).toHtmlEscaped(),
                          QString::fromStdString(plugin->path).toHtmlEscaped());
    }
    if (items.isEmpty())
        return "<p>" + GuiText::tr("No plug-in is loaded.") + "</p>";
    return "<p>" + GuiText::tr("Plug-ins loaded:") + "</p><ul>" + items + "</ul>";
}

} // namespace

QString aboutGalleyText(const PluginHost& plugins) {
    return "<h3>" + GuiText::tr("Galley %1").arg(QApplication::applicationVersion()) + "</h3>" +
           "<p>" + GuiText::tr("Opens IDML documents and finds the fonts they miss.") + "</p>" +
           "<p>" +
           GuiText::tr("© 2026 The Galley and Vellumine developers. All rights reserved; no "
                       "licence for redistribution has been chosen yet.") +
           "</p>" + pluginList(plugins) + "<p><small>" +
           GuiText::tr("Built with Qt %1.").arg(QT_VERSION_STR) + "</small></p>";
}

void showAboutGalley(QWidget* parent, const PluginHost& plugins) {
    QMessageBox box(parent);
    box.setWindowTitle(GuiText::tr("About Galley"));
    box.setTextFormat(Qt::RichText);
    box.setText(aboutGalleyText(plugins));
    box.setIconPixmap(QApplication::windowIcon().pixmap(64, 64));
    box.setStandardButtons(QMessageBox::Close);
    box.exec();
}

} // namespace Galley
