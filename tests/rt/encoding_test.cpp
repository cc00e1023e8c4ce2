// The type-encoding walker and the C++-to-encoding mapping.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "rt/encoding.hpp"

namespace {

std::vector<std::string> walk(const char* types) {
  std::vector<std::string> out;
  for (const char* p = types; *p;) {
    const char* next = rt::skipType(p);
    out.emplace_back(p, next);
    if (next == p) break;
    p = next;
  }
  return out;
}

TEST(Encoding, WalksMethodEncodingsWithTheirOffsets) {
  EXPECT_EQ(walk("v24@0:8I16"), (std::vector<std::string>{"v24", "@0", ":8", "I16"}));
  EXPECT_EQ(walk("B32@0:8@16@?24"), (std::vector<std::string>{"B32", "@0", ":8", "@16", "@?24"}));
  EXPECT_EQ(walk("v40@0:8{CGRect={CGPoint=dd}{CGSize=dd}}16"),
            (std::vector<std::string>{"v40", "@0", ":8", "{CGRect={CGPoint=dd}{CGSize=dd}}16"}));
  EXPECT_EQ(walk("r^v16@0:8"), (std::vector<std::string>{"r^v16", "@0", ":8"}));
  EXPECT_EQ(walk("@\"NSString\"16@0:8"), (std::vector<std::string>{"@\"NSString\"16", "@0", ":8"}));
  EXPECT_EQ(walk("v@:[4i](u=iq)^^{s}b3"),
            (std::vector<std::string>{"v", "@", ":", "[4i]", "(u=iq)", "^^{s}", "b3"}));
  EXPECT_EQ(walk("@?<v@?@>16"), (std::vector<std::string>{"@?<v@?@>16"}));
}

TEST(Encoding, MalformedEncodingsEndAtTheEndOfTheString) {
  const char* unclosed = "{CGRect=dd";
  EXPECT_EQ(*rt::skipType(unclosed), '\0');
  const char* quote = "@\"NSStr";
  EXPECT_EQ(*rt::skipType(quote), '\0');
  const char* empty = "";
  EXPECT_EQ(rt::skipType(empty), empty);
  EXPECT_EQ(rt::skipType(nullptr), nullptr);
  const char* onlyQualifiers = "rn";
  EXPECT_EQ(*rt::skipType(onlyQualifiers), '\0');
}

TEST(Encoding, NormalizedFormDropsOffsetsQualifiersAndObjectDetail) {
  EXPECT_EQ(rt::normalizedEncoding("v24@0:8I16"), "v@:I");
  EXPECT_EQ(rt::normalizedEncoding("v32@0:8@?16@\"NSString\"24"), "v@:@@");
  EXPECT_EQ(rt::normalizedEncoding("r*16@0:8"), "*@:");
  EXPECT_EQ(rt::normalizedEncoding(""), "");
}

TEST(Encoding, SignaturesOfCppFunctionTypes) {
  EXPECT_EQ((rt::signature<void>()), "v@:");
  EXPECT_EQ((rt::signature<bool, rt::Id, long>()), "B@:@q");
  EXPECT_EQ((rt::signature<rt::Id, unsigned, unsigned long, rt::SEL, rt::Class>()), "@@:IQ:#");
  EXPECT_EQ((rt::signature<void, rt::CGRect, double, const char*>()),
            "v@:{CGRect={CGPoint=dd}{CGSize=dd}}d*");
  EXPECT_EQ((rt::signature<void, rt::IMP*, int*>()), "v@:^^?^i");
  EXPECT_EQ(rt::normalizedEncoding("v24@0:8Q16"), (rt::signature<void, unsigned long>()));
}

TEST(Encoding, CallsThatArm64PassesTheSameWayAreTheSameCall) {
  // Integers: the width decides, not the sign.
  EXPECT_TRUE(rt::sameCallTypes("v@:@q", "v@:@Q"));
  EXPECT_TRUE(rt::sameCallTypes("q@:", "L@:"));
  EXPECT_TRUE(rt::sameCallTypes("v@:i", "v@:I"));
  EXPECT_TRUE(rt::sameCallTypes("v@:sc", "v@:SC"));
  EXPECT_FALSE(rt::sameCallTypes("v@:@q", "v@:@I"));
  EXPECT_FALSE(rt::sameCallTypes("v@:i", "v@:s"));
  EXPECT_FALSE(rt::sameCallTypes("I@:", "Q@:")) << "the result too";
  // bool is its own kind: a host char may hold any byte.
  EXPECT_FALSE(rt::sameCallTypes("v@:B", "v@:c"));
  EXPECT_TRUE(rt::sameCallTypes("v@:B", "v@:B"));
  // Objects with objects, pointers with pointers, never across.
  EXPECT_TRUE(rt::sameCallTypes("v@:@", "v@:#"));
  EXPECT_TRUE(rt::sameCallTypes("v@:^v", "v@:*"));
  EXPECT_TRUE(rt::sameCallTypes("v@::", "v@:^{S=i}"));
  EXPECT_FALSE(rt::sameCallTypes("v@:@", "v@:^v"));
  // Reals and structs must be spelt the same.
  EXPECT_FALSE(rt::sameCallTypes("v@:d", "v@:f"));
  EXPECT_FALSE(rt::sameCallTypes("v@:d", "v@:q"));
  EXPECT_TRUE(rt::sameCallTypes("v@:{CGPoint=dd}", "v@:{CGPoint=dd}"));
  EXPECT_FALSE(rt::sameCallTypes("v@:{CGPoint=dd}", "v@:{CGSize=dd}"));
  // One argument more or less is another call.
  EXPECT_FALSE(rt::sameCallTypes("v@:@q", "v@:@q@"));
  EXPECT_FALSE(rt::sameCallTypes("v@:@q@", "v@:@q"));
  EXPECT_FALSE(rt::sameCallTypes("v@:q", ""));
  EXPECT_TRUE(rt::sameCallTypes("", ""));
}

}  // namespace
