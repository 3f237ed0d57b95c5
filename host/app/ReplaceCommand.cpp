#include "host/app/ReplaceCommand.h"

#include "host/app/PrintableText.h"
#include "host/document/DocumentSaver.h"
#include "host/document/FaceUse.h"
#include "host/document/FontReplacer.h"
#include "host/document/IdmlDocument.h"
#include "host/fonts/FontconfigFontSystem.h"
#include "host/session/GalleySession.h"

#include <algorithm>
#include <iostream>
#include <optional>
#include <stdexcept>

namespace Galley {

namespace {

struct ReplaceOptions {
    std::string document;
    std::string from;
    std::string to;
    std::string output; // empty: the document itself
    bool styles = false;
};

// Why a command line cannot be run.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

ReplaceOptions parseOptions(const std::vector<std::string>& arguments) {
    ReplaceOptions options;
    std::vector<std::string> words;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--styles") {
            options.styles = true;
        } else if (argument == "--output") {
            if (i + 1 >= arguments.size())
                throw UsageError("--output needs a file name");
            options.output = arguments[++i];
        } else if (argument.starts_with("--") && argument.size() > 2) {
            throw UsageError("unknown option \"" + argument + "\"");
        } else {
            words.push_back(argument);
        }
    }
    if (words.size() != 3)
        throw UsageError("name the document, the font to replace and its replacement");
    options.document = words[0];
    options.from = words[1];
    options.to = words[2];
    return options;
}

std::string plural(int count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string join(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + printableText(name);
    return text;
}

std::string documentFaces(IdmlDocument& document) {
    std::vector<std::string> names;
    for (const FaceUse& use : describeFaceUse(document))
        names.push_back(use.postscriptName.empty() ? faceTitle(use.key) : use.postscriptName);
    return join(names);
}

// Why replacing `from` would change nothing, or empty when it would change something.
std::string nothingToReplace(IdmlDocument& document, const std::vector<FontKey>& from,
                             bool styles) {
    int runs = 0, composite = 0;
    std::vector<std::string> namingStyles;
    for (const FaceUse& use : describeFaceUse(document)) {
        if (std::find(from.begin(), from.end(), use.key) == from.end())
            continue;
        runs += use.textRuns;
        composite += use.compositeRuns;
        namingStyles.insert(namingStyles.end(), use.styles.begin(), use.styles.end());
    }
    if (runs > 0 || (styles && !namingStyles.empty()))
        return {};
    if (!namingStyles.empty())
        return "no text is set in it; only styles name it (" + join(namingStyles) +
               "): add --styles to redefine them";
    return "its text is set in composite fonts (" + plural(composite, "run", "runs") +
           "); change the composite font instead";
}

int replace(const ReplaceOptions& options) {
    FontconfigFontSystem fontconfig;
    GalleySession session(fontconfig);
    auto document = IdmlDocument::open(options.document, session.fonts());
    const std::vector<FontKey> from = facesNamed(*document, options.from);
    if (from.empty())
        throw std::invalid_argument(options.document + " uses no font named \"" + options.from +
                                    "\"; it uses " + documentFaces(*document));
    IPMFont* installed = session.fonts().QueryFont(PMString(options.to));
    if (!installed)
        throw std::invalid_argument("no installed font is named \"" + options.to +
                                    "\" (name a PostScript name or \"Family Style\")");
    if (std::string why = nothingToReplace(*document, from, options.styles); !why.empty())
        throw std::invalid_argument("nothing to replace for \"" + options.from + "\": " + why);

    const FontKey to{installed->GetFamilyName().GetUTF8String(),
                     installed->GetStyleName().GetUTF8String()};
    const ReplacementResult result = replaceFaces(*document, from, to, options.styles);
    const std::string target = options.output.empty() ? options.document : options.output;
    saveDocumentAs(*document, target, {.overwriteOriginal = true});

    std::cout << "Replaced " << printableText(faceTitle(from.front())) << " by "
              << printableText(faceTitle(to)) << " in "
              << plural(result.runsReplaced, "run", "runs") << " of text";
    if (!result.styles.empty())
        std::cout << " and in " << plural(static_cast<int>(result.styles.size()), "style", "styles")
                  << " (" << join(result.styles) << ")";
    std::cout << ".\n";
    if (result.runsKept > 0)
        std::cout << plural(result.runsKept, "run keeps its", "runs keep their")
                  << " own face where a redefined style would have changed it.\n";
    if (result.compositeRuns > 0)
        std::cout << plural(result.compositeRuns, "run", "runs")
                  << " set in a composite font using it were left as they are.\n";
    std::cout << "Wrote " << printableText(target) << "; "
              << printableText(missingFontsLine(describeFaceUse(*document))) << ".\n";
    return document->usage().GetMissingFontCount() == 0 ? 0 : 1;
}

} // namespace

void printReplaceUsage(std::ostream& out) {
    out << "usage: galley replace FILE.idml FROM TO [--styles] [--output OUT.idml]\n"
           "\n"
           "Sets every run of text set in the font FROM in the installed font TO instead, and\n"
           "saves. FROM is a font of the document as galley fonts prints it (a PostScript\n"
           "name or \"Family Style\"); TO an installed font (\"Family Style\" or a PostScript\n"
           "name).\n"
           "  --styles           also redefine the paragraph and character styles that name\n"
           "                     FROM, so that no style names it any more\n"
           "  --output OUT.idml  write the result there instead of replacing FILE.idml\n"
           "Exit status: 0 when no font is missing afterwards, 1 when fonts remain missing,\n"
           "2 on an error (nothing is written then).\n";
}

int runReplaceCommand(const std::vector<std::string>& arguments) {
    if (arguments.size() == 1 && (arguments[0] == "--help" || arguments[0] == "-h")) {
        printReplaceUsage(std::cout);
        return 0;
    }
    try {
        return replace(parseOptions(arguments));
    } catch (const UsageError& error) {
        std::cerr << "galley replace: " << error.what() << "\n";
        printReplaceUsage(std::cerr);
        return 2;
    } catch (const std::exception& error) {
        std::cerr << "galley replace: " << printableText(error.what()) << '\n';
        return 2;
    }
}

} // namespace Galley
