// Text between Java and here: strings of Java's that are borrowed, strings and exceptions made for it.
//
// The Java machine takes text in modified UTF-8: no byte is 0, U+0000 is C0 80, and a character above U+FFFF is a pair
// of surrogates of three bytes each. `modifiedUtf8` makes it of what comes in. What is there already in that form
// stays, and what isn't well-formed becomes U+FFFD.
#pragma once

#include <jni.h>

#include <cstddef>
#include <span>

namespace nls {

// The most bytes of modified UTF-8, with the closing NUL, for so many bytes.
constexpr std::size_t modifiedRoom(std::size_t bytes) {
    return 3 * bytes + 1;
}

// Writes `text` as modified UTF-8 and closes it with a NUL. REQUIRES: `room` has modifiedRoom(text.size()) bytes.
const char* modifiedUtf8(std::span<const unsigned char> text, std::span<char> room);

// A new String of `text`, of which at most kLongestText bytes are taken; null with an exception.
jstring newString(JNIEnv* env, const char* text);

// The same of the text that ends `length` bytes on.
jstring newString(JNIEnv* env, const unsigned char* text, std::size_t length);

inline constexpr std::size_t kLongestText = 1024;

// Throws `text`, of which at most kLongestText bytes are taken; null is an empty text.
void throwText(JNIEnv* env, jclass exceptionClass, const char* text);

// The characters of a String, until the end of the scope. A null String has none.
class BorrowedText {
public:
    BorrowedText(JNIEnv* env, jstring string)
        : env_(env), string_(string), chars_(string == nullptr ? nullptr : env->GetStringUTFChars(string, nullptr)) {}
    ~BorrowedText() {
        if (chars_ != nullptr) env_->ReleaseStringUTFChars(string_, chars_);
    }
    BorrowedText(const BorrowedText&) = delete;
    BorrowedText& operator=(const BorrowedText&) = delete;

    // Null for a null String, and where the Java machine couldn't give them.
    const char* get() const { return chars_; }

    // The Java machine couldn't give the characters, and has set an exception.
    bool failed() const { return string_ != nullptr && chars_ == nullptr; }

private:
    JNIEnv* env_;
    jstring string_;
    const char* chars_;
};

}  // namespace nls
