// Conversions at the border between the JVM and the C interface, shared by
// the hand-written and the generated JNI functions.
//
// Every function here checks for a pending Java exception after each JNI
// call that can raise one and gives up at once when there is one: the JNI
// function that called it then returns its default, and the exception is
// thrown in Java when the native method returns.
#ifndef TAVURO_JAVA_JNISUPPORT_H_
#define TAVURO_JAVA_JNISUPPORT_H_

#include <jni.h>

#include <cstdint>
#include <string>

namespace tavuro_jni {

/// The UTF-8 form of a Java string argument, for a `const char*` parameter
/// of the C interface. A null string gives nullptr; a lone surrogate becomes
/// U+FFFD. failed() is true when the JVM raised an exception (no memory).
class Text {
 public:
  Text(JNIEnv* env, jstring text);

  [[nodiscard]] const char* get() const { return present_ ? utf8_.c_str() : nullptr; }
  [[nodiscard]] const std::string& str() const { return utf8_; }
  [[nodiscard]] bool present() const { return present_; }
  [[nodiscard]] bool failed() const { return failed_; }

 private:
  std::string utf8_;
  bool present_ = false;
  bool failed_ = false;
};

/// A Java string of `size` bytes of UTF-8 (invalid bytes become U+FFFD);
/// nullptr when the JVM raised an exception.
jstring newString(JNIEnv* env, const char* utf8, std::size_t size);

/// A Java string of a text result that the caller owns, which it frees;
/// nullptr for nullptr (absent).
jstring takeText(JNIEnv* env, char* owned);

/// Hands a text result that the caller owns to Java through `buffer`, a
/// per-thread array of Java's (see NativeLibrary.text): returns -1 for
/// nullptr (absent), else the length in bytes, having written the bytes into
/// `buffer` when they fit and otherwise kept the text for
/// NativeLibrary.nTakePendingText on this thread. Frees what it does not keep.
jint putText(JNIEnv* env, jbyteArray buffer, char* owned);

/// A new Java byte array holding a copy of `size` bytes; nullptr when the JVM
/// raised an exception.
jbyteArray newBytes(JNIEnv* env, const void* bytes, std::size_t size);

/// The handle that a Java object holds as a long.
template <class T>
T* handle(jlong value) {
  return reinterpret_cast<T*>(static_cast<std::intptr_t>(value));
}

/// A handle as the long that Java keeps; 0 for nullptr.
template <class T>
jlong toJava(T* pointer) {
  return static_cast<jlong>(reinterpret_cast<std::intptr_t>(pointer));
}

}  // namespace tavuro_jni

#endif  // TAVURO_JAVA_JNISUPPORT_H_
