#pragma once

#include <map>
#include <string>
#include <vector>

struct file_handle;

class ComponentProvider {
  public:
    virtual file_handle* query(std::string, std::string, std::string) = 0;
    virtual int unused2(int) { return {}; }
    virtual int unused3(std::string) { return {}; }
    virtual int unused4() { return {}; }
    virtual int unused5() { return {}; }
    virtual int unused6() { return {}; }
    virtual int unused7() { return {}; }
    virtual std::vector<int> unused8() { return {}; }
    virtual std::vector<std::string> fileList(file_handle*) = 0;
    virtual ~ComponentProvider() = default;
};

class Component {
  public:
    virtual ~Component();
    bool installCondition();
    std::string subdir();
    ComponentProvider* provider();

  private:
    std::map<std::string, std::string> attributes_;

  public:
    std::string name;
};

class TSD {
  public:
    virtual ~TSD();
    std::vector<Component*> components();
};

class session_t {
    std::map<std::string, std::string> variables_;

  public:
    TSD tsd;
};
