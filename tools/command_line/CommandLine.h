// The tools' command lines, parsed by CLI11.
#pragma once

#include <CLI/CLI.hpp>
#include <sstream>
#include <string>
#include <type_traits>

namespace CommandLine {

/// Parses the arguments into what the options of `app` are bound to. Returns false when the program is to
/// end: with `exitStatus` 0 after --help, which prints `help`, and after --version; with 2 after an error,
/// which is one line on standard error.
bool parse(CLI::App& app, const std::string& help, int argc, char** argv, int& exitStatus);

/// Accepts a decimal number from `min` to `max`; an error calls it `what`. To be used as a transformation:
/// CLI11 alone would read 010 as 8.
template <typename Number>
CLI::Validator number(const std::string& what, Number min, Number max)
{
    return {[=](std::string& text) -> std::string {
                std::istringstream input(text);
                Number value{};
                if (input >> std::noskipws >> value && input.peek() == EOF && value >= min && value <= max) {
                    if constexpr (std::is_integral_v<Number>)
                        text = std::to_string(value);
                    return "";
                }
                std::ostringstream error;
                error << "expected " << what << " from " << min << " to " << max << ", got '" << text << "'";
                return error.str();
            },
            ""};
}

} // namespace CommandLine
