// Writes JSON that is also safe inside a script element of an HTML page.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace fleet {

// One value after the other; the commas come by themselves. A member's name goes before its value:
//     json.open('{'); json.name("state").text("failed"); json.close('}');
class JsonWriter {
public:
    JsonWriter& open(char bracket);  // { or [
    JsonWriter& close(char bracket);
    JsonWriter& name(std::string_view key);
    JsonWriter& text(std::string_view value);  // well-formed UTF-8; < > & and control characters become escapes
    JsonWriter& number(int64_t value);
    JsonWriter& number(const std::optional<int>& value);  // null without one
    JsonWriter& number(const std::optional<int64_t>& value);
    JsonWriter& boolean(bool value);

    const std::string& result() const {
        return json;
    }

private:
    JsonWriter& raw(std::string_view value);

    std::string json;
};

}  // namespace fleet
