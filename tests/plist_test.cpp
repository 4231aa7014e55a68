#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Plist.h"

namespace {

using tavuro::platform::readPlistStringDictionary;
using tavuro::platform::writeXmlPlist;
using Dict = std::map<std::string, std::string>;
using namespace std::string_literals;

std::string plist(const std::string& rootValue) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + rootValue +
         "</plist>\n";
}

/// `levels` containers, each but the innermost holding the next.
std::string nested(const std::string& container, int levels) {
  std::string inner = "<" + container + "/>";
  const std::string key = container == "dict" ? "<key>k</key>" : "";
  for (int i = 1; i < levels; ++i) {
    inner = "<" + container + ">" + key + inner + "</" + container + ">";
  }
  return inner;
}

TEST(PlistXml, ReadsTheStringEntriesOfWellFormedLists) {
  const struct {
    std::string input;
    Dict expected;
  } cases[] = {
      {"\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8' standalone=\"yes\"?>\n<!-- c -->"
       "<?app x?><!DOCTYPE plist PUBLIC \"-//X//EN\" \"x.dtd\" [<!ENTITY e \"]>\"><!-- ] -->]>"
       "\n<plist version=\"1.0\">\n\t<dict>\n<!--x--><key>a</key> <string>b</string></dict>"
       "<!-- after --></plist>\n<?end?>  ",
       {{"a", "b"}}},
      {plist("<dict><key>&lt;&gt;&amp;&apos;&quot;</key><string>&#65;&#x42;&#x1F600;&#xe9;"
             "</string></dict>"),
       {{"<>&'\"", "AB\xF0\x9F\x98\x80\xC3\xA9"}}},
      {plist("<dict><key><![CDATA[<k>]]></key><string>a<![CDATA[&amp;]]>b<!--x-->c</string>"
             "</dict>"),
       {{"<k>", "a&amp;bc"}}},
      {plist("<dict><key/><string/><key>e</key><string></string><key>s</key><string> \r\n\x01"
             "\t</string></dict>"),
       {{"", ""}, {"e", ""}, {"s", " \r\n\x01\t"}}},
      {plist("<dict><key>i</key><integer>-9223372036854775808</integer><key>u</key><integer>"
             "18446744073709551615</integer><key>h</key><integer> 0x1F </integer><key>r</key>"
             "<real>-1.5e+3</real><key>n</key><real>nan</real><key>t</key><true/><key>f</key>"
             "<false></false><key>d</key><date>2024-02-29T23:59:59Z</date><key>b</key><data>"
             "\n\tAAEC\n\tAw==\n</data><key>a</key><array><string>x</string><dict/></array>"
             "<key>x</key><dict><key>y</key><string>z</string></dict>"
             "<key>s</key><string>kept</string></dict>"),
       {{"s", "kept"}}},
      {plist("<dict><key>a</key><string>1</string><key>a</key><string>2</string>"
             "<key>b</key><string>1</string><key>b</key><integer>2</integer></dict>"),
       {{"a", "2"}}},
      {plist("<dict/>"), {}},
      {plist("<dict><key>k</key>" + nested("array", 127) + "</dict>"), {}},
      {plist(nested("dict", 128)), {}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(readPlistStringDictionary(c.input), std::optional<Dict>(c.expected)) << c.input;
  }
}

TEST(PlistXml, RejectsMalformedLists) {
  // Whole documents ("<!-->" opens a comment, no more; UTF-16 is not read)...
  std::vector<std::string> rejected{
      "",
      "   ",
      "<?xml version=\"1.0\"?>",
      "<dict></dict>",
      "<plist/>",
      "<!--><plist><dict/></plist>",
      "<!DOCTYPE plist><!DOCTYPE plist><plist><dict/></plist>",
      "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><plist><dict/></plist>",
      "<plist><dict/></plist><?xml version=\"1.0\"?>",
      "<plist version=1.0><dict/></plist>"};
  rejected.insert(rejected.end(),
                  {"\xFF\xFE<\0p\0"s, plist("<dict/>") + "text", plist("<dict/>") + "<plist/>"});
  // ...what the plist element holds...
  for (const std::string& root : std::vector<std::string>{
           "<array></array>", "<string>a</string>", "<dict/><dict/>", "<dict>",
           "<dict><!-- open </dict>", "<dict><string>b</string></dict>", nested("dict", 129)}) {
    rejected.push_back(plist(root));
  }
  // ...and what follows a key.
  for (const std::string& value : std::vector<std::string>{
           "<string>b</key>", "", "<string>b</string>stray", "<string>b<b/></string>", "<foo/>",
           "<key>b</key>", "<string>&nbsp;</string>", "<string>&amp</string>",
           "<string>&#0;</string>", "<string>&#xD800;</string>", "<string>&#x110000;</string>",
           "<string><![CDATA[x</string>", "<string>\xC3</string>", "<string>\xED\xA0\x80</string>",
           "<string>x<!--->y</string>", nested("array", 128)}) {
    rejected.push_back(plist("<dict><key>a</key>" + value + "</dict>"));
  }
  for (const auto& input : rejected) {
    EXPECT_EQ(readPlistStringDictionary(input), std::nullopt) << input;
  }
}

TEST(PlistXml, ChecksTheTextOfEveryScalarKind) {
  const struct {
    const char* element;
    std::vector<std::string> valid, invalid;
  } cases[] = {
      {"integer",
       {"+0", "-0X7fffFFFFffffFFFF"},
       {"18446744073709551616", "-9223372036854775809", "1 2", "0x", ""}},
      {"real", {"1.", ".5E-7", "-Infinity"}, {"1e", ".", "1.2.3", "0x10"}},
      {"date",
       {"2000-02-29T00:00:00Z", "2021-01-31T23:59:59Z"},
       {"1900-02-29T00:00:00Z", "2021-04-31T00:00:00Z", "2021-13-01T00:00:00Z",
        "2021-01-01T24:00:00Z", "2021-01-01T00:00:60Z", "2021-01-01 00:00:00Z",
        "2021-01-01T00:00:00"}},
      {"data", {"", "QUJD RA=\n=", "QUJDRA", "az+/"}, {"QUJDR", "QU=JD", "QUJD====", "QU*J"}},
      {"true", {""}, {"x"}},
  };
  for (const auto& c : cases) {
    for (const bool valid : {true, false}) {
      for (const std::string& text : valid ? c.valid : c.invalid) {
        const std::string value =
            std::string("<") + c.element + ">" + text + "</" + c.element + ">";
        const auto result =
            readPlistStringDictionary(plist("<dict><key>k</key>" + value + "</dict>"));
        EXPECT_EQ(result.has_value(), valid) << value;
      }
    }
  }
}

// A binary list built object by object: references and offsets of one byte
// unless widened, and a trailer whose fields the hostile cases then patch.
struct Bplist {
  std::vector<std::string> objects;
  std::map<std::uint64_t, std::uint64_t> aliasOf;  // objects sharing another's bytes
  int refSize = 1;
  int offsetSize = 1;

  static std::string bigEndian(std::uint64_t value, int width) {
    std::string out;
    for (int i = width - 1; i >= 0; --i) out += static_cast<char>((value >> (8 * i)) & 0xFF);
    return out;
  }
  static std::string marker(int type, std::uint64_t count) {
    if (count < 15) return std::string(1, static_cast<char>(type << 4 | count));
    return std::string(1, static_cast<char>(type << 4 | 0xF)) + "\x13" + bigEndian(count, 8);
  }
  std::uint64_t add(std::string encoded) {
    objects.push_back(std::move(encoded));
    return objects.size() - 1;
  }
  std::uint64_t alias(std::uint64_t of) {
    aliasOf[objects.size()] = of;
    return add("");
  }
  std::uint64_t ascii(const std::string& s) { return add(marker(5, s.size()) + s); }
  std::uint64_t utf16(const std::vector<std::uint16_t>& units) {
    std::string out = marker(6, units.size());
    for (auto u : units) out += bigEndian(u, 2);
    return add(out);
  }
  std::uint64_t container(int type, const std::vector<std::uint64_t>& refs) {
    std::string out = marker(type, type == 0xD ? refs.size() / 2 : refs.size());
    for (auto r : refs) out += bigEndian(r, refSize);
    return add(out);
  }
  std::uint64_t dict(const std::vector<std::pair<std::uint64_t, std::uint64_t>>& entries) {
    std::vector<std::uint64_t> refs;
    for (const auto& e : entries) refs.push_back(e.first);
    for (const auto& e : entries) refs.push_back(e.second);
    return container(0xD, refs);
  }
  std::string build(std::uint64_t top) const {
    std::string out = "bplist00";
    std::string table;
    std::vector<std::uint64_t> offsets;
    for (std::size_t i = 0; i < objects.size(); ++i) {
      offsets.push_back(aliasOf.count(i) ? offsets[aliasOf.at(i)] : out.size());
      table += bigEndian(offsets.back(), offsetSize);
      out += objects[i];
    }
    const std::uint64_t tableOffset = out.size();
    return out + table + std::string(6, '\0') + bigEndian(offsetSize, 1) + bigEndian(refSize, 1) +
           bigEndian(objects.size(), 8) + bigEndian(top, 8) + bigEndian(tableOffset, 8);
  }
};

std::string patched(std::string bytes, std::size_t fromEnd, const std::string& with) {
  return bytes.replace(bytes.size() - fromEnd, with.size(), with);
}

TEST(PlistBinary, ReadsTheStringEntriesOfWellFormedLists) {
  std::vector<std::pair<std::string, Dict>> cases;
  {
    Bplist b;
    const auto k = b.utf16({0x00E9, 0xD83D, 0xDE00});
    const auto shared = b.ascii(std::string(20, 'v'));
    const auto again = b.ascii("again");
    cases.emplace_back(b.build(b.dict({{k, shared}, {again, shared}, {b.ascii(""), b.utf16({})}})),
                       Dict{{"\xC3\xA9\xF0\x9F\x98\x80", std::string(20, 'v')},
                            {"again", std::string(20, 'v')},
                            {"", ""}});
  }
  {
    // Wide references and offsets; a dict holding other kinds, and a key
    // given twice, the last time with something other than a string.
    Bplist b;
    b.refSize = 2;
    b.offsetSize = 3;
    const auto inner = b.dict({{b.ascii("x"), b.ascii("y")}});
    cases.emplace_back(b.build(b.dict({{b.ascii("n"), b.add("\x10\x01")},
                                       {b.ascii("set"), b.container(0xC, {inner})},
                                       {b.ascii("dup"), b.ascii("first")},
                                       {b.ascii("dup"), b.ascii("last")},
                                       {b.ascii("gone"), b.ascii("string")},
                                       {b.ascii("gone"), inner}})),
                       Dict{{"dup", "last"}});
  }
  {
    // 128 levels are allowed, and a diamond-shaped graph of shared
    // references is checked once per object, not once per path.
    Bplist b;
    b.offsetSize = 2;
    auto chain = b.container(0xA, {});
    for (int i = 0; i < 126; ++i) chain = b.container(0xA, {chain, chain});
    cases.emplace_back(b.build(b.dict({{b.ascii("k"), chain}})), Dict{});
  }
  for (const auto& [input, expected] : cases) {
    EXPECT_EQ(readPlistStringDictionary(input), std::optional<Dict>(expected));
  }
}

TEST(PlistBinary, RejectsTruncatedAndHostileLists) {
  Bplist b;
  const auto key = b.ascii("k");
  const auto value = b.ascii("v");
  const std::string good = b.build(b.dict({{key, value}}));
  ASSERT_EQ(readPlistStringDictionary(good), (Dict{{"k", "v"}}));

  const auto build = [](auto&& fill) {
    Bplist c;
    return c.build(fill(c));
  };
  const auto withKey = [](const std::string& bytes) {
    Bplist c;
    return c.build(c.dict({{c.add(bytes), c.ascii("v")}}));
  };
  const auto withValue = [](const std::string& bytes) {
    Bplist c;
    return c.build(c.dict({{c.ascii("k"), c.add(bytes)}}));
  };
  const std::string hostile[] = {
      good.substr(0, good.size() - 1),
      good.substr(0, 39),
      "bplist01" + good.substr(8),
      patched(good, 26, std::string(1, '\0')),    // offset size 0
      patched(good, 26, "\x09"),                  // offset size 9
      patched(good, 25, std::string(1, '\0')),    // reference size 0
      patched(good, 24, std::string(8, '\xFF')),  // object count
      patched(good, 24, std::string(8, '\0')),
      patched(good, 16, Bplist::bigEndian(3, 8)),           // top object
      patched(good, 8, Bplist::bigEndian(good.size(), 8)),  // offset table
      patched(good, 8, Bplist::bigEndian(8, 8)),
      patched(good, 34, "\x00"s),  // an object offset inside the header
      patched(good, 34, "\x12"),   // an object offset inside the trailer
      build([](Bplist& c) { return c.container(0xA, {c.ascii("array root")}); }),
      withKey("\x10\x01"),  // keys are strings
      build([](Bplist& c) {
        const auto inner = c.dict({{c.add(std::string(1, '\0')), c.ascii("v")}});
        return c.dict({{c.ascii("k"), inner}});
      }),
      build([](Bplist& c) {
        c.ascii("k");
        return c.dict({{0, 1}});  // the dict holds itself
      }),
      build([](Bplist& c) {
        c.container(0xA, {1});
        c.container(0xC, {0});
        return c.dict({{c.ascii("k"), 0}});
      }),
      build([](Bplist& c) {
        return c.dict({{c.ascii("k"), 9}});
      }),
      withKey("\x61\xD8\x00"s),  // UTF-16 with a lone, reversed or unpaired surrogate
      withKey("\x62\xDC\x00\xD8\x00"s),
      withKey("\x62\xD8\x00\x00\x41"s),
      withKey("\x51\x80"),  // ASCII beyond 0x7F
      withValue(Bplist::marker(5, 0x7FFFFFFFFFFFFFFF) + "v"),
      withValue(Bplist::marker(0xA, UINT64_MAX) + "v"),
      withValue("\x4F\x14" + std::string(8, 'x')),
      withValue("\x15"),
      withValue("\x21\0\0"s),
      withValue("\x32\0\0\0\0"s),
      withValue("\x70"),
      withValue("\x13\0"s),
      build([](Bplist& c) {
        // One long string under many keys would expand the file 100-fold.
        c.offsetSize = 2;
        const auto shared = c.ascii(std::string(4000, 'x'));
        std::vector<std::pair<std::uint64_t, std::uint64_t>> entries;
        for (int i = 0; i < 200; ++i) entries.emplace_back(c.ascii(std::to_string(i)), shared);
        return c.dict(entries);
      }),
      // Many offsets naming one long array or string: checking each anew
      // would take time growing with the square of the file's size.
      build([](Bplist& c) {
        c.offsetSize = 2;
        const auto shared = c.container(0xA, std::vector<std::uint64_t>(100, c.add("\x00"s)));
        std::vector<std::uint64_t> names;
        for (int i = 0; i < 100; ++i) names.push_back(c.alias(shared));
        return c.dict({{c.ascii("k"), c.container(0xA, names)}});
      }),
      build([](Bplist& c) {
        c.offsetSize = 2;
        const auto shared = c.ascii(std::string(100, 'x'));
        std::vector<std::uint64_t> names;
        for (int i = 0; i < 100; ++i) names.push_back(c.alias(shared));
        return c.dict({{c.ascii("k"), c.container(0xA, names)}});
      }),
      build([](Bplist& c) {
        c.offsetSize = 2;
        auto chain = c.container(0xA, {});
        for (int i = 0; i < 127; ++i) chain = c.container(0xA, {chain});
        return c.dict({{c.ascii("k"), chain}});
      }),
  };
  for (std::size_t i = 0; i < std::size(hostile); ++i) {
    EXPECT_EQ(readPlistStringDictionary(hostile[i]), std::nullopt) << "case " << i;
  }
}

TEST(PlistWriter, WrittenListsReadBackUnchanged) {
  const Dict dictionary{{"tavuro_username", "user"},
                        {"]]>", "<![CDATA[x]]>"},
                        {"&amp;", "&#65; &lt;"},
                        {"ctl", std::string("\0\x01\r\r\n\x7F", 6)},
                        {"  ", " \t "}};
  EXPECT_EQ(readPlistStringDictionary(writeXmlPlist(dictionary)), dictionary);
}

}  // namespace
