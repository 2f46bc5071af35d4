#include "platform/linux/atspi/BusObject.h"

#include <gtest/gtest.h>

namespace velorin {
namespace {

TEST(BusObject, IsWhatIsWellFormed) {
    const auto object = BusObject::from(":1.42", "/org/a11y/atspi/accessible/7");
    ASSERT_TRUE(object);
    EXPECT_EQ(object->owner().text(), ":1.42");
    EXPECT_EQ(object->path(), "/org/a11y/atspi/accessible/7");
    EXPECT_TRUE(BusObject::from("org.example.App", "/"));
}

TEST(BusObject, IsNobodyWhereTheNameIsNone) {
    for (const auto* name : {"", " ", "no name", "name", ".", "org..x", "org.1x", "a.b\n", "\xff.a"})
        EXPECT_FALSE(BusObject::from(name, "/field")) << name;
    EXPECT_FALSE(BusObject::from("a." + std::string(300, 'x'), "/field"));
}

TEST(BusObject, IsNobodyWhereThePathIsNone) {
    for (const auto* path : {"", "field", "/field/", "//", "/a b", "/\xc3\xa4", "/a\n"})
        EXPECT_FALSE(BusObject::from(":1.1", path)) << path;
    EXPECT_FALSE(BusObject::from(":1.1", "/" + std::string(1 << 20, 'x')));
}

TEST(BusObject, IsNobodyWhereToolkitsSaySo) {
    EXPECT_FALSE(BusObject::from("", "/org/a11y/atspi/null"));
    EXPECT_FALSE(BusObject::from(":1.1", "/org/a11y/atspi/null"));
}

} // namespace
} // namespace velorin
