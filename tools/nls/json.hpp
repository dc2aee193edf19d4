// Writing JSON: objects and lists as text, one value after the other.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace nls::tool {

// A string literal. What isn't valid UTF-8 becomes U+FFFD.
std::string jsonText(std::string_view text);

class JsonWriter {
public:
    JsonWriter& open(char bracket) {
        separate();
        text_ += bracket;
        first_ = true;
        return *this;
    }
    JsonWriter& close(char bracket) {
        text_ += bracket;
        first_ = false;
        return *this;
    }
    JsonWriter& key(std::string_view name) {
        separate();
        text_ += jsonText(name) + ": ";
        first_ = true;
        return *this;
    }
    JsonWriter& value(std::string_view text) { return raw(jsonText(text)); }
    JsonWriter& value(const char* text) { return raw(jsonText(text)); }
    JsonWriter& value(bool truth) { return raw(truth ? "true" : "false"); }
    JsonWriter& value(uint64_t number) { return raw(std::to_string(number)); }
    JsonWriter& value(int64_t number) { return raw(std::to_string(number)); }
    template <typename Value>
    JsonWriter& member(std::string_view name, const Value& it) {
        return key(name).value(it);
    }

    const std::string& text() const { return text_; }

private:
    JsonWriter& raw(const std::string& literal) {
        separate();
        text_ += literal;
        return *this;
    }
    void separate() {
        if (!first_) text_ += ", ";
        first_ = false;
    }

    std::string text_;
    bool first_ = true;
};

}  // namespace nls::tool
