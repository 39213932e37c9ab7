#pragma once

// The rights of this process and of what it runs. Failures throw Refused.

#include <set>

namespace sandbox {

/// Whether this process can do without a user namespace, as root can who is not confined.
bool has_rights_of_root();

/// Those that nothing in the sandbox gets: all but a short list, and what this process lets nobody
/// have now. To be asked before a user namespace is entered, for that gives all of them back.
std::set<int> forbidden_capabilities();

/// Takes them from all that is run. An ordinary user's process itself keeps only what ReadingRights
/// needs, of which what it runs inherits nothing.
void drop_capabilities(std::set<int> const& forbidden, bool is_root);

/// While it lives, an ordinary user's process in the sandbox can look into what that user has
/// closed.
class ReadingRights {
  public:
    ReadingRights() { use(true); }
    ~ReadingRights() { use(false); }
    ReadingRights(ReadingRights const&) = delete;
    ReadingRights& operator=(ReadingRights const&) = delete;

  private:
    static void use(bool is_used);
};

} // namespace sandbox
