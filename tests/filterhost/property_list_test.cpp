// The property list as bytes: what is taken, and that every lie is a rejection.
#include "filterhost/property_list.h"
#include "tests/filterhost/property_bytes.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace property_bytes;

// Reads a copy that ends where its allocation ends, so that the sanitizer sees a byte too many.
PropertyList read(const std::string& bytes, std::size_t misaligned = 0) {
    const auto copy = std::make_unique<std::byte[]>(bytes.size() + misaligned);
    std::memcpy(copy.get() + misaligned, bytes.data(), bytes.size());
    return read_property_list({copy.get() + misaligned, bytes.size()});
}

const char* text(const std::unique_ptr<char[]>& text) {
    return text ? text.get() : "-";
}

std::string result(const PropertyList& list) {
    return std::string(list.accepted ? list.entry_name.data() : "rejected") + " " + text(list.category) +
           "/" + text(list.name);
}

TEST(PropertyListReading, TakesAndRejects) {
    const std::string c = category("C"), n = name("N");
    const struct {
        const char* name;
        std::string bytes;
        const char* result;
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
        {"more announced than there", number(1, 2) + number(0) + number(2) + c, "rejected C/-"},
        {"absurd count", number(1, 2) + number(0) + number(0xFFFFFFFF) + c, "rejected C/-"},
        {"less announced than there", number(1, 2) + number(0) + number(1) + c + n, " C/-"},
        {"data longer than the resource", list({c, n.substr(0, n.size() - 1)}), "rejected C/-"},
        {"absurd length", list({c, code("8BIM") + code("name") + number(0) + number(0xFFFFFFF0) + "x"}),
         "rejected C/-"},
        {"name without its end", list({property("wx86", "Main")}), "Main -/-"},
        {"a shorter name is copied over a longer",
         list({property("wx86", "LongName"), property("wx86", "AB")}), "ABngName -/-"},
        {"and ends it within its data", list({property("wx86", "LongName"), property("wx86", {"AB\0", 3})}),
         "AB -/-"},
        {"longest name", list({property("wx86", std::string(255, 'e'))}), nullptr},
        {"name too long", list({property("wx86", std::string(256, 'e'))}), "rejected -/-"},
        {"name with much filler", list({property("wx86", "Main" + std::string(1000, '\0'))}), "Main -/-"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        const std::string expected = each.result ? each.result : std::string(255, 'e') + " -/-";
        EXPECT_EQ(result(read(each.bytes)), expected);
        for (std::size_t misaligned = 1; misaligned < 4; ++misaligned)
            EXPECT_EQ(result(read(std::string(4 - misaligned, '?') + each.bytes, misaligned)), expected)
                << "reading begins at the next multiple of 4";
    }
}

TEST(PropertyListReading, RejectsEveryTruncation) {
    const std::string whole = complete_list();
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(read(whole.substr(0, size)).accepted) << size;
    for (std::size_t size = 0; size < 4; ++size)
        EXPECT_FALSE(read(std::string(size, '\0'), 1).accepted) << size;
}

} // namespace
