#pragma once

#include <QCoreApplication>

namespace Galley {

// The window's own texts, in one translation context ("GuiText") that lupdate reads from
// every GuiText::tr call: translations/galley_LANG.ts.
class GuiText {
    Q_DECLARE_TR_FUNCTIONS(GuiText)
};

} // namespace Galley
