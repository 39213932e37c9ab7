#include "trial/check.h"

#include <fnmatch.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "sandbox/processes.h"
#include "trial/copies.h"
#include "trial/places.h"
#include "trial/preview.h"
#include "trial/product_check.h"
#include "trial/undo_check.h"

namespace fs = std::filesystem;
using installer::Session;
using sandbox::Change;
using Texts = std::vector<std::string>;

namespace trial {

namespace {

std::string brief(Change const& change) {
    return change.letter + (" " + change.path);
}

/// The first three, and how many more there are.
std::string first_of(Texts const& changes) {
    std::string list;
    for (std::size_t number = 0; number < changes.size() && number < 3; ++number)
        list += (number == 0 ? "" : ", ") + changes[number];
    return list +
           (changes.size() > 3 ? " and " + std::to_string(changes.size() - 3) + " more" : "");
}

std::string text_of(fs::path const& file) {
    return {std::istreambuf_iterator<char>(std::ifstream(file).rdbuf()), {}};
}

/// Installs, uninstalls and judges.
class Check {
  public:
    /// Throws StartError where an integration is there already, for it would be undone too.
    Check(Session const& session, Texts const& ignored, Sequence& sequence, Report& report)
        : session_(session), ignored_(ignored), places_(session), sequence_(sequence),
          report_(report) {
        std::string const earlier = find_integration(session);
        if (!earlier.empty()) throw StartError(earlier);
    }

    void run(ChangeReport const& changes) {
        sequence_.install();
        changes.show("changed by the install", changes.find());
        if (!sequence_.has_integrated()) {
            if (!report_.has_failed()) fail("nothing was checked, for nothing was integrated");
            return;
        }
        sequence_.call("perform_deintegration");
        for (std::string const& process : sandbox::orphans())
            fail("still running after the uninstall: " + process);
        judge(changes);
    }

  private:
    void judge(ChangeReport const& changes) {
        Texts remarks, in_workbench, in_product, elsewhere;
        std::vector<Change> const left = left_unexpectedly(changes, remarks);
        changes.show("left by the uninstall", left, remarks);
        for (Change const& change : left) {
            if (is_of_workbench(change)) in_workbench.push_back(brief(change));
            else if (places_.is_in_product(change.path)) in_product.push_back(brief(change));
            else elsewhere.push_back(brief(change));
        }
        if (!in_workbench.empty())
            fail("the uninstall leaves the workbench changed: " + first_of(in_workbench));
        else if (!places_.workbench.empty()) report_.success("The workbench is as it was.");
        if (!elsewhere.empty())
            fail("the uninstall leaves changes beside the workbench and the product: " +
                 first_of(elsewhere));
        if (!in_product.empty())
            report_.note("the uninstall leaves the product changed: " + first_of(in_product));
    }

    /// What does not count becomes a remark: what is left by design, and what is ignored.
    std::vector<Change> left_unexpectedly(ChangeReport const& changes, Texts& remarks) const {
        std::vector<Change> left;
        std::string by_design;
        int preferences_files = 0;
        for (Change const& change : changes.find()) {
            bool const may_be_left = !is_of_workbench(change);
            if (may_be_left && is_whole_script(change)) by_design = "the de-integration script";
            else if (may_be_left && has_only_location(change, changes)) ++preferences_files;
            else if (may_be_left && is_ignored(change))
                remarks.push_back("ignored: " + brief(change));
            else left.push_back(change);
        }
        if (preferences_files != 0)
            by_design += (by_design.empty() ? "" : ", ") + std::string("the location in ") +
                         std::to_string(preferences_files) + " preferences file" +
                         (preferences_files == 1 ? "" : "s");
        if (!by_design.empty()) remarks.insert(remarks.begin(), "by design: " + by_design);
        return left;
    }

    /// A directory that is gone took along what was in it.
    bool is_of_workbench(Change const& change) const {
        fs::path const place = fs::path(change.path) / "";
        bool const held_it = (places_.workbench / "").string().rfind(place, 0) == 0;
        return places_.is_in_workbench(change.path) || (held_it && change.letter != 'M');
    }

    bool is_whole_script(Change const& change) const {
        return change.path == fs::weakly_canonical(deintegration_script(session_)) &&
               !copy_to_be_undone(session_).empty();
    }

    /// Whether nothing but the host changed the file, where it set the product's location.
    bool has_only_location(Change const& change, ChangeReport const& changes) const {
        auto const saved = sequence_.saved_preferences().find(change.path);
        return saved != sequence_.saved_preferences().end() && change.letter == 'M' &&
               change.detail.empty() &&
               saved->second.first == text_of(changes.before(change.path)) &&
               saved->second.second == text_of(change.path);
    }

    bool is_ignored(Change const& change) const {
        return std::any_of(ignored_.begin(), ignored_.end(), [&](std::string const& pattern) {
            return fnmatch(pattern.c_str(), change.path.c_str(), FNM_PATHNAME | FNM_LEADING_DIR) ==
                   0;
        });
    }

    void fail(std::string const& sentence) { report_.failure("check", sentence); }

    Session const& session_;
    Texts const& ignored_;
    Places const places_; ///< as they are before a script can move them away
    Sequence& sequence_;
    Report& report_;
};

} // namespace

ExitStatus check(Session& session, Texts const& ignored, Sequence& sequence, Report& report,
                 bool in_sandbox) {
    Check check_of_both(session, ignored, sequence, report);
    auto const work = [&](ChangeReport const& changes) { check_of_both.run(changes); };
    return (in_sandbox ? run_in_sandbox : run_beside_copies)(session, report, work);
}

} // namespace trial
