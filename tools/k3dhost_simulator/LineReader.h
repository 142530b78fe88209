// Takes one line of the scenario language apart.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace K3DHostSimulator {

/// Goes through a line from left to right. Whatever is asked for, blanks before it are passed over.
class LineReader {
public:
    explicit LineReader(std::string_view line);

    bool atEnd() const { return rest.empty(); }
    /// Everything that is left, without blanks at its ends.
    std::string_view remainder() const { return rest; }

    /// The next run of characters without a blank; empty at the end.
    std::string_view word();
    /// Passes over these words, one blank between two of them, if they come next as a whole.
    bool accept(std::string_view words);

    /// A word or a text in double quotes. Nothing, with `error` set, when there is none or when it is
    /// malformed. Within quotes \xNN is a byte, \\ a backslash and \" a quote.
    std::optional<std::string> wordOrQuoted(std::string& error);
    /// As above, but without quotes the text is all that is left of the line; with quotes nothing may follow.
    std::optional<std::string> lastText(std::string& error);

private:
    std::optional<std::string> quoted(std::string& error);
    void skipBlanks();

    std::string_view rest;
};

} // namespace K3DHostSimulator
