#include "fontmanager/Cli.h"

#include "fontmanager/Activation.h"
#include "fontmanager/Catalog.h"
#include "fontmanager/CliCommands.h"
#include "fontmanager/FaceReader.h"
#include "fontmanager/FaceSets.h"
#include "fontmanager/LauncherEntry.h"
#include "fontmanager/LibraryChanges.h"
#include "fontmanager/LibraryCheck.h"
#include "fontmanager/LibraryImporter.h"
#include "fontmanager/LibraryPaths.h"
#include "fontmanager/LibrarySelection.h"
#include "fontmanager/Server.h"
#include "fontmanager/StoreUrl.h"

#include <algorithm>
#include <array>
#include <functional>
#include <map>

namespace Vellumine {

namespace {

using Arguments = CliArguments;

struct Command {
    const char* usage;
    const char* help;
    CliCommand run;
};

GuiCommands guiCommands;

constexpr int usageError = cliUsageError;

bool wantsHelp(const Arguments& arguments) {
    for (const auto& argument : arguments) {
        if (argument == "--help" || argument == "-h") {
            return true;
        }
    }
    return false;
}

int serveCommand(const Arguments& arguments, std::ostream&, std::ostream& errors) {
    ServeOptions options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--protocol-version" && i + 1 < arguments.size()) {
            options.protocolVersion = arguments[++i];
        } else {
            errors << "vellumine serve: unknown argument '" << arguments[i] << "'\n";
            return usageError;
        }
    }
    return serve(LibraryPaths::fromEnvironment(), options, errors);
}

int addCommand(const Arguments& arguments, std::ostream& out, std::ostream& errors) {
    if (arguments.empty()) {
        errors << "vellumine add: name at least one font file or folder\n";
        return usageError;
    }
    auto catalogFile = openForWriting(errors);
    Catalog& catalog = *catalogFile;
    FaceReader reader;
    LibraryImporter importer(catalog, reader);
    importer.sendMessagesTo([&](LibraryImporter::MessageKind kind, const std::string& message) {
        (kind == LibraryImporter::MessageKind::problem ? errors : out) << message << '\n';
    });
    const ImportReport report =
        importer.add(std::vector<std::filesystem::path>(arguments.begin(), arguments.end()));
    out << report.facesAdded << " face(s) added, " << report.facesKnown << " already known, "
        << report.filesSkipped << " file(s) skipped\n";
    if (report.facesAdded > 0 || report.facesKnown > 0) {
        LibraryChanges(catalog).warnTo(errors).announce(ChangeKind::libraryFilesChanged);
    }
    return report.missingPaths ? 1 : 0;
}

int listCommand(const Arguments& arguments, std::ostream& out, std::ostream& errors) {
    bool activeOnly = false;
    std::string name;
    for (const auto& argument : arguments) {
        if (argument == "--active") {
            activeOnly = true;
        } else if (name.empty() && argument.rfind("-", 0) != 0) {
            name = argument;
        } else {
            errors << "vellumine list: unknown argument '" << argument << "'\n";
            return usageError;
        }
    }
    const auto catalog = openForReading();
    const auto faces = name.empty() ? catalog->allFaces() : catalog->facesByPostScriptName(name);
    for (const auto& face : faces) {
        if (!activeOnly || face.active) {
            printFace(face, out);
        }
    }
    return 0;
}

// The faces vellumine activated on its own, for `deactivate --auto`.
std::vector<std::int64_t> automaticallyActivated(Catalog& catalog) {
    std::vector<std::int64_t> ids;
    for (const auto& link : catalog.autoActivatedLinks()) {
        ids.push_back(link.faceId);
    }
    return ids;
}

int changeActivation(const Arguments& arguments, std::ostream& out, std::ostream& errors,
                     bool activate) {
    if (arguments.empty()) {
        errors << "vellumine " << (activate ? "activate" : "deactivate")
               << ": name at least one container id or PostScript name"
               << (activate ? "" : ", or --auto") << "\n";
        return usageError;
    }
    const auto paths = LibraryPaths::fromEnvironment();
    auto catalogFile = openForWriting(errors);
    Catalog& catalog = *catalogFile;
    Activation activation(catalog, paths.activationFolder());
    bool failed = false;
    bool changed = false;
    for (const auto& argument : arguments) {
        std::vector<std::int64_t> ids;
        if (!activate && argument == "--auto") {
            ids = automaticallyActivated(catalog);
        } else if (!resolveFaces(catalog, argument, !activate, ids, errors)) {
            failed = true;
            continue;
        }
        for (const auto id : ids) {
            const ActivationResult result =
                activate ? activation.activate(id) : activation.deactivate(id);
            (result.succeeded() ? out : errors) << result.message << "\n";
            failed = failed || !result.succeeded();
            changed = changed || result.outcome == ActivationResult::Outcome::changed;
        }
    }
    if (changed) {
        LibraryChanges(catalog).warnTo(errors).announce(ChangeKind::activeFontsChanged);
    }
    return failed ? 1 : 0;
}

int checkCommand(const Arguments& arguments, std::ostream& out, std::ostream& errors) {
    const bool repair = arguments.size() == 1 && arguments[0] == "--repair";
    if (!arguments.empty() && !repair) {
        errors << "vellumine check: usage: check [--repair]\n";
        return usageError;
    }
    const auto paths = LibraryPaths::fromEnvironment();
    const auto catalog = repair ? openForWriting(errors) : openForReading();
    const LibraryCheckReport report = checkLibrary(*catalog, paths.activationFolder(), repair);
    for (const auto& problem : report.problems) {
        out << "problem: " << field(problem) << "\n";
    }
    for (const auto& repaired : report.repairs) {
        out << "repaired: " << field(repaired) << "\n";
    }
    if (!report.repairs.empty()) {
        LibraryChanges(*catalog).warnTo(errors).announce(ChangeKind::activeFontsChanged);
    }
    out << report.problems.size() << " problem(s)"
        << (repair ? ", " + std::to_string(report.repairs.size()) + " repaired" : "") << "\n";
    return report.problems.size() == report.repairs.size() ? 0 : 1;
}

// The settings `config` shows and changes, each on by default.
struct Setting {
    const char* name;
    bool (Catalog::*get)();
    void (Catalog::*set)(bool);
};

const std::array<Setting, 3> settings = {{
    {"auto-activate", &Catalog::autoActivation, &Catalog::setAutoActivation},
    {"auto-deactivate", &Catalog::autoDeactivation, &Catalog::setAutoDeactivation},
    {"system-fonts", &Catalog::systemFonts, &Catalog::setSystemFonts},
}};

const char* const configUsage =
    "config [auto-activate|auto-deactivate|system-fonts on|off] [store-url TEMPLATE|default]";

int storeUrlCommand(const Arguments& arguments, std::ostream& out, std::ostream& errors) {
    const std::string& value = arguments[1];
    if (value != "default" && !isWebAddress(value)) {
        errors << "vellumine config: the store URL must be an http or https address, with %s "
                  "where the font's name goes\n";
        return usageError;
    }
    const auto catalog = openForWriting(errors);
    catalog->write([&] { catalog->setStoreUrl(value == "default" ? "" : value); });
    out << "store-url " << (value == "default" ? defaultStoreUrl : value) << "\n";
    return 0;
}

int configCommand(const Arguments& arguments, std::ostream& out, std::ostream& errors) {
    if (arguments.empty()) {
        const auto catalog = openForReading();
        for (const auto& setting : settings) {
            out << setting.name << " " << (((*catalog).*setting.get)() ? "on" : "off") << "\n";
        }
        const std::string store = catalog->storeUrl();
        out << "store-url " << (store.empty() ? defaultStoreUrl + " (default)" : store) << "\n";
        return 0;
    }
    if (arguments.size() == 2 && arguments[0] == "store-url") {
        return storeUrlCommand(arguments, out, errors);
    }
    const auto setting = std::find_if(settings.begin(), settings.end(), [&](const auto& known) {
        return arguments[0] == known.name;
    });
    if (arguments.size() != 2 || setting == settings.end() ||
        (arguments[1] != "on" && arguments[1] != "off")) {
        errors << "vellumine config: usage: " << configUsage << "\n";
        return usageError;
    }
    const auto catalog = openForWriting(errors);
    catalog->write([&] { ((*catalog).*setting->set)(arguments[1] == "on"); });
    out << setting->name << " " << arguments[1] << "\n";
    return 0;
}

const char* const setUsage =
    "set [list] | set create|delete|show|activate|deactivate NAME | set add|remove NAME "
    "ID|POSTSCRIPT-NAME...";

int setCommand(const Arguments& arguments, std::ostream& out, std::ostream& errors) {
    const std::string verb = arguments.empty() ? "list" : arguments[0];
    const bool takesFaces = verb == "add" || verb == "remove";
    const bool known = verb == "list" || verb == "create" || verb == "delete" || verb == "show" ||
                       verb == "activate" || verb == "deactivate" || takesFaces;
    const std::size_t wanted = verb == "list" ? 1 : 2;
    if (!known ||
        (takesFaces ? arguments.size() < 3 : arguments.size() != wanted && !arguments.empty())) {
        errors << "vellumine set: usage: " << setUsage << "\n";
        return usageError;
    }
    const auto paths = LibraryPaths::fromEnvironment();
    const bool reads = verb == "list" || verb == "show";
    const auto catalog = reads ? openForReading() : openForWriting(errors);
    Activation activation(*catalog, paths.activationFolder());
    LibraryChanges changes(*catalog);
    FaceSets sets(*catalog, activation, changes);
    if (verb == "list") {
        for (const auto& set : sets.all()) {
            out << field(set.name) << "\t" << set.faceCount << " face(s)\n";
        }
        return 0;
    }
    const std::string& name = arguments[1];
    if (verb == "create") {
        sets.create(name);
        out << "set " << field(name) << " created\n";
    } else if (verb == "delete") {
        if (!sets.remove(name)) {
            errors << "vellumine set: no set named '" << field(name) << "'\n";
            return 1;
        }
        out << "set " << field(name) << " deleted (its faces stay in the library)\n";
    } else if (verb == "show") {
        for (const auto& face : sets.faces(name)) {
            printFace(face, out);
        }
    } else if (takesFaces) {
        std::vector<std::int64_t> ids;
        for (auto argument = arguments.begin() + 2; argument != arguments.end(); ++argument) {
            if (!resolveFaces(*catalog, *argument, verb == "remove", ids, errors)) {
                return 1;
            }
        }
        verb == "add" ? sets.add(name, ids) : sets.take(name, ids);
        out << ids.size() << " face(s) " << (verb == "add" ? "added to " : "taken from ")
            << field(name) << "\n";
    } else {
        bool failed = false;
        for (const auto& result :
             verb == "activate" ? sets.activate(name) : sets.deactivate(name)) {
            (result.succeeded() ? out : errors) << result.message << "\n";
            failed = failed || !result.succeeded();
        }
        return failed ? 1 : 0;
    }
    return 0;
}

int guiCommand(const CliCommand& command, const char* name, const Arguments& arguments,
               std::ostream& out, std::ostream& errors) {
    if (!command) {
        errors << "vellumine " << name << ": this vellumine was built without its window\n";
        return 1;
    }
    return command(arguments, out, errors);
}

int installLauncherCommand(const Arguments& arguments, std::ostream& out, std::ostream& errors) {
    std::filesystem::path dataHome;
    if (arguments.size() == 2 && arguments[0] == "--data-home") {
        dataHome = arguments[1];
    } else if (arguments.empty()) {
        dataHome = LibraryPaths::fromEnvironment().dataHome;
    } else {
        errors << "vellumine install-launcher: usage: install-launcher [--data-home DIR]\n";
        return usageError;
    }
    out << "wrote " << installLauncher(dataHome, ownExecutable()).string() << "\n";
    return 0;
}

const std::map<std::string, Command>& commands() {
    static const std::map<std::string, Command> table = {
        {"serve",
         {"serve [--protocol-version X]",
          "Owns org.vellumine.Vellumine on the session bus and answers font, activation, show\n"
          "and buy requests until SIGTERM or SIGINT. Announces protocol version 2.0 unless\n"
          "--protocol-version names another (for tests). Refuses with status 3 while another\n"
          "vellumine serves.",
          serveCommand}},
        {"add",
         {"add PATH...",
          "Adds font files, and folders recursively, to the library: Type 1 (.pfb, .pfa, .t1,\n"
          "with .afm/.pfm metrics beside them), TrueType, OpenType and collections. Damaged\n"
          "files are reported and skipped; a file added again keeps its container ids.",
          addCommand}},
        {"list",
         {"list [--active] [POSTSCRIPT-NAME]",
          "Lists the library's faces, one line each: container id, type, state, PostScript\n"
          "name, family, style and file, separated by tabs. Tabs, line ends and other control\n"
          "characters in a value are written as \\t, \\n and \\xHH, a backslash as \\\\.",
          listCommand}},
        {"activate",
         {"activate ID|POSTSCRIPT-NAME...",
          "Links faces into the activation folder, where fontconfig finds them. A PostScript\n"
          "name that several faces share must be given as a container id.",
          [](const Arguments& a, std::ostream& o, std::ostream& e) {
              return changeActivation(a, o, e, true);
          }}},
        {"deactivate",
         {"deactivate ID|POSTSCRIPT-NAME|--auto...",
          "Removes the links that activation made (a PostScript name deactivates every face\n"
          "of that name; --auto every face vellumine activated on its own for a font\n"
          "request). Files it did not make are never touched.",
          [](const Arguments& a, std::ostream& o, std::ostream& e) {
              return changeActivation(a, o, e, false);
          }}},
        {"set",
         {setUsage,
          "Named sets of faces, activated and deactivated together. Without arguments (or\n"
          "with list) lists the sets; create and delete make and remove a set (never its\n"
          "faces); add and remove put faces in and take them out (a PostScript name that\n"
          "several faces share must be given as a container id to add); show lists a set's\n"
          "faces as list does; activate and deactivate change every face of the set.",
          setCommand}},
        {"window",
         {"window [--show POSTSCRIPT-NAME] [--container ID]",
          "Opens vellumine's window (Qt): the library by family, a search field, previews\n"
          "drawn from the font files without activating them, each face's state and\n"
          "details, sets and duplicates. --show selects a face, by container id when given,\n"
          "else by PostScript name; a window that runs already is brought to the front on it.",
          [](const Arguments& a, std::ostream& o, std::ostream& e) {
              return guiCommand(guiCommands.window, "window", a, o, e);
          }}},
        {"open-url",
         {"open-url URL",
          "Opens an http or https address in the desktop's browser (through xdg-open or\n"
          "$BROWSER). The server runs it for a buy request.",
          [](const Arguments& a, std::ostream& o, std::ostream& e) {
              return guiCommand(guiCommands.openUrl, "open-url", a, o, e);
          }}},
        {"status",
         {"status",
          "Shows the library (its URL, password masked, and where it was chosen) and the\n"
          "activation folder, the number of faces, whether the server runs, the faces\n"
          "activated automatically and for which application, in a shared library how many\n"
          "workstations use each face, which applications hear of changes, and recent show\n"
          "and buy requests.",
          statusCommand}},
        {"remove",
         {"remove ID|POSTSCRIPT-NAME...",
          "Removes faces from the library (a PostScript name removes every face of that\n"
          "name), deactivating them here first. A PostgreSQL library also drops the stored\n"
          "bytes that no face uses any more; the font files of an SQLite library stay.",
          removeCommand}},
        {"grant",
         {"grant ROLE read|write",
          "Gives an existing PostgreSQL role the rights it needs on the library: read lets it\n"
          "list, request and activate fonts (and record its workstation's activations);\n"
          "write also lets it add and remove faces and change sets. Run it as the library's\n"
          "owner.",
          grantCommand}},
        {"check",
         {"check [--repair]",
          "Checks the catalog's integrity and compares it with the activation folder: every\n"
          "face recorded active has its link, every link vellumine made is recorded. With\n"
          "--repair, records of lost links are dropped and unrecorded links removed.\n"
          "Exit status 1 while a problem remains.",
          checkCommand}},
        {"config",
         {configUsage,
          "Shows or changes the settings kept in the catalog; the switches are on by default.\n"
          "auto-activate: a font request activates each requested font that is not active and\n"
          "of which the library holds exactly one face of the requested type; off, the reply\n"
          "asks the application to show its fonts dialog instead.\n"
          "auto-deactivate: faces activated automatically are deactivated a few seconds after\n"
          "every application that asked for them has left the session bus.\n"
          "store-url: where a buy request sends the browser, %s standing for the font's name\n"
          "(default: a web search); a face of the library with a vendor URL opens that.\n"
          "system-fonts: a font request counts a font fontconfig already lists outside\n"
          "vellumine's activation folder as present and active (no container identifier),\n"
          "and never activates the library's copy of it.",
          configCommand}},
        {"install-launcher",
         {"install-launcher [--data-home DIR]",
          "Writes the desktop entry org.vellumine.Vellumine.Launcher3.desktop, which starts\n"
          "this vellumine's `serve`, into DIR/applications (default: $XDG_DATA_HOME).",
          installLauncherCommand}},
    };
    return table;
}

void printUsage(std::ostream& out) {
    out << "usage: vellumine [--library URL] COMMAND [ARGUMENTS]\n\ncommands:\n";
    for (const auto& [name, command] : commands()) {
        out << "  " << command.usage << "\n";
    }
    out << "\n`vellumine COMMAND --help` describes a command, `vellumine --version` tells the\n"
           "version. The library is a URL, sqlite:PATH or postgresql://…, taken from\n"
           "$VELLUMINE_LIBRARY, else --library, else `library = URL` in\n"
           "$XDG_CONFIG_HOME/vellumine/vellumine.conf, else sqlite:$XDG_DATA_HOME/vellumine/\n"
           "library.db. Active fonts are linked into $XDG_DATA_HOME/fonts/vellumine/.\n"
           "VELLUMINE_LOG=1 logs to standard error.\n";
}

} // namespace

int runCli(const Arguments& given, std::ostream& out, std::ostream& errors,
           const GuiCommands& gui) {
    guiCommands = gui;
    Arguments arguments = given;
    setLibraryOption(std::nullopt);
    if (!arguments.empty() && arguments[0].rfind("--library=", 0) == 0) {
        setLibraryOption(arguments[0].substr(10));
        arguments.erase(arguments.begin());
    } else if (!arguments.empty() && arguments[0] == "--library") {
        if (arguments.size() < 2) {
            errors << "vellumine: --library needs a library URL (sqlite:PATH or postgresql://…)\n";
            return usageError;
        }
        setLibraryOption(arguments[1]);
        arguments.erase(arguments.begin(), arguments.begin() + 2);
    }
    if (!arguments.empty() && arguments[0] == "--version") {
        out << "vellumine " << VELLUMINE_VERSION << "\n";
        return 0;
    }
    if (arguments.empty() || arguments[0] == "--help" || arguments[0] == "-h" ||
        arguments[0] == "help") {
        printUsage(arguments.empty() ? errors : out);
        return arguments.empty() ? usageError : 0;
    }
    const auto command = commands().find(arguments[0]);
    if (command == commands().end()) {
        errors << "vellumine: unknown command '" << arguments[0] << "'\n";
        printUsage(errors);
        return usageError;
    }
    const Arguments rest(arguments.begin() + 1, arguments.end());
    if (wantsHelp(rest)) {
        out << "usage: vellumine " << command->second.usage << "\n\n"
            << command->second.help << "\n";
        return 0;
    }
    try {
        return command->second.run(rest, out, errors);
    } catch (const std::exception& error) {
        errors << "vellumine " << arguments[0] << ": " << error.what() << "\n";
        return 1;
    }
}

} // namespace Vellumine
