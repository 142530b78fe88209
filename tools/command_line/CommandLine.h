// Parses the tools' command lines, with CLI11.
#pragma once

#include <CLI/CLI.hpp>
#include <sstream>
#include <string>
#include <type_traits>

namespace CommandLine {

/// Parses the arguments into the variables of the options of `app`. Returns false if the program is to exit
/// with `exitStatus`: 0 after --help, which prints `help`, and after --version; 2 after an error, which
/// prints one line on standard error.
bool parse(CLI::App& app, const std::string& help, int argc, char** argv, int& exitStatus);

/// Returns a transformation that accepts a decimal number from `min` to `max`, which an error calls `what`.
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
