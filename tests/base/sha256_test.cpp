// SHA-256 against the published test vectors, at the lengths where the
// padding changes shape (one block, two blocks, many).
#include <gtest/gtest.h>

#include <string>

#include "base/sha256.hpp"

namespace {

TEST(Sha256, PublishedVectors) {
  EXPECT_EQ(base::sha256Hex(""),
            "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(base::sha256Hex("abc"),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  // 56 bytes: the length no longer fits the first block.
  EXPECT_EQ(base::sha256Hex("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  // 64 bytes: a whole block, then one of padding alone.
  EXPECT_EQ(base::sha256Hex(std::string(64, 'a')),
            "ffe054fe7ae0cb6dc65c3af9b61d5209f439851db43d0ba5997337df154668eb");
  EXPECT_EQ(base::sha256Hex("abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmno"
                            "ijklmnopjklmnopqklmnopqrlmnopqrsmnopqrstnopqrstu"),
            "cf5b16a778af8380036ce59e7b0492370b249b11e8f07a51afac45037afee9d1");
  EXPECT_EQ(base::sha256Hex(std::string(1000000, 'a')),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Sha256, HexOfBytes) {
  EXPECT_EQ(base::hexString(std::string("\x00\x7f\x80\xff", 4)), "007f80ff");
  EXPECT_EQ(base::hexString(""), "");
}

}  // namespace
