// Filter plug-ins without memory: open or not, applied or refused, and nothing kept.
#include "bvutil/filter_host.h"
#include "tests/faults/memory_faults.h"

#include <filesystem>
#include <vector>
#include <windows.h>

namespace {

std::string plugin(const char* name) {
    char self[MAX_PATH];
    GetModuleFileNameA(nullptr, self, sizeof self);
    return (std::filesystem::path(self).parent_path().parent_path() / "filters" / name).string();
}

TEST(FilterHostMemory, OpensAppliesAndRepeatsOrFails) {
    const std::vector<std::uint8_t> image(100 * 60 * 4, 77);
    for (const char* name : {"auto_levels.8bf", "unsharp_mask.8bf", "duotone.8bf"}) {
        SCOPED_TRACE(name);
        const std::string path = plugin(name);
        memory_faults::fail_each_allocation([&](memory_faults::Fault& fault) {
            char *category = nullptr, *menu = nullptr;
            PSFilter_* filter = nullptr;
            int error = 7;
            const bool open = fault.succeeds(BvUtilBool{1}, BvUtilBool{0}, [&] {
                return AVGetPSFilterAndInfo(path.c_str(), &category, &menu, &filter, &error);
            });
            EXPECT_EQ(error, open ? 0 : -1);
            EXPECT_EQ(category && menu && filter, open) << "a result that is not whole";
            EXPECT_EQ(category || menu || filter, open);
            AVFreeGotPSFilterInfo(&category, &menu);
            if (!open) return;
            for (const BvUtilBool repeat : {BvUtilBool{0}, BvUtilBool{1}}) {
                void* result = nullptr;
                int code = 7;
                const bool done = fault([&] {
                                      return AVApplyPSFilter(filter, repeat, nullptr, nullptr, image.data(),
                                                             100, 60, 400, &result, &code);
                                  }) != 0;
                EXPECT_TRUE(done || fault.struck());
                EXPECT_EQ(done, result && code >= 0 && code != 7);
                AVFreeGotPSFilterImage(&result);
            }
            BvUtilBool has_settings = 0;
            AVPSFilterCanDoLastFilter(filter, &has_settings);
            if (has_settings) fault.kept = 3; // a handle is the plug-in's to release: these never do
            AVFreeGotPSFilter(&filter);
        });
    }
}

} // namespace
