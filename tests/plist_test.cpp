#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
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
  const std::pair<std::string, Dict> cases[] = {
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
      // Encoding names compared loosely, a byte-order mark before any, a
      // stray 0xA9 in text as U+FFFD.
      {"<?xml version='1.0' encoding='!utf_08\0x'?><dict><key>\xA9</key><string>a\xA9</string></dict>"s,
       {{"\xEF\xBF\xBD", "a\xEF\xBF\xBD"}}},
      {"\xEF\xBB\xBF<?xml encoding=\"latin1\"?><dict/>", {}},
      {"<?xml encoding=\"UTF-8?><!--\"--><dict/>", {}},
      {plist("<dict><key>k</key>" + nested("array", 127) + "</dict>"), {}},
      {plist(nested("dict", 128)), {}},
  };
  for (const auto& [input, expected] : cases) {
    EXPECT_EQ(readPlistStringDictionary(input), std::optional<Dict>(expected)) << input;
  }
}

TEST(PlistXml, RejectsMalformedLists) {
  // Whole documents ("<!-->" opens a comment, no more; quotes do not hide a
  // ">"; UTF-16 is not read)...
  std::vector<std::string> rejected(
      {""s, "   "s, "<?xml version=\"1.0\"?>"s, "<plist/>"s, "<!--><plist><dict/></plist>"s,
       "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><plist><dict/></plist>"s,
       "<?xml encoding=\"UTF\0\x38\"?><dict/>"s,
       "<?xml encoding='UTF-8?><dict><key>'</key></dict>"s,
       "<plist/version=\"1.0\"><dict/></plist>"s, "<plist version=\"1>0\"><dict/></plist>"s,
       "<!DOCTYPE plist [<!ENTITY e \"x\">]><plist><dict/></plist>"s, "\xFF\xFE<\0p\0"s});
  // ...what the plist element holds...
  for (const std::string& root :
       {"<array></array>"s, "<string>a</string>"s, "<dict/><dict/>"s, "<dict>"s,
        "<dict><!-- open </dict>"s, "<dict><string>b</string></dict>"s, nested("dict", 129),
        "<dict><key>k</key>" + nested("array", 128) + "</dict>"}) {
    rejected.push_back(plist(root));
  }
  // ...and what follows a key: no comment or instruction inside text, blanks
  // only before a number.
  for (const std::string& value :
       {"<string>b</key>"s, ""s, "<string>b</string>stray"s, "<string>b<b/></string>"s, "<foo/>"s,
        "<key>b</key>"s, "<string>&nbsp;</string>"s, "<string>&amp</string>"s,
        "<string>&#xD800;</string>"s, "<string>&#x110000;</string>"s,
        "<string><![CDATA[x</string>"s, "<string>\xC3</string>"s, "<string>\x80</string>"s,
        "<string>\xED\xA0\x80</string>"s, "<string>x<!--->y</string>"s,
        "<string>x<!--c-->y</string>"s, "<string>x<?pi?>y</string>"s, "<integer>1 </integer>"s,
        "<real> inf</real>"s}) {
    rejected.push_back(plist("<dict><key>a</key>" + value + "</dict>"));
  }
  for (const auto& input : rejected) {
    EXPECT_EQ(readPlistStringDictionary(input), std::nullopt) << input;
  }
}

TEST(PlistXml, ChecksTheTextOfEveryScalarKind) {
  // Each kind of element with texts it takes, then texts it refuses.
  const std::tuple<std::string, std::vector<std::string>, std::vector<std::string>> cases[] = {
      // Controls and some spaces may come before the number, and for an
      // integer (its raw text) after its sign, but nothing after it.
      {"integer",
       {"+0", "\f- 7", "\x10-\x80\x7F\xE3\x80\x80\x35", "-0X7fffFFFFffffFFFF"},
       {"18446744073709551616", "-9223372036854775809", "1 2", "1\x10", "&#49;", "0x", ""}},
      {"real",
       {"1.", ".5E-7", "\x10\xC2\xA0-0", "&#16;1", "-Infinity"},
       {"- 1", "-\x10\x31", "\x10nan", "1e", ".", "1.2.3", "0x10"}},
      // Any number of year digits; the fields are not checked.
      {"date",
       {"2000-02-29T00:00:00Z", "582-10-15T12:00:00Z", "--01-01T00:00:00Z",
        "20200-13-32T24:60:60Z"},
       {"-01-01T00:00:00Z", "&#50;021-01-01T00:00:00Z", "2021-01-01 00:00:00Z",
        "2021-01-01T00:00:00", "2021-1-01T00:00:00Z"}},
      // Data is never refused for its base64, as on the platform, but must be UTF-8.
      {"data", {"", "QUJD RA=\n=", "QUJDRA", "QU*J="}, {"\xFF"}},
      {"true", {""}, {"x"}},
  };
  for (const auto& [element, accepted, refused] : cases) {
    for (const bool valid : {true, false}) {
      for (const std::string& text : valid ? accepted : refused) {
        const auto input =
            plist("<dict><key>k</key><" + element + ">" + text + "</" + element + "></dict>");
        EXPECT_EQ(readPlistStringDictionary(input).has_value(), valid) << input;
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
    std::string out = "bplist00", table;
    std::vector<std::uint64_t> offsets;
    for (std::size_t i = 0; i < objects.size(); ++i) {
      offsets.push_back(aliasOf.count(i) ? offsets[aliasOf.at(i)] : out.size());
      table += bigEndian(offsets.back(), offsetSize);
      out += objects[i];
    }
    return out + table + std::string(6, '\0') + bigEndian(offsetSize, 1) + bigEndian(refSize, 1) +
           bigEndian(objects.size(), 8) + bigEndian(top, 8) + bigEndian(out.size(), 8);
  }
};

/// A list of objects given already encoded, with one-byte references.
std::string encoded(std::vector<std::string> objects, std::uint64_t top) {
  Bplist b;
  b.objects = std::move(objects);
  return b.build(top);
}

TEST(PlistBinary, ReadsTheStringEntriesOfWellFormedLists) {
  std::vector<std::pair<std::string, Dict>> cases;
  {
    Bplist b;
    const std::string v(40, 'v');
    const auto k = b.utf16({0x00E9, 0xD83D, 0xDE00});
    const auto shared = b.ascii(v);
    const auto again = b.ascii("again");
    // A second offset may name the same bytes.
    cases.emplace_back(
        b.build(b.dict({{k, shared}, {again, shared}, {b.ascii(""), b.alias(shared)}})),
        Dict{{"\xC3\xA9\xF0\x9F\x98\x80", v}, {"again", v}, {"", v}});
  }
  {
    Bplist b;
    b.refSize = 2;
    b.offsetSize = 3;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> entries;
    for (const std::string& scalar :
         {"\x00"s, "\x08"s, "\x09"s, "\x10\x01"s, "\x11\x01\x02"s, "\x12\0\0\0\1"s,
          "\x13\0\0\0\0\0\0\0\1"s, "\x22\0\0\0\0"s, "\x23\0\0\0\0\0\0\0\0"s,
          "\x33\0\0\0\0\0\0\0\0"s, "\x42zz"s, "\x80\x01"s, "\x87\0\0\0\0\xFF\0\0\1"s}) {
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
    // Keys of any kind but a container; those at the root are passed over.
    entries.emplace_back(b.add("\x10\x07"), b.dict({{b.add("\x33\0\0\0\0\0\0\0\0"s), inner}}));
    cases.emplace_back(b.build(b.dict(entries)), Dict{{"dup", "first"}, {"gone", "string"}});
  }
  {
    // As the platform reads them: "ASCII" strings as ISO Latin-1, unpaired
    // surrogates as U+FFFD, any version 0x.
    Bplist b;
    const Dict expected{{"\xC2\x80\xC3\xBF", "\xEF\xBF\xBD\x41\xEF\xBF\xBD\xEF\xBF\xBD"}};
    std::string input =
        b.build(b.dict({{b.ascii("\x80\xFF"), b.utf16({0xD800, 0x41, 0xDC00, 0xD800})}}));
    cases.emplace_back(input, expected);
    cases.emplace_back(input.replace(6, 2, "0x"), expected);
  }
  {
    // An offset inside the header is refused only when its object is read.
    std::string unread = encoded({"\x51k", "\x51v", "\xD1\x00\x01"s, "\x51x"}, 2);
    unread[unread.size() - 33] = '\0';
    cases.emplace_back(unread, Dict{{"k", "v"}});
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
  // Objects given encoded: 0x5n is an ASCII string of n bytes, 0xAn an array
  // and 0xCn a set of n references, 0xDn a dict of n keys then n values.
  const std::string good = encoded({"\x51k", "\x51v", "\xD1\x00\x01"s}, 2);
  ASSERT_EQ(readPlistStringDictionary(good), (Dict{{"k", "v"}}));

  const auto build = [](auto&& fill) {
    Bplist c;
    c.offsetSize = 2;
    return c.build(fill(c));
  };
  std::vector<std::string> hostile{
      good.substr(0, good.size() - 1),
      good.substr(0, 39),
      "bplist10" + good.substr(8),
      good.substr(0, good.size() - 32) + "\0"s + good.substr(good.size() - 32),  // a gap
      encoded({"\x5A"s + "array root", "\xA1\x00"s}, 1),
      encoded({"\xA0", "\x51v", "\xD1\x00\x01"s}, 2),                             // an array key
      encoded({"\xA0"s, "\x51v", "\xD1\x00\x01"s, "\x51k", "\xD1\x03\x02"s}, 4),  // one deeper down
      encoded({"\x51k", "\xD1\x00\x01"s}, 1),                           // the dict holds itself
      encoded({"\xA1\x01", "\xC1\x00"s, "\x51k", "\xD1\x02\x00"s}, 3),  // an array and a set
      encoded({"\x51k", "\xD1\x00\x09"s}, 1),                           // a reference past the end
      build([](Bplist& c) {
        // One long string under many keys would expand the file 100-fold.
        const auto shared = c.ascii(std::string(4000, 'x'));
        std::vector<std::pair<std::uint64_t, std::uint64_t>> entries;
        for (int i = 0; i < 200; ++i) entries.emplace_back(c.ascii(std::to_string(i)), shared);
        return c.dict(entries);
      }),
      build([](Bplist& c) {
        auto chain = c.container(0xA, {});
        for (int i = 0; i < 127; ++i) chain = c.container(0xA, {chain});
        return c.dict({{c.ascii("k"), chain}});
      }),
  };
  // Many offsets naming one long array or string: checking each anew would
  // take time growing with the square of the file's size.
  for (const bool array : {true, false}) {
    hostile.push_back(build([array](Bplist& c) {
      const auto shared = array ? c.container(0xA, std::vector<std::uint64_t>(100, c.add("\x00"s)))
                                : c.ascii(std::string(100, 'x'));
      std::vector<std::uint64_t> names(100);
      for (auto& name : names) name = c.alias(shared);
      return c.dict({{c.ascii("k"), c.container(0xA, names)}});
    }));
  }
  // Trailer fields (offset size 0 or 9, reference size 0, object count, top
  // object, offset table), then an object's offset inside the header or trailer.
  const auto patch = [&good](std::size_t fromEnd, const std::string& with) {
    return std::string(good).replace(good.size() - fromEnd, with.size(), with);
  };
  hostile.insert(hostile.end(),
                 {patch(26, "\0"s), patch(26, "\x09"), patch(25, "\0"s),
                  patch(24, std::string(8, '\xFF')), patch(24, std::string(8, '\0')),
                  patch(16, Bplist::bigEndian(3, 8)), patch(8, Bplist::bigEndian(good.size(), 8)),
                  patch(8, Bplist::bigEndian(8, 8)), patch(34, "\0"s), patch(34, "\x12")});
  // Values whose marker or length cannot hold.
  for (const std::string& bytes :
       {Bplist::marker(5, 0x7FFFFFFFFFFFFFFF) + "v", Bplist::marker(0xA, UINT64_MAX) + "v",
        "\x4F\x14" + std::string(8, 'x'), "\x15"s, "\x21\0\0"s, "\x32\0\0\0\0"s, "\x70"s, "\x13\0"s,
        "\x0F"s, "\x60"s, "\x84\x01\0\0\0\0"s}) {
    hostile.push_back(encoded({"\x51k", bytes, "\xD1\x00\x01"s}, 2));
  }
  for (std::size_t i = 0; i < hostile.size(); ++i) {
    EXPECT_EQ(readPlistStringDictionary(hostile[i]), std::nullopt) << "case " << i;
  }
}

TEST(PlistBinary, CopiesSharedStringsToAtMostSixTimesTheFile) {
  // One string object of about 1 MB under `keys` keys is copied under each;
  // in UTF-16 (U+4E00 throughout) each copy, as UTF-8, is half again as large.
  constexpr std::size_t kBytes = 1 << 20;
  const std::tuple<bool, int, bool> cases[] = {
      {false, 6, true}, {false, 7, false}, {false, 63, false}, {true, 4, true}, {true, 5, false}};
  for (const auto& [utf16, keys, loads] : cases) {
    Bplist b;
    b.offsetSize = 4;
    std::string text;
    for (std::size_t i = 0; i < kBytes / 2; ++i) text += utf16 ? "\xE4\xB8\x80" : "xx";
    const auto shared =
        utf16 ? b.utf16(std::vector<std::uint16_t>(kBytes / 2, 0x4E00)) : b.ascii(text);
    std::vector<std::pair<std::uint64_t, std::uint64_t>> entries;
    Dict expected;
    for (int i = 0; i < keys; ++i) {
      entries.emplace_back(b.ascii(std::to_string(i)), shared);
      expected[std::to_string(i)] = text;
    }
    const auto result = readPlistStringDictionary(b.build(b.dict(entries)));
    // Compared whole, so that a failure does not print megabytes.
    EXPECT_TRUE(result == (loads ? std::optional<Dict>(expected) : std::nullopt))
        << keys << (utf16 ? " keys, UTF-16" : " keys, ASCII");
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
