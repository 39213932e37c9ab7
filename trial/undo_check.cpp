#include "trial/undo_check.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "installer/show.h"
#include "trial/places.h"

namespace fs = std::filesystem;
using installer::Outcome;
using installer::Session;
using installer::show;

namespace trial {

namespace {

/// Why this user cannot run the file, or nothing where that can be done.
std::string why_not_executable(std::string const& file) {
    std::error_code unreachable;
    if (!fs::exists(file, unreachable)) return "is not there";
    if (!fs::is_regular_file(file, unreachable)) return "is no regular file";
    if (access(file.c_str(), X_OK) == 0) return "";
    return std::string("cannot be executed (") + std::strerror(errno) + ")";
}

void check_uninstall_script(std::string const& directory, Outcome& outcome) {
    std::string const script = directory + "/wr-setup/uninst_wr_qev.sh";
    std::string const obstacle = why_not_executable(script);
    if (!obstacle.empty())
        outcome.fail("the uninstall script " + show(script) + " " + obstacle +
                     ", so nothing undoes what the setup script does; is it in the product, "
                     "executable?");
}

/// What is wrong with the de-integration script, and what to do; nothing where it will do.
std::string fault(std::string const& script, std::string const& removed, std::string const& copy) {
    std::error_code unreachable;
    bool const is_there = fs::exists(script, unreachable);
    if (is_there && !fs::is_regular_file(script, unreachable))
        return "is no regular file; remove it and integrate again";
    std::string const obstacle = why_not_executable(script);
    if (!removed.empty() && is_same_place(removed, copy))
        return obstacle.empty() ? "" : obstacle + "; its mode has to be 0755, its mount not noexec";
    std::string const folder = fs::path(script).parent_path();
    std::string const fault_of_folder = fault_of_directory(folder);
    if (!fault_of_folder.empty())
        return "cannot be written: " + show(folder) + " " + fault_of_folder;
    if (access((is_there ? script : folder).c_str(), W_OK) != 0)
        return std::string("cannot be written (") + std::strerror(errno) + ")";
    if (removed.empty())
        return "is there only in part; is the disk full? Make room and integrate again";
    return "removes " + show(removed) + " and not the copy; integrate again";
}

/// Why there is no copy to be removed, and what to do.
std::string why_no_copy(fs::path const& copy) {
    std::error_code unreachable;
    if (fs::exists(copy.parent_path(), unreachable)) return "is it uninstalled already?";
    if (copy.is_relative()) return "uninstall from the folder from which it was installed";
    return "the workbench was moved or removed. Where it was moved, the product is still "
           "integrated in it; move it back and uninstall again";
}

} // namespace

bool is_same_place(std::string const& one, std::string const& other) {
    std::error_code unreachable;
    return fs::weakly_canonical(one, unreachable) == fs::weakly_canonical(other, unreachable);
}

std::string copy_to_be_undone(Session const& session) {
    std::error_code unreachable;
    if (!fs::is_regular_file(deintegration_script(session), unreachable)) return "";
    std::ifstream stream(deintegration_script(session));
    std::string const script{std::istreambuf_iterator<char>(stream), {}};
    std::size_t at = 0;
    auto const skip = [&](std::string const& text) {
        at = script.compare(at, text.size(), text) == 0 ? at + text.size() : script.size();
    };
    auto const word_in_double_quotes = [&] {
        std::string word;
        for (; at < script.size() && script[at] != '"'; ++at) {
            if (script[at] == '\\' && at + 1 < script.size()) ++at;
            word += script[at];
        }
        return word;
    };
    skip("#!/bin/sh\n/bin/sh -c \"");
    word_in_double_quotes();
    skip("\"\nrm -rf \"");
    std::string const directory = word_in_double_quotes();
    bool const is_whole = script.compare(at, std::string::npos, "\"\n") == 0;
    return is_whole ? directory : "";
}

void check_undo_is_possible(Session const& session, std::string const& earlier_copy,
                            Outcome& outcome) {
    std::string const script = deintegration_script(session);
    std::string const fault_of_script = fault(script, copy_to_be_undone(session), outcome.copy);
    if (!fault_of_script.empty())
        outcome.fail("the de-integration script " + show(script) + " " + fault_of_script);
    check_uninstall_script(outcome.copy, outcome);
    std::error_code unreachable;
    if (fs::exists(earlier_copy, unreachable) && !is_same_place(earlier_copy, outcome.copy))
        outcome.fail(
            "the earlier integration in " + show(earlier_copy) +
            " has lost its de-integration script to this one, which is in another workbench "
            "or has another configuration name; undo the earlier one by hand, and the next "
            "time uninstall it first");
}

void check_before_undo(Session const& session, std::string const& copy, Outcome& outcome) {
    std::error_code unreachable;
    std::string const script = deintegration_script(session);
    if (!fs::exists(script, unreachable)) {
        fs::path const expected = copy_directory(session);
        bool const is_copy_there = !expected.empty() && fs::exists(expected, unreachable);
        outcome.fail_for_good(is_copy_there
                                  ? "nothing undoes the integration in " + show(expected.string()) +
                                        ", for there is no " + show(script) +
                                        "; where VORN_INSTALL_DIR and VORN_INSTALL_SUBDIR are as "
                                        "at the install, run the uninstall script in its wr-setup, "
                                        "then remove it"
                                  : "the product is not integrated: there is no " + show(script));
    } else if (copy.empty()) {
        std::string fault = "is there only in part";
        if (access(script.c_str(), R_OK) != 0) fault = "cannot be read";
        else if (!fs::is_regular_file(script, unreachable)) fault = "is no regular file";
        outcome.fail("the de-integration script " + show(script) + " " + fault +
                     "; integrate again, then uninstall");
    } else if (fs::is_directory(fs::symlink_status(copy, unreachable))) {
        check_uninstall_script(copy, outcome);
    } else {
        outcome.fail("the directory " + show(copy) +
                     " that the de-integration script removes was not there; " + why_no_copy(copy));
    }
}

void check_is_removed(std::string const& copy, Outcome& outcome) {
    std::error_code unreachable;
    if (fs::exists(fs::symlink_status(copy, unreachable)))
        outcome.fail("the directory " + show(copy) + " is still there; see the output");
}

} // namespace trial
