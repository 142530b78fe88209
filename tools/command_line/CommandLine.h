// Parses the tools' command lines, with CLI11.
#pragma once

#include <CLI/CLI.hpp>
#include <sstream>
#include <string>
#include <type_traits>

namespace CommandLine {

/// Parses the arguments into the variables that the options of `app` refer to. Returns true if the program
/// can continue. Otherwise returns false, and the program must exit with `exitStatus`: 0 after --help or
/// --version, 2 after an error. This function has then printed `help`, the version, or one line on standard
/// error.
bool parse(CLI::App& app, const std::string& help, int argc, char** argv, int& exitStatus);

/// Returns a validator that accepts a decimal number from `min` to `max`. `what` is a part of its error
/// message, for example "a number of seconds". Use it with `CLI::Option::transform`: it also removes leading
/// zeros of an integer, because CLI11's own conversion reads 010 as an octal number.
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
