// Many threads on one handle: what is shared is read alone, so every thread gets the answers that one thread gets. The
// thread sanitizer's build runs this.
#include <array>
#include <barrier>
#include <functional>
#include <thread>

#include "tests/real/data_file.hpp"

namespace nls::real {
namespace {

constexpr std::size_t kThreads = 8, kTexts = 64;

// A number that tells all answers.
class Print {
public:
    void add(ByteView bytes) {
        for (const unsigned char byte : bytes) print_ = (print_ ^ byte) * 0x100000001B3U;
    }
    void add(uint64_t number) {
        for (unsigned shift = 0; shift < 64; shift += 8) print_ = (print_ ^ (number >> shift & 0xFFU)) * 0x100000001B3U;
    }
    uint64_t get() const { return print_; }

private:
    uint64_t print_ = 0xCBF29CE484222325U;
};

// Real text of the charset in lines, each closed by a NUL.
std::vector<Bytes> linesOf(const std::string& charset) {
    std::vector<Bytes> lines(1);
    for (const unsigned char byte : realText(charset)) {
        if (byte != '\n') {
            lines.back().push_back(byte);
            continue;
        }
        lines.back().push_back(0);
        if (lines.size() == kTexts) break;
        lines.emplace_back();
    }
    if (lines.back().empty() || lines.back().back() != 0) lines.back().push_back(0);
    return lines;
}

struct Work {
    const nlsLocale* locale;
    const nlsConversion* toUtf8;
    std::vector<Bytes> texts;
};

void answer(const Work& work, nlsTlsBlock* tls, Print& print) {
    for (const Bytes& text : work.texts) {
        Bytes room(8 * text.size() + 64);
        const auto size = static_cast<int32_t>(room.size());
        uint16_t keyLength = 0;
        print.add(static_cast<uint64_t>(
            nlsSortKey(work.locale, tls, text.data(), static_cast<int16_t>(size), 0, 1, room.data(), &keyLength)));
        print.add(ByteView{room}.first(keyLength));
        const nlsStr from{const_cast<unsigned char*>(text.data()), 0, 0};
        nlsStr upper{room.data(), size, 0};
        print.add(static_cast<uint64_t>(nlsUpperCase(work.locale, tls, &from, &upper)));
        print.add(ByteView{room}.first(upper.strLength));
        for (const Bytes& other : work.texts) {
            uint16_t sign = 0;
            print.add(static_cast<uint64_t>(nlsCompare(work.locale, tls, text.data(), other.data(), 0, &sign)));
            print.add(uint64_t{sign});
        }
        const Outcome converted = convert(work.toUtf8->table, text);
        print.add(converted.bytes);
    }
}

class ManyThreads : public testing::Test {
protected:
    // A handle of its own, so that what is found out on first use hasn't been yet.
    void open() {
        open_ = std::make_unique<test::OpenHandle>(dataFile(), 8 << 20);
        works_.clear();
        const std::array<std::pair<const char*, const char*>, 7> all{{{"ISO8859-1", "german"},
                                                                      {"1251", "russian"},
                                                                      {"SHIFT-JIS", "basic"},
                                                                      {"EUCJIS", "basic"},
                                                                      {"620-2533", "basic"},
                                                                      {"GB2312", "basic"},
                                                                      {"UTF-8", "basic"}}};
        for (const auto& [charset, collation] : all) {
            nlsLocale* locale = nullptr;
            ASSERT_EQ(nlsCreateLocale(open_->handle, charset, collation, "basic", &locale), NLS_OK) << charset;
            works_.push_back({locale, open_->conversion(charset, "UTF-8"), linesOf(charset)});
            ASSERT_NE(works_.back().toUtf8, nullptr) << charset;
        }
    }

    // Begins with another work in each thread, so that they meet in all of them.
    uint64_t answerAll(std::size_t thread) const {
        std::array<unsigned char, 4096> memory{};
        uint32_t size = memory.size();
        nlsTlsBlock* tls = nullptr;
        EXPECT_EQ(nlsTlsInit(thread, memory.data(), &size, &tls), NLS_OK);
        std::vector<Print> prints(works_.size());
        for (std::size_t i = 0; i < works_.size(); ++i) {
            const std::size_t which = (i + thread) % works_.size();
            answer(works_[which], tls, prints[which]);
        }
        EXPECT_EQ(nlsTlsClose(tls), NLS_OK);
        Print all;
        for (const Print& print : prints) all.add(print.get());
        return all.get();
    }

    std::unique_ptr<test::OpenHandle> open_;
    std::vector<Work> works_;
};

TEST_F(ManyThreads, AnswerAsOneDoes) {
    ASSERT_NO_FATAL_FAILURE(open());
    const uint64_t alone = answerAll(0);
    for (unsigned round = 0; round < 3; ++round) {
        ASSERT_NO_FATAL_FAILURE(open());
        std::array<uint64_t, kThreads> together{};
        std::barrier start{std::ptrdiff_t{kThreads}};
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < kThreads; ++i)
            threads.emplace_back([this, i, &start, &together] {
                start.arrive_and_wait();
                together[i] = answerAll(i);
            });
        threads.clear();
        for (const uint64_t print : together) EXPECT_EQ(print, alone);
    }
}

}  // namespace
}  // namespace nls::real
