#pragma once

// The compiler includes this header before every source that is built for the test bed.

#ifdef __OBJC__
#include <objc/objc.h>
// Define these names as on macOS. The definitions of GCC do not compile in some expressions: nil, which is (id)0, in
// "error:nil", and YES, which is (BOOL)1, in "@YES".
#undef nil
#undef Nil
#define nil nullptr
#define Nil nullptr
#undef YES
#undef NO
#define YES __objc_yes
#define NO __objc_no
#endif

// Availability depends on the system version that a test sets. Clang's own check always succeeds for a system that is
// not the target system.
extern "C" bool ZBSystemIsAtLeast(char const* version);
// NOLINTNEXTLINE(bugprone-reserved-identifier): this macro replaces the compiler's builtin
#define __builtin_available(version, ...) ZBSystemIsAtLeast(#version)
#ifdef __OBJC__
// These Qt headers declare functions with the name available(). They must be included before the macro of this name is
// defined.
#include <QtCore/qcontiguouscache.h>
#include <QtCore/qsemaphore.h>
// "@available(...)" expands to "@encode(char)[...]", which reads a character of the string "c". The character at index
// 0 is not zero, so it means true. The character at index 1 is the terminating zero, so it means false.
#define available(version, ...) encode(char)[ZBSystemIsAtLeast(#version) ? 0 : 1]
#endif

// Qt declares its conversions from and to Apple types only if Q_OS_DARWIN is defined.
#include <QtCore/qglobal.h>
#define Q_OS_DARWIN
#include <QtCore/qstring.h>
#include <QtCore/qurl.h>
#undef Q_OS_DARWIN
