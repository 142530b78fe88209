// Parses one line of the scenario language, see k3dhost-simulator --help.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace K3DHostSimulator {

/// Reads the elements of a line (words and quoted texts) from left to right. Skips the blanks (spaces, tabs,
/// carriage returns) before each element and at the end of the line. The line must outlive the reader.
class LineReader {
public:
    explicit LineReader(std::string_view line);

    bool atEnd() const { return rest.empty(); }
    /// Returns the part of the line that is not read yet, without blanks at its ends.
    std::string_view remainder() const { return rest; }

    /// Reads and returns the next word, up to a blank or the end of the line; empty if nothing is left.
    std::string_view word();
    /// Skips `expectedWords` and returns true if the rest of the line begins with exactly this text, followed
    /// by a blank or the end of the line. Otherwise skips nothing and returns false.
    bool accept(std::string_view expectedWords);

    /// Reads a word, or a text in double quotes, and returns it without the quotes. Within quotes, \xNN is
    /// the byte with the hexadecimal number NN (not 00), \\ is a backslash, and \" is a quote. At the end of
    /// the line, or if a quoted text is malformed, returns nullopt and sets `error` to one line.
    std::optional<std::string> wordOrQuoted(std::string& error);
    /// Reads and returns the last element of the line. If it begins with a double quote, it is a quoted text;
    /// otherwise it is the whole rest of the line. Fails as `wordOrQuoted` does, and also if anything follows
    /// the closing quote.
    std::optional<std::string> lastText(std::string& error);

private:
    std::optional<std::string> quoted(std::string& error);
    void skipBlanks();

    std::string_view rest;
};

} // namespace K3DHostSimulator
