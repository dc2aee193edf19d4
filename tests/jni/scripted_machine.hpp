// A Java machine that is a table of functions and a list of what it was asked, and a script by which it and the
// functions below the bridge fail. Whoever calls the machine while an exception is pending, or leaves something
// unreleased, is told.
#pragma once

#include <gtest/gtest.h>
#include <jni.h>

#include <cstdint>
#include <cstring>
#include <deque>
#include <map>
#include <string>
#include <vector>

namespace nls::test {

// What the next call of a function answers in place of its own result, by the function's name; kOwn for its own.
inline constexpr int32_t kOwn = INT32_MIN;
using Answers = std::map<std::string, std::deque<int32_t>>;

struct Script {
    Answers answers;
    int failAt = 0;                // the how manieth call that can fail fails; 0: none
    int calls = 0;                 // that can fail
    int blocks = 0, files = 0;     // held
    std::string utilityText;       // left by the next juZlmOpen or juZlmLookup
    std::vector<std::string> log;  // calls of the log functions

    bool failsNow() { return ++calls == failAt; }
    bool failed() const { return failAt != 0 && calls >= failAt; }
    int32_t answer(const char* function, int32_t own) {
        auto& waiting = answers[function];
        if (waiting.empty()) return own;
        const int32_t next = waiting.front();
        waiting.pop_front();
        return next == kOwn ? own : next;
    }
};

inline Script script;

class Machine {
public:
    Machine() {
        script = {};
        table_.GetStringUTFChars = [](JNIEnv* env, jstring string, jboolean*) { return of(env).lend(string); };
        table_.ReleaseStringUTFChars = [](JNIEnv* env, jstring, const char* chars) {
            --of(env).borrowed;
            delete[] chars;
        };
        table_.NewStringUTF = [](JNIEnv* env, const char* text) {
            return of(env).may() ? of(env).string(text) : nullptr;
        };
        table_.ThrowNew = [](JNIEnv* env, jclass, const char* text) {
            of(env).mustBeFree();
            of(env).thrown = text;
            of(env).pending = true;
            return jint{0};
        };
        table_.FindClass = [](JNIEnv* env, const char* name) {
            EXPECT_STREQ(name, "com/lorvanta/halvane/common/Tools");
            return of(env).may() ? reinterpret_cast<jclass>(env) : nullptr;
        };
        table_.GetStaticMethodID = [](JNIEnv* env, jclass, const char* name, const char* signature) {
            EXPECT_EQ(std::string(name) + signature, "ps(Ljava/lang/String;)V");
            return of(env).may() ? reinterpret_cast<jmethodID>(env) : nullptr;
        };
        table_.CallStaticVoidMethodV = [](JNIEnv* env, jclass, jmethodID, va_list arguments) {
            if (of(env).may()) of(env).shown.push_back(*textOf(va_arg(arguments, jstring)));
        };
        table_.ExceptionCheck = [](JNIEnv* env) { return jboolean{of(env).pending}; };
        env_.self.functions = &table_;
        env_.machine = this;
    }
    ~Machine() {
        for (const std::string* made : strings_) delete made;
    }
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    JNIEnv* env() { return &env_.self; }
    jclass exceptionClass() { return reinterpret_cast<jclass>(this); }
    jstring string(const std::string& text) {
        strings_.push_back(new std::string(text));
        return reinterpret_cast<jstring>(strings_.back());
    }
    static const std::string* textOf(jstring string) { return reinterpret_cast<const std::string*>(string); }

    // Back to a machine without an exception, for the next call.
    void catchException() {
        pending = false;
        thrown.clear();
        shown.clear();
    }
    bool holdsNothing() const { return borrowed == 0 && script.blocks == 0 && script.files == 0; }

    bool pending = false;
    std::string thrown;              // the text of ThrowNew; empty for an exception of the machine's own
    std::vector<std::string> shown;  // through ps
    int borrowed = 0;

private:
    struct Env {
        JNIEnv self;
        Machine* machine;
    };
    static Machine& of(JNIEnv* env) { return *reinterpret_cast<Env*>(env)->machine; }

    void mustBeFree() const { EXPECT_FALSE(pending) << "a call of the machine while an exception is pending"; }
    bool may() {
        mustBeFree();
        if (script.failsNow()) pending = true;
        return !pending;
    }
    const char* lend(jstring string) {
        EXPECT_NE(string, nullptr);
        if (!may()) return nullptr;
        ++borrowed;
        char* const copy = new char[textOf(string)->size() + 1];
        return static_cast<const char*>(memcpy(copy, textOf(string)->c_str(), textOf(string)->size() + 1));
    }

    JNINativeInterface_ table_{};
    Env env_{};
    std::vector<std::string*> strings_;
};

}  // namespace nls::test
