#include "jni/jni_text.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace nls {

namespace {

using Bytes = std::span<const unsigned char>;

// How many bytes a character of that lead byte has; 0 for a byte that leads none. C0 leads U+0000 in its modified form.
std::size_t lengthByLead(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead == 0xC0 || (lead >= 0xC2 && lead < 0xE0)) return 2;
    if (lead >= 0xE0 && lead < 0xF0) return 3;
    return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

// The least and the largest second byte behind a lead byte.
std::array<unsigned char, 2> secondByteRange(unsigned char lead) {
    if (lead == 0xC0) return {0x80, 0x80};
    if (lead == 0xE0) return {0xA0, 0xBF};
    if (lead == 0xF0) return {0x90, 0xBF};
    if (lead == 0xF4) return {0x80, 0x8F};
    return {0x80, 0xBF};
}

// The length of the character at the beginning of `text`, or 0 where there is no well-formed one. Surrogates of three
// bytes count as characters.
std::size_t characterLength(Bytes text) {
    const std::size_t length = lengthByLead(text[0]);
    if (length < 2) return length;
    if (length > text.size()) return 0;
    const auto [least, largest] = secondByteRange(text[0]);
    if (text[1] < least || text[1] > largest) return 0;
    const auto trails = [](unsigned char byte) { return (byte & 0xC0) == 0x80; };
    const Bytes rest = text.subspan(2, length - 2);
    return std::all_of(rest.begin(), rest.end(), trails) ? length : 0;
}

char* put3(char* to, uint32_t unit) {
    *to++ = static_cast<char>(0xE0 | unit >> 12);
    *to++ = static_cast<char>(0x80 | (unit >> 6 & 0x3F));
    *to++ = static_cast<char>(0x80 | (unit & 0x3F));
    return to;
}

char* putPair(char* to, Bytes character) {
    uint32_t point = character[0] & 0x07;
    for (const unsigned char trail : character.subspan(1)) point = point << 6 | (trail & 0x3F);
    point -= 0x10000;
    return put3(put3(to, 0xD800 + (point >> 10)), 0xDC00 + (point & 0x3FF));
}

char* putCharacter(char* to, Bytes character) {
    if (character.size() == 4) return putPair(to, character);
    if (character[0] == 0) {
        *to++ = static_cast<char>(0xC0);
        *to++ = static_cast<char>(0x80);
        return to;
    }
    std::memcpy(to, character.data(), character.size());
    return to + character.size();
}

Bytes bytesOf(const char* text) {
    if (text == nullptr) return {};
    return {reinterpret_cast<const unsigned char*>(text), strnlen(text, kLongestText)};
}

}  // namespace

const char* modifiedUtf8(Bytes text, std::span<char> room) {
    char* to = room.data();
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        to = length == 0 ? put3(to, 0xFFFD) : putCharacter(to, text.first(length));
        text = text.subspan(length == 0 ? 1 : length);
    }
    *to = '\0';
    return room.data();
}

jstring newString(JNIEnv* env, const char* text) {
    const Bytes bytes = bytesOf(text);
    return newString(env, bytes.data(), bytes.size());
}

jstring newString(JNIEnv* env, const unsigned char* text, std::size_t length) {
    char room[modifiedRoom(kLongestText)];
    return env->NewStringUTF(modifiedUtf8({text, std::min(length, kLongestText)}, room));
}

void throwText(JNIEnv* env, jclass exceptionClass, const char* text) {
    char room[modifiedRoom(kLongestText)];
    env->ThrowNew(exceptionClass, modifiedUtf8(bytesOf(text), room));
}

}  // namespace nls
