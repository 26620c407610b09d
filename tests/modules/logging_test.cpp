// The severity and facility words of logging, both dialects; the walks of
// logging and messages are golden cases (golden/logging.txt).
#include "../../oc-syslog/src/ymap_syslog.hpp"
#include "harness.hpp"

namespace {

using test::Request;

std::string errors(Request &r) {
    std::string out;
    for (const std::string &line : r.session().debug_log())
        if (line.starts_with("ERR: "))
            out += line.substr(line.find(',') + 1) + "\n";
    return out;
}

// ---- The vocabulary ---------------------------------------------------------------------

using Conversion = const char *(*)(yfw_map_ctx *, const char *);
constexpr Conversion kSev = oc_syslog_severity_conversion,
                     kQvSev = qv_oc_syslog_severity_conversion,
                     kCon = oc_syslog_console_severity_conversion,
                     kQvCon = qv_oc_syslog_console_severity_conversion,
                     kFac = oc_syslog_facility_conversion,
                     kQvFac = qv_oc_syslog_facility_conversion;

// The words that tell the dialects apart, and each table's ends.
TEST(LoggingWords, WordsConvertBothWays) {
    const struct {
        Conversion to_native, to_oc;
        const char *oc, *native;
    } cases[] = {
        {kSev, kQvSev, "EMERGENCY", "emergency"},  {kSev, kQvSev, "INFORMATIONAL", "informational"},
        {kCon, kQvCon, "INFORMATIONAL", "info"},   {kCon, kQvCon, "DISABLE", "disable"},
        {kCon, kQvCon, "DEBUG", "debug"},          {kFac, kQvFac, "KERNEL", "kern"},
        {kFac, kQvFac, "SYSTEM_DAEMON", "daemon"}, {kFac, kQvFac, "SYSLOG", "syslog"}};
    Request r(KIND_GET_CONFIG);
    for (const auto &c : cases) {
        EXPECT_STREQ(c.to_native(r.ctx(), c.oc), c.native) << c.oc;
        EXPECT_STREQ(c.to_oc(r.ctx(), c.native), c.oc) << c.native;
    }
    EXPECT_EQ(errors(r), "");
    EXPECT_STREQ(oc_syslog_check_ipv4_ipv6(nullptr), "NULL");
}

// A bad word is traced and passes on as NULL, with no refusal.
TEST(LoggingWords, OnlyWholeWordsOfTheirOwnDialectConvert) {
    const std::string sev = "severity", con = "console severity", fac = "or Unsupported facility";
    const struct {
        Conversion fn;
        const char *word;
        std::string what;
    } cases[] = {
        {kSev, "DISABLE", sev},         {kSev, "EMERG", sev},  {kSev, "emergency", sev},
        {kSev, "ERRORS", sev},          {kQvSev, "info", sev}, {kQvSev, "disable", sev},
        {kQvCon, "informational", con}, {kCon, "Info", con},   {kFac, "NONE", fac},
        {kQvFac, "KERNEL", fac},        {kSev, nullptr, sev},  {kCon, nullptr, con},
        {kQvFac, nullptr, sev}, // the facility's null trace names the severity
    };
    for (const auto &c : cases) {
        Request r(KIND_GET_CONFIG);
        EXPECT_EQ(c.fn(r.ctx(), c.word), nullptr) << (c.word ? c.word : "(null)");
        EXPECT_EQ(errors(r),
                  c.word != nullptr
                      ? "Invalid " + c.what + " leaf value '" + c.word + "' specified in OC model\n"
                      : "Null " + c.what + " leaf specified in OC model\n");
        EXPECT_EQ(r.state()->error_message, nullptr);
    }
}

} // namespace
