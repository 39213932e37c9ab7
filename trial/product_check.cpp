#include "trial/product_check.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "installer/files.h"
#include "installer/show.h"
#include "trial/exit_status.h"
#include "trial/places.h"
#include "trial/undo_check.h"
#include "trial/unknown_name.h"

namespace fs = std::filesystem;
using installer::normalised;
using installer::ProductComponent;
using installer::Session;
using installer::show;
using Texts = std::vector<std::string>;

namespace trial {

namespace {

bool holds(std::string const& text, std::string const& part) {
    return text.find(part) != std::string::npos;
}

std::string in_lower_case(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char character) { return std::tolower(character); });
    return text;
}

bool is_there(fs::path const& path) {
    std::error_code unreachable;
    return fs::exists(path, unreachable);
}

bool is_executable(fs::path const& file) {
    std::error_code unreachable;
    return (fs::status(file, unreachable).permissions() & fs::perms(0111)) != fs::perms::none;
}

bool is_in_search_path(std::string const& program) {
    char const* const directories = std::getenv("PATH");
    std::istringstream list(directories ? directories : "/bin:/usr/bin");
    for (std::string directory; std::getline(list, directory, ':');)
        if (is_there(fs::path(directory) / program)) return true;
    return false;
}

/// What is wrong with the beginning of a script that is to be run, or nothing.
std::string fault_of_first_line(fs::path const& script) {
    if (fault_of_directory(script).empty()) return "is a directory; it has to be a script";
    std::ifstream stream(script);
    std::string line;
    if (!stream.is_open()) return "";
    std::getline(stream, line);
    auto const begins_with = [&](char const* text) { return line.rfind(text, 0) == 0; };
    if (begins_with("\xff\xfe") || begins_with("\xfe\xff"))
        return "is in UTF-16, which no interpreter reads; save it as UTF-8";
    if (holds(line, std::string(1, '\0'))) return ""; // a program and no script
    if (begins_with("\xef\xbb\xbf"))
        return "begins with a byte order mark, so its first line names no interpreter and /bin/sh "
               "runs it; save it without the mark";
    if (!line.empty() && line.back() == '\r')
        return "has lines that end in a carriage return; save it with the line ends of Unix";
    if (!begins_with("#!"))
        return "has no first line that names its interpreter, so /bin/sh runs it; write one, such "
               "as #!/bin/sh";
    std::string interpreter, program;
    std::istringstream(line.substr(2)) >> interpreter >> program;
    if (!is_there(interpreter))
        return "names " + show(interpreter) + " in its first line, which is not there";
    if (fs::path(interpreter).filename() != "env" || program[0] == '-' || holds(program, "="))
        return "";
    if (program.empty())
        return "names no program behind " + show(interpreter) + " in its first line";
    return is_in_search_path(program)
               ? ""
               : "names " + show(program) + " in its first line, which no directory in PATH has";
}

Texts names_in(fs::path const& directory) {
    Texts names;
    std::error_code absent;
    for (fs::directory_entry const& entry : fs::directory_iterator(directory, absent))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

/// Whether somebody expects that a shell reads it.
bool is_to_be_replaced(fs::path const& path) {
    std::string const name = path;
    return !is_there(path.parent_path()) && (name[0] == '~' || name[0] == '$' || holds(name, "${"));
}

/// What is wrong with the directory that VORN_INSTALL_DIR and the value make, or nothing.
std::string fault_of_joined(Session const& session, std::string const& name,
                            std::string const& value) {
    std::string const directory = session.value("VORN_INSTALL_DIR");
    std::string const subdirectory = session.value("VORN_INSTALL_SUBDIR");
    std::string const fault = fault_of_directory(directory + value);
    if (fault.empty()) return "";
    std::string remedy = "is it misspelt?";
    for (auto const& [missing, better] :
         {std::pair("VORN_INSTALL_SUBDIR and a slash", subdirectory + "/" + value),
          {"a slash", "/" + value},
          {"VORN_INSTALL_SUBDIR", subdirectory + value}})
        if (fault_of_directory(directory + better).empty())
            remedy = std::string("with ") + missing + " between them it is: write " + name + " = " +
                     show(better);
    return "VORN_INSTALL_DIR and " + name + " make " + show(directory + value) + ", which " +
           fault + "; " + remedy;
}

/// Where this product is integrated elsewhere, or nothing.
std::string find_earlier_copy(Session const& session) {
    std::string const earlier = copy_to_be_undone(session);
    if (is_same_place(earlier, copy_directory(session)) || !is_there(earlier)) return "";
    return "this product is integrated as " + show(earlier) +
           "; uninstall that first, for its de-integration script will be replaced";
}

class ProductCheck {
  public:
    explicit ProductCheck(Session const& session)
        : session_(session), installed_(installed_components(session)) {
        for (ProductComponent const* component : installed_)
            if (holds(component->name, "workbench")) for_workbench_.push_back(component);
    }

    Texts find() {
        check_paths();
        check_product();
        check_components();
        if (!for_workbench_.empty()) check_configuration();
        check_preferences();
        return std::move(mistakes_);
    }

  private:
    void check_paths() {
        std::vector<std::pair<std::string, std::string>> paths;
        for (char const* const name : {"WB_INTEGRATION_PATH", "log_file"})
            paths.emplace_back(name, session_.value(name));
        for (std::string const& directory : search_path(session_))
            paths.emplace_back("DEFAULT_SEARCH_PATH", directory);
        for (auto const& [name, path] : paths)
            if (is_to_be_replaced(path))
                add(name + " is " + show(path) +
                    ", and nothing but ${SESSION_DIR} is replaced in it; write the path out");
        if (holds(" " + session_.value("DEFAULT_SEARCH_PATH"), "  "))
            add("DEFAULT_SEARCH_PATH has two blanks in a row, or begins with one; that is an empty "
                "directory, in which /install.properties would count; write single blanks");
        for (std::string const& directory :
             {workbench_directory(session_), session_.value("VORN_INSTALL_DIR")})
            if (!directory.empty() && directory[0] != '/' && !is_to_be_replaced(directory))
                add(show(directory) + " is relative: the integration can be undone from this "
                                      "folder only; write it from the root");
        fs::path const folder = log_file(session_).parent_path();
        if (!folder.empty() && !is_there(folder) && !is_to_be_replaced(session_.value("log_file")))
            add("there is no folder " + show(folder.string()) + " for the log; make it");
    }

    void check_product() {
        if (!for_workbench_.empty())
            add(fault_of_joined(session_, "subdir", for_workbench_[0]->subdirectory));
        fs::path const folder = fs::path(deintegration_script(session_)).parent_path();
        std::string const fault = fault_of_directory(folder);
        if (is_there(folder.parent_path()) && !fault.empty())
            add(show(folder.string()) + " " + fault +
                "; the product has to bring that directory, for the de-integration script");
    }

    void check_components() {
        if (for_workbench_.empty()) {
            std::string names = installed_.empty() ? "none is to be installed" : "";
            for (ProductComponent const* component : installed_) {
                names += (names.empty() ? "" : ", ") + show(component->name);
                if (holds(in_lower_case(component->name), "workbench"))
                    names += " (differs in case only)";
            }
            add("no component to be installed has \"workbench\" in its name: " + names);
        }
        if (for_workbench_.size() > 1)
            add("several components have \"workbench\" in their names; the first one counts, " +
                show(for_workbench_[0]->name));
    }

    void check_configuration() {
        auto const [deciding, name, other] = configuration(session_);
        if (name.empty()) return check_case();
        std::string const part =
            normalised(session_.value("VORN_INSTALL_DIR") + for_workbench_[0]->subdirectory);
        if (is_there(part) && !is_there(part + "/" + name))
            add("the listed path " + show(deciding) + " decides that the configuration is " +
                show(name) + ", and there is no such directory in " + show(part) +
                "; its name has to be wr-qev- and four characters, its files listed first");
        else if (name.size() < std::string("wr-qev-1234").size())
            add("the configuration is " + show(name) +
                "; its name has to be wr-qev- and four characters, for what follows can become "
                "part of it");
        if (!other.empty())
            add("files of two configurations are listed: " + show(name) +
                " counts, for it is listed first, and " + show(other) +
                " does not; is one of them an old version?");
        if (is_there(part + "/" + name)) check_scripts(part + "/" + name + "/wr-setup");
        add(find_earlier_copy(session_));
    }

    void check_case() {
        std::string hint;
        for (std::string const& listed : listed_files(session_))
            if (hint.empty() && holds(in_lower_case(listed), "wr-qev-"))
                hint = "; " + show(listed) + " differs in case";
        add("no listed path contains \"wr-qev-\", so there is no configuration" + hint);
    }

    /// A missing uninstall script is a failure later, when the copy has none.
    void check_scripts(std::string const& directory) {
        if (std::string const fault = fault_of_directory(directory); !fault.empty())
            return add(show(directory) + " " + fault + "; the two scripts have to be in it");
        std::string const name = session_.value("WORKBENCH_SCRIPT_NAME");
        std::string const setup = directory + "/" + name + ".sh";
        if (!is_there(setup))
            add("there is no " + show(name + ".sh") + " in " + show(directory) + ", but " +
                enumerated(names_in(directory)) + "; " +
                (name.empty() ? "WORKBENCH_SCRIPT_NAME is not set"
                              : "WORKBENCH_SCRIPT_NAME has to be the name of one of them, "
                                "written without .sh"));
        else if (!is_executable(setup)) add(show(setup) + " is not executable; chmod +x it");
        for (std::string const& script : {setup, directory + "/uninst_wr_qev.sh"})
            if (std::string const fault = fault_of_first_line(script); !fault.empty())
                add(show(script) + " " + fault);
    }

    void check_preferences() {
        std::string const text = session_.value("WB_PREFS");
        if (text.empty()) return;
        for (std::string listed : listed_files(session_)) {
            if (!holds(listed, text)) continue;
            std::replace(listed.begin(), listed.end(), '\\', '/');
            std::string const location =
                session_.value("VORN_INSTALL_DIR") + "/" + session_.value("VORN_INSTALL_SUBDIR");
            std::string const file = normalised(location + "/" + listed);
            if (is_there(location) && !is_there(file))
                add("there is no preferences file " + show(file) + ", which the listed path " +
                    show(listed) +
                    " makes; it has to be listed by its path in VORN_INSTALL_DIR "
                    "and VORN_INSTALL_SUBDIR");
            return;
        }
        add("no listed path contains " + show(text) + ", the text in WB_PREFS");
    }

    /// An empty sentence is none.
    void add(std::string const& sentence) {
        if (!sentence.empty()) mistakes_.push_back(sentence);
    }

    Session const& session_;
    std::vector<ProductComponent const*> installed_, for_workbench_;
    Texts mistakes_;
};

} // namespace

Texts find_mistakes(Session const& session) {
    return ProductCheck(session).find();
}

std::string find_other_copy(Session const& session) {
    fs::path const copy = copy_directory(session);
    if (names_in(copy).empty() || is_same_place(copy_to_be_undone(session), copy)) return "";
    return show(copy.string()) +
           " is there, and not by this product, for no script of it names that. If it is another "
           "product's, the next uninstall would remove both; give yours a name of its own. If an "
           "earlier try left it, remove it";
}

std::string find_integration(Session const& session) {
    for (std::string const& sentence : {find_other_copy(session), find_earlier_copy(session)})
        if (!sentence.empty()) return sentence;
    fs::path const copy = copy_directory(session);
    if (names_in(copy).empty()) return "";
    return "the workbench holds an earlier integration already, " + show(copy.string()) +
           "; uninstall that first, then check again";
}

void require_product(Session const& session) {
    std::string const directory = session.value("VORN_INSTALL_DIR");
    std::string const subdirectory = session.value("VORN_INSTALL_SUBDIR");
    std::string fault = fault_of_directory(directory);
    if (!directory.empty() && !fault.empty())
        throw StartError("VORN_INSTALL_DIR is " + show(directory) + ", which " + fault +
                         (is_to_be_replaced(directory) ? "; nothing but ${SESSION_DIR} is replaced "
                                                         "in it, so write the path out"
                                                       : ""));
    fault = fault_of_joined(session, "VORN_INSTALL_SUBDIR", subdirectory);
    if (!(directory + subdirectory).empty() && !fault.empty()) throw StartError(fault);
}

} // namespace trial
