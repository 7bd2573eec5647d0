// What an EnvHandle points at.
#pragma once

#include "bvutil/env.h"
#include "env/tree.h"

#include <memory>

struct EnvHandleRecord {
    // A main environment.
    EnvHandleRecord(long tag, EnvHandleRecord* fallback_environment);
    // A sub-environment of an environment, standing on an element.
    EnvHandleRecord(EnvHandleRecord& opened_from, env::Element* element);
    ~EnvHandleRecord();
    EnvHandleRecord(const EnvHandleRecord&) = delete;
    EnvHandleRecord& operator=(const EnvHandleRecord&) = delete;

    bool is_sub() const { return !own_tree; }
    env::Tree& tree() const { return *shared_tree; }
    // A sub-environment's own element; null once it was deleted.
    env::Element* element() const { return pin.element(); }

    std::unique_ptr<env::Tree> own_tree; // main environments
    env::Tree* shared_tree;
    env::Pin pin;                 // sub-environments
    EnvHandleRecord* opened_from; // sub-environments
    EnvHandleRecord* fallback;
    long layer_tag;
    int open_subs = 0;       // sub-environments, layered environments and walks that refer to this
    bool being_read = false; // a section under construction hangs on its tree
};

namespace env {

// Keeps an environment from being closed while a walk or a read works on it.
class Busy {
  public:
    explicit Busy(EnvHandle env) : m_env(env) { ++m_env->open_subs; }
    ~Busy() { --m_env->open_subs; }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;

  private:
    EnvHandle m_env;
};

} // namespace env
