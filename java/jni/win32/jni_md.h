/* The machine-dependent part of the JDK's JNI header (jni.h includes it) for 64-bit and
   32-bit Windows: the sizes of the Java integer types and how an exported native method is
   declared and called there. A JDK installed on Linux ships only its own form of this header;
   this one lets the Linux JDK's jni.h serve the cross-build of vexa.dll. A JDK for Windows
   has its own copy in include/win32, which the build prefers when it finds one. */
#ifndef VEXA_JNI_MD_WIN32_H
#define VEXA_JNI_MD_WIN32_H

#define JNIEXPORT __declspec(dllexport)
#define JNIIMPORT __declspec(dllimport)
/* The calling convention of native methods on 32-bit Windows; x64 has only one. */
#define JNICALL __stdcall

/* jint is 32 bits and jlong 64 bits; long has 32 bits on Windows. */
typedef long jint;
typedef __int64 jlong;
typedef signed char jbyte;

#endif
