#include "tools/nls/sha256.hpp"

#include <bit>
#include <cstdio>

namespace nls::tool {
namespace {

// The first 32 bits of the fractions of the cube roots of the first 64 primes.
constexpr uint32_t roundWords[64] = {
    0x428A2F98, 0x71374491, 0xB5C0FBCF, 0xE9B5DBA5, 0x3956C25B, 0x59F111F1, 0x923F82A4, 0xAB1C5ED5,
    0xD807AA98, 0x12835B01, 0x243185BE, 0x550C7DC3, 0x72BE5D74, 0x80DEB1FE, 0x9BDC06A7, 0xC19BF174,
    0xE49B69C1, 0xEFBE4786, 0x0FC19DC6, 0x240CA1CC, 0x2DE92C6F, 0x4A7484AA, 0x5CB0A9DC, 0x76F988DA,
    0x983E5152, 0xA831C66D, 0xB00327C8, 0xBF597FC7, 0xC6E00BF3, 0xD5A79147, 0x06CA6351, 0x14292967,
    0x27B70A85, 0x2E1B2138, 0x4D2C6DFC, 0x53380D13, 0x650A7354, 0x766A0ABB, 0x81C2C92E, 0x92722C85,
    0xA2BFE8A1, 0xA81A664B, 0xC24B8B70, 0xC76C51A3, 0xD192E819, 0xD6990624, 0xF40E3585, 0x106AA070,
    0x19A4C116, 0x1E376C08, 0x2748774C, 0x34B0BCB5, 0x391C0CB3, 0x4ED8AA4A, 0x5B9CCA4F, 0x682E6FF3,
    0x748F82EE, 0x78A5636F, 0x84C87814, 0x8CC70208, 0x90BEFFFA, 0xA4506CEB, 0xBEF9A3F7, 0xC67178F2};

uint32_t bigEndian(const unsigned char* place) {
    return uint32_t{place[0]} << 24 | uint32_t{place[1]} << 16 | uint32_t{place[2]} << 8 | place[3];
}

}  // namespace

void Sha256::addBlock(const unsigned char* block) {
    uint32_t words[64];
    for (unsigned i = 0; i < 16; ++i) words[i] = bigEndian(block + 4 * i);
    for (unsigned i = 16; i < 64; ++i) {
        const uint32_t s0 = std::rotr(words[i - 15], 7) ^ std::rotr(words[i - 15], 18) ^ words[i - 15] >> 3;
        const uint32_t s1 = std::rotr(words[i - 2], 17) ^ std::rotr(words[i - 2], 19) ^ words[i - 2] >> 10;
        words[i] = words[i - 16] + s0 + words[i - 7] + s1;
    }
    auto [a, b, c, d, e, f, g, h] = state_;
    for (unsigned i = 0; i < 64; ++i) {
        const uint32_t choice = (e & f) ^ (~e & g);
        const uint32_t majority = (a & b) ^ (a & c) ^ (b & c);
        const uint32_t s1 = std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25);
        const uint32_t s0 = std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22);
        const uint32_t t1 = h + s1 + choice + roundWords[i] + words[i];
        h = g;
        g = f;
        f = e;
        e = d + t1;
        d = c;
        c = b;
        b = a;
        a = t1 + s0 + majority;
    }
    const uint32_t mixed[] = {a, b, c, d, e, f, g, h};
    for (unsigned i = 0; i < 8; ++i) state_[i] += mixed[i];
}

void Sha256::add(ByteView bytes) {
    for (const unsigned char byte : bytes) {
        block_[length_ % 64] = byte;
        if (++length_ % 64 == 0) addBlock(block_.data());
    }
}

std::string Sha256::finish() {
    const uint64_t bits = length_ * 8;
    unsigned char close = 0x80;
    do {
        add({&close, 1});
        close = 0;
    } while (length_ % 64 != 56);
    unsigned char count[8];
    for (unsigned i = 0; i < 8; ++i) count[i] = static_cast<unsigned char>(bits >> (56 - 8 * i));
    add(count);
    std::string digits;
    for (const uint32_t word : state_) {
        char text[9];
        std::snprintf(text, sizeof text, "%08x", word);
        digits += text;
    }
    return digits;
}

}  // namespace nls::tool
