// The property list as bytes: what is taken, and that every lie is a rejection.
#include "filterhost/property_list.h"
#include "tests/filterhost/property_bytes.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace property_bytes;

// What is read of a copy that ends where its allocation ends, so that the sanitizer sees a byte too many.
std::string read(const std::string& bytes, std::size_t misaligned = 0) {
    const auto copy = std::make_unique<std::byte[]>(bytes.size() + misaligned);
    std::memcpy(copy.get() + misaligned, bytes.data(), bytes.size());
    const PropertyList list = read_property_list({copy.get() + misaligned, bytes.size()});
    const auto text = [](const std::unique_ptr<char[]>& held) { return held ? held.get() : "-"; };
    return std::string(list.accepted ? list.entry_name.data() : "rejected") + " " + text(list.category) +
           "/" + text(list.name);
}

std::string counting(std::uint32_t count, const std::string& properties) {
    return number(1, 2) + number(0) + number(count) + properties;
}

TEST(PropertyListReading, TakesAndRejects) {
    const std::string c = category("C"), n = name("N"), whole = list({c, n}),
                      long_name = property("wx86", "LongName"), e255(255, 'e');
    const struct {
        const char* name;
        std::string bytes, result;
    } cases[] = {
        {"complete", complete_list("C", "N"), "FilterMain C/N"},
        {"no properties", list({}), " -/-"},
        {"4.0", list({c, version(4, 0), n}), " C/N"},
        {"3.9", list({c, version(3, 9), n}), " C/N"},
        {"4.1", list({c, version(4, 1), n}), "rejected C/-"},
        {"5.0", list({c, version(5, 0), n}), "rejected C/-"},
        {"no signed comparison", list({c, version(0x8000, 0), n}), "rejected C/-"},
        {"another kind", list({c, property("kind", code("8BAM")), n}), "rejected C/-"},
        {"short kind", list({c, property("kind", "M"), n}), "rejected C/-"},
        {"short version", list({c, property("vers", std::string(3, '\0')), n}), "rejected C/-"},
        {"unknown keys and modes skipped", list({property("enbl", "x"), property("mode", ""), c}), " C/-"},
        {"any vendor", list({"xxxx" + c.substr(4)}), " C/-"},
        {"the later text wins", list({c, category("D")}), " D/-"},
        {"no rounding after odd lengths", list({property("xxxx", "12345"), c, property("yyyy", "1"), n}),
         " C/N"},
        {"text without filler", list({property("catg", "\2ab")}), " ab/-"},
        {"length byte reaches the end of the data", list({c, property("name", "\2a")}), "rejected C/-"},
        {"length byte beyond the data", list({property("name", "\xFF ab")}), "rejected -/-"},
        {"no length byte", list({c, property("catg", "")}), "rejected C/-"},
        {"another format", list({c}, 1), "rejected -/-"},
        {"more announced than there", counting(2, c), "rejected C/-"},
        {"absurd count", counting(0xFFFFFFFF, c), "rejected C/-"},
        {"less announced than there", counting(1, c + n), " C/-"},
        {"data longer than the resource", whole.substr(0, whole.size() - 1), "rejected C/-"},
        {"absurd length", counting(2, c + code("8BIM") + code("name") + number(0) + number(0xFFFFFFF0) + "x"),
         "rejected C/-"},
        {"name without its end", list({property("wx86", "Main")}), "Main -/-"},
        {"a shorter name over a longer", list({long_name, property("wx86", "AB")}), "ABngName -/-"},
        {"ended within its data", list({long_name, property("wx86", {"AB\0", 3})}), "AB -/-"},
        {"longest name", list({property("wx86", e255)}), e255 + " -/-"},
        {"name too long", list({property("wx86", e255 + "e")}), "rejected -/-"},
        {"name with much filler", list({property("wx86", "Main" + std::string(1000, '\0'))}), "Main -/-"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(read(each.bytes), each.result) << each.name;
        for (std::size_t misaligned = 1; misaligned < 4; ++misaligned)
            EXPECT_EQ(read(std::string(4 - misaligned, '?') + each.bytes, misaligned), each.result)
                << each.name << ": reading begins at the next multiple of 4";
    }
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_TRUE(read(whole.substr(0, size)).starts_with("rejected")) << "cut at " << size;
    for (std::size_t size = 0; size < 4; ++size)
        EXPECT_EQ(read(std::string(size, '\0'), 1), "rejected -/-");
}

} // namespace
