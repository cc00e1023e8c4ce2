// The property-list codec: both forms round trip every value type, foreign
// files read as Foundation would read them, and damaged or hostile bytes
// decode to nothing without crashing.
#include <gtest/gtest.h>
#include <pthread.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <random>

#include <plist/plist.h>

#include "sim/codec/plist_codec.hpp"
#include "support/value_printer.hpp"

namespace {

using base::Value;
using sys::PlistFormat;

constexpr PlistFormat kForms[] = {PlistFormat::Xml, PlistFormat::Binary};

std::optional<Value> roundTrip(const Value& v, PlistFormat f) {
  return sim::decodePlist(sim::encodePlist(v, f));
}

std::string bigEndian(std::uint64_t v, unsigned width) {
  std::string out;
  for (unsigned k = width; k-- > 0;) out += char((v >> (8 * k)) & 0xFF);
  return out;
}

// A binary list from encoded objects (object 0 is the root); references are
// `refSize` bytes wide.
std::string binaryList(const std::vector<std::string>& objects, unsigned refSize = 1) {
  std::string out = "bplist00";
  std::vector<std::uint64_t> offsets;
  for (const std::string& o : objects) {
    offsets.push_back(out.size());
    out += o;
  }
  std::uint64_t table = out.size();
  unsigned offsetSize = table < 0x100 ? 1 : table < 0x10000 ? 2 : 4;
  for (std::uint64_t o : offsets) out += bigEndian(o, offsetSize);
  return out + std::string(6, '\0') + char(offsetSize) + char(refSize) +
         bigEndian(objects.size(), 8) + bigEndian(0, 8) + bigEndian(table, 8);
}

std::string arrayObject(const std::vector<std::uint64_t>& refs, unsigned refSize = 1) {
  std::string out = refs.size() < 15 ? std::string(1, char(0xA0 | refs.size()))
                                     : "\xAF\x11" + bigEndian(refs.size(), 2);
  for (std::uint64_t r : refs) out += bigEndian(r, refSize);
  return out;
}

// `true` inside arrays nested `depth` deep: a value `depth` levels down.
std::string deepBinary(std::size_t depth) {
  unsigned refSize = depth < 0xFF ? 1 : depth < 0xFFFF ? 2 : 4;
  std::vector<std::string> objects;
  for (std::size_t i = 0; i < depth; ++i) objects.push_back(arrayObject({i + 1}, refSize));
  objects.push_back("\x09");
  return binaryList(objects, refSize);
}

std::string xmlList(const std::string& body) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n" + body +
         "\n</plist>\n";
}

std::string deepXml(std::size_t depth) {
  std::string body;
  for (std::size_t i = 0; i < depth; ++i) body += "<array>";
  body += "<true/>";
  for (std::size_t i = 0; i < depth; ++i) body += "</array>";
  return xmlList(body);
}

// Runs `f` on a thread with a small stack, where anything that recurses once
// per level of a hostile file runs out long before the file does.
void onSmallStack(const std::function<void()>& f, std::size_t stack = 1 << 20) {
  pthread_attr_t attr;
  pthread_attr_init(&attr);
  pthread_attr_setstacksize(&attr, stack);
  pthread_t thread;
  auto run = [](void* p) -> void* {
    (*static_cast<const std::function<void()>*>(p))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attr, run, const_cast<std::function<void()>*>(&f)), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attr);
}

TEST(PlistRoundTrip, EveryTypeInBothForms) {
  const Value v(base::Dictionary{
      {"flag", Value(false)},
      {"negative", Value(-7351)},
      {"extremes", Value(base::Array{Value(std::numeric_limits<long long>::min()),
                                     Value(std::numeric_limits<long long>::max()), Value(0)})},
      {"real", Value(-2.5e-300)},
      {"密友", Value("密友 ✓ \"<&>\" ]]>")},
      {"empty", Value("")},
      {"data", Value(base::Data{0, 0xFF, '<', 0})},
      {"no data", Value(base::Data{})},
      {"date", Value(base::Date{817128000})},
      {"nested", Value(base::Array{Value(base::Array{}),
                                   Value(base::Dictionary{{"z", Value(1)}, {"a", Value(2)}}),
                                   Value(base::Array{Value(base::Array{Value("deep")})})})},
      {"after", Value(true)},
  });
  for (PlistFormat f : kForms) EXPECT_EQ(roundTrip(v, f), v) << int(f);
}

TEST(PlistRoundTrip, RootsNullsAndLargeLists) {
  base::Array many;
  for (int i = 0; i < 10000; ++i) many.emplace_back("secret " + std::to_string(i));
  const Value withNulls(
      base::Dictionary{{"a", Value()}, {"b", Value(base::Array{Value(), Value(1), Value()})}});
  for (PlistFormat f : kForms) {
    EXPECT_EQ(roundTrip(Value(many), f), Value(many));
    EXPECT_EQ(roundTrip(Value("a string root"), f), Value("a string root"));
    EXPECT_EQ(roundTrip(Value(), f), Value(base::Dictionary{}))
        << "a null root writes an empty dictionary";
    EXPECT_EQ(roundTrip(withNulls, f),
              Value(base::Dictionary{{"b", Value(base::Array{Value(1)})}}));
    EXPECT_EQ(roundTrip(Value("bad \xFF text"), f), Value("bad \xEF\xBF\xBD text"))
        << "written readable";
  }
}

TEST(PlistRoundTrip, DatesKeepWhatEachFormHolds) {
  for (double s : {817128000.5, -0.25, -86400.75})
    EXPECT_EQ(roundTrip(Value(base::Date{s}), PlistFormat::Binary), Value(base::Date{s})) << s;
  EXPECT_EQ(roundTrip(Value(base::Date{-86400.75}), PlistFormat::Xml), Value(base::Date{-86401}))
      << "XML dates hold whole seconds";
}

// Our binary files must be readable by another reader, not only our own:
// libplist's parser reads them (through its XML output) to the same values.
TEST(PlistRoundTrip, BinaryWeWriteIsWhatAnotherReaderReads) {
  base::Array many;
  for (int i = 0; i < 300; ++i)
    many.emplace_back(i % 3 ? Value(i * 977) : Value("n" + std::to_string(i)));
  const Value v(base::Dictionary{
      {"widths", Value(base::Array{Value(0), Value(255), Value(256), Value(65535), Value(65536),
                                   Value(4294967295LL), Value(4294967296LL), Value(-1)})},
      {"a key longer than fifteen bytes", Value(std::string(70000, 'x'))},
      {"utf16 😀 密友", Value("surrogates 😀 and 密友")},
      {"many", Value(many)},
      {"data", Value(base::Data(300, 7))},
      {"date", Value(base::Date{817128000})},
      {"real", Value(0.1)},
      {"fifteen: counts", Value(base::Array(15, Value("fifteen bytes!!")))},
  });
  std::string bytes = sim::encodePlist(v, PlistFormat::Binary);
  plist_t parsed = nullptr;
  plist_from_bin(bytes.data(), std::uint32_t(bytes.size()), &parsed);
  ASSERT_NE(parsed, nullptr);
  char* xml = nullptr;
  std::uint32_t len = 0;
  plist_to_xml(parsed, &xml, &len);
  plist_free(parsed);
  ASSERT_NE(xml, nullptr);
  std::optional<Value> read = sim::decodePlist(std::string_view(xml, len));
  plist_to_xml_free(xml);
  EXPECT_EQ(read, v);
}

TEST(PlistRoundTrip, RepeatedKeysKeepTheirFirstPlaceAndLastValue) {
  const Value v(
      base::Dictionary{{"a", Value(1)}, {"b", Value(2)}, {"a", Value(3)}, {"b", Value()}});
  for (PlistFormat f : kForms)
    EXPECT_EQ(roundTrip(v, f), Value(base::Dictionary{{"a", Value(3)}, {"b", Value(2)}})) << int(f);
}

TEST(PlistReading, XmlTextAsAnotherWriterWouldLeaveIt) {
  const std::string text = xmlList(R"(<!-- settings -->
<dict>
  <key>password</key><string>a &amp; b &#x5BC6;<![CDATA[<raw>]]></string>
  <key>mode</key>  <integer>-3</integer>
  <key>huge</key><integer>18446744073709551615</integer>
  <key>on</key><true/>
  <key>ratio</key><real>0.5</real>
  <key>blob</key><data>AAEC</data>
  <key>when</key><date>2026-11-23T08:00:00Z</date>
  <key>list</key><array><string>x</string><dict/></array>
</dict>)");
  auto v = sim::decodePlist(text);
  ASSERT_TRUE(v);
  ASSERT_TRUE(v->isDictionary());
  std::vector<std::string> keys;
  for (const auto& [k, e] : *v->asDictionary()) keys.push_back(k);
  EXPECT_EQ(keys, (std::vector<std::string>{"password", "mode", "huge", "on", "ratio", "blob",
                                            "when", "list"}));
  EXPECT_EQ(*v->find("password"), Value("a & b 密<raw>"));
  EXPECT_EQ(*v->find("mode"), Value(-3));
  EXPECT_EQ(*v->find("huge"), Value(std::numeric_limits<long long>::max())) << "saturates";
  EXPECT_EQ(*v->find("blob"), Value(base::Data{0, 1, 2}));
  // 2026-11-23 is 9457 days after 2001-01-01.
  EXPECT_EQ(*v->find("when"), Value(base::Date{9457 * 86400.0 + 8 * 3600}));
  EXPECT_EQ(*v->find("list"), Value(base::Array{Value("x"), Value(base::Dictionary{})}));
}

// Text beyond the first 65536 code points is written in UTF-16 as surrogate
// pairs; a pair out of order, or half of one, is no text at all.
TEST(PlistReading, BinaryUtf16SurrogatePairs) {
  auto utf16String = [](std::vector<std::uint16_t> units) {
    std::string o(1, char(0x60 | units.size()));
    for (std::uint16_t u : units) o += bigEndian(u, 2);
    return binaryList({o});
  };
  EXPECT_EQ(sim::decodePlist(utf16String({0xD83D, 0xDD12, 0x5BC6})), Value("\U0001F512\u5BC6"));
  EXPECT_EQ(sim::decodePlist(utf16String({0xDBFF, 0xDFFF})), Value("\U0010FFFF"));
  EXPECT_EQ(sim::decodePlist(utf16String({0xD800, 0xDC00})), Value("\U00010000"));
  EXPECT_FALSE(sim::decodePlist(utf16String({0xDD12, 0xD83D})));
  EXPECT_FALSE(sim::decodePlist(utf16String({0xD83D, 0x0041})));
  EXPECT_FALSE(sim::decodePlist(utf16String({0x0041, 0xD83D})));
  const Value emoji(base::Dictionary{{"🔒 密友", Value("锁 🔒🧑‍🤝‍🧑 end")}});
  EXPECT_EQ(roundTrip(emoji, PlistFormat::Binary), emoji);
}

TEST(PlistReading, TextThatIsNotUtf8IsNotAPropertyList) {
  std::string xml =
      sim::encodePlist(Value(base::Dictionary{{"password", Value("alice")}}), PlistFormat::Xml);
  ASSERT_TRUE(sim::decodePlist(xml));
  std::string broken = xml;
  broken[broken.find("alice")] = '\xff';
  EXPECT_EQ(sim::decodePlist(broken), std::nullopt) << "Foundation refuses it; so do we";
}

TEST(PlistReading, AStringWithANulInsideIsKeptWhole) {
  // A binary list whose string holds "a\0b" (as a damaged or hostile file can).
  const unsigned char bytes[] = {'b',  'p',  'l',  'i', 's', 't', '0', '0', 0xd1, 0x01, 0x02, 0x58,
                                 'p',  'a',  's',  's', 'w', 'o', 'r', 'd', 0x53, 'a',  0x00, 'b',
                                 0x08, 0x0b, 0x14, 0,   0,   0,   0,   0,   0,    1,    1,    0,
                                 0,    0,    0,    0,   0,   0,   3,   0,   0,    0,    0,    0,
                                 0,    0,    0,    0,   0,   0,   0,   0,   0,    0,    0x18};
  auto v = sim::decodePlist(std::string_view(reinterpret_cast<const char*>(bytes), sizeof bytes));
  ASSERT_TRUE(v);
  ASSERT_TRUE(v->find("password"));
  EXPECT_EQ(*v->find("password")->asString(), std::string("a\0b", 3));
}

TEST(PlistDamage, TruncatedListsReadAsNothingOrWhole) {
  const Value v(base::Dictionary{{"password", Value("1234")},
                                 {"windows", Value(base::Array{Value(1), Value(2.5)})}});
  for (PlistFormat f : kForms) {
    const std::string bytes = sim::encodePlist(v, f);
    for (std::size_t n = 0; n <= bytes.size(); ++n) {
      std::optional<Value> got = sim::decodePlist(std::string_view(bytes).substr(0, n));
      if (got) {
        EXPECT_EQ(*got, v) << "length " << n;
      }
      if (f == PlistFormat::Binary) {
        EXPECT_EQ(got.has_value(), n == bytes.size()) << "length " << n;
      }
    }
  }
  for (const char* text :
       {"", " ", "bplist00", "<plist><dict><key>a</key><string>b</dict></plist>",
        "<plist><array><true/>", "<plist><dict><key>unclosed", "not a property list"})
    EXPECT_EQ(sim::decodePlist(text), std::nullopt) << text;
}

TEST(PlistDamage, BrokenBinaryTrailers) {
  const std::string good =
      sim::encodePlist(Value(base::Array{Value("a"), Value(7)}), PlistFormat::Binary);
  ASSERT_TRUE(sim::decodePlist(good));
  const std::size_t t = good.size() - 32;
  auto with = [&](std::size_t at, const std::string& bytes) {
    return std::string(good).replace(at, bytes.size(), bytes);
  };
  for (const std::string& broken : {
           with(t + 6, std::string(1, '\0')),            // offsets 0 bytes wide
           with(t + 7, std::string(1, '\x09')),          // references 9 bytes wide
           with(t + 8, bigEndian(1ull << 40, 8)),        // more objects than the file holds
           with(t + 16, bigEndian(3, 8)),                // root past the last object
           with(t + 24, bigEndian(good.size() * 2, 8)),  // offset table past the end
           with(t + 24, bigEndian(2, 8)),                // offset table inside the header
           with(t + 24, bigEndian(~0ull - 3, 8)),        // offset table wrapping around
       })
    EXPECT_EQ(sim::decodePlist(broken), std::nullopt);
}

TEST(PlistDamage, RandomBytesAndMutationsNeverCrash) {
  std::mt19937 rng(20261123);
  const Value v(base::Dictionary{{"secrets", Value(base::Array{Value("alice"), Value("密友")})},
                                 {"mode", Value(1)},
                                 {"at", Value(base::Date{3600})}});
  std::vector<std::string> seeds = {sim::encodePlist(v, PlistFormat::Binary),
                                    sim::encodePlist(v, PlistFormat::Xml)};
  int decoded = 0;
  for (int round = 0; round < 3000; ++round) {
    std::string bytes;
    if (round < 500) {
      bytes.resize(rng() % 200);
      for (char& c : bytes) c = char(rng());
      if (round % 2) bytes.replace(0, std::min<std::size_t>(8, bytes.size()), "bplist00");
    } else {
      bytes = seeds[round % 2];
      for (unsigned k = 1 + rng() % 4; k-- > 0;) bytes[rng() % bytes.size()] = char(rng());
    }
    if (std::optional<Value> got = sim::decodePlist(bytes)) {
      ++decoded;
      // Whatever is read can be written back in a readable form.
      EXPECT_TRUE(roundTrip(*got, PlistFormat::Binary)) << base::describe(*got);
    }
  }
  EXPECT_GT(decoded, 0) << "some mutations leave a readable list";
}

TEST(PlistHostile, NestingDeeperThanTheLimit) {
  // A value 512 levels below the root is read; one 513 levels down is not.
  for (std::size_t depth : {511, 512, 513}) {
    EXPECT_EQ(sim::decodePlist(deepBinary(depth)).has_value(), depth <= 512) << depth;
    EXPECT_EQ(sim::decodePlist(deepXml(depth)).has_value(), depth <= 512) << depth;
  }
  const std::string binary = deepBinary(100000), xml = deepXml(100000);
  onSmallStack([&] {
    EXPECT_EQ(sim::decodePlist(binary), std::nullopt);
    EXPECT_EQ(sim::decodePlist(xml), std::nullopt);
    EXPECT_TRUE(sim::decodePlist(deepXml(512)));
  });
}

TEST(PlistHostile, SharedAndCyclicReferences) {
  // Each array holds the next one twice: 60 objects that would expand to 2^60.
  std::vector<std::string> doubling;
  for (std::uint64_t i = 0; i < 60; ++i) doubling.push_back(arrayObject({i + 1, i + 1}));
  doubling.push_back("\x09");
  EXPECT_EQ(sim::decodePlist(binaryList(doubling)), std::nullopt);

  EXPECT_EQ(sim::decodePlist(binaryList({arrayObject({0})})), std::nullopt)
      << "an array inside itself";
  EXPECT_EQ(sim::decodePlist(binaryList({arrayObject({1}), arrayObject({0})})), std::nullopt);
  EXPECT_EQ(sim::decodePlist(binaryList({"\xD1\x01\x02", arrayObject({}), "\x09"})), std::nullopt)
      << "a dictionary key that is not a string";
  // 40 runs of 500 nested arrays, each run holding the one before at its
  // bottom. The root lists them in order, so every run is finished before it
  // is met again 500 levels further down: 20,000 levels in all. An unused
  // blob makes the file large enough for the nodes the runs expand to.
  std::vector<std::string> runs{"", "\x4F\x12" + bigEndian(1 << 20, 4) + std::string(1 << 20, 'x')};
  std::vector<std::uint64_t> tops;
  for (std::uint64_t run = 0; run < 40; ++run) {
    tops.push_back(runs.size());
    for (int level = 0; level < 499; ++level) runs.push_back(arrayObject({runs.size() + 1}, 4));
    runs.push_back(run == 0 ? arrayObject({}) : arrayObject({tops[run - 1]}, 4));
  }
  runs[0] = arrayObject(tops, 4);
  const std::string layered = binaryList(runs, 4);
  onSmallStack([&] { EXPECT_EQ(sim::decodePlist(layered), std::nullopt); });

  // A file may unfold to as many values as it has bytes, and no more: here
  // 100 references to one array of 99 references to `true`, padded by an
  // unused blob to exactly that size, then one byte short of it.
  auto unfolding = [](std::size_t pad) {
    return binaryList({arrayObject(std::vector<std::uint64_t>(100, 1)),
                       arrayObject(std::vector<std::uint64_t>(99, 2)), "\x09",
                       "\x4F\x12" + bigEndian(pad, 4) + std::string(pad, 'x')});
  };
  const std::size_t values = 1 + 100 * (1 + 99);
  std::size_t pad = values - unfolding(0).size();
  while (unfolding(pad).size() > values) --pad;
  while (unfolding(pad).size() < values) ++pad;
  ASSERT_EQ(unfolding(pad).size(), values);
  EXPECT_TRUE(sim::decodePlist(unfolding(pad)));
  EXPECT_EQ(sim::decodePlist(unfolding(pad - 1)), std::nullopt);

  // Shared leaves, as every writer produces them, are fine.
  EXPECT_EQ(sim::decodePlist(binaryList({arrayObject({1, 1, 1}), "\x51x"})),
            Value(base::Array{Value("x"), Value("x"), Value("x")}));
}

}  // namespace
