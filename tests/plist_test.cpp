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
       "<?app x?><!DOCTYPE plist PUBLIC \"-//X//EN\" \"x.dtd\"><!DOCTYPE plist>"
       "\n<plist version=\"1.0\">\n\t<dict>\n<!--x--><key>a</key> <string>b</string></dict>"
       "<!-- after --></plist>\n<?end?>  ",
       {{"a", "b"}}},
      {plist("<dict><key>&lt;&gt;&amp;&apos;&quot;</key><string>&#65;&#x42;&#x1F600;&#xe9;"
             "</string></dict>"),
       {{"<>&'\"", "AB\xF0\x9F\x98\x80\xC3\xA9"}}},
      {plist("<dict><key><![CDATA[<k>]]></key><string>a<![CDATA[&amp;]]>bc</string>"
             "</dict>"),
       {{"<k>", "a&amp;bc"}}},
      {plist("<dict><key/><string/><key>e</key><string></string><key>s</key><string> \r\n\x01"
             "\t</string></dict>"),
       {{"", ""}, {"e", ""}, {"s", " \r\n\x01\t"}}},
      {plist("<dict><key>i</key><integer>-9223372036854775808</integer><key>u</key><integer>"
             "18446744073709551615</integer><key>h</key><integer> 0x1F</integer><key>r</key>"
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
      // As the platform reads them: a bare root, tags read to their first
      // ">", nothing after the root, "&#0;" and "&#;" as NUL.
      {"<dict><key>a</key><string>&#0;&#;</string></dict>text", {{"a", "\0\0"s}}},
      {"<plist version=1.0><dict/></plist><plist/><?xml version=\"1.0\"?>", {}},
      {plist("<dict><key>k</key>" + nested("array", 127) + "</dict>"), {}},
      {plist(nested("dict", 128)), {}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(readPlistStringDictionary(c.input), std::optional<Dict>(c.expected)) << c.input;
  }
}

TEST(PlistXml, RejectsMalformedLists) {
  const std::string rejected[] = {
      "",
      "   ",
      "<?xml version=\"1.0\"?>",
      plist("<array></array>"),
      plist("<string>a</string>"),
      "<plist/>",
      plist("<dict/><dict/>"),
      plist("<dict>"),
      plist("<dict><key>a</key><string>b</key></dict>"),
      plist("<dict><key>a</key></dict>"),
      plist("<dict><string>b</string></dict>"),
      plist("<dict><key>a</key><string>b</string>stray</dict>"),
      plist("<dict><key>a</key><string>b<b/></string></dict>"),
      plist("<dict><key>a</key><foo/></dict>"),
      plist("<dict><key>a</key><key>b</key></dict>"),
      plist("<dict><key>a</key><string>&nbsp;</string></dict>"),
      plist("<dict><key>a</key><string>&amp</string></dict>"),
      plist("<dict><key>a</key><string>&#xD800;</string></dict>"),
      plist("<dict><key>a</key><string>&#x110000;</string></dict>"),
      plist("<dict><key>a</key><string><![CDATA[x</string></dict>"),
      plist("<dict><key>a</key><string>\xC3</string></dict>"),
      plist("<dict><key>a</key><string>\xED\xA0\x80</string></dict>"),
      plist("<dict><!-- open </dict>"),
      "<!--><plist><dict/></plist>",  // "<!-->" opens a comment, no more
      plist("<dict><key>a</key><string>x<!--->y</string></dict>"),
      "\xFF\xFE<\0p\0"s,
      "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><plist><dict/></plist>",
      plist("<dict><key>k</key>" + nested("array", 128) + "</dict>"),
      plist(nested("dict", 129)),
      plist("<dict><key>a</key><string>x<!--c-->y</string></dict>"),  // no comment in text
      plist("<dict><key>a</key><string>x<?pi?>y</string></dict>"),
      plist("<dict><key>a</key><integer>1 </integer></dict>"),  // blanks only before a number
      plist("<dict><key>a</key><real> inf</real></dict>"),
      "<plist/version=\"1.0\"><dict/></plist>",
      "<plist version=\"1>0\"><dict/></plist>",  // quotes do not hide a ">"
      "<!DOCTYPE plist [<!ENTITY e \"x\">]><plist><dict/></plist>",
  };
  for (const auto& input : rejected) {
    EXPECT_EQ(readPlistStringDictionary(input), std::nullopt) << input;
  }
}

TEST(PlistXml, ChecksTheTextOfEveryScalarKind) {
  const struct {
    const char* element;
    const char* text;
    bool valid;
  } cases[] = {
      {"integer", "+0", true},
      {"integer", "\f- 7", true},  // blanks before the number and after its sign
      {"real", "- 1", false},
      {"integer", "-0X7fffFFFFffffFFFF", true},
      {"integer", "18446744073709551616", false},
      {"integer", "-9223372036854775809", false},
      {"integer", "1 2", false},
      {"integer", "0x", false},
      {"integer", "", false},
      {"real", "1.", true},
      {"real", ".5E-7", true},
      {"real", "-Infinity", true},
      {"real", "1e", false},
      {"real", ".", false},
      {"real", "1.2.3", false},
      {"real", "0x10", false},
      {"date", "2000-02-29T00:00:00Z", true},
      {"date", "1900-02-29T00:00:00Z", false},
      {"date", "2021-04-31T00:00:00Z", false},
      {"date", "2021-13-01T00:00:00Z", false},
      {"date", "2021-01-01T24:00:00Z", false},
      {"date", "2021-01-01T00:00:60Z", false},
      {"date", "2021-01-01 00:00:00Z", false},
      {"date", "2021-01-01T00:00:00", false},
      {"data", "", true},
      {"data", "QUJD RA=\n=", true},
      {"data", "QUJDRA", true},
      {"data", "QU*J=", true},  // never refused, as on the platform
      {"data", "\xFF", false},  // but UTF-8
      {"true", "", true},
      {"true", "x", false},
  };
  for (const auto& c : cases) {
    const std::string value = std::string("<") + c.element + ">" + c.text + "</" + c.element + ">";
    const auto result = readPlistStringDictionary(plist("<dict><key>k</key>" + value + "</dict>"));
    EXPECT_EQ(result.has_value(), c.valid) << value;
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
    Bplist b;
    b.refSize = 2;
    b.offsetSize = 3;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> entries;
    for (const std::string& scalar :
         {"\x00"s, "\x08"s, "\x09"s, "\x0F"s, "\x10\x01"s, "\x11\x01\x02"s, "\x12\0\0\0\1"s,
          "\x13\0\0\0\0\0\0\0\1"s, "\x22\0\0\0\0"s, "\x23\0\0\0\0\0\0\0\0"s,
          "\x33\0\0\0\0\0\0\0\0"s, "\x42zz"s, "\x80\x01"s, "\x83\0\0\0\1"s}) {
      const auto key = b.ascii(std::to_string(entries.size()));
      entries.emplace_back(key, b.add(scalar));
    }
    entries.emplace_back(b.ascii("big"), b.add("\x14" + std::string(16, '\xFF')));
    const auto inner = b.dict({{b.ascii("x"), b.ascii("y")}});
    entries.emplace_back(b.ascii("set"), b.container(0xC, {inner, b.container(0xA, {})}));
    entries.emplace_back(b.ascii("dup"), b.ascii("first"));
    entries.emplace_back(b.ascii("dup"), b.ascii("last"));
    entries.emplace_back(b.ascii("gone"), b.ascii("string"));
    entries.emplace_back(b.ascii("gone"), inner);
    cases.emplace_back(b.build(b.dict(entries)), Dict{{"dup", "first"}, {"gone", "string"}});
  }
  {
    // As the platform reads them: "ASCII" strings as ISO Latin-1, unpaired
    // surrogates as U+FFFD, any version 0x.
    Bplist b;
    Dict expected{{"\xC2\x80\xC3\xBF",
                   "\xEF\xBF\xBD"
                   "A\xEF\xBF\xBD\xEF\xBF\xBD"}};
    std::string input =
        b.build(b.dict({{b.ascii("\x80\xFF"), b.utf16({0xD800, 0x41, 0xDC00, 0xD800})}}));
    cases.emplace_back(input, expected);
    cases.emplace_back(input.replace(6, 2, "0x"), expected);
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
  const std::string hostile[] = {
      good.substr(0, good.size() - 1),
      good.substr(0, 39),
      "bplist10" + good.substr(8),
      good.substr(0, good.size() - 32) + "\0"s + good.substr(good.size() - 32),  // a gap
      patched(good, 26, std::string(1, '\0')),                                   // offset size 0
      patched(good, 26, "\x09"),                                                 // offset size 9
      patched(good, 25, std::string(1, '\0')),                                   // reference size 0
      patched(good, 24, std::string(8, '\xFF')),                                 // object count
      patched(good, 24, std::string(8, '\0')),
      patched(good, 16, Bplist::bigEndian(3, 8)),           // top object
      patched(good, 8, Bplist::bigEndian(good.size(), 8)),  // offset table
      patched(good, 8, Bplist::bigEndian(8, 8)),
      patched(good, 34, "\x00"s),  // an object offset inside the header
      patched(good, 34, "\x12"),   // an object offset inside the trailer
      build([](Bplist& c) { return c.container(0xA, {c.ascii("array root")}); }),
      build([](Bplist& c) {
        return c.dict({{c.add("\x10\x01"), c.ascii("v")}});
      }),
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
      build([](Bplist& c) {
        return c.dict({{c.ascii("k"), c.add(Bplist::marker(5, 0x7FFFFFFFFFFFFFFF) + "v")}});
      }),
      build([](Bplist& c) {
        return c.dict({{c.ascii("k"), c.add(Bplist::marker(0xA, UINT64_MAX) + "v")}});
      }),
      build([](Bplist& c) {
        return c.dict({{c.ascii("k"), c.add("\x4F\x14" + std::string(8, 'x'))}});
      }),
      build([](Bplist& c) {
        return c.dict({{c.ascii("k"), c.add("\x15")}});
      }),
      build([](Bplist& c) {
        return c.dict({{c.ascii("k"), c.add("\x21\0\0"s)}});
      }),
      build([](Bplist& c) {
        return c.dict({{c.ascii("k"), c.add("\x32\0\0\0\0"s)}});
      }),
      build([](Bplist& c) {
        return c.dict({{c.ascii("k"), c.add("\x70")}});
      }),
      build([](Bplist& c) {
        return c.dict({{c.ascii("k"), c.add("\x13\0"s)}});
      }),
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

TEST(PlistBinary, CopiesSharedStringsToAtMostSixTimesTheFile) {
  // One string object of about 1 MB under `keys` keys is copied under each;
  // in UTF-16 (U+4E00 throughout) each copy, as UTF-8, is half again as large.
  const struct {
    bool utf16;
    int keys;
    bool loads;
  } cases[] = {
      {false, 6, true}, {false, 7, false}, {false, 63, false}, {true, 4, true}, {true, 5, false}};
  constexpr std::size_t kBytes = 1 << 20;
  for (const auto& c : cases) {
    Bplist b;
    b.offsetSize = 4;
    std::string text;
    for (std::size_t i = 0; i < kBytes / 2; ++i) text += c.utf16 ? "\xE4\xB8\x80" : "xx";
    const auto shared =
        c.utf16 ? b.utf16(std::vector<std::uint16_t>(kBytes / 2, 0x4E00)) : b.ascii(text);
    std::vector<std::pair<std::uint64_t, std::uint64_t>> entries;
    Dict expected;
    for (int i = 0; i < c.keys; ++i) {
      entries.emplace_back(b.ascii(std::to_string(i)), shared);
      expected[std::to_string(i)] = text;
    }
    const auto result = readPlistStringDictionary(b.build(b.dict(entries)));
    // Compared whole, so that a failure does not print megabytes.
    EXPECT_TRUE(result == (c.loads ? std::optional<Dict>(expected) : std::nullopt))
        << c.keys << (c.utf16 ? " keys, UTF-16" : " keys, ASCII");
  }
}

TEST(PlistWriter, WritesThePhoneLayoutByteForByte) {
  const std::string header =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST "
      "1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">\n";
  EXPECT_EQ(writeXmlPlist({}), header + "<dict/>\n</plist>\n");
  EXPECT_EQ(
      writeXmlPlist({{"b", ""}, {"\xC3\xA9", "\xF0\x9F\x98\x80"}, {"B", "<a&b>'\"\r"}, {"", "x"}}),
      header +
          "<dict>\n\t<key></key>\n\t<string>x</string>\n\t<key>B</key>\n\t<string>&lt;a&amp;b"
          "&gt;'\"\r</string>\n\t<key>b</key>\n\t<string></string>\n\t<key>\xC3\xA9</key>\n"
          "\t<string>\xF0\x9F\x98\x80</string>\n</dict>\n</plist>\n");
  // Keys go in UTF-16 order: U+1F600 before U+FFFD.
  EXPECT_EQ(writeXmlPlist({{"\xEF\xBF\xBD", "1"}, {"\xF0\x9F\x98\x80", "2"}}),
            header +
                "<dict>\n\t<key>\xF0\x9F\x98\x80</key>\n\t<string>2</string>\n\t<key>"
                "\xEF\xBF\xBD</key>\n\t<string>1</string>\n</dict>\n</plist>\n");
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
