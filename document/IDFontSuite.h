#pragma once

#include "link/FontInfo.h"
#include "sdk/IPMFont.h"

#include <string>
#include <vector>

class IDocument;

namespace VLM {

// The document font service: the current document's font records, the four requests to
// the font manager with their checks, counting and filtering, and the two operations that
// change the host (font replacement and the font-system refresh). One per process, used on
// the host's main thread only.
class IDFontSuite {
public:
    using FontVector = std::vector<Tamrik::SmartPointer<VLMFontInfo>>;

    // The single instance, made on first use; with `recreate` a fresh, empty one replaces it.
    static IDFontSuite* getFontSuite(bool recreate);

    // One record per entry of the document's font usage: the missing fonts first, then the
    // used ones, each in the usage's order. Empty for a null document or one without usage.
    FontVector ScanDocument(IDocument* document);

    // The font manager runs (launched if need be) and speaks protocol 2.0 or later: 0, else
    // the failing check's result (after its alert) or -1 for a protocol below 2.0.
    int basicVlmChecks();

    // The four requests. Each runs basicVlmChecks first and sends whatever it answered: a
    // caller that must stop on a failed check calls basicVlmChecks itself.
    bool syncFontsWithVlm(FontVector& fonts);
    void activateFonts(const FontVector& fonts);
    void showInfo(const FontVector& fonts);
    void buyFonts(const FontVector& fonts);

    int getNumMissingFonts(const FontVector& fonts, bool strictTypeMatching);
    int getNumFontsNotInstalled(const FontVector& fonts);
    // The missing records, in order; resets every record's selectedContainerID to "-1".
    FontVector getMissingFonts(const FontVector& fonts, bool strictTypeMatching);

    void fixFontInfo(const Tamrik::SmartPointer<VLMFontInfo>& font);
    void applyFontType(const Tamrik::SmartPointer<VLMFontInfo>& font, IPMFont::FontType hostType,
                       bool isOpenTypeFlavour);

    // Replaces, in every story of `document`, the runs set in `fromPsName` by the installed
    // font the host knows as `toFontName` (family first, then face, per run).
    void replaceFont(IDocument* document, std::string fromPsName, std::string toFontName);
    // Lets the host re-read its font list, waiting at most 200 ticks for it to change.
    void UpdateFontSystem();

    FontVector documentFonts;
    IDocument* currentDocument = nullptr;

private:
    IDFontSuite() = default;
};

} // namespace VLM
