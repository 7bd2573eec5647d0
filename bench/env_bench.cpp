// The environment store by its number of elements, all in one block.
#include "bench/bench.h"
#include "bvutil/env.h"

#include <cstdio>
#include <string>
#include <vector>

namespace {

struct Text {
    std::string bytes;
    std::size_t at = 0;
    static int BVUTIL_CALL next(void* self) {
        auto& text = *static_cast<Text*>(self);
        return text.at < text.bytes.size() ? static_cast<signed char>(text.bytes[text.at++]) : -1;
    }
    static void BVUTIL_CALL take(int c, void* self) {
        static_cast<Text*>(self)->bytes.push_back(static_cast<char>(c));
    }
};

void run(std::size_t count) {
    const int runs = count <= 10'000 ? 11 : 3;
    std::vector<std::string> names;
    for (std::size_t i = 0; i < count; ++i)
        names.push_back(std::string("name").append(std::to_string(i)));
    EnvHandle env = env_open(0, nullptr);
    Text text;

    const double put = bench::median_ms(
        runs,
        [&] {
            env_close(env, 0);
            env = env_open(0, nullptr);
        },
        [&] {
            for (const std::string& name : names)
                env_put(env, "S", name.c_str(), "value");
        });
    const double get = bench::median_ms(runs, [&] {
        char value[16];
        for (const std::string& name : names)
            env_get(env, "S", name.c_str(), 1, sizeof value, value);
    });
    const double iterate = bench::median_ms(runs, [&] {
        char name[32], value[16];
        long external = 0;
        EnvStatus kind =
            env_get_first(env, "S", nullptr, 1, nullptr, sizeof name, name, sizeof value, value, &external);
        while (kind == ENV_IS_DATA)
            kind = env_get_next(sizeof name, name, sizeof value, value, &external);
    });
    const double traverse = bench::median_ms(runs, [&] {
        env_traverse(
            env, "S", nullptr, 1, [](EnvHandle, const char*, const char*, void*) {}, nullptr);
    });
    const double write = bench::median_ms(
        runs, [&] { text.bytes.clear(); }, [&] { env_write(Text::take, &text, env); });
    const double read = bench::median_ms(
        runs, [&] { text.at = 0; }, [&] { env_read(Text::next, &text, env); });
    env_close(env, 0);
    std::printf("%8u %9.2f %9.2f %9.2f %9.2f %9.2f %9.2f\n", static_cast<unsigned>(count), put, get, iterate,
                traverse, read, write);
}

} // namespace

int main() {
    std::printf("elements       put       get   iterate  traverse      read     write   (ms)\n");
    for (const std::size_t count : {1'000, 10'000, 100'000})
        run(count);
}
