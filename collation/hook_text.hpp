// A text as a site's own sort sees it: it ends at a NUL, wherever the caller's text ends.
//
// A text that ends at a NUL already is handed on as it stands. One that ends before is copied where it is short enough.
// Else a NUL is put behind it for as long as this object lives, into the caller's own bytes.
#pragma once

#include <cstddef>
#include <cstring>

namespace nls {

class HookText {
public:
    static constexpr std::size_t kRoom = 4096;  // of a copy, with its NUL

    // A text that ends at its NUL.
    explicit HookText(const unsigned char* text) : text_(text) {}
    // A text of `length` bytes, or fewer if a NUL stands among them.
    HookText(const unsigned char* text, std::size_t length) : text_(text) {
        if (std::memchr(text, 0, length) != nullptr) return;
        if (length < kRoom) {
            std::memcpy(copy_, text, length);
            copy_[length] = 0;
            text_ = copy_;
        } else if (text[length] != 0) {
            closed_ = const_cast<unsigned char*>(text + length);
            saved_ = *closed_;
            *closed_ = 0;
        }
    }
    HookText(const HookText&) = delete;
    HookText& operator=(const HookText&) = delete;
    ~HookText() {
        if (closed_ != nullptr) *closed_ = saved_;
    }

    const unsigned char* get() const { return text_; }

private:
    const unsigned char* text_;
    unsigned char* closed_ = nullptr;
    unsigned char saved_ = 0;
    unsigned char copy_[kRoom];
};

}  // namespace nls
