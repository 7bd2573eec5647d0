// Settings files on top of each other.
#pragma once

#include "tools/bvutil/env_file.h"

#include <memory>
#include <string>
#include <vector>

// Environments of files, each with the one behind it as its fallback. Layer tags number them from 0.
class Layers {
  public:
    // The files from the top down. Throws CommandFailed when one cannot be read.
    Layers(std::vector<std::string> files, MessageCapture& messages);
    ~Layers();
    Layers(const Layers&) = delete;
    Layers& operator=(const Layers&) = delete;

    EnvHandle top() const { return m_layers.front()->get(); }
    EnvHandle env(std::size_t layer) const { return m_layers[layer]->get(); }
    const std::string& file(std::size_t layer) const { return m_files[layer]; }
    std::size_t count() const { return m_files.size(); }

    // Puts all that can be read through the layers into an empty environment, what the top has first. A block
    // behind a value of its name is left out: one tree cannot have both.
    void gather(EnvHandle into, MessageCapture& messages) const;
    // The layer that answers for an element, when it is of the kind; else -1. The path's names are separated
    // by the delimiter in use.
    long layer_of(const std::string& section, const std::string& path, int kind = ENV_IS_DATA) const;

  private:
    std::vector<std::string> m_files;
    std::vector<std::unique_ptr<Environment>> m_layers;
};
