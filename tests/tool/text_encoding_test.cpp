// Every reader refuses text that is not UTF-8, and the JSON writer escapes on
// its own: JSON's escapes for control characters, UTF-8 as it stands.
#include <gtest/gtest.h>

#include "io_detail.hpp"
#include "ocsysmap_io.hpp"

namespace {

#define SHELL "<host-names xmlns=\"http://tarvex.local/ns/yang/Tarvex-QV-shellutil-cfg\">"

TEST(TextEncoding, EveryReaderRefusesTextThatIsNotUtf8) {
    struct Case {
        bool ietf;
        std::string text;
        std::string message;
    };
    const Case cases[] = {
        // CDATA let an overlong form through, which the writers printed back.
        {false,
         SHELL "<host-name><![CDATA[a\xC0\xBC"
               "b]]></host-name></host-names>",
         "XML line 1: the text is not UTF-8 (byte 0xC0)"},
        {false, SHELL "\n<host-name>a\x80</host-name></host-names>",
         "XML line 2: the text is not UTF-8 (byte 0x80)"},
        {false, "{\"tag\": \"a\", \"value\": \"\xED\xA0\x80\"}", // a surrogate
         "JSON line 1: the text is not UTF-8 (byte 0xED)"},
        {true, "{\"Tarvex-QV-shellutil-cfg:host-names\": {\"host-name\": \"\xF4\x90\x80\x80\"}}",
         "JSON line 1: the text is not UTF-8 (byte 0xF4)"}, // past U+10FFFF
    };
    for (const Case &c : cases) {
        yfw::Arena arena;
        try {
            (void)(c.ietf ? ocsysmap::parse_ietf_json(arena, c.text, false)
                          : ocsysmap::parse_input(arena, c.text, false));
            ADD_FAILURE() << c.message;
        } catch (const ocsysmap::ParseError &e) {
            EXPECT_EQ(e.what(), c.message);
        }
    }
    yfw::Arena arena; // characters of two, three and four bytes
    EXPECT_EQ(ocsysmap::parse_input(
                  arena, SHELL "\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E</host-names>", false)
                  .size(),
              1u);
}

TEST(TextEncoding, TheJsonWriterEscapesControlsAndKeepsUtf8) {
    const std::pair<std::string, std::string> cases[] = {
        {std::string("\x00\x01\x1f", 3), "\"\\u0000\\u0001\\u001f\""},
        {"\b\f\n\r\t\"\\/\x7f", "\"\\b\\f\\n\\r\\t\\\"\\\\/\x7f\""},
        {"\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E", "\"\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E\""},
        // Each byte that begins no character becomes U+FFFD.
        {"a\xC0\xBC"
         "b\xE2\x82",
         "\"a\xEF\xBF\xBD\xEF\xBF\xBD"
         "b\xEF\xBF\xBD\xEF\xBF\xBD\""},
    };
    for (const auto &[text, quoted] : cases)
        EXPECT_EQ(ocsysmap::detail::json_quote(text), quoted);
}

} // namespace
