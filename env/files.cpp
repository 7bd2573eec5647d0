#include "env/files.h"

#include "env/char_sink.h"
#include "env/char_source.h"
#include "env/handle.h"
#include "env/reader.h"
#include "env/report.h"
#include "env/writer.h"

#include <cstdio>
#include <memory>
#include <string>

namespace env {

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

bool refuse_sub(EnvHandle env, const char* message) {
    if (env->is_sub()) report(message);
    return env->is_sub();
}

// A callback that reads into the environment that is being read would take the tree from under the reader.
class BeingRead {
  public:
    explicit BeingRead(EnvHandle env) : m_busy(env), m_env(env) { m_env->being_read = true; }
    ~BeingRead() { m_env->being_read = false; }
    BeingRead(const BeingRead&) = delete;
    BeingRead& operator=(const BeingRead&) = delete;

  private:
    const Busy m_busy;
    EnvHandle m_env;
};

} // namespace

EnvStatus read_from(EnvReadChar read_char, void* source, EnvHandle env) {
    if (refuse_sub(env, "can not read subenv") || env->being_read) return ENV_INVALID;
    const BeingRead reading(env);
    env->tree().clear();
    CallbackSource characters(read_char, source);
    return Reader(characters, env->tree()).read();
}

EnvStatus read_from_file(const char* file_name, EnvHandle env) {
    const File file(std::fopen(file_name, "rb"));
    if (!file) {
        report(("cann't open to read: " + std::string(file_name)).c_str());
        return ENV_INVALID;
    }
    if (refuse_sub(env, "can not read subenv") || env->being_read) return ENV_INVALID;
    const BeingRead reading(env);
    FileSource source(file.get());
    env->tree().clear();
    return Reader(source, env->tree()).read();
}

void write_to(EnvWriteChar write_char, void* sink, EnvHandle env) {
    if (refuse_sub(env, "can not write subenv")) return;
    const Busy writing(env);
    CallbackSink characters(write_char, sink);
    Writer(characters, env->tree()).write();
}

void write_to_file(const char* file_name, EnvHandle env) {
    const File file(std::fopen(file_name, "wb"));
    if (!file) {
        report("cann't open to write:"); // kept: the name is not told
        return;
    }
    FileSink characters(file.get());
    if (!refuse_sub(env, "can not write subenv")) Writer(characters, env->tree()).write();
}

} // namespace env
