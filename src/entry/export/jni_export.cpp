// The JNI entry of the Java class Vexa: native int vexa(String path).
#include <jni.h>

#include <cstdio>
#include <string>

#include "base/unicode.h"
#include "entry/run_driver.h"

namespace {

// Holds the path's characters for the length of the run and always releases them.
class JavaString {
public:
    JavaString(JNIEnv* env, jstring text)
        : env_(env),
          text_(text),
          chars_(text != nullptr ? env->GetStringUTFChars(text, nullptr) : nullptr) {}
    ~JavaString() {
        if (chars_ != nullptr) env_->ReleaseStringUTFChars(text_, chars_);
    }
    JavaString(const JavaString&) = delete;
    JavaString& operator=(const JavaString&) = delete;
    const char* get() const { return chars_; }

private:
    JNIEnv* env_;
    jstring text_;
    const char* chars_;
};

}  // namespace

extern "C" JNIEXPORT jint JNICALL Java_Vexa_vexa(JNIEnv* env, jobject /*self*/,
                                                 jstring path) noexcept {
    try {
        const JavaString run_file(env, path);
        if (run_file.get() == nullptr) {
            if (env->ExceptionCheck()) env->ExceptionClear();
            std::printf("vexa: no run file was given\n");
            std::fflush(stdout);
            return 0;
        }
        // JNI hands over modified UTF-8; the engine keeps paths in UTF-8.
        std::string path_text;
        if (!vexa::utf8_from_java(run_file.get(), path_text)) {
            std::printf("vexa: the run file path holds a NUL character\n");
            std::fflush(stdout);
            return 0;
        }
        vexa::run_entry(path_text.c_str(), vexa::RunOptions{});
    } catch (...) {
        std::printf("vexa: the run ended unexpectedly\n");
    }
    std::fflush(stdout);
    return 0;
}
