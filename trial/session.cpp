#include "trial/session.h"

#include <cassert>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <iterator>

namespace trial {

namespace {

Session* current_session = nullptr;

/// Whether the text is a de-integration script to its last line.
bool is_complete_script(std::string const& text) {
    std::string const end = "\"\n";
    return text.find("\nrm -rf \"") != std::string::npos &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

} // namespace

Session::Session() {
    assert(!current_session);
    current_session = this;
}

Session::~Session() {
    current_session = nullptr;
}

Session& Session::current() {
    return *current_session;
}

int Session::run(int (*action)(session_t*)) {
    report = {};
    deintegration_script_.clear();
    int const result = action(this);
    check_deintegration_script();
    return result;
}

void Session::record(std::string const& call) {
    calls.push_back(call);
    if (trace) std::cerr << call << '\n';
}

void Session::open_log(std::string const& file) {
    log_.close();
    log_.clear();
    if (file.empty()) return;
    log_.open(file, std::ios::app);
    if (!log_.is_open())
        fail("the log " + show(file) + " cannot be opened (" + std::strerror(errno) +
             "), its lines go to standard error");
}

void Session::write_log(std::string const& line) {
    if (log_.is_open()) {
        if (log_ << line << std::endl) return;
        fail("the log cannot be written, its lines go to standard error");
        log_.close();
    }
    std::cerr << line << '\n';
}

void Session::check_deintegration_script() {
    std::error_code absent; // that it could not be made is in the report already
    if (!std::filesystem::is_regular_file(deintegration_script_, absent)) return;
    std::ifstream script(deintegration_script_);
    if (!is_complete_script({std::istreambuf_iterator<char>(script), {}}))
        fail("the de-integration script " + show(deintegration_script_) +
             " was written only in part; is the disk full?");
}

} // namespace trial
