// The forms of an encoder's line.
#include "backend/EncodingLine.h"

#include <gtest/gtest.h>

namespace {

using namespace Kest::Settings;

std::string text(const ProgressLine& line) { return " P " + std::to_string(line.percentage); }
std::string text(const PathLine& line) { return " path " + std::string(line.path); }
std::string text(const TypeLine& line) { return " type " + std::string(line.word); }
std::string text(const ErrorLine&) { return " error"; }
std::string text(const OverlongValue&) { return " overlong"; }

/// The result of the parser as "pid form value".
std::string parsed(const std::string& line)
{
    const auto result = parseEncodingLine(line);
    return !result
               ? "nothing"
               : std::to_string(result->pid) + std::visit([](auto& c) { return text(c); }, result->content);
}

TEST(EncodingLine, HasFourForms)
{
    const std::string longest(1023, 'x');
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"pid: 4711 , P: 37", "pid:4711,P:37", "pid: \t\v\f4711\t , \tP: \v37 %", "pid: +4711 , P: +37.9"},
         "4711 P 37"},
        {{"pid: 4711 , path:  /Out/My Film.wav ", "pid:4711,path:/Out/My Film.wav "},
         "4711 path /Out/My Film.wav "},
        {{"pid: 4711 , enc_type: Main Profile", "pid:4711,enc_type:Main"}, "4711 type Main"},
        {{"pid: 4711 , ERROR: disk full", "pid: 4711 , P: -1", "pid: 4711 , P: ", "pid: 4711 P: 5",
          "pid: 4711 , path: \t ", "pid: 4711 , path:", "pid: 4711 , enc_type:", "pid: 4711",
          "pid: 4711.5 , P: 5", "pid: 4711 , P: 99999999999"},
         "4711 error"},
        {{"", "bla", " pid: 4711 , P: 5", "PID: 4711 , P: 5", "pid : 4711 , P: 5", "pid: +-4711 , P: 5",
          "pid: 2147483648 , P: 5"},
         "nothing"},
        {{"pid: 2147483647 , P: 2147483647"}, "2147483647 P 2147483647"},
        {{"pid: -2147483648 , ERROR: "}, "-2147483648 error"},
        {{"pid: 1 , path: " + longest}, "1 path " + longest},
        {{"pid: 1 , enc_type: " + longest + " and more"}, "1 type " + longest},
        {{"pid: 1 , path: " + longest + "x", "pid: 1 , enc_type: " + longest + "x"}, "1 overlong"},
    };
    for (const auto& [lines, wanted] : cases)
        for (const auto& line : lines)
            EXPECT_EQ(parsed(line), wanted) << line;
}

} // namespace
