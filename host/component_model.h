#pragma once

// The installer's model of the product: a session holds components, and a component's provider
// knows the files that it installs. All objects are the installer's; the plug-in only reads them.

#include <string>
#include <vector>

/// Answers which files a component installs. Its operations are virtual and reached by their
/// position, so `fileList` has to stay the ninth and nothing virtual may come before `query`.
class ComponentProvider {
  public:
    /// An opaque handle for the files under `component`, or null where there are none. The
    /// plug-in passes empty strings for the other two arguments.
    virtual void* query(std::string first, std::string component, std::string third) = 0;

    virtual void unused2() {}
    virtual void unused3() {}
    virtual void unused4() {}
    virtual void unused5() {}
    virtual void unused6() {}
    virtual void unused7() {}
    virtual void unused8() {}

    /// The paths of the installed files, for a handle that `query` of this provider returned. A
    /// path may be empty, and its separators may be slashes or backslashes.
    virtual std::vector<std::string> fileList(void* handle) = 0;

  protected:
    ~ComponentProvider() = default;
};

class Component {
  public:
    std::string name;

    /// Whether the component is to be installed.
    bool installCondition();

    /// The sub-directory, below the product's directory, into which the component installs.
    std::string subdir();

    /// Who lists the component's files, or null where it has none. Stays the installer's.
    ComponentProvider* provider();
};

class TSD {
  public:
    /// The components in the installer's order. An entry may be null.
    std::vector<Component*> components();
};

/// One run of the installer.
struct session_t {
    TSD tsd;
};
