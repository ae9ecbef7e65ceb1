// The JSON writer every dump of the program shares: `satwalk-tool`'s batches,
// the state dump of script mode.
#pragma once

#include <string>
#include <string_view>

namespace satwalk::common {

// Appends `text` as a JSON string (quotes included). Valid UTF-8 passes
// through; any other byte, and every control character, becomes \u00XX.
void AppendJsonString(std::string& out, std::string_view text);

// Appends a double in its shortest exact form ("-0" for negative zero);
// non-finite values become null.
void AppendJsonNumber(std::string& out, double value);

// Members of one JSON object written in order: the caller writes the braces
// (or not, when members are added to an object begun elsewhere).
class JsonMembers {
  public:
    // `out` ends with '{' or with a member already written.
    explicit JsonMembers(std::string& out) : out_(out) {}

    // Starts a member and returns the text to append its value to.
    std::string& Name(std::string_view name);
    void Bool(std::string_view name, bool value);
    void Int(std::string_view name, long long value);
    void Text(std::string_view name, std::string_view value);

  private:
    std::string& out_;
};

}  // namespace satwalk::common
