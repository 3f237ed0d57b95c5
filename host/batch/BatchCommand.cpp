#include "host/batch/BatchCommand.h"

#include "host/app/PrintableText.h"
#include "host/batch/BatchPlayer.h"
#include "host/batch/TerminalPresenter.h"
#include "host/document/FaceUse.h"
#include "host/document/IdmlDocument.h"
#include "host/idml/IdmlError.h"
#include "host/loop/SdEventLoop.h"
#include "host/runtime/HostProcess.h"

#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

namespace Galley {

namespace {

constexpr int defaultTimeoutSeconds = 30;

struct BatchOptions {
    std::string document;
    int timeoutSeconds = defaultTimeoutSeconds;
    std::vector<BatchAction> actions;
};

std::optional<BatchOptions> parseOptions(const std::vector<std::string>& arguments) {
    BatchOptions options;
    std::vector<std::string> words;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& word = arguments[i];
        if (word == "--timeout") {
            if (i + 1 >= arguments.size())
                throw std::invalid_argument("--timeout needs a number of seconds");
            const std::string& value = arguments[++i];
            std::size_t used = 0;
            int seconds = 0;
            try {
                seconds = std::stoi(value, &used);
            } catch (const std::exception&) {
                used = 0;
            }
            if (used != value.size() || seconds <= 0 || seconds > 24 * 3600)
                throw std::invalid_argument(
                    "--timeout takes whole seconds from 1 to 86400, not \"" + value + "\"");
            options.timeoutSeconds = seconds;
        } else if (options.document.empty()) {
            options.document = word;
        } else {
            words.push_back(word);
        }
    }
    if (options.document.empty())
        return std::nullopt;
    options.actions = parseBatchActions(words);
    return options;
}

int countMissing(GalleySession& session, IdmlDocument& document, TerminalPresenter& view) {
    session.fonts().takeInChanges();
    const std::string name = std::filesystem::path(document.path()).filename().string();
    bool onlyInStyles = false;
    view.status(printableText(name) + ": " +
                printableText(missingFontsLine(describeFaceUse(document), &onlyInStyles)));
    if (onlyInStyles)
        view.status("a font named only by styles is replaced in them with: galley replace " +
                    printableText(document.path()) + " FROM TO --styles");
    return document.usage().GetMissingFontCount();
}

} // namespace

void printBatchUsage(std::ostream& out) {
    out << "usage: galley --batch FILE.idml [--timeout SECONDS] [ACTION...]\n"
           "\n"
           "Opens the document without a window, lets the plug-ins respond (the font plug-in asks\n"
           "the font manager for missing fonts and shows its dialogs as text), then plays the\n"
           "actions against the dialog in front, in order:\n"
           "  select TEXT        select the tree row showing TEXT (a font's name or PostScript\n"
           "                     name), or else the only row starting with it (any case);\n"
           "                     TEXT/N selects the N-th candidate row under it\n"
           "  deselect           clear the tree's selection\n"
           "  press BUTTON       press a button by its caption or its name (e.g. press Activate)\n"
           "  pick TEXT          select the list entry TEXT, or the only one starting with it\n"
           "  double-click TEXT  double-click the list entry TEXT\n"
           "  menu ACTION        invoke a plug-in's menu action (e.g. menu fonts, menu about)\n"
           "  wait               wait until no dialog is open\n"
           "  save-as PATH       save the document as a new IDML package\n"
           "A dialog that needs a decision is cancelled a second after the last action; every\n"
           "wait ends after --timeout seconds (default 30), which cancels the dialogs in front.\n"
           "\n"
           "Exit status: 0 no font is missing at the end, 1 fonts remain missing, 2 an error\n"
           "(unreadable document, an action that cannot be played, a plug-in failure).\n"
           "\n"
           "Example: replace a missing font and save the result\n"
           "  galley --batch choice.idml select TeXGyrePagella-Regular press Replace… \\\n"
           "      pick \"DejaVu Serif Book\" press OK press OK save-as choice-fixed.idml\n";
}

int runBatchCommand(const std::vector<std::string>& arguments, const std::string& executable) {
    std::optional<BatchOptions> options;
    try {
        options = parseOptions(arguments);
    } catch (const std::exception& error) {
        std::cerr << "galley: " << error.what() << '\n';
        return 2;
    }
    if (!options) {
        printBatchUsage(std::cerr);
        return 2;
    }

    TerminalPresenter view(std::cout, std::cerr, isatty(STDOUT_FILENO) == 1,
                           TerminalPresenter::terminalWidth(STDOUT_FILENO));
    view.setDocumentName(std::filesystem::path(options->document).filename().string());
    HostProcess process(view);
    SdEventLoop events;
    Runtime::Options runtimeOptions;
    // A batch run lives for milliseconds to seconds: an inotify watch would cost more at
    // exit, where the kernel retires it, than polling the folders' times costs meanwhile.
    runtimeOptions.fontFolders = FolderWatching::polling;
    runtimeOptions.deadline =
        std::chrono::steady_clock::now() + std::chrono::seconds(options->timeoutSeconds);
    auto started = process.startRuntime(events, view, runtimeOptions, executable);
    Runtime& runtime = *started;

    BatchPlayer player(runtime, view, options->actions);
    IdmlDocument* document = nullptr;
    try {
        document = &runtime.documents().open(options->document);
    } catch (const std::exception& error) {
        view.status(printableText(error.what()));
        return 2;
    }
    runtime.dialogs().waitUntil([&] { return player.finished(); }, true);

    int status = countMissing(process.session(), *document, view) > 0 ? 1 : 0;
    if (runtime.dialogs().timedOut())
        view.status("time-out after " + std::to_string(options->timeoutSeconds) +
                    " s; the dialogs in front were cancelled");
    if (!player.error().empty()) {
        view.status(player.error());
        status = 2;
    }
    if (runtime.pluginFailures() > 0)
        status = 2;
    runtime.shutdown();
    return status;
}

} // namespace Galley
