// The environment store: whole documents, and single calls by the number of siblings. The yardsticks are a
// pass over the document's bytes that counts "=" and line ends, and a copy of them; those of 100,000 calls
// are those of the wide document, which has as many leaves.
#include "bench/bench.h"
#include "bench/env_documents.h"
#include "bvutil/env.h"

#include <array>
#include <cstdio>
#include <cstring>

namespace {

constexpr int runs = 11;
constexpr std::size_t calls = 100000;

class Document {
  public:
    Document(const char* file_name, const std::string& text)
        : name(file_name), m_text(text), m_copy(text.size(), ' ') {
        std::FILE* file = std::fopen(name, "wb");
        std::fwrite(text.data(), 1, text.size(), file);
        std::fclose(file);
        const std::vector<double> ms = yardsticks();
        std::printf("%s: %zu bytes, pass %.2f ms, memcpy %.2f ms\n", name, text.size(), ms[0], ms[1]);
    }
    ~Document() { std::remove(name); }
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    // Milliseconds, measured now: a busy machine slows down for seconds, and then beside the figure as well.
    std::vector<double> yardsticks() const {
        const double pass = bench::median_ms(runs, [&] {
            std::size_t found = 0;
            for (const char c : m_text) {
                found += c == '=' || c == '\n';
                asm volatile("" : : "r"(found)); // byte by byte, whatever the compiler could do
            }
        });
        const double memcpy_ms = bench::median_ms(runs, [&] {
            std::memcpy(m_copy.data(), m_text.data(), m_text.size());
            asm volatile("" : : "r"(m_copy.data()) : "memory");
        });
        return {pass, memcpy_ms};
    }

    const char* const name;

  private:
    const std::string m_text;
    mutable std::string m_copy;
};

// An environment that can be emptied by closing it.
class Env {
  public:
    ~Env() { close(); }
    Env() = default;
    Env(const Env&) = delete;
    Env& operator=(const Env&) = delete;
    operator EnvHandle() const { return m_handle; }
    void close() {
        if (m_handle) env_close(m_handle, 0);
        m_handle = nullptr;
    }
    void renew() {
        close();
        m_handle = env_open(0, nullptr);
    }

  private:
    EnvHandle m_handle = env_open(0, nullptr);
};

// Bytes of memory that the process has of its own.
std::size_t committed() {
    std::size_t total = 0;
    MEMORY_BASIC_INFORMATION info;
    for (char* at = nullptr; VirtualQuery(at, &info, sizeof info) != 0;
         at = static_cast<char*>(info.BaseAddress) + info.RegionSize)
        if (info.State == MEM_COMMIT && info.Type == MEM_PRIVATE) total += info.RegionSize;
    return total;
}

void show_documents(const bench::Table& table, const Document& big, const Document& wide,
                    const Document& deep) {
    const auto ms = [&](const char* work, const Document& document, double limit, double time) {
        table.row(work, time, "ms", {limit}, time, document.yardsticks());
    };
    const auto load = [](const Document& document) {
        Env env;
        return bench::median_ms(
            runs, [&] { env.renew(); }, [&] { env_read_file(document.name, env); });
    };
    const auto save = [](const Document& document) {
        Env env;
        env_read_file(document.name, env);
        const std::string copy = std::string(document.name) + ".copy";
        const double time = bench::median_ms(runs, [&] { env_write_file(copy.c_str(), env); });
        std::remove(copy.c_str());
        return time;
    };
    const auto sink = [&](int mode) {
        Env from, to;
        env_read_file(big.name, from);
        return bench::median_ms(
            runs, [&] { to.renew(); }, [&] { env_sink(to, from, mode); });
    };
    ms("load big", big, 44, load(big));
    ms("load wide", wide, 13, load(wide));
    ms("load deep", deep, 19, load(deep));
    Env env;
    const auto reload = [&] {
        env.renew();
        env_read_file(big.name, env);
    };
    ms("free big", big, 5, bench::median_ms(runs, reload, [&] { env.close(); }));
    ms("save big", big, 35, save(big));
    ms("save deep", deep, 15, save(deep));
    ms("copy big by env_sink, what is missing", big, 150, sink(0));
    ms("copy big by env_sink, overwriting", big, 150, sink(2));
}

// Paths to the children of one block, in an order that jumps about when asked to.
std::vector<std::array<char, 24>> paths_to(std::size_t siblings, std::size_t step) {
    std::vector<std::array<char, 24>> paths(calls);
    for (std::size_t i = 0; i < calls; ++i)
        std::snprintf(paths[i].data(), paths[i].size(), "block@name%u",
                      static_cast<unsigned>(i * step % siblings));
    return paths;
}

void show_calls(const bench::Table& table, const Document& wide) {
    const auto each = [&](const char* work, double limit, double time) {
        table.row(work, 1e6 * time / calls, "ns", {limit}, time, wide.yardsticks());
    };
    Env env;
    const auto fill = [&](const std::vector<std::array<char, 24>>& paths, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            env_put_long(env, "section", paths[i].data(), static_cast<long>(i));
    };
    const struct {
        std::size_t siblings;
        const char* work;
        double limit;
    } gets[] = {{10, "env_get_long, 10 siblings", 80},
                {1000, "env_get_long, 1,000 siblings", 120},
                {100000, "env_get_long, 100,000 siblings", 300}};
    for (const auto& [siblings, work, limit] : gets) {
        env.renew();
        fill(paths_to(siblings, 1), siblings);
        const auto asked = paths_to(siblings, 34807);
        each(work, limit, bench::median_ms(runs, [&] {
                 long value = 0;
                 for (const auto& path : asked)
                     env_get_long(env, "section", path.data(), 1, &value);
             }));
    }
    each("env_get_next, 100,000 children", 60, bench::median_ms(runs, [&] {
             char name[24], value[24];
             long external = 0;
             EnvStatus kind = env_get_first(env, "section", "block", 1, nullptr, sizeof name, name,
                                            sizeof value, value, &external);
             while (kind == ENV_IS_DATA)
                 kind = env_get_next(sizeof name, name, sizeof value, value, &external);
         }));
    const auto paths = paths_to(calls, 1);
    each("env_put_long, 100,000 into one block", 350,
         bench::median_ms(
             runs, [&] { env.renew(); }, [&] { fill(paths, calls); }));
    each("env_traverse, 100,000 children", 500, bench::median_ms(runs, [&] {
             env_traverse(
                 env, "section", "block", 1, [](EnvHandle, const char*, const char*, void*) {}, nullptr);
         }));
}

} // namespace

int main() {
    const Document big("big.env", documents::big());
    const Document wide("wide.env", documents::wide());
    const Document deep("deep.env", documents::deep());
    const bench::Table table({"pass", "memcpy"});
    {
        const std::size_t before = committed();
        const Env env;
        env_read_file(big.name, env);
        table.row("memory of big, each element", static_cast<double>(committed() - before) / 402000, "B",
                  {57});
    }
    show_documents(table, big, wide, deep);
    show_calls(table, wide);
}
