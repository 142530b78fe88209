// Parses one line of the scenario language.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace K3DHostSimulator {

/// Reads a line from left to right; blanks before each element are skipped.
class LineReader {
public:
    explicit LineReader(std::string_view line);

    bool atEnd() const { return rest.empty(); }
    /// Returns the rest of the line without blanks at its ends.
    std::string_view remainder() const { return rest; }

    /// Reads the next word, which ends at a blank; empty at the end.
    std::string_view word();
    /// Skips `expectedWords`, with one blank between two of them, if they are next and complete. Returns
    /// whether they were.
    bool accept(std::string_view expectedWords);

    /// Reads a word or a text in double quotes. Returns nullopt, with `error` set, if there is none or it is
    /// malformed. Within quotes \xNN is a byte, \\ a backslash and \" a quote.
    std::optional<std::string> wordOrQuoted(std::string& error);
    /// Does the same, but without quotes the text is the rest of the line; with quotes nothing may follow.
    std::optional<std::string> lastText(std::string& error);

private:
    std::optional<std::string> quoted(std::string& error);
    void skipBlanks();

    std::string_view rest;
};

} // namespace K3DHostSimulator
