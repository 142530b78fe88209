// The encoders' lines: each form, with the C library's own scanner as a second opinion.
#include "backend/EncodingLine.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace Kest::Settings;

std::string words(const ProgressLine& line) { return " P " + std::to_string(line.percentage); }
std::string words(const PathLine& line) { return " path " + std::string(line.path); }
std::string words(const TypeLine& line) { return " type " + std::string(line.word); }
std::string words(const ErrorLine&) { return " error"; }
std::string words(const OverlongValue&) { return " overlong"; }

/// What the parser makes of a line, as "pid form value".
std::string parsed(const std::string& text)
{
    const auto line = parseEncodingLine(text);
    return !line ? "nothing"
                 : std::to_string(line->pid) + std::visit([](auto& c) { return words(c); }, line->content);
}

/// The same by the patterns that stand for the forms.
std::string scanned(const std::string& line)
{
    int pid = 0;
    int percentage = -1;
    char value[2048] = "";
    // NOLINTBEGIN(cert-err34-c): scanf's own rules are what is asked for
    if (std::sscanf(line.c_str(), "pid: %d , P: %d", &pid, &percentage) >= 1 && percentage >= 0)
        return std::to_string(pid) + " P " + std::to_string(percentage);
    if (std::sscanf(line.c_str(), "pid: %d , path: %2047[^\n]", &pid, value) >= 1 && value[0] != '\0')
        return std::to_string(pid) + " path " + value;
    if (std::sscanf(line.c_str(), "pid: %d , enc_type: %2047s", &pid, value) >= 1 && value[0] != '\0')
        return std::to_string(pid) + " type " + value;
    return std::sscanf(line.c_str(), "pid: %d , ERROR: ", &pid) >= 1 ? std::to_string(pid) + " error"
                                                                     : "nothing";
    // NOLINTEND(cert-err34-c)
}

TEST(EncodingLine, HasFourForms)
{
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"pid: 4711 , P: 37", "pid:4711,P:37", "pid: \t\v\f4711\t , \tP: \v37 %", "pid: +4711 , P: +37.9"},
         "4711 P 37"},
        {{"pid: 4711 , path:  /Out/My Film.wav ", "pid:4711,path:/Out/My Film.wav "},
         "4711 path /Out/My Film.wav "},
        {{"pid: 4711 , enc_type: Main Profile", "pid:4711,enc_type:Main"}, "4711 type Main"},
        {{"pid: 4711 , ERROR: disk full", "pid: 4711 , P: -1", "pid: 4711 , P: ", "pid: 4711 P: 5",
          "pid: 4711 , path: \t ", "pid: 4711 , path:", "pid: 4711 , enc_type:", "pid: 4711",
          "pid: 4711.5 , P: 5"},
         "4711 error"},
        {{"", "bla", " pid: 4711 , P: 5", "PID: 4711 , P: 5", "pid : 4711 , P: 5", "pid: +-4711 , P: 5"},
         "nothing"},
        {{"pid: 2147483647 , P: 2147483647"}, "2147483647 P 2147483647"},
        {{"pid: -2147483648 , ERROR: "}, "-2147483648 error"},
    };
    for (const auto& [lines, wanted] : cases) {
        for (const auto& line : lines) {
            EXPECT_EQ(parsed(line), wanted) << line;
            EXPECT_EQ(scanned(line), wanted) << line;
        }
    }
    // Where scanf would do something undefined, or cut.
    const std::string longest(1023, 'x');
    EXPECT_EQ(parsed("pid: 2147483648 , P: 5"), "nothing");
    EXPECT_EQ(parsed("pid: 4711 , P: 99999999999"), "4711 error");
    EXPECT_EQ(parsed("pid: 1 , path: " + longest), "1 path " + longest);
    EXPECT_EQ(parsed("pid: 1 , path: " + longest + "x"), "1 overlong");
    EXPECT_EQ(parsed("pid: 1 , enc_type: " + longest + " and more"), "1 type " + longest);
    EXPECT_EQ(parsed("pid: 1 , enc_type: " + longest + "x"), "1 overlong");
}

TEST(EncodingLine, IsReadAsScanfReadsItWhateverItsPieces)
{
    const std::vector<std::string> pieces{
        " ", "\t", "\v", ",", "P:", "path:", "enc_type:", "ERROR:", "5",
        "0", "-",  "+",  ".", "x",  "/a",    "pid:",      " , ",    " , P: "};
    // NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp)
    std::mt19937 random(20260301); // the same lines in every run
    for (int round = 0; round < 50000; ++round) {
        std::string line = random() % 2 == 0 ? "pid:" : "pid: 4";
        for (auto count = random() % 8; count > 0; --count)
            line += pieces[random() % pieces.size()];
        ASSERT_EQ(parsed(line), scanned(line)) << line;
    }
}

} // namespace
